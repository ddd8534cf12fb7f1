#pragma once

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "state/forms.h"
#include "support/table.h"

namespace zev {

/// A form beside the table of its controls.
template <typename TheForm>
class FormWithTable : public testing::Test {
 protected:
  using Kind = ControlKind;

  explicit FormWithTable(const char* table) : controls(test::Table::read(table)) {}

  /// The control that a row is about; std::out_of_range if the form has none of that name.
  Control& control(const test::Row& row) {
    Control* found = form.findControl(fromUtf8(row.word("control")));
    if (found == nullptr) throw std::out_of_range(row.where() + ": no such control");
    return *found;
  }

  void expectTheControlsOfTheTableAndNoOther() {
    std::set<std::string> expected;
    for (const test::Row& each : controls) expected.insert(each.word("control"));
    std::set<std::string> found;
    for (const Control* each : form.Controls()) found.insert(toUtf8(each->name()));
    EXPECT_EQ(found, expected);
    EXPECT_EQ(form.Controls().size(), controls.size());
  }

  void expectKindsAndContainers() {
    for (const test::Row& each : controls) {
      const Control& found = control(each);
      EXPECT_EQ(found.kind(), kinds.at(each.word("kind"))) << each.where();
      const std::string container =
          found.container() == nullptr ? "form" : toUtf8(found.container()->name());
      EXPECT_EQ(container, each.word("parent")) << each.where();
    }
  }

  /// The place of a control, against the four columns of its row.
  static void expectPlace(const Control& found, const test::Row& row) {
    EXPECT_EQ(found.Left, row.number("left")) << row.where();
    EXPECT_EQ(found.Top, row.number("top")) << row.where();
    EXPECT_EQ(found.Width, row.number("width")) << row.where();
    EXPECT_EQ(found.Height, row.number("height")) << row.where();
  }

  TheForm form;
  const test::Table controls;

 private:
  const std::map<std::string, Kind> kinds = {
      {"label", Kind::Label},
      {"button", Kind::CommandButton},
      {"picture box", Kind::PictureBox},
      {"image", Kind::Image},
      {"drop-down list", Kind::ComboBox},
      {"option button", Kind::OptionButton},
      {"check box", Kind::CheckBox},
      {"text box", Kind::TextBox},
      {"frame", Kind::Frame},
      {"line", Kind::Line},
  };
};

}  // namespace zev
