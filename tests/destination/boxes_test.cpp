#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "destination/on_the_page.h"
#include "support/table.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;
using Effect = simulated::Fault::Effect;
using test::Row;
using test::Table;

class BoxPage : public OnThePage {
 public:
  BoxPage() { globals().gInstallDir = u"C:\\Windows"; }

  /// The folder browser as it stands open.
  Form3& browser() {
    program->platform.application.Show(program->form3);
    return program->form3;
  }

 private:
  FolderBrowser browser_{*program, *phrases, wizard};
};

/// What brings a box about, and what stands in its variable places.
struct Cause {
  std::function<void(BoxPage&)> action;
  TextView variable = {};
};

void installElsewhere(BoxPage& page) {
  page.record(u"Software\\Tavorns\\ZEV5", u"C:\\Windows");
  page.check(u"C:\\one");
}

/// The root of a drive that is gone, which cannot be made either.
void loseTheRoot(BoxPage& page, Effect making) {
  page.globals().gWinDir = u"X:\\Windows";
  page.machine.setFaults({page.fault("MkDir", u"", making, 75)});
  page.check(u"C:foo");
}

void failTheLook(BoxPage& page, TextView match) {
  page.machine.setFaults({page.fault("Dir", match, Effect::Raise, 52)});
  page.check(u"C:\\one");
}

void recordWindows(BoxPage& page, TextView generation) {
  page.record(join(u"Software\\Marlotech\\", generation), u"C:\\Windows");
  page.check(u"C:\\Windows");
}

const std::map<std::string, Cause> causes = {
    {"destination.empty", {[](BoxPage& page) { page.check(u""); }}},
    {"destination.forbidden", {[](BoxPage& page) { page.check(u"C:\\a|b"); }, u"C:\\a|b"}},
    {"destination.other_directory", {installElsewhere}},
    {"destination.not_found", {[](BoxPage& page) { loseTheRoot(page, Effect::Ignore); }, u"X:\\"}},
    {"destination.trap1", {[](BoxPage& page) { failTheLook(page, u"C:\\one"); }, u"C:\\one"}},
    {"destination.trap2", {[](BoxPage& page) { loseTheRoot(page, Effect::Raise); }, u"X:\\"}},
    {"destination.trap3", {[](BoxPage& page) {
       page.record(u"Software\\Marlotech\\ZEV", u"C:\\Old");
       failTheLook(page, u"C:\\Old");
     }}},
    {"earlier.version4", {[](BoxPage& page) { recordWindows(page, u"ZEV3"); }}},
    {"earlier.uninstall", {[](BoxPage& page) { recordWindows(page, u"ZEV2"); }}},
    {"browser.invalid_characters", {[](BoxPage& page) {
       page.person.entered = u"a?b";
       page.browser().Command1.Click();
     }}},
    {"browser.space", {[](BoxPage& page) {
       page.machine.disks().setDrive(u'C', {.free = 0});
       page.browser().Command2.Click();
     }}},
};

bool ofTheDestination(const std::string& box) {
  return box.starts_with("destination.") || box.starts_with("earlier.") ||
         box.starts_with("browser.");
}

Text textOf(const std::string& box, TextView variable, Phrases& phrases, const Table& pieces) {
  Text text;
  for (const Row& each : pieces) {
    if (!each.is("box", box)) continue;
    const Text piece = each.text("text");
    if (each.is("kind", "variable")) {
      text += variable;
    } else {
      text += each.is("kind", "translated") ? phrases.Translate(piece) : piece;
    }
  }
  return text;
}

TEST(DestinationBoxes, ReadAsTheirTablesSayInEachLanguage) {
  const Table table = Table::read("boxes.tsv");
  const Table pieces = Table::read("box_pieces.tsv");
  for (std::int32_t spoken = language::English; spoken <= language::Spanish; ++spoken) {
    for (const auto& [box, cause] : causes) {
      const Row& row = table.row("box", box);
      BoxPage page;
      page.speak(spoken);
      cause.action(page);
      const Text title = row.text("title");
      EXPECT_EQ(
          page.boxes(),
          Boxes{told(row.yes("title_translated") ? page.phrases->Translate(title) : title,
                     row.number("style"), textOf(box, cause.variable, *page.phrases, pieces))})
          << box << " " << spoken;
    }
  }
}

TEST(DestinationBoxes, AreAllBroughtAbout) {
  for (const Row& each : Table::read("boxes.tsv")) {
    const std::string& box = each.word("box");
    EXPECT_EQ(ofTheDestination(box), causes.count(box) == 1) << box;
  }
}

/// The prompt tells the open folder, with one backslash at its end.
TEST(DestinationBoxes, TheInputBoxReadsAsItsTableSaysInEachLanguage) {
  const Table table = Table::read("input_boxes.tsv");
  const Row& row = table.row("box", "browser.new_folder");
  const Text prompt = row.text("prompt");
  const Text firstLine(TextView(prompt).substr(0, prompt.find(u'\r')));
  ASSERT_EQ(prompt, join(firstLine, u"\r\r{path}"));
  EXPECT_TRUE(row.is("prompt_translated", "first_line"));
  for (std::int32_t spoken = language::English; spoken <= language::Spanish; ++spoken) {
    for (const TextView folder : {u"C:\\", u"C:\\Windows", u"C:\\Users\\bob"}) {
      BoxPage page;
      page.speak(spoken);
      page.globals().gInstallDir = folder;
      page.browser().Command1.Click();
      ASSERT_EQ(page.person.questions.size(), 1u);
      const NotingPerson::Question& asked = page.person.questions.front();
      const Text path = folder.back() == u'\\' ? Text(folder) : join(folder, u"\\");
      EXPECT_EQ(toUtf8(asked.prompt),
                toUtf8(join(page.phrases->Translate(firstLine), u"\r\r", path)));
      EXPECT_EQ(asked.title, page.phrases->Translate(row.text("title")));
      EXPECT_EQ(asked.initial, row.text("default"));
    }
  }
}

}  // namespace
}  // namespace zev
