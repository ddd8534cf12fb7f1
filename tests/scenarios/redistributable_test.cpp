// Whether the redistributable is laid and run, for each state of its two switches.

#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "scenarios/run_marks.h"
#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

constexpr int redistributableRow = 31;

/// A machine on which the switches are put as a row says, once the wizard stands.
RunMachine switchedAs(const Row& row) {
  RunMachine machine = registryMachine;
  machine.steps = R"({"set": {"global.gOptRedist": )" + std::to_string(row.number("gOptRedist")) +
                  R"(, "global.gVersionNT62": )" + std::to_string(row.number("gVersionNT62")) +
                  R"(, "Form1.Image1.Tag": ")" + row.quoted("image1_tag") + R"("}},)";
  return machine;
}

TEST(Redistributable, IsLaidAsItsTableSays) {
  for (const Row& row : Table::read("redistributable.tsv")) {
    const WatchedRun run(switchedAs(row));
    const bool laid = row.yes("laid");
    for (const char* operation : {"LZCopy", "Shell"}) {
      const Mark work = {.operation = operation, .phase = Phase::Expand, .row = redistributableRow};
      EXPECT_EQ(run.call(work) != nullptr, laid) << row.where() << " " << operation;
    }
    EXPECT_EQ(run.toldStep(), 0) << row.where();
    EXPECT_TRUE(run.place(writing("Command2.Caption", "Finish"))) << row.where();
  }
}

/// Every state of the two bytes, with the tag and without; and a tag with blanks, which are
/// trimmed.
TEST(Redistributable, HasARowForEachStateOfItsSwitches) {
  std::set<std::tuple<int, int, std::string>> states;
  for (const Row& row : Table::read("redistributable.tsv")) {
    states.emplace(row.number("gOptRedist"), row.number("gVersionNT62"), row.quoted("image1_tag"));
  }
  for (const int option : {0, 1}) {
    for (const int nt62 : {0, 1}) {
      for (const char* tag : {"", "1"}) EXPECT_EQ(states.count({option, nt62, tag}), 1u);
    }
  }
  EXPECT_EQ(states.count({0, 0, " 1 "}), 1u);
}

}  // namespace
}  // namespace zev
