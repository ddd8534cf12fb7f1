#include "state/forms.h"

#include <gtest/gtest.h>

#include "state/form_table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

class Form2Test : public FormWithTable<Form2> {
 protected:
  Form2Test() : FormWithTable("form2_controls.tsv") {}

  const Table properties = Table::read("form2_form.tsv");
};

TEST_F(Form2Test, HasExactlyTheControlsOfItsTable) { expectTheControlsOfTheTableAndNoOther(); }

TEST_F(Form2Test, HasEachControlOfItsKindInItsContainer) { expectKindsAndContainers(); }

TEST_F(Form2Test, HasEachControlInItsPlaceAndOrder) {
  for (const Row& each : controls) {
    const Control& found = control(each);
    expectPlace(found, each);
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
