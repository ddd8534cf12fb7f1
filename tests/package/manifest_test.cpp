#include "package/manifest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <string>

#include "localisation/catalogue.h"
#include "package/install_run.h"
#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

const ManifestRow& member(std::int32_t row) {
  const auto found = std::find_if(manifest().begin(), manifest().end(),
                                  [&](const ManifestRow& each) { return each.row == row; });
  if (found == manifest().end()) throw std::out_of_range("no row " + std::to_string(row));
  return *found;
}

/// The slot of a table's row, by its place: the tables stand in the order of the run.
const ManifestRow& slotOf(const Row& row, std::size_t place) {
  const ManifestRow& slot = manifest()[place];
  EXPECT_EQ(slot.row, row.isNone("row") ? 0 : row.number("row")) << row.where();
  return slot;
}

TEST(Manifest, HasEveryMemberInItsPlaceInThePackage) {
  const Table table = Table::read("manifest_packing.tsv");
  ASSERT_EQ(table.size(), manifest().size());
  for (std::size_t place = 0; place < table.size(); ++place) {
    const Row& expected = table.rows()[place];
    const ManifestRow& slot = slotOf(expected, place);
    EXPECT_EQ(slot.size, expected.number("size")) << expected.where();
    EXPECT_EQ(toUtf8(slot.packedName), expected.quoted("packed_name")) << expected.where();
    EXPECT_EQ(tailOffset(place), expected.number("tail_offset")) << expected.where();
  }
}

TEST(Manifest, HasTheStepsAndTicksOfEverySlot) {
  const Table table = Table::read("manifest_steps.tsv");
  ASSERT_EQ(table.size(), manifest().size());
  for (std::size_t place = 0; place < table.size(); ++place) {
    const Row& expected = table.rows()[place];
    const ManifestRow& slot = slotOf(expected, place);
    const auto step = [&](const char* column) {
      return expected.isNone(column) ? 0 : expected.number(column);
    };
    EXPECT_EQ(slot.tick, expected.number("tick")) << expected.where();
    EXPECT_EQ(slot.extractStep, step("step_extract")) << expected.where();
    EXPECT_EQ(slot.expandStep, step("step_expand")) << expected.where();
  }
}

TEST(Manifest, LaysEveryMemberAtItsTarget) {
  const std::map<std::string, Target> targets = {
      {"install", Target::Install}, {"system", Target::System}, {"projects", Target::Projects}};
  const Table table = Table::read("manifest_targets.tsv");
  ASSERT_EQ(table.size(), 56u);
  for (const Row& expected : table) {
    const ManifestRow& slot = member(expected.number("row"));
    EXPECT_EQ(toUtf8(slot.installedName), expected.quoted("installed_name")) << expected.where();
    EXPECT_EQ(slot.target, targets.at(expected.word("target"))) << expected.where();
  }
}

TEST(Manifest, LaysEveryMemberUnderItsCondition) {
  const std::map<std::string, Condition> conditions = {
      {"gOSClass is not 4", Condition::OtherClasses},
      {"gOSClass is 4", Condition::ProfileClass},
      {"ProjectsFolder found and made without an error", Condition::ProjectsFolder},
      {"trimmed Image1.Tag is not 1 and (gVersionNT62 is 0 or (gVersionNT62 is 1 and gOptRedist "
       "is 1))",
       Condition::Redistributable},
      {"ends_process", Condition::Mandatory},
      {"not_run_not_deleted_after_expansion", Condition::Redistributable},
  };
  std::map<std::int32_t, Condition> expected;
  for (const Row& each : Table::read("manifest_conditions.tsv")) {
    if (each.is("aspect", "label")) continue;
    expected[each.number("row")] = conditions.at(each.word("value"));
  }
  for (const ManifestRow& each : manifest()) {
    const auto special = expected.find(each.row);
    EXPECT_EQ(each.condition, special == expected.end() ? Condition::Always : special->second)
        << each.row;
  }
}

/// The label names the folder of the projects for its one member, and the install directory for all
/// others, those of the system directory too.
TEST(Manifest, HasExactlyTheMembersWhoseLabelIsTold) {
  std::set<std::int32_t> told;
  for (const Row& each : Table::read("manifest_conditions.tsv")) {
    if (!each.is("aspect", "label")) continue;
    told.insert(each.number("row"));
    EXPECT_EQ(member(each.number("row")).target,
              each.is("value", "ProjectsFolder") ? Target::Projects : Target::System)
        << each.where();
  }
  for (const ManifestRow& each : manifest()) {
    const bool elsewhere = each.target == Target::System || each.target == Target::Projects;
    EXPECT_EQ(told.count(each.row) == 1, elsewhere) << each.row;
  }
}

TEST(Manifest, HasTheTextsOfEveryFailure) {
  const Table table = Table::read("manifest_failures.tsv");
  ASSERT_EQ(table.size(), 56u);
  for (const Row& expected : table) {
    const ManifestRow& slot = member(expected.number("row"));
    if (expected.isNone("extraction_text_translated")) {
      EXPECT_EQ(slot.condition, Condition::Mandatory) << expected.where();
      continue;
    }
    EXPECT_EQ(toUtf8(extractionFailure(slot)), expected.quoted("extraction_text"))
        << expected.where();
    EXPECT_EQ(toUtf8(expansionFailure(slot)), expected.quoted("expansion_text"))
        << expected.where();
  }
}

TEST(Manifest, LeavesInEnglishWhatIsNotTranslated) {
  for (const Row& expected : Table::read("manifest_failures.tsv")) {
    const ManifestRow& slot = member(expected.number("row"));
    const bool hasBoxes = !expected.isNone("extraction_text_translated");
    EXPECT_EQ(slot.plain == Plain::InTitle,
              hasBoxes && !expected.yes("extraction_title_translated"))
        << expected.where();
    EXPECT_EQ(slot.plain == Plain::InText, hasBoxes && !expected.yes("extraction_text_translated"))
        << expected.where();
    if (!hasBoxes) continue;
    EXPECT_TRUE(expected.yes("expansion_title_translated")) << expected.where();
    EXPECT_TRUE(expected.yes("expansion_text_translated")) << expected.where();
  }
}

TEST(Manifest, HasATextOfItsOwnOnlyWhereItIsNotTheUsualOne) {
  for (const ManifestRow& each : manifest()) {
    const Text usual = join(u"File '", each.installedName, u"' could not be ");
    EXPECT_NE(each.extractionText, join(usual, u"extracted!")) << each.row;
    EXPECT_NE(each.expansionText, join(usual, u"expanded!")) << each.row;
  }
}

/// What a failure says in English in every language, for want of a row of its own in the catalogue.
const std::set<std::string> untranslatable = {
    "ZEV 'Uninstall' file could not be expanded!",  "vcredist_x86.exe could not be extracted!",
    "vcredist_x86.exe file could not be expanded!", "File 'MCU116m.wav' could not be extracted!",
    "File 'MCU116m.wav' could not be expanded!",    "File 'zevlback.dll' could not be extracted!",
    "File 'zevlback.dll' could not be expanded!",   "File 'zeveffs.dll' could not be extracted!",
    "File 'zeveffs.dll' could not be expanded!",
};

TEST(Manifest, HasFailuresThatTheCatalogueKnowsButForNine) {
  std::set<Text> keys;
  for (std::size_t row = 1; row <= phrase_row::count; ++row) {
    keys.insert(lowerCase(phraseKey(row)));
  }
  std::set<std::string> unknown;
  for (const ManifestRow& each : manifest()) {
    if (each.row == 0 || each.condition == Condition::Mandatory) continue;
    for (const Text& text : {extractionFailure(each), expansionFailure(each)}) {
      if (keys.count(lowerCase(text)) == 0) unknown.insert(toUtf8(text));
    }
  }
  EXPECT_EQ(unknown, untranslatable);
}

TEST(Manifest, AddsUpToTheWholePackage) {
  std::int64_t sum = 0;
  for (std::size_t place = 0; place < manifest().size(); ++place) {
    EXPECT_EQ(tailOffset(place), sum) << place;
    sum += manifest()[place].size;
  }
  EXPECT_EQ(sum, 15'246'584);
  EXPECT_EQ(packageSize, 15'246'584);
  EXPECT_EQ(smallestPackage, 9'000'000);
}

TEST(Manifest, CountsSkippedMembersInItsOffsets) {
  const auto offsetOf = [](std::int32_t row) {
    return tailOffset(static_cast<std::size_t>(&member(row) - manifest().data()));
  };
  EXPECT_EQ(offsetOf(26), 10'527'475);
  EXPECT_EQ(offsetOf(49), 14'620'746);
}

TEST(Manifest, HasOneEmptySlotBehindTheMainProgram) {
  const ManifestRow& empty = manifest()[3];
  EXPECT_EQ(manifest()[2].condition, Condition::Mandatory);
  EXPECT_EQ(empty.row, 0);
  EXPECT_EQ(empty.packedName, u"");
  EXPECT_EQ(empty.installedName, u"");
  EXPECT_EQ(empty.target, Target::None);
  EXPECT_EQ(empty.size, 0);
}

TEST(Manifest, PacksEveryNameWithAnUnderscoreForItsLastLetter) {
  for (const ManifestRow& each : manifest()) {
    if (each.row == 0) continue;
    const TextView kept = each.packedName.substr(0, each.packedName.size() - 1);
    EXPECT_EQ(each.packedName.back(), u'_') << each.row;
    EXPECT_TRUE(each.installedName.starts_with(kept)) << each.row;
  }
}

}  // namespace
}  // namespace zev
