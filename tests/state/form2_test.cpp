#include "state/forms.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>

#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;
using Kind = ControlKind;

const std::map<std::string, Kind> form2Kinds = {
    {"button", Kind::CommandButton}, {"frame", Kind::Frame}, {"check box", Kind::CheckBox}};

class Form2Test : public testing::Test {
 protected:
  Control& control(const Row& row) {
    Control* found = form.findControl(fromUtf8(row.word("control")));
    if (found == nullptr) throw std::out_of_range(row.where() + ": no such control");
    return *found;
  }
  Form2 form;
  Table controls = Table::read("form2_controls.tsv");
  Table properties = Table::read("form2_form.tsv");
};

TEST_F(Form2Test, HasExactlyTheControlsOfItsTable) {
  std::set<std::string> expected;
  for (const Row& each : controls) expected.insert(each.word("control"));
  std::set<std::string> found;
  for (const Control* each : form.Controls()) found.insert(toUtf8(each->name()));
  EXPECT_EQ(found, expected);
  EXPECT_EQ(form.Controls().size(), controls.size());
}

TEST_F(Form2Test, HasEachControlOfItsKindInItsContainer) {
  for (const Row& each : controls) {
    const Control& found = control(each);
    EXPECT_EQ(found.kind(), form2Kinds.at(each.word("kind"))) << each.where();
    const std::string container =
        found.container() == nullptr ? "form" : toUtf8(found.container()->name());
    EXPECT_EQ(container, each.word("parent")) << each.where();
  }
}

TEST_F(Form2Test, HasEachControlInItsPlaceAndOrder) {
  for (const Row& each : controls) {
    const Control& found = control(each);
    EXPECT_EQ(found.Left, each.number("left")) << each.where();
    EXPECT_EQ(found.Top, each.number("top")) << each.where();
    EXPECT_EQ(found.Width, each.number("width")) << each.where();
    EXPECT_EQ(found.Height, each.number("height")) << each.where();
    EXPECT_EQ(found.TabIndex, each.number("tab")) << each.where();
    EXPECT_TRUE(found.Visible) << each.where();
    EXPECT_TRUE(found.Enabled) << each.where();
  }
}

TEST_F(Form2Test, HasTheTextsOfItsTable) {
  for (const Row& each : controls) {
    const std::string found = toUtf8(std::get<Text>(control(each).property("Caption").value()));
    EXPECT_EQ(found, each.isNone("text") ? "" : each.quoted("text")) << each.where();
  }
}

TEST_F(Form2Test, HasTheBordersOfItsTable) {
  for (const Row& each : controls) {
    EXPECT_EQ(control(each).design().border, !each.is("more", "without border")) << each.where();
  }
}

TEST_F(Form2Test, IsAToolWindowOfItsSizeWithoutAnIcon) {
  const auto number = [&](const char* name) {
    return properties.row("property", name).number("value");
  };
  EXPECT_EQ(form.name(), u"Form2");
  EXPECT_EQ(toUtf8(form.Caption.get()), properties.row("property", "Caption").quoted("value"));
  EXPECT_EQ(form.design().width, number("client_width"));
  EXPECT_EQ(form.design().height, number("client_height"));
  EXPECT_TRUE(properties.row("property", "border").is("value", "fixed tool window"));
  EXPECT_TRUE(form.design().toolWindow);
  EXPECT_TRUE(properties.row("property", "icon").is("value", "none"));
  EXPECT_EQ(form.Icon.get(), u"");
}

TEST_F(Form2Test, StartsWithEveryBoxUnticked) {
  for (const CheckBox* each : {&form.Check1, &form.Check2, &form.Check3}) {
    EXPECT_EQ(each->Value, 0) << toUtf8(each->name());
  }
}

}  // namespace
}  // namespace zev
