#include "state/forms.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include "state/form_table.h"
#include "state/globals.h"

namespace zev {
namespace {

using test::Row;
using test::Table;
using Kind = ControlKind;

/// What "more" can say of a control, and where its design says it. The rest is what the system does
/// at start and how the languages' items stand, which have tables of their own.
const std::map<std::string, std::function<bool(const ControlDesign&)>> marks = {
    {"centred", [](const ControlDesign& design) { return design.centred; }},
    {"green", [](const ControlDesign& design) { return design.bar; }},
    {"several lines", [](const ControlDesign& design) { return design.multiLine; }},
    {"vertical scroll bar", [](const ControlDesign& design) { return design.multiLine; }},
    {"locked", [](const ControlDesign& design) { return design.locked; }},
};

std::set<std::string> wordsOf(const std::string& cell) {
  std::set<std::string> words;
  std::istringstream list(cell);
  for (std::string each; std::getline(list >> std::ws, each, ',');) words.insert(each);
  return words;
}

class Form1Test : public FormWithTable<Form1> {
 protected:
  Form1Test() : FormWithTable("form1_controls.tsv") {}
};

TEST_F(Form1Test, HasExactlyTheControlsOfItsTable) { expectTheControlsOfTheTableAndNoOther(); }

TEST_F(Form1Test, HasEachControlOfItsKindInItsContainer) { expectKindsAndContainers(); }

TEST_F(Form1Test, HasEachControlInItsPlace) {
  for (const Row& each : controls) {
    if (!each.isNone("left")) expectPlace(control(each), each);
  }
}

TEST_F(Form1Test, HasEachLineBetweenItsEndPoints) {
  const Table lines = Table::read("form1_lines.tsv");
  for (const Row& each : controls) {
    if (!each.is("kind", "line")) continue;
    EXPECT_NO_THROW(lines.row("control", each.word("control"))) << each.where();
  }
  for (const Row& each : lines) {
    const Control& found = control(each);
    ASSERT_NE(found.container(), nullptr) << each.where();
    EXPECT_EQ(toUtf8(found.container()->name()), each.word("parent")) << each.where();
    const Place& ends = found.design().place;
    EXPECT_EQ(ends.left, each.number("x1")) << each.where();
    EXPECT_EQ(ends.top, each.number("y1")) << each.where();
    EXPECT_EQ(ends.width, each.number("x2")) << each.where();
    EXPECT_EQ(ends.height, each.number("y2")) << each.where();
  }
}

TEST_F(Form1Test, HasEachControlAtItsPlaceInTheTabOrder) {
  for (const Row& each : controls) {
    EXPECT_EQ(control(each).TabIndex, each.isNone("tab") ? -1 : each.number("tab")) << each.where();
  }
}

TEST_F(Form1Test, ShowsAndEnablesWhatItsTableSays) {
  for (const Row& each : controls) {
    EXPECT_EQ(control(each).Visible, each.yes("visible")) << each.where();
    EXPECT_EQ(control(each).Enabled, each.isNone("enabled") || each.yes("enabled")) << each.where();
  }
}

TEST_F(Form1Test, HasTheTextsOfItsTable) {
  for (const Row& each : controls) {
    Control& found = control(each);
    const bool isTextBox = found.kind() == Kind::TextBox;
    const PropertyBase* text = found.findProperty(isTextBox ? "Text" : "Caption");
    if (each.isNone("text")) {
      EXPECT_TRUE(text == nullptr || std::get<Text>(text->value()).empty()) << each.where();
      continue;
    }
    ASSERT_NE(text, nullptr) << each.where();
    EXPECT_EQ(toUtf8(std::get<Text>(text->value())), each.quoted("text")) << each.where();
  }
}

TEST_F(Form1Test, HasTheMarksOfItsTableAndNoOther) {
  for (const Row& each : controls) {
    const std::set<std::string> words =
        each.isNone("more") ? std::set<std::string>() : wordsOf(each.word("more"));
    for (const auto& [mark, stands] : marks) {
      EXPECT_EQ(stands(control(each).design()), words.count(mark) == 1)
          << each.where() << " " << mark;
    }
    if (words.count("unchecked") == 0) continue;
    EXPECT_EQ(form.control<CheckBox>(fromUtf8(each.word("control"))).Value, 0) << each.where();
  }
}

TEST_F(Form1Test, IsAsLargeAsItsTableSaysAndAnOrdinaryWindow) {
  const Table table = Table::read("form1_form.tsv");
  EXPECT_EQ(toUtf8(form.Caption.get()), table.row("property", "Caption").quoted("value"));
  EXPECT_EQ(form.design().width, table.row("property", "client_width").number("value"));
  EXPECT_EQ(form.design().height, table.row("property", "client_height").number("value"));
  EXPECT_TRUE(table.row("property", "border").is("value", "fixed single"));
  EXPECT_FALSE(form.design().toolWindow);
  EXPECT_EQ(form.name(), u"Form1");
}

TEST_F(Form1Test, ListsTheLanguages) {
  std::int32_t items = 0;
  for (const Row& each : Table::read("languages.tsv")) {
    if (each.isNone("list_index")) continue;
    EXPECT_EQ(toUtf8(form.Combo1.List(each.number("list_index"))), each.quoted("combo_text"))
        << each.where();
    ++items;
  }
  EXPECT_EQ(form.Combo1.ListCount(), items);
  EXPECT_EQ(form.Combo1.ListIndex(), -1);
}

TEST(LanguageNumbers, AreThoseOfTheirTable) {
  const std::map<std::string, std::int32_t> numbers = {{"English", language::English},
                                                       {"Turkish", language::Turkish},
                                                       {"German", language::German},
                                                       {"French", language::French},
                                                       {"Spanish", language::Spanish}};
  const Table table = Table::read("languages.tsv");
  EXPECT_EQ(table.size(), numbers.size());
  for (const Row& each : table) {
    EXPECT_EQ(numbers.at(each.word("language")), each.number("number")) << each.where();
  }
}

/// The form is drawn as its first page stands: one frame, Back disabled.
TEST_F(Form1Test, IsDrawnAsItsFirstPage) {
  const Table pages = Table::read("pages.tsv");
  const Row& first = pages.row("page", "1");
  EXPECT_EQ(form.Command1.Enabled, first.yes("back_enabled"));
  EXPECT_EQ(form.Command2.Enabled, first.yes("next_enabled"));
  for (const Row& page : pages) {
    for (const std::string& frame : wordsOf(page.word("frame"))) {
      const Control* found = form.findControl(fromUtf8(frame));
      ASSERT_NE(found, nullptr) << page.where();
      EXPECT_EQ(found->Visible, frame == first.word("frame")) << page.where();
    }
  }
}

TEST_F(Form1Test, GivesItsControlsByTheirNames) {
  EXPECT_EQ(&form.Command2, form.findControl(u"Command2"));
  for (const int index : {1, 2, 3, 4}) {
    EXPECT_EQ(form.Frame1(index).design().index, index);
    EXPECT_EQ(form.Frame1(index).name(), join(u"Frame1(", decimal(index), u")"));
  }
}

// ---- hard wrapping

struct Wrapped {
  TextView text;
  TextView lines;
};

/// Into lines of at most ten characters.
constexpr Wrapped wrapped[] = {
    {u"", u""},
    {u"short", u"short"},
    {u"ten chars.", u"ten chars."},
    {u"eleven char", u"eleven\r\nchar"},
    {u"one two three four", u"one two\r\nthree four"},
    {u"ends at te n", u"ends at te\r\nn"},
    {u"unbreakablewords", u"unbreakabl\r\newords"},
    {u"first\r\nsecond", u"first\r\nsecond"},
    {u"first\r\n\r\nsecond", u"first\r\n\r\nsecond"},
    {u"paragraph one\r\nand two", u"paragraph\r\none\r\nand two"},
};

TEST(HardWrapped, BreaksLinesAtBlanks) {
  for (const Wrapped& each : wrapped) {
    EXPECT_EQ(toUtf8(hardWrapped(each.text, 10)), toUtf8(each.lines)) << toUtf8(each.text);
  }
}

}  // namespace
}  // namespace zev
