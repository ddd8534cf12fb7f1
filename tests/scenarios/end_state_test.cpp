// What a machine is like behind an install, whole: every file, value and shortcut.

#include <gtest/gtest.h>

#include <map>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/simulated_stage.h"
#include "scenarios/expected_machine.h"
#include "scenarios/told_boxes.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using SortedJson = nlohmann::json;

const std::string usualDirectory = "C:\\Program Files\\ZEV Screen Recorder 6";
const std::string finish = R"({"click": "Command2"})";
const std::string installing = std::string(stepsToInstall) + "," + finish;

/// A scenario played to its end, with the state of its machine before and behind it.
class Story {
 public:
  Story(const std::string& machine, const std::string& script)
      : scenario_(read(machine, script)),
        log_(false),
        stage_(scenario_, simulator::makeSetupProgram, log_),
        before_(stateBefore(machine)) {
    stage_.perform();
  }

  const SortedJson& before() const { return before_; }
  SortedJson behind() { return comparable(stateNow()); }
  const scenario::Json& ended() const { return stage_.ended(); }
  std::vector<ToldBox> boxes() const { return shownBoxes(log_.of("box")); }

 private:
  static scenario::Scenario read(const std::string& machine, const std::string& script) {
    auto scenario =
        scenario::parseScenario(R"({"machine": )" + machine + R"(, "script": [)" + script + "]}");
    scenario.package.file = ZEV_PACKAGE;
    return scenario;
  }

  /// Machines that are set up alike begin alike: each is looked at once.
  const SortedJson& stateBefore(const std::string& machine) {
    static std::map<std::string, SortedJson> all;
    const auto known = all.find(machine);
    return known != all.end() ? known->second : all.emplace(machine, stateNow()).first->second;
  }

  SortedJson stateNow() { return SortedJson::parse(stage_.machine().state().dump()); }

  scenario::Scenario scenario_;
  simulated::TranscriptLog log_;
  simulator::SimulatedStage stage_;
  const SortedJson& before_;
};

void expectState(const SortedJson& found, const SortedJson& expected) {
  EXPECT_EQ(found, expected) << differences(found, expected);
}

/// Installs without a word from the program, and as it must be.
void expectQuietInstall(const std::string& machine, const std::string& script,
                        const InstallOrder& order) {
  Story story(machine, script);
  EXPECT_EQ(story.boxes(), std::vector<ToldBox>());
  EXPECT_EQ(story.ended(), "unload");
  expectState(story.behind(), installedOn(story.before(), order));
}

const std::string windows7 = "{}";
const std::string windowsXp = R"({"version": {"platform": 2, "major": 5, "minor": 1}})";
const std::string windows8 = R"({"version": {"platform": 2, "major": 6, "minor": 2}})";

TEST(EndState, OfAnInstallOnAnUntouchedMachine) { expectQuietInstall(windows7, installing, {}); }

TEST(EndState, OfAnInstallBeforeVista) {
  expectQuietInstall(windowsXp, installing, {.profileClass = false});
}

TEST(EndState, OfAnInstallInSpanish) {
  expectQuietInstall(windows7, R"({"select": ["Combo1", "Espanol"]},)" + installing,
                     {.listIndex = 3});
}

TEST(EndState, OfAnInstallIntoATypedDirectory) {
  const std::string script =
      R"({"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
         {"type": ["Text2", "C:\\Tools\\Deep\\Recorder"]}, {"click": "Command2"},)" +
      finish;
  expectQuietInstall(windows7, script, {.directory = "C:\\Tools\\Deep\\Recorder"});
}

// On this system alone the redistributable is left out unless it is asked for, and the shortcuts
// can be switched off.
TEST(EndState, OfAnInstallOnNt62) { expectQuietInstall(windows8, installing, {}); }

TEST(EndState, OfAnInstallOnNt62WithoutShortcuts) {
  const std::string script = R"({"click": "Command6"}, {"click": "Form2.Check2"},
      {"click": "Form2.Check3"}, {"click": "Form2.Command1"},)" +
                             installing;
  expectQuietInstall(windows8, script, {.group = false, .desktop = false});
}

TEST(EndState, OfASecondInstallOverTheFirst) {
  const std::string twice = installing + R"(, {"restart": true},)" + installing;
  expectQuietInstall(windows7, twice, {});
  expectQuietInstall(windowsXp, twice, {.profileClass = false});
}

/// An older generation of the same product and what its user chose, and strange files beside it.
const std::string olderFiles =
    R"("C:\\Program Files\\ZEV Screen Recorder 6\\Stop.wav": "an older sound, and a longer one")"
    R"(, "C:\\Program Files\\ZEV Screen Recorder 6\\Screen Recorder 6.exe": {"size": 20000000})"
    R"(, "C:\\Program Files\\ZEV Screen Recorder 6\\Mine.txt": "not of the product")"
    R"(, "C:\\Windows\\system32\\zeveffs.dll": {"size": 1})"
    R"(, "C:\\Users\\bob\\Documents\\ZEV Projects\\Own.zrd": "a project of the user")";

const std::string olderClasses =
    R"("HKEY_CLASSES_ROOT": {".zrd": {"": "ZEV.ReelDeskProject"}, "Other": {"": "kept"}})";

TEST(EndState, OfAnUpgrade) {
  const std::string own = "C:\\\\Users\\\\bob\\\\AppData\\\\Local\\\\Tavorns\\\\ZEV5\\\\";
  const std::string machine = R"({"files": {)" + olderFiles + R"(, ")" + own +
                              R"(Version": "15\r\n", ")" + own + R"(dwKFE": "7\r\n", ")" + own +
                              R"(RecSnd": "0\r\n", ")" + own + R"(Own": "1\r\n", ")" + own +
                              R"(Dizin": "C:\\Program Files\\ZEV Screen Recorder 6\r\n", ")" + own +
                              R"(Language": "0\r\n"}, "registry": {)" + olderClasses + "}}";
  expectQuietInstall(machine, installing, {});
}

TEST(EndState, OfAnUpgradeBeforeVista) {
  const std::string machine = R"({"version": {"platform": 2, "major": 5, "minor": 1}, "files": {)" +
                              olderFiles + R"(}, "registry": {)" + olderClasses +
                              R"(, "HKEY_LOCAL_MACHINE": {
           "Software\\Tavorns\\ZEV5": {"Version": 16, "AutoCodec": 1, "IncCur": 0, "Own": "kept",
             "dwKFE": 0, "Language": 0, "Dizin": "C:\\Program Files\\ZEV Screen Recorder 6"}}}})";
  expectQuietInstall(machine, installing, {.profileClass = false});
}

// One profile of an older version, one that has never had the product, one without a local folder,
// and a file among them.
TEST(EndState, OfAnInstallBesideOtherUsers) {
  const std::string machine = R"({"files": {
      "C:\\Users\\anna\\AppData\\Local\\Tavorns\\ZEV5\\Version": "16\r\n",
      "C:\\Users\\anna\\AppData\\Local\\Tavorns\\ZEV5\\dwKFE": "9\r\n",
      "C:\\Users\\anna\\AppData\\Local\\Tavorns\\ZEV5\\Dizin": "C:\\Elsewhere\r\n",
      "C:\\Users\\carl\\AppData\\Local": {"directory": true},
      "C:\\Users\\Public": {"directory": true},
      "C:\\Users\\desktop.ini": "a file"}})";
  expectQuietInstall(machine, installing, {});
}

/// Behind an install into the usual folder the user moves on to another one.
TEST(EndState, OfAMoveToAnotherFolder) {
  const std::string moved = "C:\\Tools\\ZEV Screen Recorder 6";
  Story story(windows7, installing + R"(, {"restart": true}, {"answer": ["yes"]},
      {"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
      {"type": ["Text2", "C:\\Tools\\ZEV Screen Recorder 6"]}, {"click": "Command2"},)" +
                            finish);
  EXPECT_EQ(story.boxes(), std::vector<ToldBox>{toldBox("destination.other_directory")});
  EXPECT_EQ(story.ended(), "unload");
  const SortedJson first = installedOn(story.before(), {});
  expectState(story.behind(), installedOn(first, {.directory = moved}));
}

/// Refused, the same move installs where the product is.
TEST(EndState, OfARefusedMove) {
  Story story(windows7, installing + R"(, {"restart": true}, {"answer": ["no"]},
      {"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
      {"type": ["Text2", "C:\\Tools\\ZEV Screen Recorder 6"]}, {"click": "Command2"},
      {"click": "Command2"},)" +
                            finish);
  EXPECT_EQ(story.boxes(), std::vector<ToldBox>{toldBox("destination.other_directory")});
  EXPECT_EQ(story.ended(), "unload");
  expectState(story.behind(), installedOn(story.before(), {}));
}

// ---- behind a cancel

constexpr std::size_t cancelShards = 4;

/// Cancels in a pass of the run, starts anew and installs.
void expectInstallBehindACancel(const std::string& machine, std::size_t pass,
                                const InstallOrder& order) {
  SCOPED_TRACE("pass " + std::to_string(pass));
  Story story(machine, R"({"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
      {"answer": ["yes"]}, {"at": {"yield": )" +
                           std::to_string(pass) +
                           R"(}, "do": [{"click": "Command3"}]}, {"click": "Command2"},
      {"restart": true},)" +
                           installing);
  EXPECT_EQ(story.boxes(), std::vector<ToldBox>{toldBox("unload.cancel")});
  EXPECT_EQ(story.ended(), "unload");
  expectState(story.behind(), installedOn(story.before(), order));
}

class EndStateBehindACancel : public testing::TestWithParam<std::size_t> {};

TEST_P(EndStateBehindACancel, AtAnyPassIsThatOfAnUntouchedMachine) {
  for (std::size_t pass = 1 + GetParam(); pass <= passesOfARun; pass += cancelShards) {
    expectInstallBehindACancel(windows7, pass, {});
  }
}

TEST(EndState, BehindACancelBeforeVistaIsThatOfAnUntouchedMachine) {
  for (const std::size_t pass : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{30},
                                 passesBeforeVista - 1, passesBeforeVista}) {
    expectInstallBehindACancel(windowsXp, pass, {.profileClass = false});
  }
}

INSTANTIATE_TEST_SUITE_P(Shard, EndStateBehindACancel,
                         testing::Range(std::size_t{0}, cancelShards));

}  // namespace
}  // namespace zev
