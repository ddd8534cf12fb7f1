#include "runtime/controls.h"

#include <gtest/gtest.h>

#include "runtime/form.h"
#include "support/fake_form_engine.h"
#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;
using Kind = ControlKind;

constexpr ControlDesign comboDesign = {.name = u"Combo1", .kind = Kind::ComboBox};

struct Combo {
  Combo() {
    for (const TextView item : {u"English", u"Deutsch", u"Espanol"}) box.AddItem(Text(item));
    box.Click = [this] { clicks.push_back(box.ListIndex()); };
  }
  ComboBox box{comboDesign};
  std::vector<std::int32_t> clicks;
};

TEST(ComboBox, HasNoSelectionAtFirst) {
  const Combo combo;
  EXPECT_EQ(combo.box.ListCount(), 3);
  EXPECT_EQ(combo.box.ListIndex(), -1);
  EXPECT_EQ(combo.box.text(), u"");
  EXPECT_TRUE(combo.clicks.empty());
}

TEST(ComboBox, FiresTheClickWhenAPlaceIsSelected) {
  Combo combo;
  combo.box.setListIndex(1);
  EXPECT_EQ(combo.box.text(), u"Deutsch");
  combo.box.setListIndex(1);
  combo.box.setListIndex(-1);
  EXPECT_EQ(combo.box.text(), u"");
  EXPECT_EQ(combo.clicks, (std::vector<std::int32_t>{1, 1, -1}));
}

TEST(ComboBox, RefusesAPlaceThatTheListDoesNotHave) {
  Combo combo;
  combo.box.setListIndex(2);
  EXPECT_EQ(raisedBy([&] { combo.box.setListIndex(3); }), 380);
  EXPECT_EQ(raisedBy([&] { combo.box.setListIndex(-2); }), 380);
  EXPECT_EQ(combo.box.ListIndex(), 2);
  EXPECT_EQ(combo.clicks.size(), 1u);
}

TEST(ComboBox, RefusesAnEntryThatTheListDoesNotHave) {
  Combo combo;
  EXPECT_EQ(combo.box.List(2), u"Espanol");
  EXPECT_EQ(raisedBy([&] { combo.box.List(3); }), 381);
  EXPECT_EQ(raisedBy([&] { combo.box.List(-1); }), 381);
  EXPECT_EQ(raisedBy([&] { combo.box.setList(3, u"x"); }), 381);
}

TEST(ComboBox, ShowsAnEntryThatIsWrittenAndFiresNothing) {
  Combo combo;
  combo.box.setListIndex(0);
  combo.box.setList(0, u"\u0130ngilizce");
  combo.box.setList(1, u"Almanca");
  EXPECT_EQ(combo.box.text(), u"\u0130ngilizce");
  EXPECT_EQ(std::get<Text>(combo.box.property("Text").value()), u"\u0130ngilizce");
  EXPECT_EQ(combo.box.List(1), u"Almanca");
  EXPECT_EQ(combo.clicks.size(), 1u);
}

constexpr ControlDesign treeControls[] = {
    {.name = u"Frame1", .index = 1, .kind = Kind::Frame},
    {.name = u"Frame1", .index = 2, .kind = Kind::Frame},
    {.name = u"Option1", .kind = Kind::OptionButton, .container = u"Frame1(1)"},
    {.name = u"Option2", .kind = Kind::OptionButton, .container = u"Frame1(1)"},
    {.name = u"Option3", .kind = Kind::OptionButton, .container = u"Frame1(2)"},
    {.name = u"Label1", .kind = Kind::Label, .container = u"Frame1(1)"},
    {.name = u"Check1", .kind = Kind::CheckBox, .container = u"Frame1(1)", .enabled = false},
    {.name = u"Option4", .kind = Kind::OptionButton},
};

struct TreeForm : Form {
  TreeForm() : Form({.name = u"Tree", .caption = u"Tree", .controls = treeControls}) {}
  OptionButton& option(TextView name) { return control<OptionButton>(name); }
};

TEST(OptionButton, GoesOffWhenAnotherInItsContainerIsChosen) {
  TreeForm tree;
  for (const TextView name : {u"Option1", u"Option3", u"Option4"}) tree.option(name).Value = true;
  choose(tree.option(u"Option2"), tree.Controls());
  EXPECT_FALSE(tree.option(u"Option1").Value);
  EXPECT_TRUE(tree.option(u"Option2").Value);
  EXPECT_TRUE(tree.option(u"Option3").Value);
  EXPECT_TRUE(tree.option(u"Option4").Value);
}

TEST(OptionButton, StaysOnWhenItIsChosenAgain) {
  TreeForm tree;
  choose(tree.option(u"Option1"), tree.Controls());
  choose(tree.option(u"Option1"), tree.Controls());
  EXPECT_TRUE(tree.option(u"Option1").Value);
}

TEST(Control, ShowsOnlyIfAllThatItLiesInShows) {
  TreeForm tree;
  auto& frame = tree.control<Frame>(u"Frame1(1)");
  EXPECT_TRUE(tree.option(u"Option1").showing());
  frame.Visible = false;
  EXPECT_FALSE(tree.option(u"Option1").showing());
  EXPECT_TRUE(tree.option(u"Option1").Visible);
  EXPECT_TRUE(tree.option(u"Option3").showing());
}

TEST(Control, TakesTheFocusIfItsKindDoesAndNothingIsDisabledOrHidden) {
  TreeForm tree;
  auto& frame = tree.control<Frame>(u"Frame1(1)");
  EXPECT_TRUE(tree.option(u"Option1").canTakeFocus());
  EXPECT_FALSE(tree.control<Label>(u"Label1").canTakeFocus());
  EXPECT_FALSE(frame.canTakeFocus());
  EXPECT_FALSE(tree.control<CheckBox>(u"Check1").canTakeFocus());
  frame.Enabled = false;
  EXPECT_FALSE(tree.option(u"Option1").canTakeFocus());
  frame.Enabled = true;
  frame.Visible = false;
  EXPECT_FALSE(tree.option(u"Option1").canTakeFocus());
}

TEST(Control, IsGivenTheFocusOnlyIfItCanTakeIt) {
  TreeForm tree;
  test::FakeFormEngine engine;
  tree.observeAll(&engine);
  tree.option(u"Option1").SetFocus();
  EXPECT_EQ(engine.log, (std::vector<std::string>{"focus Option1"}));
  EXPECT_EQ(raisedBy([&] { tree.control<Label>(u"Label1").SetFocus(); }), 5);
  EXPECT_EQ(raisedBy([&] { tree.control<CheckBox>(u"Check1").SetFocus(); }), 5);
  EXPECT_EQ(engine.log.size(), 1u);
  tree.observeAll(nullptr);
  tree.option(u"Option2").SetFocus();
}

TEST(Control, BeginsAsItIsDesigned) {
  const Label label({.name = u"Label7",
                     .kind = Kind::Label,
                     .place = {1, 2, 3, 4},
                     .tabIndex = 5,
                     .text = u"0%",
                     .visible = false,
                     .enabled = false});
  EXPECT_EQ(label.Left, 1);
  EXPECT_EQ(label.Top, 2);
  EXPECT_EQ(label.Width, 3);
  EXPECT_EQ(label.Height, 4);
  EXPECT_EQ(label.TabIndex, 5);
  EXPECT_EQ(label.Caption.get(), u"0%");
  EXPECT_FALSE(label.Visible);
  EXPECT_FALSE(label.Enabled);
}

}  // namespace
}  // namespace zev
