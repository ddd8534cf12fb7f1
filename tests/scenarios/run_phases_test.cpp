// The phases of a run: their steps, ticks and labels in the order in which they come.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>

#include "scenarios/run_marks.h"
#include "scenarios/run_steps.h"
#include "scenarios/told_boxes.h"
#include "scenarios/whole_run.h"
#include "support/table.h"

namespace zev {
namespace {

using simulated::Event;
using test::Row;
using test::Table;

const Table& phases() {
  static const Table table = Table::read("run_phases.tsv");
  return table;
}

// ---- what comes in a run, in its order

/// One thing that shows how far the run is.
struct Item {
  std::string kind;  ///< "tick", "step", or a label's name
  std::int32_t number = 0;
  std::string text{};

  bool operator==(const Item&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Item& item) {
  out << item.kind;
  return item.text.empty() && item.number != 0 ? out << " " << item.number
                                               : out << " \"" << item.text << "\"";
}

/// The steps that stand in no table but that of the phases, with what is done in them.
const StepMark ownSteps[] = {
    {"1", {"FileLen", Phase::Opening}},
    {"2", {"MkDir", Phase::Opening, "ZEVTMP"}},
    {"174", writing("Label8.Caption", "98%"), {}, writing("Label8.Caption", "98%")},
};

/// Where each step was taken in a run.
class StepPlaces {
 public:
  explicit StepPlaces(const WatchedRun& run) : run_(run) {
    for (const StepMark& each : ownSteps) add(std::stoi(each.what), each.mark);
    const Table steps = Table::read("run_steps.tsv");
    for (const StepMark& each : stepMarks()) {
      add(steps.row("what", each.what).number("step"), each.mark);
    }
    for (const Row& row : Table::read("manifest_steps.tsv")) {
      if (row.isNone("row")) continue;
      for (const Phase phase : {Phase::Extract, Phase::MainOut}) {
        add(row.number("step_extract"), ofMember("OpenBinary", phase, row.number("row")));
      }
      for (const Phase phase : {Phase::Expand, Phase::MainIn}) {
        add(row.number("step_expand"), ofMember("LZOpenFileA", phase, row.number("row")));
      }
    }
  }

  const std::multimap<std::size_t, std::int32_t>& places() const { return places_; }

 private:
  static Mark ofMember(const char* operation, Phase phase, int row) {
    return {.operation = operation, .phase = phase, .row = row};
  }
  void add(std::int32_t step, const Mark& mark) {
    if (const auto place = run_.place(mark)) places_.emplace(*place, step);
  }

  const WatchedRun& run_;
  std::multimap<std::size_t, std::int32_t> places_;
};

constexpr std::int32_t lastTick = 60;

/// The tick that a percentage stands for: no two ticks of the run show the same.
std::int32_t tickOf(const std::string& percent) {
  for (std::int32_t tick = 0; tick <= lastTick; ++tick) {
    const int rounded = (tick * 200 + lastTick) / (2 * lastTick);
    if (percent == std::to_string(rounded) + "%") return tick;
  }
  ADD_FAILURE() << "no tick shows " << percent;
  return -1;
}

std::vector<Item> itemsOf(const WatchedRun& run) {
  const StepPlaces steps(run);
  std::vector<Item> items;
  for (std::size_t place = 0; place < run.events().size(); ++place) {
    const Event& event = run.events()[place];
    if (event["event"] == "set" && event["property"] == "Caption") {
      const std::string control = event["control"].text();
      const std::string value = event["value"].text();
      if (control == "Form1.Label8") items.push_back({"tick", tickOf(value)});
      if (control == "Form1.Label11" || control == "Form1.Label12") {
        items.push_back({control.substr(std::string("Form1.").size()), 0, value});
      }
    }
    const auto [begin, end] = steps.places().equal_range(place);
    for (auto step = begin; step != end; ++step) items.push_back({"step", step->second});
  }
  return items;
}

// ---- what the table says

bool has(const Row& row, const char* column) { return !row.isNone(column); }

/// All steps that any table names.
const std::set<std::int32_t>& namedSteps() {
  static const std::set<std::int32_t> steps = [] {
    std::set<std::int32_t> all;
    for (const StepMark& each : ownSteps) all.insert(std::stoi(each.what));
    for (const Row& row : Table::read("run_steps.tsv")) all.insert(row.number("step"));
    for (const Row& row : Table::read("manifest_steps.tsv")) {
      if (row.isNone("row")) continue;
      all.insert(row.number("step_extract"));
      all.insert(row.number("step_expand"));
    }
    return all;
  }();
  return steps;
}

/// The phase behind whose work the tick stands.
constexpr const char* tickBehind = "video codec registry";
constexpr const char* members = "members";

/// Reads the items of a run along the rows of the table.
class AlongTheTable {
 public:
  AlongTheTable(std::vector<Item> items, std::string name)
      : items_(std::move(items)), name_(std::move(name)) {}

  void read() {
    for (const Row& row : phases()) {
      if (row.is("name", members)) {
        takeMembers(row);
        continue;
      }
      if (!row.is("name", tickBehind)) takeTick(row);
      takeLabel(row);
      takeSteps(row);
      if (row.is("name", tickBehind)) takeTick(row);
    }
    EXPECT_EQ(next_, items_.size()) << name_ << ": behind the last phase comes " << current();
  }

 private:
  Item current() const { return next_ < items_.size() ? items_[next_] : Item{"the end"}; }
  void take(const Item& expected, const Row& row) {
    ASSERT_EQ(current(), expected) << row.where() << " " << name_;
    ++next_;
  }

  /// The second row of a phase shows its tick no second time.
  void takeTick(const Row& row) {
    const bool second = row.word("phase") == phaseOfTick_;
    if (!has(row, "first_tick") || second) return;
    phaseOfTick_ = row.word("phase");
    EXPECT_EQ(row.number("first_tick"), row.number("last_tick")) << row.where();
    take({"tick", row.number("first_tick")}, row);
  }

  void takeLabel(const Row& row) {
    if (!has(row, "label")) {
      EXPECT_FALSE(has(row, "text")) << row.where();
      return;
    }
    const std::string text = filled(row.quoted("text"), {{"gInstallDir", installFolder}});
    take({row.word("label"), 0, text}, row);
  }

  /// Which of the steps come is the business of their own table.
  void takeSteps(const Row& row) {
    if (!has(row, "first_step")) return;
    const auto [first, last] = std::pair(row.number("first_step"), row.number("last_step"));
    while (current().kind == "step" && current().number >= first && current().number <= last) {
      seen_[row.word("phase")] = true;
      ++next_;
    }
    EXPECT_TRUE(seen_[row.word("phase")]) << row.where() << " " << name_;
  }

  /// Each tick from the first to the last, with what it brings.
  void takeMembers(const Row& row) {
    const auto [first, last] = std::pair(row.number("first_step"), row.number("last_step"));
    EXPECT_EQ(row.quoted("text"), "{file}");
    for (auto tick = row.number("first_tick"); tick <= row.number("last_tick"); ++tick) {
      take({"tick", tick}, row);
      while (current().kind == "step" || (current().kind == "Label12" && !current().text.empty())) {
        if (current().kind == "step") {
          EXPECT_GE(current().number, first) << row.where() << " " << name_;
          EXPECT_LE(current().number, last) << row.where() << " " << name_;
        } else {
          EXPECT_EQ(row.word("label"), "Label12") << row.where();
        }
        ++next_;
      }
    }
  }

  std::vector<Item> items_;
  std::string name_;
  std::size_t next_ = 0;
  std::string phaseOfTick_;
  std::map<std::string, bool> seen_;
};

// ---- the tests

TEST(RunPhases, ComeAsTheirTableSays) {
  for (const RunMachine& machine : {profileMachine, registryMachine}) {
    AlongTheTable(itemsOf(WatchedRun(machine)), machine.name).read();
  }
}

/// The rows of a phase that writes two labels say the same of its steps and ticks.
TEST(RunPhases, HaveTheSameStepsAndTicksInEveryRow) {
  std::map<std::string, const Row*> seen;
  for (const Row& row : phases()) {
    EXPECT_EQ(has(row, "first_tick"), has(row, "last_tick")) << row.where();
    const Row* first = seen.emplace(row.word("phase"), &row).first->second;
    for (const char* column : {"first_step", "last_step", "first_tick", "last_tick", "name"}) {
      EXPECT_EQ(row.word(column), first->word(column)) << row.where();
    }
  }
}

TEST(RunPhases, AreNumberedInTheirOrder) {
  std::int32_t last = 0;
  std::set<std::int32_t> numbers;
  for (const Row& row : phases()) {
    EXPECT_GE(row.number("phase"), last) << row.where();
    last = row.number("phase");
    numbers.insert(last);
  }
  EXPECT_EQ(numbers.size(), 14u);
  EXPECT_EQ(*numbers.begin(), 1);
  EXPECT_EQ(*numbers.rbegin(), 14);
}

/// Every step belongs to one phase, whose range ends with its first and its last one.
TEST(RunPhases, HaveEveryStepBetweenTheirFirstAndTheirLast) {
  std::set<std::int32_t> left = namedSteps();
  for (const Row& row : phases()) {
    EXPECT_EQ(has(row, "first_step"), has(row, "last_step")) << row.where();
    if (!has(row, "first_step")) continue;
    const auto begin = left.lower_bound(row.number("first_step"));
    const auto end = left.upper_bound(row.number("last_step"));
    ASSERT_NE(begin, end) << row.where();
    EXPECT_EQ(*begin, row.number("first_step")) << row.where();
    EXPECT_EQ(*std::prev(end), row.number("last_step")) << row.where();
    left.erase(begin, end);
  }
  EXPECT_EQ(left, std::set<std::int32_t>());
}

/// What stands in this table alone is told by the trap as well.
TEST(RunPhases, HaveTheStepsThatTheTrapTells) {
  for (const RunMachine& machine : {profileMachine, registryMachine}) {
    const WatchedRun run(machine);
    for (const StepMark& each : ownSteps) {
      EXPECT_EQ(WatchedRun(machine, strikeOf(run, each)).toldStep(), std::stoi(each.what));
    }
  }
}

/// What each phase is named after.
struct NamedPhase {
  const char* name;
  Mark work;
};

// clang-format off
const NamedPhase namedPhases[] = {
    {"opening of the package",              {"FileLen", Phase::Opening}},
    {"tables and counters",                 writing("Label8.Caption", "0%")},
    {"members",                             {"LZCopy", Phase::Expand}},
    {"change of status",                    writing("Label11.Caption", "Registry settings")},
    {"product key, or per-user folders",    {"RegCreateKeyA", Phase::Settings, "Software\\Tavorns\\ZEV5"}},
    {"product key, or per-user folders",    {"OpenOutput", Phase::Settings, "deneme_sil"}},
    {"settings",                            {"RegSetValueExA", Phase::Settings, "CapSpeed"}},
    {"settings",                            {"OpenOutput", Phase::Settings, "\\ZEV5\\CapSpeed"}},
    {"uninstall entry",                     {"RegSetValueExA", Phase::Settings, "UninstallString"}},
    {"file association",                    {"RegCreateKeyA", Phase::FileType, "ZEV.ReelDeskProject"}},
    {"video codec registry",                {"RegOpenKeyA", Phase::FileType, "AVIFile"}},
    {"language",                            {"RegSetValueExA", Phase::Language, "Language"}},
    {"language",                            {"OpenOutput", Phase::Language, "\\ZEV5\\Language"}},
    {"temporary files",                     {"RmDir", Phase::CleanUp}},
    {"shortcuts",                           {"CreateShortcut", Phase::Shortcuts}},
    {"per-user registration",               {"SHGetKnownFolderPath", Phase::Users}},
    {"finish",                              {"SetForegroundWindow", Phase::Finish}},
};
// clang-format on

/// The phases by their names, in the order in which what they are named after comes in a run.
std::vector<std::string> namesInOrder(const WatchedRun& run) {
  std::map<std::size_t, std::string> found;
  for (const NamedPhase& each : namedPhases) {
    const auto place = run.place(each.work);
    if (place) found[*place] = each.name;
  }
  std::vector<std::string> names;
  for (const auto& [place, name] : found) {
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

std::vector<std::string> namesOfTheTable(bool profiles) {
  std::vector<std::string> names;
  for (const Row& row : phases()) {
    const std::string& name = row.word("name");
    if (!profiles && name == "per-user registration") continue;
    if (names.empty() || names.back() != name) names.push_back(name);
  }
  return names;
}

TEST(RunPhases, AreNamedAfterWhatIsDoneInThem) {
  EXPECT_EQ(namesInOrder(WatchedRun(profileMachine)), namesOfTheTable(true));
  EXPECT_EQ(namesInOrder(WatchedRun(registryMachine)), namesOfTheTable(false));
}

}  // namespace
}  // namespace zev
