// Every platform call of a whole run made to fail, one a run: what is shown, how it goes on and
// what becomes of the temporary folder.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>

#include "package/manifest.h"
#include "scenarios/branches.h"
#include "scenarios/call_trace.h"
#include "scenarios/fault_ends.h"
#include "scenarios/fault_run.h"
#include "scenarios/sanitized.h"
#include "scenarios/small_package.h"
#include "scenarios/snapshot.h"
#include "scenarios/told_boxes.h"
#include "scenarios/whole_run.h"
#include "support/table.h"

namespace zev {
namespace {

using scenario::Json;

/// Of so many calls each one fails; with a sanitizer every tenth.
constexpr std::size_t everyCall = sanitized ? 10 : 1;
constexpr std::size_t faultShards = 8;

const std::string productFolder = userFolder + "\\Tavorns\\ZEV5";
/// Where the temporary folder is if the system names none.
const std::string rootFolder = "C:\\ZEVTMP";

/// The run-time's words for its errors.
const std::map<int, std::string> descriptions = {
    {53, "File not found"},    {57, "Device I/O error"},
    {61, "Disk full"},         {67, "Too many files"},
    {70, "Permission denied"}, {75, "Path/File access error"},
    {76, "Path not found"},    {429, "ActiveX component can't create object"},
    {440, "Automation error"},
};

// ---- what must come of it

enum class Outcome {
  Finished,   ///< the run reaches its end
  Fallback,   ///< it does, with a group of Program Manager in place of shortcuts
  Stopped,    ///< the run's trap stops it
  Refused,    ///< the destination is refused, and no run begins
  OnTheSpot,  ///< the program ends without a word more
};
constexpr const char* outcomeNames[] = {"finished", "fallback", "stopped", "refused",
                                        "ended on the spot"};

/// What becomes of the temporary folder.
enum class Temporary { Gone, Stays };

/// What the failure of a call leads to. The first row that fits counts. The boxes are named in
/// order with blanks between: names of boxes.tsv, and those that boxOf knows.
struct Rule {
  const char* operations;
  Phase phase;
  const char* about;  ///< a piece of the call's path; "" is any
  Outcome outcome;
  const char* boxes;
  int step = 0;   ///< that the run's trap prints
  int error = 0;  ///< that it prints, where that is not the call's own
};

constexpr const char* anyPath = "";
constexpr Outcome Finished = Outcome::Finished;
constexpr Outcome Stopped = Outcome::Stopped;

// clang-format off
constexpr Rule rules[] = {
    // Without the folder of Windows the proposal has no drive, which its check does not accept.
    {"GetWindowsDirectoryA", Phase::Load, anyPath, Outcome::Refused, "drive"},
    // The folders of the user have a second way; all else that fails at the start, the
    // sockets of the form among it, shows nothing.
    {"*", Phase::Load, anyPath, Finished, ""},

    {"GetDriveTypeA", Phase::Check, anyPath, Outcome::Refused, "drive"},
    {"MkDir", Phase::Check, anyPath, Outcome::Refused, "destination.trap2"},
    // A folder above that is not seen is taken for the destination as soon as it is.
    {"Dir", Phase::Check, "Program Files\\", Outcome::Refused, "destination.trap2"},
    {"*", Phase::Check, anyPath, Finished, ""},

    // Without its own folder or name the program looks for its package where none is.
    {"ownFolder|ownName|FileLen", Phase::Opening, anyPath, Stopped, "run.trap", 1, 53},
    {"MkDir", Phase::Opening, anyPath, Stopped, "run.trap", 2},
    {"DoEvents", Phase::Opening, anyPath, Finished, ""},

    {"GetSystemDirectoryA", Phase::Prepare, anyPath, Finished, ""},
    // Without documents the projects lie in the install directory.
    {"CLSIDFromString|SHGetKnownFolderPath|lstrlenW|CoTaskMemFree|Dir", Phase::Prepare, anyPath, Finished, ""},
    {"SHGetSpecialFolderLocation|SHGetPathFromIDList", Phase::Prepare, anyPath, Finished, ""},
    // The project is left out without a word; its patch then finds no folder to write to.
    {"MkDir", Phase::Prepare, "ZEV Projects", Stopped, "run.trap", 67, 76},
    {"FreeFile|OpenBinaryWrite|PutText|Close", Phase::Prepare, "SampleProject.zrd", Stopped, "run.trap", 67},

    // No work file at all, an empty one, and a whole one.
    {"FreeFile|OpenBinary", Phase::MainOut, anyPath, Outcome::OnTheSpot, "extract.trap"},
    {"LOF|Get|Put|Close", Phase::MainOut, anyPath, Outcome::OnTheSpot, "extract.trap"},
    {"FreeFile|OpenBinary", Phase::Extract, anyPath, Finished, "extract.trap extraction work_file_missing expansion"},
    {"LOF|Get|Put", Phase::Extract, anyPath, Finished, "extract.trap extraction nothing_expanded"},
    {"Close", Phase::Extract, anyPath, Finished, "extract.trap extraction"},

    {"LZOpenFileA", Phase::MainIn, anyPath, Outcome::OnTheSpot, "cannot_open"},
    {"LZCopy", Phase::MainIn, anyPath, Outcome::OnTheSpot, "cannot_expand"},
    {"DoEvents|LZClose", Phase::MainIn, anyPath, Finished, ""},
    {"LZOpenFileA", Phase::Expand, anyPath, Finished, "cannot_open expansion"},
    {"LZCopy", Phase::Expand, anyPath, Finished, "cannot_expand expansion"},
    // A program that is still open to be written is none to rely on: it is not started.
    {"LZClose", Phase::Expand, "vcredist_x86.exe", Stopped, "run.trap", 72, 70},
    {"DoEvents|LZClose", Phase::Expand, anyPath, Finished, ""},
    // The redistributable: seen, started, waited for, deleted.
    {"Shell", Phase::Expand, "vcredist_x86.exe", Stopped, "run.trap", 72},
    {"Dir|Kill", Phase::Expand, "vcredist_x86.exe", Finished, ""},
    {"OpenProcess|WaitForSingleObject|CloseHandle", Phase::Expand, anyPath, Finished, ""},

    // A user folder that cannot be written to is no user folder.
    {"FreeFile|OpenOutput|Print|Close", Phase::Settings, "deneme_sil", Finished, "users.not_created users.not_writable"},
    {"Dir|Kill", Phase::Settings, "deneme_sil", Finished, ""},
    {"MkDir", Phase::Settings, "Tavorns", Finished, "users.not_created"},
    {"FreeFile|OpenOutput|Print|Close", Phase::Settings, "UserF.dat", Stopped, "run.trap", 131},
    {"FreeFile|OpenOutput|Print|Close", Phase::Settings, "Tavorns\\ZEV5\\", Finished, "registry.write_conf"},
    {"Dir", Phase::Settings, anyPath, Finished, ""},
    {"GetAttr", Phase::Settings, anyPath, Finished, ""},
    // What the registry refuses is lost without a word.
    {"RegOpenKeyA|RegCreateKeyA|RegCloseKey|RegQueryValueExA|RegSetValueExA", Phase::Settings, anyPath, Finished, ""},
    {"RegOpenKeyA|RegCreateKeyA|RegCloseKey|RegEnumKeyA|RegSetValueExA", Phase::FileType, anyPath, Finished, ""},
    {"RegQueryValueExA", Phase::FileType, anyPath, Finished, ""},

    {"FreeFile|OpenOutput|Print|Close", Phase::Language, "Tavorns\\ZEV5\\", Finished, "registry.write_conf"},
    {"Dir|GetAttr|RegCreateKeyA|RegSetValueExA|RegCloseKey", Phase::Language, anyPath, Finished, ""},

    // What cannot be deleted stays without a word.
    {"Kill|RmDir", Phase::CleanUp, anyPath, Finished, ""},

    {"MkDir", Phase::Shortcuts, anyPath, Stopped, "run.trap", 165},
    {"CreateObject", Phase::Shortcuts, anyPath, Stopped, "run.trap", 166},
    {"GetSystemDirectoryA|SpecialFolders|ShellExecuteA", Phase::Shortcuts, anyPath, Finished, ""},
    {"Dir", Phase::Shortcuts, anyPath, Finished, ""},

    {"*", Phase::Users, anyPath, Finished, ""},
    {"*", Phase::Finish, anyPath, Finished, ""},
    {"*", Phase::Unload, anyPath, Finished, ""},
};
// clang-format on

/// The operations of one shortcut. A first one that fails is made up for by Program Manager; the
/// others stop the run, each with the step of its place in the order of making.
constexpr const char* linkOperations =
    "CreateShortcut|TargetPath|Arguments|WindowStyle|IconLocation|Description|WorkingDirectory|"
    "Save";
constexpr int linkSteps[] = {0, 167, 168, 169, 170, 171};
constexpr Rule firstLink = {linkOperations, Phase::Shortcuts, anyPath, Outcome::Fallback, ""};

Rule linkRule(std::size_t link) {
  if (link == 1) return firstLink;
  return {linkOperations, Phase::Shortcuts, anyPath, Stopped, "run.trap", linkSteps[link - 1]};
}

/// The existence tests whose answer decides where no other rule does.
constexpr int directories = 16;
constexpr int anyEntry = 55;
constexpr Rule changesNothing = {"Dir", Phase::Load, anyPath, Finished, ""};
constexpr Rule noStartMenu = {"Dir", Phase::Shortcuts, anyPath, Outcome::Fallback, ""};
constexpr Rule folderNotMade = {"Dir", Phase::Settings, anyPath, Finished, "users.not_created"};
constexpr Rule alreadyMade = {"Dir", Phase::Check, anyPath, Finished, ""};

/// The check looks for its folder once more behind the last resort and then only repairs it.
constexpr std::size_t looksForDestination = 4;

bool endsWith(const std::string& text, const std::string& end) { return text.ends_with(end); }

const Rule* folderRule(const Call& call) {
  if (call.phase == Phase::Shortcuts && endsWith(call.path, "Start Menu") &&
      call.number == directories) {
    return &noStartMenu;
  }
  if (call.phase == Phase::Check && call.path == installFolder &&
      call.repeat == looksForDestination) {
    return &alreadyMade;
  }
  if (call.phase == Phase::Settings && call.number == anyEntry &&
      (endsWith(call.path, "\\Tavorns") || endsWith(call.path, "\\ZEV5"))) {
    return &folderNotMade;
  }
  return nullptr;
}

Rule ruleOf(const Call& call) {
  if (isAmong(call.operation, linkOperations)) return linkRule(call.link);
  if (call.operation == "Dir") {
    if (call.empty) return changesNothing;
    if (const Rule* rule = folderRule(call)) return *rule;
  }
  for (const Rule& rule : rules) {
    if (rule.phase == call.phase && isAmong(call.operation, rule.operations) &&
        call.path.find(rule.about) != std::string::npos) {
      return rule;
    }
  }
  throw std::out_of_range("no rule for " + call.operation + " in " + nameOf(call.phase) + " (" +
                          call.path + ")");
}

// ---- the boxes of a rule

std::string workFile(const Call& call) {
  for (const ManifestRow& row : manifest()) {
    if (row.row == call.row) return temporaryFolder + "\\" + toUtf8(row.packedName);
  }
  return {};
}

/// What the value file of a call is written with, by the name of the value.
std::string settingOf(const std::string& name) {
  static const test::Table table = test::Table::read("run_settings.tsv");
  const test::Row& row = table.row("value", name);
  if (row.is("type", "text")) return installFolder;
  return name == "Language" ? "0" : row.word("written");
}

Filling fillingOf(const Call& call, const Rule& rule) {
  const int error = rule.error != 0 ? rule.error : codeOf(call.operation);
  Filling filling = {{"number", std::to_string(error)}, {"RunStep", std::to_string(rule.step)},
                     {"destination", workFile(call)},   {"gInstallDir", installFolder},
                     {"gUserDir", userFolder},          {"folder", productFolder}};
  const auto description = descriptions.find(error);
  if (description != descriptions.end()) filling["description"] = description->second;
  if (call.path.starts_with(productFolder + "\\")) {
    filling["name"] = call.path.substr(productFolder.size() + 1);
    filling["text"] = settingOf(filling["name"]);
  }
  return filling;
}

ToldBox boxOf(const std::string& name, const Call& call, const Rule& rule) {
  constexpr int fileNotFound = 2;
  constexpr int invalidFormat = -300;
  if (name == "drive") return driveBox(noRoot, call.phase == Phase::Load ? "\\:\\" : "C:\\");
  if (name == "extraction") return extractionBox(call.row);
  if (name == "expansion") return expansionBox(call.row);
  if (name == "work_file_missing") return openBox(fileNotFound, workFile(call));
  if (name == "nothing_expanded") return copyBox(0, workFile(call));
  if (name == "cannot_open") return openBox(cannotOpen, call.path);
  if (name == "cannot_expand") return copyBox(invalidFormat, workFile(call));
  return toldBox(name, fillingOf(call, rule));
}

std::vector<ToldBox> expectedBoxes(const Call& call, const Rule& rule) {
  std::vector<ToldBox> boxes;
  std::istringstream names(rule.boxes);
  for (std::string name; names >> name;) boxes.push_back(boxOf(name, call, rule));
  if (rule.outcome == Outcome::Stopped || rule.outcome == Outcome::Refused) {
    boxes.push_back(toldBox("unload.cancel"));
  }
  return boxes;
}

/// A file that the program still has open in the temporary folder stays, and so does what the
/// clean-up is refused; a cancel cleans up once more.
Temporary expectedTemporary(const Call& call) {
  const bool held = call.operation == "LZClose" && call.path == workFile(call);
  return held || call.phase == Phase::CleanUp ? Temporary::Stays : Temporary::Gone;
}

/// Whether what there was in front of a call has a part in what must be left behind it.
bool looksBack(const Call& call) {
  const Outcome outcome = ruleOf(call).outcome;
  const bool goesOn = outcome == Finished || outcome == Outcome::Fallback;
  return !goesOn || call.phase == Phase::CleanUp || call.operation == "LZClose" ||
         call.path.ends_with("vcredist_x86.exe");
}

// ---- what came of it

Outcome outcomeOf(FaultRun& run) {
  if (run.ended() == "exit") return Outcome::OnTheSpot;
  if (run.person.finished) {
    return run.machine().records().dde.empty() ? Finished : Outcome::Fallback;
  }
  constexpr int pageOfTheDirectory = 4;
  const auto page = run.stage.program().global("gCurrentPage");
  return page == PropertyValue(std::int32_t{pageOfTheDirectory}) ? Outcome::Refused : Stopped;
}

Temporary temporaryOf(FaultRun& run) {
  return run.has(temporaryFolder) || run.has(rootFolder) ? Temporary::Stays : Temporary::Gone;
}

/// One line of the table: an operation in one stretch of the run, and what came of its calls.
struct Tally {
  std::size_t calls = 0;
  std::map<std::string, std::size_t> outcomes;
  std::map<std::string, std::size_t> boxes;
};
using TallyTable = std::map<std::pair<std::string, Phase>, Tally>;

/// The beginning of a box's text, for the table.
std::string beginningOf(const ToldBox& box) {
  constexpr std::size_t shown = 44;
  const std::string line = box.text.substr(0, box.text.find('\r'));
  return line.size() <= shown ? line : line.substr(0, shown) + "...";
}

/// As a scenario writes it.
const std::string programFiles = R"(C:\\Program Files)";

/// What runs without failures leave, by version of the machine and directory.
const Snapshot& cleanOf(const std::string& version, const std::string& directory) {
  static std::map<std::string, Snapshot> all;
  Snapshot& clean = all[version + directory];
  if (clean.empty()) clean = FaultRun(version, "", false, {}, directory).left();
  return clean;
}

/// A call that fails, what it has to lead to, and what the machine kept in front of it.
struct Failing {
  const Call* call = nullptr;
  Rule rule{};
  std::vector<ToldBox> boxes{};
  Snapshot before{};
};

/// All that is left is what has to be, each file where it has to lie.
void expectEnd(FaultRun& run, const std::string& version, const Failing& failing) {
  const Known known = {cleanOf(version, ""), cleanOf(registryVersion, ""),
                       cleanOf(version, programFiles), failing.before};
  const Outcome outcome = failing.rule.outcome;
  const bool goesOn = outcome == Finished || outcome == Outcome::Fallback;
  const Snapshot expected = goesOn ? leftBehind(*failing.call, known) : leftBehindAStop(known);
  EXPECT_EQ(differences(run.left(), expected), std::vector<std::string>());
}

std::string nameOf(const Call& call) {
  return faultOf(call) + " in " + nameOf(call.phase) + ", row " + std::to_string(call.row) + ", " +
         call.path;
}

/// Tells the outcome and the beginnings of the boxes.
Branches::Told judge(FaultRun& run, const std::string& version, const Failing& failing) {
  const Call& call = *failing.call;
  SCOPED_TRACE(nameOf(call));
  const std::vector<ToldBox> boxes = shownBoxes(run.log.boxes());
  const Outcome outcome = outcomeOf(run);
  EXPECT_EQ(boxes, failing.boxes);
  EXPECT_STREQ(outcomeNames[static_cast<int>(outcome)],
               outcomeNames[static_cast<int>(failing.rule.outcome)]);
  EXPECT_EQ(run.ended(), outcome == Outcome::OnTheSpot ? "exit" : "unload");
  EXPECT_EQ(temporaryOf(run), expectedTemporary(call));
  EXPECT_GE(run.machine().calls(call.operation), call.nth) << "the fault struck nothing";
  expectEnd(run, version, failing);
  Branches::Told told = {outcomeNames[static_cast<int>(outcome)]};
  for (const ToldBox& box : boxes) told.push_back(beginningOf(box));
  return told;
}

void count(const Branches::Told& told, Tally& tally) {
  ++tally.calls;
  ++tally.outcomes[told.front()];
  for (std::size_t box = 1; box < told.size(); ++box) ++tally.boxes[told[box]];
}

/// Each of some calls fails once: in front of it a run without failures branches.
class FailedCalls {
 public:
  FailedCalls(const std::string& version, const std::vector<const Call*>& calls)
      : version_(version) {
    for (const Call* call : calls) calls_[call->begin] = call;
  }

  void play(TallyTable& table) {
    playCleanRuns();
    std::unique_ptr<FaultRun> run;
    branches_.play([&] { run = std::make_unique<FaultRun>(version_, "", true, pauses()); },
                   [&] { return judge(*run, version_, failing_); },
                   [&](const Branches::Told& told) {
                     count(told, table[{failing_.call->operation, failing_.call->phase}]);
                   });
    EXPECT_EQ(branched_, calls_.size()) << "a run without failures comes not to all of the calls";
  }

 private:
  /// Once, and not in every copy.
  void playCleanRuns() const {
    cleanOf(version_, "");
    cleanOf(registryVersion, "");
    cleanOf(version_, programFiles);
  }

  Pauses pauses() {
    Pauses pauses{.what = [this](FaultRun& run, std::size_t place) { branch(run, place); }};
    for (const auto& [place, call] : calls_) pauses.places.insert(place);
    return pauses;
  }

  void branch(FaultRun& run, std::size_t place) {
    ++branched_;
    const Call& call = *calls_.at(place);
    const Rule rule = ruleOf(call);
    failing_ = {&call, rule, expectedBoxes(call, rule)};
    if (!branches_.branch(nameOf(call))) return;
    if (looksBack(call)) failing_.before = snapshotOf(run.machine(), longestFile);
    run.fail(call);
  }

  const std::string version_;
  std::map<std::size_t, const Call*> calls_;  ///< by where what happens at them begins
  Branches branches_;
  Failing failing_;
  std::size_t branched_ = 0;
};

std::string joined(const std::map<std::string, std::size_t>& counts) {
  std::string text;
  for (const auto& [name, count] : counts) {
    text += (text.empty() ? "" : ", ") + name + " " + std::to_string(count);
  }
  return text;
}

/// The table on the screen, and as a file beside the program.
void print(const TallyTable& table, const std::string& name) {
  std::ostringstream lines;
  std::size_t calls = 0;
  for (const auto& [key, tally] : table) {
    calls += tally.calls;
    lines << key.first << "\t" << nameOf(key.second) << "\t" << tally.calls << "\t"
          << joined(tally.outcomes) << "\t" << joined(tally.boxes) << "\n";
  }
  std::cout << "operation\tstretch\tcalls\toutcomes\tboxes\n" << lines.str() << calls << " calls";
  if (everyCall > 1) std::cout << ", one of every " << everyCall << " (with a sanitizer)";
  std::cout << std::endl;
  std::ofstream(std::string(ZEV_BUILD_FOLDER) + "/faults-" + name + ".tsv") << lines.str();
}

// ---- the tests

class FaultsOnWindows7 : public testing::TestWithParam<std::size_t> {};

TEST_P(FaultsOnWindows7, EachCallLeadsToWhatIsTold) {
  const std::vector<Call>& all = callsOf(profileVersion);
  std::vector<const Call*> calls;
  for (std::size_t place = GetParam(); place < all.size(); place += faultShards * everyCall) {
    calls.push_back(&all[place]);
  }
  TallyTable table;
  FailedCalls(profileVersion, calls).play(table);
  print(table, "windows-7-" + std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Shard, FaultsOnWindows7, testing::Range(std::size_t{0}, faultShards));

/// The calls that this class makes and the other does not: all in whole stretches that differ, and
/// the row that the other leaves out.
bool differs(const Call& call) {
  constexpr int userProgram = 25;
  const bool member = call.phase == Phase::Extract || call.phase == Phase::Expand ||
                      call.phase == Phase::MainOut || call.phase == Phase::MainIn;
  return !member || call.row == userProgram;
}

TEST(FaultsOnWindowsXp, EachCallOfItsOwnLeadsToWhatIsTold) {
  std::vector<const Call*> calls;
  std::size_t place = 0;
  for (const Call& call : callsOf(registryVersion)) {
    if (differs(call) && place++ % everyCall == 0) calls.push_back(&call);
  }
  TallyTable table;
  FailedCalls(registryVersion, calls).play(table);
  print(table, "windows-xp");
}

/// How often a usual run calls each operation: a call more or less is one that nobody has thought
/// through. Per member: two questions for the old file, two numbers, two opens, one read, one
/// write.
TEST(FaultsOnWindows7, ARunMakesTheseCalls) {
  constexpr std::size_t members = 55;
  std::map<std::string, std::size_t> counts;
  for (const Call& call : callsOf(profileVersion)) ++counts[call.operation];
  const std::map<std::string, std::size_t> perMember = {
      {"LOF", 1},         {"Get", 1},    {"Put", 1},    {"OpenBinary", 2},
      {"LZOpenFileA", 2}, {"LZCopy", 1}, {"LZClose", 2}};
  for (const auto& [operation, each] : perMember) {
    EXPECT_EQ(counts[operation], each * members) << operation;
  }
  // Numbers and closes of the members, the patch, the probe, UserF.dat, and seven value files.
  EXPECT_EQ(counts["FreeFile"], 2 * members + 1 + 1 + 1 + 7);
  EXPECT_EQ(counts["Close"], 2 * members + 1 + 1 + 1 + 7);
  EXPECT_EQ(counts["OpenOutput"], 1u + 1 + 7);
  EXPECT_EQ(counts["CreateShortcut"], 6u);
  EXPECT_EQ(counts["MkDir"], 6u);
}

}  // namespace
}  // namespace zev
