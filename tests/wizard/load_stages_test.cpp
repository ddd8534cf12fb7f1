// The stages of the start, as its trap prints them: what happens in each is made to fail.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "runtime/error.h"
#include "support/table.h"
#include "system/on_a_machine.h"
#include "system/user_folders.h"
#include "wizard/running_product.h"
#include "wizard/setup.h"

namespace zev {
namespace {

using simulated::Fault;
using test::Row;
using test::Table;
using Lines = std::vector<std::string>;

const Table& stages() {
  static const Table table = Table::read("load_stages.tsv");
  return table;
}

std::int32_t stageOf(const std::string& what) { return stages().row("what", what).number("stage"); }

// ---- machines, by the way that the search for the user's folders takes on them

enum class Way {
  NotTaken,       ///< the settings are in the registry
  KnownFolder,    ///< the system names the folder
  ProductFolder,  ///< and the product's own lies in it, without a setting
  LockedFolders,  ///< and all three are there, hidden and read-only for good
  ByName,         ///< the system names none, the user's name leads to it
  NobodyKnown,    ///< the system names neither folder nor user
  ProfileGone,    ///< it names a user without a folder
};

constexpr std::uint32_t hiddenAndReadOnly = 3;
constexpr TextView userRoot = u"C:\\Users\\bob\\AppData\\Local";
constexpr TextView settingsFolder = u"\\Tavorns\\ZEV5";

void lock(simulated::Disks& disks, TextView folder) {
  simulated::FileSettings settings;
  settings.directory = true;
  settings.attributes = hiddenAndReadOnly;
  settings.locked = true;
  disks.put(folder, settings);
}

void prepare(simulated::SimulatedMachine& machine, Way way) {
  simulated::MachineSettings& settings = machine.settings();
  if (way == Way::NotTaken) settings.system.version.major = 5;
  if (way == Way::ProductFolder) machine.disks().putDirectory(join(userRoot, settingsFolder));
  if (way == Way::LockedFolders) {
    for (const TextView below : {u"\\Tavorns\\ZEV5", u"\\Tavorns", u""}) {
      lock(machine.disks(), join(userRoot, below));
    }
  }
  if (way < Way::ByName) return;
  settings.folders.localAppData = std::nullopt;
  if (way == Way::NobodyKnown) settings.system.user = std::nullopt;
  if (way == Way::ProfileGone) machine.disks().remove(u"C:\\Users\\bob");
}

// ---- what is struck

/// Something of a stage that is made to fail: a call, or the first write of a property. A service
/// that tells of its own failures does so in a box, which is then made to fail, too.
struct Strike {
  const char* what;  ///< as the table has it
  Way way;
  const char* call;
  TextView match = u"";
  std::uint32_t nth = 1;
  TextView box = u"";         ///< a piece of the service's own box
  const char* property = "";  ///< in place of a call
};

// clang-format off
const Strike strikes[] = {
    {"temporary folder",                               Way::KnownFolder,   "GetTempPathA"},
    {"temporary folder",                               Way::NotTaken,      "GetTempPathA"},
    {"Windows directory",                              Way::KnownFolder,   "GetWindowsDirectoryA"},
    {"Windows directory",                              Way::NotTaken,      "GetWindowsDirectoryA"},
    {"GetOSClass",                                     Way::KnownFolder,   "GetVersionExA"},
    {"GetOSClass",                                     Way::NotTaken,      "GetVersionExA"},
    {"system directory",                               Way::KnownFolder,   "GetSystemDirectoryA"},
    {"known folder of the local application data",     Way::KnownFolder,   "SHGetKnownFolderPath"},
    {"hidden attribute of gUserDir",                   Way::LockedFolders, "MsgBox", u"visible. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local"},
    {"read-only attribute of gUserDir",                Way::LockedFolders, "MsgBox", u"attribute. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local"},
    {"hidden attribute of gUserDir\\Tavorns",          Way::LockedFolders, "MsgBox", u"visible. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local\\Tavorns"},
    {"read-only attribute of gUserDir\\Tavorns",       Way::LockedFolders, "MsgBox", u"attribute. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local\\Tavorns"},
    {"hidden attribute of gUserData",                  Way::LockedFolders, "MsgBox", u"visible. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5"},
    {"read-only attribute of gUserData",               Way::LockedFolders, "MsgBox", u"attribute. You should do it manually.\r\n\r\nC:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5"},
    // The second time: the folder of the product's own lies on the drive of the system directory.
    {"user name failed",                               Way::NobodyKnown,   "GetSystemDirectoryA", u"", 2},
    {"account looked up",                              Way::ByName,        "LookupAccountNameA"},
    {"gUserDirAlt from name and domain",               Way::ByName,        "Dir", u"C:\\Users\\bob.BOBPC\\"},
    {"gUserDir from the Start Menu path",              Way::ByName,        "Dir", userRoot},
    {"gUserDir from the Start Menu path",              Way::ProfileGone,   "SHGetSpecialFolderLocation"},
    {"fallback folder",                                Way::ByName,        "Dir", userRoot, 2},
    {"fallback folder",                                Way::ProfileGone,   "GetSystemDirectoryA", u"", 2},
    {"Language value",                                 Way::KnownFolder,   "Dir", settingsFolder, 3, u"Error : 5-"},
    {"Language value",                                 Way::NotTaken,      "RegOpenKeyA", u"Software\\Tavorns\\ZEV5", 1, u"Error : 5-"},
    {"agreement text",                                 Way::KnownFolder,   "", u"", 1, u"", "Text1.Text"},
    {"agreement text",                                 Way::NotTaken,      "", u"", 1, u"", "Text1.Text"},
    {"install directory",                              Way::KnownFolder,   "Dir", settingsFolder, 4},
    {"install directory",                              Way::NotTaken,      "RegOpenKeyA", u"Software\\Tavorns", 2, u"Error : 7-"},
    {"first language",                                 Way::ProductFolder, "GetSystemDefaultUILanguage"},
    {"first language",                                 Way::NotTaken,      "GetSystemDefaultUILanguage"},
    {"selection in Combo1",                            Way::KnownFolder,   "", u"", 1, u"", "Combo1.ListIndex"},
    {"selection in Combo1",                            Way::NotTaken,      "", u"", 1, u"", "Combo1.ListIndex"},
    {"first page",                                     Way::KnownFolder,   "", u"", 1, u"", "Image1.Picture"},
    {"first page",                                     Way::NotTaken,      "", u"", 1, u"", "Image1.Picture"},
};
// clang-format on

/// What has no failure that would reach the trap: the name is only joined, the table of phrases
/// only filled, and whatever fails in the scan counts for nothing.
const std::set<std::string> untold = {"gUserDir from the user name", "LoadPhrases",
                                      "running-product scan", "window title", "next window"};

std::vector<Fault> faultsOf(const Strike& strike) {
  constexpr std::int32_t permissionDenied = 70;
  const auto raised = [](const char* call, TextView match, std::uint32_t nth) {
    return Fault{.call = call,
                 .nth = nth,
                 .match = Text(match),
                 .effect = Fault::Effect::Raise,
                 .code = permissionDenied};
  };
  std::vector<Fault> faults;
  if (*strike.call != '\0') faults.push_back(raised(strike.call, strike.match, strike.nth));
  if (!strike.box.empty()) faults.push_back(raised("MsgBox", strike.box, 1));
  return faults;
}

/// Sits at the machine and strikes the first write of a property.
class StrikingPerson final : public simulated::Person {
 public:
  explicit StrikingPerson(std::string property) : property_(std::move(property)) {}

  bool next() override { return false; }
  BoxAnswer answer(const simulated::Box& box) override {
    boxes.push_back(toUtf8(box.text));
    return simulated::defaultAnswer(box.style);
  }
  Text input(TextView, TextView, TextView initial) override { return Text(initial); }
  void propertyWritten(PropertyBase& property) override {
    const std::string name = toUtf8(property.owner().name()) + "." + std::string(property.name());
    if (name != property_) return;
    property_.clear();
    throw RuntimeError(ErrorNumber::PermissionDenied);
  }

  Lines boxes;

 private:
  std::string property_;
};

/// The stage that the trap tells when a start is struck on a machine; 0 if it tells none.
std::int32_t toldStage(const Strike& strike, Way way) {
  StrikingPerson person(strike.property);
  simulated::NoTranscript transcript;
  simulated::SimulatedMachine machine(person, transcript);
  prepare(machine, way);
  machine.setFaults(faultsOf(strike));
  machine.startProgram();
  Setup setup(machine.platform());
  machine.platform().application.run([&] { setup.start(); });
  const std::string front = "Error occured during loading the installer. Error No.";
  const std::string behind = "-70: Permission denied";
  for (const std::string& box : person.boxes) {
    if (box.starts_with(front) && box.ends_with(behind)) return std::stoi(box.substr(front.size()));
  }
  return 0;
}

TEST(LoadStages, AreToldByTheTrapAsTheirTableSays) {
  for (const Row& row : stages()) {
    const std::string& what = row.word("what");
    std::set<bool> classes;  // of machines, by whether they take the chain
    for (const Strike& strike : strikes) {
      if (strike.what != what) continue;
      EXPECT_EQ(toldStage(strike, strike.way), row.number("stage")) << row.where();
      classes.insert(strike.way != Way::NotTaken);
    }
    const std::set<bool> all = {false, true};
    const std::set<bool> expected = row.yes("chain") ? std::set<bool>{true} : all;
    EXPECT_EQ(classes, untold.count(what) == 1 ? std::set<bool>{} : expected) << row.where();
  }
}

/// What belongs to the search for the user's folders does not happen on other classes.
TEST(LoadStages, OfTheChainAreNotReachedOnOtherClasses) {
  for (const Strike& strike : strikes) {
    if (!stages().row("what", strike.what).yes("chain")) continue;
    EXPECT_EQ(toldStage(strike, Way::NotTaken), 0) << strike.what;
  }
}

TEST(LoadStages, HasAStrikeForNothingElse) {
  for (const Strike& strike : strikes) EXPECT_NO_THROW(stageOf(strike.what)) << strike.what;
}

/// Nothing can fail while the phrases are loaded: its stage is the one between its neighbours'.
TEST(LoadStages, OfThePhrasesLiesBetweenItsNeighbours) {
  EXPECT_EQ(stageOf("LoadPhrases"), stageOf("Language value") + 1);
  EXPECT_EQ(stageOf("LoadPhrases"), stageOf("agreement text") - 1);
}

// ---- stages as they are set, between the calls

/// The parts of the start that are told what to call when a stage begins.
class StageRecorder : public OnAMachine {
 public:
  StageRecorder() : OnAMachine(true) {}

  std::function<void(std::int32_t)> record() {
    return [this](std::int32_t stage) {
      transcript.add(
          {{"event", "call"}, {"name", "stage"}, {"arguments", simulated::Event::list({stage})}});
    };
  }
  /// The stages as "stage 5", and the calls of these names.
  Lines trace(const std::set<std::string>& names) const {
    Lines lines;
    for (const simulated::Event& event : transcript.of("call")) {
      const std::string name = event.at("name").text();
      if (name == "stage") {
        lines.push_back(name + " " + event.at("arguments").at(0).dump());
      } else if (names.count(name) == 1) {
        lines.push_back(name);
      }
    }
    return lines;
  }
};

std::string line(std::int32_t stage) { return "stage " + std::to_string(stage); }

Lines stagesOfTheChain(Way way, const std::set<std::string>& calls) {
  StageRecorder recorder;
  prepare(recorder.machine, way);
  recorder.globals().gOSClass = profileClass;
  UserFolderChain(*recorder.program, *recorder.phrases, recorder.record()).run();
  return recorder.trace(calls);
}

/// The lines of rows of the table, by their names.
Lines linesOf(const Lines& whats) {
  Lines lines;
  for (const std::string& what : whats) lines.push_back(line(stageOf(what)));
  return lines;
}

TEST(LoadStages, OfTheChainAreThoseOfTheWayThatItTakes) {
  Lines known = {"system directory", "known folder of the local application data"};
  const Lines start = known;
  for (const char* folder : {"gUserDir", "gUserDir\\Tavorns", "gUserData"}) {
    known.push_back(std::string("hidden attribute of ") + folder);
    known.push_back(std::string("read-only attribute of ") + folder);
  }
  Lines nobody = start;
  nobody.emplace_back("user name failed");
  Lines byName = start;
  for (const char* what :
       {"gUserDir from the user name", "account looked up", "gUserDirAlt from name and domain",
        "gUserDir from the Start Menu path", "fallback folder"}) {
    byName.emplace_back(what);
  }
  EXPECT_EQ(stagesOfTheChain(Way::KnownFolder, {}), linesOf(known));
  EXPECT_EQ(stagesOfTheChain(Way::NobodyKnown, {}), linesOf(nobody));
  EXPECT_EQ(stagesOfTheChain(Way::ByName, {}), linesOf(byName));

  std::set<std::string> walked(known.begin(), known.end());
  walked.insert(nobody.begin(), nobody.end());
  walked.insert(byName.begin(), byName.end());
  for (const Row& row : stages()) {
    EXPECT_EQ(row.yes("chain"), walked.count(row.word("what")) == 1) << row.where();
  }
}

TEST(LoadStages, OfTheNameLiesBetweenItsTwoQuestions) {
  const Lines lines = stagesOfTheChain(Way::ByName, {"GetUserNameA", "LookupAccountNameA"});
  const auto asked = std::find(lines.begin(), lines.end(), "GetUserNameA");
  ASSERT_GE(lines.end() - asked, 4);
  EXPECT_EQ(Lines(asked, asked + 4),
            (Lines{"GetUserNameA", line(stageOf("gUserDir from the user name")),
                   line(stageOf("account looked up")), "LookupAccountNameA"}));
}

/// The two rows of a window's title, in their order.
std::vector<std::int32_t> titleStages() {
  std::vector<std::int32_t> found;
  for (const Row& row : stages()) {
    if (row.is("what", "window title")) found.push_back(row.number("stage"));
  }
  return found;
}

TEST(LoadStages, OfTheScanGoWithEachWindow) {
  StageRecorder recorder;
  recorder.machine.settings().windows = {u"Notes"};
  RunningProduct(*recorder.program, *recorder.phrases, recorder.record()).waitUntilClosed();
  Lines lines = recorder.trace({"GetWindow", "GetWindowTextLengthA", "GetWindowTextA", "DoEvents"});
  const std::vector<std::int32_t> title = titleStages();
  ASSERT_EQ(title.size(), 2u);
  const Lines window = {
      line(title[0]), "GetWindowTextLengthA",       line(title[1]), "GetWindowTextA", "DoEvents",
      "DoEvents",     line(stageOf("next window")), "DoEvents",     "GetWindow"};
  Lines expected = {line(stageOf("running-product scan")), "GetWindow"};
  while (expected.size() < lines.size()) {
    expected.insert(expected.end(), window.begin(), window.end());
  }
  EXPECT_EQ(lines, expected);
  EXPECT_GE(lines.size(), 2 + window.size());
}

}  // namespace
}  // namespace zev
