#include "programs/zevsim/prompt.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/system_information.h"
#include "programs/zevsim/meant.h"
#include "programs/zevsim/text_block.h"
#include "programs/zevsim/typed_line.h"
#include "programs/zevsim/zevsim_options.h"
#include "runtime/controls.h"
#include "scenario/script.h"

namespace zev::simulator {

using scenario::Answer;
using scenario::Box;
using scenario::Step;

// ---- the help

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

namespace {

constexpr std::string_view inputHelp =
    "What is typed is the text; an empty line cancels. The words help and quit as a\n"
    "text stand in double quotes. quit leaves.\n";

constexpr int inputColumns = 30;
bool isShownFolder(const simulated::Disks& disks, const Text& path) {
  constexpr std::uint32_t shown = file_attribute::directory;
  constexpr std::uint32_t hidden = file_attribute::hidden | file_attribute::system;
  const auto entry = disks.find(path);
  return entry && (entry->attributes & (shown | hidden)) == shown;
}

/// The folders of the machine, those that a person does not see left out. What is no folder has
/// none.
FolderNames foldersOf(const simulated::SimulatedMachine& machine) {
  return [&disks = machine.disks()](const Text& folder) {
    std::vector<Text> folders;
    try {
      for (const Text& name : disks.names(folder).value_or(std::vector<Text>())) {
        const Text path = join(withoutTrailing(folder, u'\\'), u"\\", name);
        if (isShownFolder(disks, path)) folders.push_back(name);
      }
    } catch (const std::invalid_argument&) {  // no path of the machine
    }
    return folders;
  };
}

// Boxes.

/// Their words with commas between them.
std::string buttonWords(const Box& box) {
  std::string all;
  for (const BoxAnswer each : box.buttons) {
    all += (all.empty() ? "" : ", ") + std::string(answerName(each));
  }
  return all;
}

/// The button that a person means who types its word, or the beginning of it.
std::optional<std::string> meantButton(std::string_view typed, const Box& box) {
  for (const BoxAnswer each : box.buttons) {
    if (answerName(each).starts_with(typed)) return std::string(answerName(each));
  }
  return std::nullopt;
}

Text buttonRow(const Box& box) {
  Text row;
  for (const BoxAnswer each : box.buttons) {
    const TextView mark = each == box.byDefault ? u" *" : u"";
    row += join(row.empty() ? u"" : u"  ", u"[ ", fromUtf8(answerName(each)), mark, u" ]");
  }
  return row;
}

/// A box as wide as its lines, within a width.
std::string boxDrawing(TextView title, TextView text, const Text& below, int columns) {
  std::vector<Text> lines = wrapped(text, columns - frameColumns);
  lines.insert(lines.end(), {Text(), below});
  int inside = columnsOf(title) + 2;
  for (const Text& each : lines) inside = std::max(inside, columnsOf(each));
  return framed(title, lines, std::min(inside, columns - frameColumns));
}

// Lists.

bool isList(const Control& control) {
  return control.kind() == ControlKind::ComboBox || control.kind() == ControlKind::DriveListBox ||
         control.kind() == ControlKind::DirListBox;
}

bool isLongText(const Control& control) { return control.design().multiLine; }

/// The control that is named, or without a name the only one of its sort that is to be seen.
Control& controlFor(std::string_view name, const Form* form, bool (*sort)(const Control& control),
                    const std::string& called) {
  if (form == nullptr) failTyped("no form is shown");
  if (!name.empty()) {
    if (Control* named = meantControl(name, *form)) return *named;
    failTyped(toUtf8(form->name()) + " has no control " + std::string(name));
  }
  const std::vector<Control*> found = shownOf(*form, sort);
  if (found.size() == 1) return *found.front();
  std::string all;
  for (const Control* each : found) {
    all.append(all.empty() ? "" : " or ").append(toUtf8(each->name()));
  }
  failTyped(found.empty() ? "no " + called + " is shown" : "which " + called + ": " + all + "?");
}

/// What a list has to choose from.
std::vector<Text> choicesOf(const Control& list, const simulated::SimulatedMachine& machine) {
  if (list.kind() == ControlKind::DriveListBox) return shownDrives(machine.disks());
  if (const auto* tree = dynamic_cast<const DirListBox*>(&list)) {
    return foldersOf(machine)(tree->Path());
  }
  const auto* combo = dynamic_cast<const ComboBox*>(&list);
  if (combo == nullptr) failTyped(calledBy(list) + " is no list");
  return entriesOf(*combo);
}

}  // namespace

Prompt::Prompt(std::istream& in, std::ostream& out, int columns)
    : terminal_(in, out, columns), notices_{"help tells what to type, quit leaves."} {}

// ---- steps

Step Prompt::nextStep(SimulatedStage& stage) {
  if (drawn(stage) != drawn_) drawScreen(stage);
  tellNotices();
  while (true) {
    const std::string line = terminal_.ask("> ", promptHelp(terminal_.columns()));
    try {
      if (obey(line, stage)) continue;
      if (auto step = stepOf(line, stage)) return *step;
    } catch (const scenario::ScenarioError& error) {
      terminal_.tell(error.reason());
    }
  }
}

/// The step that a line stands for; none if nothing would come of it, which is told.
std::optional<Step> Prompt::stepOf(const std::string& line, SimulatedStage& stage) {
  Step step = parseLine(line, stage.activeForm(), foldersOf(stage.machine()));
  const auto hindrance = hindranceOf(step, stage);
  if (!hindrance) return step;
  terminal_.tell(*hindrance);
  return std::nullopt;
}

void Prompt::judged(const scenario::KeyedValue& expectation, const scenario::Verdict& verdict) {
  notices_.push_back((verdict.held ? "held: " : "does not hold: ") + expectation.key);
}

void Prompt::refused(const scenario::ScenarioError& error) { notices_.push_back(error.reason()); }

void Prompt::tellNotices() {
  for (const std::string& each : std::exchange(notices_, {})) terminal_.tell(each);
}

// ---- the screen

/// With its list of controls, a line to be told and the prompt, a form fits on the screen.
std::string Prompt::drawn(SimulatedStage& stage) const {
  if (!stage.ended().isNull()) {
    return "The program has ended: " + stage.ended().dump() +
           "\nrestart starts it anew, quit leaves.\n";
  }
  const Form* form = stage.activeForm();
  if (form == nullptr) return "No form is shown.\n";
  const int columns = terminal_.columns();
  const std::string list = listControls(*form, stage.focused(), columns);
  const int below = static_cast<int>(std::count(list.begin(), list.end(), '\n')) + 2;
  return drawForm(*form, {columns, Terminal::lines - below}, foldersOf(stage.machine())) + list;
}

void Prompt::drawScreen(SimulatedStage& stage) {
  drawn_ = drawn(stage);
  terminal_.show(drawn_);
}

// ---- boxes

void Prompt::drawBox(TextView title, TextView text, const Text& below) {
  tellNotices();
  drawn_.clear();
  terminal_.show(boxDrawing(title, text, below, terminal_.columns()));
}

std::optional<Answer> Prompt::answer(const Box& box) {
  drawBox(box.title, box.text, buttonRow(box));
  const std::string buttons = buttonWords(box);
  const std::string help = "A button or its beginning: " + buttons +
                           ".\nAn empty line takes the one with the star. quit leaves.\n";
  while (true) {
    const std::string typed = terminal_.ask("answer> ", help);
    if (typed.empty()) return std::nullopt;
    const auto button = meantButton(typed, box);
    if (button) return Answer{*button, {}, std::string(typedPlace)};
    terminal_.tell("no button \"" + typed + "\"; there are " + buttons);
  }
}

std::optional<Answer> Prompt::input(TextView prompt, TextView title, TextView initial) {
  drawBox(title, prompt, join(u"[", fitted(initial, inputColumns), u"]"));
  terminal_.tell("an empty line cancels");
  std::string typed = terminal_.ask("text> ", inputHelp);
  const bool quoted = typed.size() >= 2 && typed.front() == '"' && typed.back() == '"';
  if (quoted) typed = typed.substr(1, typed.size() - 2);
  return Answer{{}, fromUtf8(typed), std::string(typedPlace)};
}

// ---- words for the prompt itself

const Prompt::Command Prompt::commands[] = {
    {"list", &Prompt::list}, {"read", &Prompt::read},   {"screen", &Prompt::screen},
    {"show", &Prompt::show}, {"state", &Prompt::state}, {"width", &Prompt::width},
};

/// Does what a line asks of the prompt itself; false if it is meant for the stage.
bool Prompt::obey(const std::string& line, SimulatedStage& stage) {
  std::string_view rest = line;
  const std::string_view word = takeWord(rest);
  for (const Command& command : commands) {
    if (command.word != word) continue;
    (this->*command.obey)(rest, stage);
    return true;
  }
  return word.empty();
}

void Prompt::list(std::string_view rest, SimulatedStage& stage) {
  const Form* form = stage.activeForm();
  const Control& list = controlFor(rest, form, isList, "list");
  for (const Text& entry : choicesOf(list, stage.machine())) {
    terminal_.tell((entry == shownText(list) ? "* " : "  ") + toUtf8(entry));
  }
}

void Prompt::read(std::string_view rest, SimulatedStage& stage) {
  const Form* form = stage.activeForm();
  const Control& text = controlFor(rest, form, isLongText, "long text");
  terminal_.page(wrapped(shownText(text), terminal_.columns()));
  drawScreen(stage);
}

void Prompt::screen(std::string_view, SimulatedStage& stage) { drawScreen(stage); }

void Prompt::show(std::string_view rest, SimulatedStage& stage) {
  const std::string key(rest);
  const scenario::Json nothing = nullptr;
  const std::string path(typedPlace);
  if (key != "boxes" && key != "ended")
    checkExpectation(key, scenario::JsonReader(nothing, {}, path));
  const auto verdict = stage.play().verdictOn({key, nothing, path});
  terminal_.show(verdict.value().found.dump(2) + "\n");
}

void Prompt::state(std::string_view, SimulatedStage& stage) {
  terminal_.show(stage.machine().state().dump(2) + "\n");
}

void Prompt::width(std::string_view rest, SimulatedStage& stage) {
  const auto columns = columnsWritten(rest);
  const std::string least = std::to_string(leastColumns);
  if (!columns) failTyped("a width is a number of columns, " + least + " at least");
  terminal_.setColumns(*columns);
  drawScreen(stage);
}

}  // namespace zev::simulator
