#include "programs/zevsim/prompt_help.h"

#include <utility>

#include "programs/zevsim/text_block.h"

namespace zev::scenario {
namespace {

struct HelpRow {
  TextView typed;
  TextView meaning;
};

// clang-format off
constexpr HelpRow helpRows[] = {
    {u"click NAME", u"a control by its name, or by what stands on it: click Back"},
    {u"select NAME ENTRY", u"an entry of a list, or its beginning: select Combo1 esp"},
    {u"list [NAME]", u"what there is to select"},
    {u"type NAME TEXT", u"replaces the text of a text box: type Text2 D:\\Apps"},
    {u"read [NAME]", u"a long text, page by page"},
    {u"drive D:", u"chooses in the drive list"},
    {u"folder NAME", u"opens a folder in the tree; .. is the one above"},
    {u"focus NAME", u"moves the focus"},
    {u"close [FORM]", u"the close box of the title bar"},
    {u"answer WORD ...", u"answers boxes to come: ok cancel abort retry ignore yes no"},
    {u"answer text TEXT", u"a text for an input box to come"},
    {u"show KEY", u"what an expectation would find: show Form1.Text2.Text"},
    {u"set KEY VALUE", u"writes a global or a property: set global.gLanguage 2"},
    {u"expect {..}", u"holds expectations"},
    {u"change {..}", u"changes the machine, with the keys of a machine object"},
    {u"{..}", u"any step of a script as it stands in a scenario"},
    {u"state", u"the machine as a whole, in JSON"},
    {u"restart", u"starts the program anew"},
    {u"screen, width N", u"draws the form again; N columns wide"},
    {u"help, quit", u"this text; leaves. Both work in boxes, too"},
};
// clang-format on

constexpr int helpIndent = 19;

}  // namespace

std::string promptHelp(int columns) {
  Text text;
  for (const HelpRow& row : helpRows) {
    Text head = fitted(row.typed, helpIndent);
    for (const Text& line : wrapped(row.meaning, columns - helpIndent)) {
      text += join(std::exchange(head, repeated(helpIndent, u' ')), line, u"\n");
    }
  }
  return toUtf8(text);
}

}  // namespace zev::scenario
