#include "system/registry_entries.h"

#include <gtest/gtest.h>

#include "system/watched_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using simulated::RegistryValue;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;

class AviRegistry : public WatchedMachine, public testing::Test {
 protected:
  static Text keyOf(const Row& row) { return row.text("key"); }
  void set(const Row& row, TextView text) {
    machine.registry().setValue(HKEY_CLASSES_ROOT, keyOf(row), u"", RegistryValue::ofText(text));
  }
  std::string found(const Row& row) { return valueOf(HKEY_CLASSES_ROOT, keyOf(row), u""); }
  /// Every value another than it should be.
  void spoilAll() {
    for (const Row& row : table) set(row, u"wrong");
  }
  /// The lines of the keys up to a row, opened in order.
  Lines opened(std::size_t rows) {
    Lines lines;
    for (std::size_t each = 0; each < rows; ++each) {
      lines.push_back("RegOpenKeyA | 2147483648 | " + table.rows()[each].quoted("key"));
    }
    return lines;
  }

  Table table = Table::read("avi_keys.tsv");
};

TEST_F(AviRegistry, TableCountsFromOneToTen) {
  ASSERT_EQ(table.size(), 10u);
  for (std::size_t each = 0; each < table.size(); ++each) {
    EXPECT_EQ(table.rows()[each].number("order"), static_cast<std::int32_t>(each) + 1);
  }
}

TEST_F(AviRegistry, TenRightValuesPassAndNothingIsWritten) {
  for (const Row& row : table) set(row, row.text("expected"));
  EXPECT_TRUE(CheckAviRegistry(*registry));
  EXPECT_EQ(trace({"RegOpenKeyA"}), opened(10));
  EXPECT_EQ(machine.calls("RegCreateKeyA"), 0u);
  EXPECT_EQ(machine.calls("RegSetValueExA"), 0u);
}

TEST_F(AviRegistry, TheFirstDifferenceEndsTheCheck) {
  for (std::size_t wrong = 0; wrong < table.size(); ++wrong) {
    WatchedMachine fresh;
    const Row& row = table.rows()[wrong];
    fresh.machine.registry().setValue(HKEY_CLASSES_ROOT, keyOf(row), u"",
                                      RegistryValue::ofText(u"wrong"));
    EXPECT_FALSE(CheckAviRegistry(*fresh.registry)) << row.where();
    EXPECT_EQ(fresh.trace({"RegOpenKeyA"}), opened(wrong + 1)) << row.where();
  }
}

TEST_F(AviRegistry, EachValueCountsWithItsCaseAndWithoutTheBlanksAtItsEnds) {
  for (const Row& row : table) {
    const Text expected = row.text("expected");
    set(row, join(u"  ", expected, u" "));
    EXPECT_TRUE(CheckAviRegistry(*registry)) << row.where();
    set(row, lowerCase(expected));
    EXPECT_FALSE(CheckAviRegistry(*registry)) << row.where();
    set(row, join(expected, u"x"));
    EXPECT_FALSE(CheckAviRegistry(*registry)) << row.where();
    set(row, u"");
    EXPECT_FALSE(CheckAviRegistry(*registry)) << row.where();
    machine.registry().removeKey(HKEY_CLASSES_ROOT, keyOf(row));
    EXPECT_FALSE(CheckAviRegistry(*registry)) << row.where();
    set(row, expected);
    EXPECT_TRUE(CheckAviRegistry(*registry)) << row.where();
  }
}

TEST_F(AviRegistry, RepairWritesAllTenInOrderWhateverTheirState) {
  set(table.rows()[3], u"wrong");
  EXPECT_TRUE(RepairAviRegistry(*registry));
  Lines expected;
  for (const Row& row : table) {
    expected.push_back("RegCreateKeyA | 2147483648 | " + row.quoted("key"));
    expected.push_back("RegSetValueExA |  | 1 | " + row.quoted("expected") + " | 38");
  }
  EXPECT_EQ(trace({"RegCreateKeyA", "RegSetValueExA"}), expected);
  for (const Row& row : table) EXPECT_EQ(found(row), row.quoted("expected")) << row.where();
  EXPECT_TRUE(CheckAviRegistry(*registry));
}

TEST_F(AviRegistry, RepairMakesWhatIsMissing) {
  machine.registry().removeKey(HKEY_CLASSES_ROOT, u"AVIFile");
  EXPECT_FALSE(CheckAviRegistry(*registry));
  EXPECT_TRUE(RepairAviRegistry(*registry));
  EXPECT_TRUE(CheckAviRegistry(*registry));
}

TEST_F(AviRegistry, AnErrorEndsTheRepairAndLeavesWhatWasWritten) {
  for (std::size_t stop = 0; stop < table.size(); ++stop) {
    spoilAll();
    machine.setFaults({{.call = "RegSetValueExA",
                        .nth = static_cast<std::uint32_t>(stop) + 1,
                        .effect = Fault::Effect::Raise,
                        .code = 7}});
    EXPECT_FALSE(RepairAviRegistry(*registry)) << stop;
    for (std::size_t each = 0; each < table.size(); ++each) {
      const Row& row = table.rows()[each];
      EXPECT_EQ(found(row), each < stop ? row.quoted("expected") : "wrong") << row.where() << stop;
    }
  }
  EXPECT_TRUE(person.boxes.empty());
}

TEST_F(AviRegistry, RefusedWritesAreNoFailure) {
  spoilAll();
  machine.registry().deny(HKEY_CLASSES_ROOT, u"AVIFile");
  EXPECT_TRUE(RepairAviRegistry(*registry));
  for (const Row& row : table) EXPECT_EQ(found(row), "wrong") << row.where();
  EXPECT_EQ(machine.calls("RegSetValueExA"), 10u);
  EXPECT_TRUE(person.boxes.empty());
}

TEST_F(AviRegistry, WorksOnTheRegistryItselfOnEveryClass) {
  for (std::int32_t osClass = 0; osClass <= 4; ++osClass) {
    globals().gOSClass = osClass;
    globals().gUserData = u"C:\\Users\\bob\\AppData\\Local";
    spoilAll();
    EXPECT_FALSE(CheckAviRegistry(*registry)) << osClass;
    EXPECT_TRUE(RepairAviRegistry(*registry)) << osClass;
    EXPECT_TRUE(CheckAviRegistry(*registry)) << osClass;
  }
  EXPECT_EQ(machine.calls("OpenOutput"), 0u);
}

}  // namespace
}  // namespace zev
