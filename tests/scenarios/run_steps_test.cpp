// The steps of a run, as its trap prints them: what happens in each is made to fail.

#include <gtest/gtest.h>

#include <memory>
#include <set>

#include "scenarios/run_marks.h"
#include "scenarios/run_steps.h"
#include "support/table.h"

namespace zev {
namespace {

using test::Row;
using test::Table;

// ---- machines, and which gates of the table are open on them

struct GatedMachine {
  RunMachine machine;
  std::set<std::string> open;
};

RunMachine but(RunMachine machine, const std::string& name, const std::string& faults,
               const std::string& steps = "") {
  machine.name += ", " + name;
  machine.faults = faults;
  machine.steps = steps;
  return machine;
}

std::set<std::string> without(std::set<std::string> gates, const std::set<std::string>& closed) {
  for (const std::string& gate : closed) {
    EXPECT_EQ(gates.erase(gate), 1u) << gate;
  }
  return gates;
}

const std::set<std::string> allOpen = {"-",
                                       "gOSClass is 4",
                                       "expanded",
                                       "expanded, and present in gInstallDir",
                                       "process identifier is not 0",
                                       "not answered No",
                                       "Start Menu wanted",
                                       "Start Menu folder found",
                                       "entry 1 made"};

const std::set<std::string> redistributableGates = {
    "expanded", "expanded, and present in gInstallDir", "process identifier is not 0"};

const char* const otherFileType =
    R"(, "registry": {"HKEY_CLASSES_ROOT": {".zrd": {"": "Other.Type"}}})"
    R"(, "folders": {"localAppData": null})";

std::set<std::string> onOtherClasses() {
  std::set<std::string> gates = without(allOpen, {"gOSClass is 4"});
  gates.insert("gOSClass is not 4");
  return gates;
}

std::set<std::string> byProgramManager(const std::set<std::string>& closed) {
  std::set<std::string> gates = without(allOpen, closed);
  gates.insert("no Start Menu folder, or entry 1 failed");
  return gates;
}

/// Without a Start Menu of either kind.
RunMachine machineWithoutFolder() {
  RunMachine machine = but(profileMachine, "no Start Menu", "");
  machine.machine = R"(, "registry": {"HKEY_CLASSES_ROOT": {".zrd": {"": "ZEV.ReelDeskProject"}}})"
                    R"(, "folders": {"localAppData": null, "special": {"2": "X:\\Nowhere"}})";
  machine.faults = R"({"call": "Dir", "match": "C:\\ProgramData\\Microsoft", "error": 1},)";
  return machine;
}

/// The options count on one version alone.
RunMachine machineWithOptions() {
  RunMachine machine = but(
      profileMachine, "no shortcuts", "",
      R"({"set": {"global.gOptStartMenu": 0, "global.gOptDesktop": 0, "global.gOptRedist": 1}},)");
  machine.version = R"({"platform": 2, "major": 6, "minor": 2})";
  return machine;
}

RunMachine machineOfAnother(const std::string& answer) {
  RunMachine machine = but(profileMachine, "another file type, " + answer, "",
                           R"({"answer": [")" + answer + R"("]},)");
  machine.machine = otherFileType;
  return machine;
}

std::vector<GatedMachine> gatedMachines() {
  return {
      {profileMachine, allOpen},
      {registryMachine, onOtherClasses()},
      {but(profileMachine, "redistributable not expanded",
           R"({"call": "LZCopy", "match": "vcredist", "error": 3},)"),
       without(allOpen, redistributableGates)},
      {but(profileMachine, "redistributable vanished",
           R"({"call": "Dir", "match": "vcredist_x86.exe", "error": 1},)"),
       without(allOpen, {"expanded, and present in gInstallDir", "process identifier is not 0"})},
      {but(profileMachine, "no process identifier", R"({"call": "Shell", "ignore": true},)"),
       without(allOpen, {"process identifier is not 0"})},
      {machineOfAnother("no"), without(allOpen, {"not answered No"})},
      {machineOfAnother("yes"), allOpen},
      {machineWithOptions(),
       without(allOpen, {"Start Menu wanted", "Start Menu folder found", "entry 1 made"})},
      {machineWithoutFolder(), byProgramManager({"Start Menu folder found", "entry 1 made"})},
      {but(profileMachine, "first entry fails",
           R"({"call": "CreateShortcut", "nth": 1, "raise": 440},)"),
       byProgramManager({"entry 1 made"})},
  };
}

// ---- the tests

/// A run without a strike, with the gates that are open in it.
struct GatedRun {
  GatedMachine gated;
  WatchedRun run{gated.machine};
};

const std::vector<std::unique_ptr<GatedRun>>& gatedRuns() {
  static const auto runs = [] {
    std::vector<std::unique_ptr<GatedRun>> made;
    for (GatedMachine& each : gatedMachines()) {
      made.push_back(std::unique_ptr<GatedRun>(new GatedRun{std::move(each)}));
    }
    return made;
  }();
  return runs;
}

/// The mark of a row on the machine of a run; none if the row's step does nothing there.
const StepMark* markOn(const WatchedRun& run, const std::string& what) {
  for (const StepMark& each : stepMarks()) {
    if (each.what == what && run.place(each.mark)) return &each;
  }
  return nullptr;
}

TEST(RunSteps, AreTakenWhereTheGateOfTheirTableIsOpen) {
  const Table table = Table::read("run_steps.tsv");
  for (const auto& each : gatedRuns()) {
    for (const Row& row : table) {
      if (row.is("what", unmarkedStep)) continue;
      EXPECT_EQ(markOn(each->run, row.word("what")) != nullptr,
                each->gated.open.count(row.word("gate")) == 1)
          << row.where() << " on the machine " << each->gated.machine.name;
    }
  }
}

TEST(RunSteps, ComeInTheOrderOfTheirTable) {
  const Table table = Table::read("run_steps.tsv");
  for (const auto& each : gatedRuns()) {
    std::size_t last = 0;
    for (const Row& row : table) {
      const StepMark* found = markOn(each->run, row.word("what"));
      if (found == nullptr) continue;
      const std::size_t place = *each->run.place(found->mark);
      EXPECT_GT(place, last) << row.where() << " on the machine " << each->gated.machine.name;
      last = place;
    }
  }
}

/// What the trap tells when the work of a row fails.
std::int32_t toldFor(const RunMachine& machine, const WatchedRun& run, const StepMark& step) {
  return WatchedRun(machine, strikeOf(run, step)).toldStep();
}

TEST(RunSteps, AreToldByTheTrapAsTheirTableSays) {
  for (const RunMachine& machine : {profileMachine, registryMachine}) {
    const WatchedRun run(machine);
    for (const Row& row : Table::read("run_steps.tsv")) {
      const StepMark* found = markOn(run, row.word("what"));
      if (found == nullptr || found->untold) continue;
      EXPECT_EQ(toldFor(machine, run, *found), row.number("step"))
          << row.where() << " on the machine " << machine.name;
    }
  }
}

/// Nothing happens while the sizes are set up: the step is the one between its neighbours'.
TEST(RunSteps, OfTheSizesLiesBetweenItsNeighbours) {
  const Table table = Table::read("run_steps.tsv");
  const WatchedRun run(profileMachine);
  const StepMark folder = {"", {"MkDir", Phase::Opening, "ZEVTMP"}};
  EXPECT_EQ(table.row("what", unmarkedStep).number("step"),
            toldFor(profileMachine, run, folder) + 1);
  EXPECT_EQ(table.row("what", unmarkedStep).number("step"),
            table.row("what", "denominator and tick 0").number("step") - 1);
  EXPECT_TRUE(table.row("what", unmarkedStep).isNone("gate"));
}

TEST(RunSteps, HaveAMarkForEachRowAndForNothingElse) {
  const Table table = Table::read("run_steps.tsv");
  std::set<std::string> marked = {unmarkedStep};
  for (const StepMark& each : stepMarks()) marked.insert(each.what);
  std::set<std::string> rows;
  for (const Row& row : table) rows.insert(row.word("what"));
  EXPECT_EQ(marked, rows);
}

}  // namespace
}  // namespace zev
