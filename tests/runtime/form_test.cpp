#include "runtime/form.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace zev {
namespace {

using Kind = ControlKind;

constexpr ControlDesign form9Controls[] = {
    {.name = u"Frame1", .index = 1, .kind = Kind::Frame, .text = u"first"},
    {.name = u"Frame1", .index = 2, .kind = Kind::Frame, .container = u"Frame1(1)"},
    {.name = u"Label1", .kind = Kind::Label, .container = u"Frame1(2)", .text = u"text"},
    {.name = u"Line1", .kind = Kind::Line},
};
constexpr FormDesign design = {
    .name = u"Form9", .caption = u"Nine", .width = 10, .height = 20, .controls = form9Controls};

TEST(Form, HasTheControlsOfItsDesignInOrder) {
  const Form form(design);
  std::vector<Text> names;
  for (const Control* each : form.Controls()) names.push_back(each->name());
  EXPECT_EQ(names, (std::vector<Text>{u"Frame1(1)", u"Frame1(2)", u"Label1", u"Line1"}));
  EXPECT_EQ(form.name(), u"Form9");
  EXPECT_EQ(form.Caption.get(), u"Nine");
  EXPECT_TRUE(form.Enabled);
  EXPECT_FALSE(form.Visible);
  EXPECT_EQ(form.ScaleMode, 1);
  EXPECT_FALSE(form.loaded());
}

TEST(Form, MakesAControlOfEachKind) {
  constexpr Kind kinds[] = {
      Kind::Label,        Kind::CommandButton, Kind::PictureBox, Kind::Image, Kind::ComboBox,
      Kind::OptionButton, Kind::CheckBox,      Kind::TextBox,    Kind::Frame, Kind::Menu,
      Kind::Line,         Kind::DriveListBox,  Kind::DirListBox};
  for (const Kind kind : kinds) {
    const ControlDesign one[] = {{.name = u"A", .kind = kind, .text = u"t"}};
    const Form form({.name = u"F", .caption = u"", .controls = one});
    ASSERT_EQ(form.Controls().size(), 1u);
    EXPECT_EQ(form.Controls()[0]->kind(), kind);
  }
}

TEST(Form, PutsControlsIntoTheirContainers) {
  const Form form(design);
  EXPECT_EQ(form.findControl(u"Frame1(1)")->container(), nullptr);
  EXPECT_EQ(form.findControl(u"Label1")->container(), form.findControl(u"Frame1(2)"));
  EXPECT_EQ(form.findControl(u"Frame1(2)")->container(), form.findControl(u"Frame1(1)"));
}

TEST(Form, FindsControlsInAnyCaseAndByTheirKind) {
  const Form form(design);
  EXPECT_EQ(form.findControl(u"LABEL1"), form.Controls()[2]);
  EXPECT_EQ(form.findControl(u"Frame1"), nullptr);
  EXPECT_EQ(form.control<Label>(u"label1").Caption.get(), u"text");
  EXPECT_THROW(form.control<Label>(u"Label2"), std::logic_error);
  EXPECT_THROW(form.control<Label>(u"Line1"), std::bad_cast);
}

TEST(Form, RefusesAContainerThatItDoesNotHave) {
  constexpr ControlDesign lost[] = {{.name = u"A", .kind = Kind::Label, .container = u"B"}};
  EXPECT_THROW(Form({.name = u"F", .caption = u"", .controls = lost}), std::logic_error);
}

TEST(Form, GoesBackToItsDesignWithAllItsControls) {
  Form form(design);
  form.Caption = u"other";
  form.control<Label>(u"Label1").Caption = u"other";
  form.control<Label>(u"Label1").Left = 99;
  form.control<Frame>(u"Frame1(1)").Visible = false;
  form.restoreDesign();
  EXPECT_EQ(form.Caption.get(), u"Nine");
  EXPECT_EQ(form.control<Label>(u"Label1").Caption.get(), u"text");
  EXPECT_EQ(form.control<Label>(u"Label1").Left, 0);
  EXPECT_TRUE(form.control<Frame>(u"Frame1(1)").Visible);
}

}  // namespace
}  // namespace zev
