#include <gtest/gtest.h>

#include "destination/expected_boxes.h"
#include "support/table.h"

namespace zev {
namespace {

using Boxes = std::vector<std::string>;
using Effect = simulated::Fault::Effect;
using test::Row;
using test::Table;

constexpr TextView rootMark = u"{root}";

/// What each dialog makes of each type of drive, in each language.
class Drives : public OnThePage, public testing::Test {
 protected:
  /// Drive D: answers with that type from now on.
  void becomes(std::int32_t type) {
    machine.setFaults({fault("GetDriveTypeA", u"d:\\", Effect::Error, type)});
  }

  /// The box of a row, if it has one.
  Boxes expected(const Row& row, TextView root) {
    if (row.isNone("text")) return {};
    const Text title = row.text("title");
    return {told(row.yes("title_translated") ? phrases->Translate(title) : title,
                 row.number("style"), textOf(row, root))};
  }

  Text textOf(const Row& row, TextView root) {
    const Text text = row.text("text");
    const std::size_t place = text.find(rootMark);
    const Text before(TextView(text).substr(0, place));
    if (place == Text::npos) return row.yes("text_translated") ? phrases->Translate(text) : text;
    const Text behind = text.substr(place + rootMark.size());
    return join(row.is("text_translated", "before") ? phrases->Translate(before) : before, root,
                row.is("text_translated", "after") ? phrases->Translate(behind) : behind);
  }

  static std::vector<Row> rowsOf(const char* dialog) {
    std::vector<Row> rows;
    for (const Row& each : Table::read("drive_types.tsv")) {
      if (each.is("dialog", dialog)) rows.push_back(each);
    }
    return rows;
  }

  /// The row of any other type stands for several.
  static std::vector<std::int32_t> typesOf(const Row& row) {
    if (row.isAny("number")) return {7, 8, 99, -1};
    return {row.number("number")};
  }
};

TEST_F(Drives, AreEightRowsForEachDialog) {
  EXPECT_EQ(rowsOf("validate").size(), 8u);
  EXPECT_EQ(rowsOf("browser").size(), 8u);
}

TEST_F(Drives, AreJudgedByTheCheckAsTheirTableSays) {
  for (std::int32_t spoken = language::English; spoken <= language::Spanish; ++spoken) {
    speak(spoken);
    for (const Row& row : rowsOf("validate")) {
      for (const std::int32_t type : typesOf(row)) {
        machine.disks().remove(u"D:\\Recorder");
        becomes(type);
        EXPECT_EQ(check(u"D:\\Recorder"), row.yes("accepted")) << row.where() << " " << spoken;
        EXPECT_EQ(boxes(), expected(row, u"D:\\")) << row.where() << " " << spoken;
        EXPECT_EQ(stands(u"D:\\Recorder"), row.yes("accepted")) << row.where();
        EXPECT_EQ(directory(), u"D:\\Recorder") << row.where();
      }
    }
  }
}

TEST_F(Drives, AreJudgedByTheBrowserAsTheirTableSays) {
  const FolderBrowser browser(*program, *phrases, wizard);
  Form3& form = program->form3;
  for (std::int32_t spoken = language::English; spoken <= language::Spanish; ++spoken) {
    speak(spoken);
    globals().gInstallDir = u"C:\\Windows";
    program->platform.application.Show(form);
    for (const Row& row : rowsOf("browser")) {
      for (const std::int32_t type : typesOf(row)) {
        becomes(type);
        form.Drive1.setDrive(u"D:");
        const bool accepted = row.yes("accepted");
        EXPECT_EQ(boxes(), expected(row, u"d:\\")) << row.where() << " " << spoken;
        EXPECT_EQ(form.Drive1.Drive(), accepted ? u"d:" : u"c:") << row.where();
        EXPECT_EQ(form.Dir1.Path(), accepted ? u"D:\\" : u"C:\\Windows") << row.where();
        form.Drive1.setDrive(u"C:");
      }
    }
    program->platform.application.Unload(form);
  }
}

/// As the machine has them, without any fault.
TEST_F(Drives, AreAskedForByTheFirstCharacter) {
  EXPECT_TRUE(check(u"d:\\one"));
  EXPECT_FALSE(check(u"e:\\one"));
  EXPECT_FALSE(check(u"x:\\one"));
  EXPECT_EQ(boxes(), (Boxes{driveBox(u"CD"), checkDriveBox(u"x:\\")}));
  EXPECT_EQ(machine.calls("GetDriveTypeA"), 3u);
}

/// An error of the question itself is trapped by nobody.
TEST_F(Drives, ThatRaiseErrorsAreNotTrapped) {
  machine.setFaults({fault("GetDriveTypeA", u"", Effect::Raise, 5)});
  EXPECT_THROW(check(u"D:\\one"), RuntimeError);
  EXPECT_EQ(boxes(), Boxes());
}

}  // namespace
}  // namespace zev
