#include "system/registry_entries.h"

#include <gtest/gtest.h>

#include "runtime/error.h"
#include "system/watched_machine.h"

namespace zev {
namespace {

using simulated::Fault;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;

class UninstallEntry : public WatchedMachine, public testing::Test {
 protected:
  static std::string made(const Row& row) {
    return "RegCreateKeyA | 2147483650 | " + row.quoted("key");
  }
  static std::string set(const Row& row) {
    const std::string contents = filled(row.quoted("contents"));
    return "RegSetValueExA | " + row.word("value") + " | 1 | " + contents + " | " +
           std::to_string(contents.size());
  }
  Table table = Table::read("uninstall_entry.tsv");
};

TEST_F(UninstallEntry, IsWrittenInTheOrderOfItsTable) {
  enterUninstall(*registry, globals());
  Lines expected = {made(table.rows()[0])};
  for (const Row& row : table) {
    EXPECT_TRUE(row.is("type", "text")) << row.where();
    expected.push_back(made(row));
    expected.push_back(set(row));
  }
  EXPECT_EQ(trace({"RegCreateKeyA", "RegSetValueExA"}), expected);
}

TEST_F(UninstallEntry, StandsInTheRegistryOnEveryClass) {
  for (std::int32_t osClass = 0; osClass <= 4; ++osClass) {
    globals().gOSClass = osClass;
    globals().gUserData = u"C:\\Users\\bob\\AppData\\Local";
    machine.registry().removeKey(HKEY_LOCAL_MACHINE, table.rows()[0].text("key"));
    enterUninstall(*registry, globals());
    for (const Row& row : table) {
      EXPECT_EQ(valueOf(HKEY_LOCAL_MACHINE, row.text("key"), fromUtf8(row.word("value"))),
                filled(row.quoted("contents")))
          << row.where() << " class " << osClass;
    }
  }
  EXPECT_EQ(machine.calls("OpenOutput"), 0u);
}

TEST_F(UninstallEntry, IsLostWithoutAWordWhereTheSystemRefuses) {
  machine.registry().deny(HKEY_LOCAL_MACHINE, u"Software");
  enterUninstall(*registry, globals());
  for (const Row& row : table) {
    EXPECT_EQ(valueOf(HKEY_LOCAL_MACHINE, row.text("key"), fromUtf8(row.word("value"))), "(none)");
  }
  EXPECT_EQ(machine.calls("RegSetValueExA"), 2u);
  EXPECT_TRUE(person.boxes.empty());
}

TEST_F(UninstallEntry, LetsErrorsReachTheCaller) {
  machine.setFaults({{.call = "RegSetValueExA", .effect = Fault::Effect::Raise, .code = 7}});
  EXPECT_THROW(enterUninstall(*registry, globals()), RuntimeError);
}

}  // namespace
}  // namespace zev
