// A run that is killed at one of its changes of the machine, and then done again: it comes to the
// same as a run that nobody has killed, files, settings, registry and shortcuts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/simulated_stage.h"
#include "scenarios/small_package.h"
#include "scenarios/snapshot.h"
#include "scenarios/told_boxes.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using namespace simulated;
using scenario::Json;

// ---- the death

/// Counts the changes of a machine and kills the program in front of one of them. From then on,
/// until the next start, nothing that the dead program's remains do reaches the machine.
class Killer {
 public:
  /// None: nobody is killed.
  explicit Killer(std::optional<std::size_t> change) : change_(change) {}

  /// True if the change may be made.
  bool allows() {
    if (dead_) return false;
    if (changes_++ != change_) return true;
    change_.reset();
    dead_ = true;
    throw scenario::PlayLeft{};
  }
  void revive() { dead_ = false; }
  std::size_t changes() const { return changes_; }
  bool struck() const { return !change_; }
  /// The change that makes the key of the file type, still without its value.
  void beginsType() { typeBegins_ = changes_; }
  std::optional<std::size_t> typeBegins() const { return typeBegins_; }
  /// The changes that put a file in another one's place.
  void notes() { replacements_.push_back(changes_ - 1); }
  const std::vector<std::size_t>& replacements() const { return replacements_; }

 private:
  std::optional<std::size_t> change_;
  std::size_t changes_ = 0;
  std::vector<std::size_t> replacements_;
  std::optional<std::size_t> typeBegins_;
  bool dead_ = false;
};

class MortalBody final : public FileBody {
 public:
  MortalBody(std::shared_ptr<FileBody> body, Killer& killer)
      : body_(std::move(body)), killer_(killer) {}

  std::uint64_t size() const override { return body_->size(); }
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    return body_->read(offset, into);
  }
  SystemError write(std::uint64_t offset, std::span<const std::uint8_t> from) override {
    return killer_.allows() ? body_->write(offset, from) : SystemError{system_error::accessDenied};
  }
  SystemError resize(std::uint64_t size) override {
    return killer_.allows() ? body_->resize(size) : SystemError{system_error::accessDenied};
  }
  SystemError fill(const std::shared_ptr<const HostPiece>& piece) override {
    return killer_.allows() ? body_->fill(piece) : SystemError{system_error::accessDenied};
  }
  SystemError close() override { return body_->close(); }

 private:
  std::shared_ptr<FileBody> body_;
  Killer& killer_;
};

/// A volume of which each change may be the one that is not made any more.
class MortalVolume final : public Volume {
 public:
  MortalVolume(std::unique_ptr<Volume> volume, Killer& killer)
      : volume_(std::move(volume)), killer_(killer) {}

  std::optional<DirectoryEntry> find(const Path& path) const override {
    return volume_->find(path);
  }
  std::vector<DirectoryEntry> list(const Path& directory) const override {
    return volume_->list(directory);
  }
  std::shared_ptr<FileBody> open(const Path& file) const override {
    auto body = volume_->open(file);
    return body ? std::make_shared<MortalBody>(std::move(body), killer_) : nullptr;
  }
  SystemError createFile(const Path& path, std::uint32_t attributes) override {
    return killer_.allows() ? volume_->createFile(path, attributes) : refused;
  }
  SystemError createDirectory(const Path& path) override {
    return killer_.allows() ? volume_->createDirectory(path) : refused;
  }
  SystemError replace(const Path& file, const Path& by) override {
    if (!killer_.allows()) return refused;
    killer_.notes();
    return volume_->replace(file, by);
  }
  bool remove(const Path& path) override { return killer_.allows() && volume_->remove(path); }
  bool setAttributes(const Path& path, std::uint32_t attributes) override {
    return killer_.allows() && volume_->setAttributes(path, attributes);
  }

 private:
  static constexpr SystemError refused = system_error::accessDenied;

  std::unique_ptr<Volume> volume_;
  Killer& killer_;
};

/// Learns of the registry's changes: of a key when it has been made, of a value in front of that.
class MortalTranscript final : public Transcript {
 public:
  explicit MortalTranscript(Killer& killer) : killer_(killer) {}

  bool wants(std::string_view kind) const override {
    return kind == "registry" || kind == "start" || kind == "box";
  }
  void add(Event event) override {
    const bool start = event["event"] == "start";
    const bool registry = event["event"] == "registry";
    const bool type = registry && event["op"] == "create" && event["key"] == ".zrd";
    events_.push_back(std::move(event));
    if (start) killer_.revive();
    if (type) killer_.beginsType();
    if (registry) killer_.allows();
  }
  std::vector<ToldBox> boxes() const {
    std::vector<Event> shown;
    std::ranges::copy_if(events_, std::back_inserter(shown),
                         [](const Event& each) { return each["event"] == "box"; });
    return shownBoxes(shown);
  }

 private:
  Killer& killer_;
  std::vector<Event> events_;
};

// ---- the run

/// A person who installs, from the program's start to Finish, as often as it is started.
class Installer final : public scenario::Audience {
 public:
  /// Borrows the stage.
  explicit Installer(const simulator::SimulatedStage& stage) : stage_(stage) {}

  void starts() override { done_ = 0; }
  std::optional<scenario::Step> goOn() override {
    static const char* const clicks[] = {"Command2", "Option1", "Command2", "Command2", "Command2"};
    if (!stage_.ended().isNull() || done_ == std::size(clicks)) return std::nullopt;
    const Json step = {{"click", clicks[done_++]}};
    return scenario::readStep(scenario::JsonReader(step, {}, "$"));
  }

 private:
  const simulator::SimulatedStage& stage_;
  std::size_t done_ = 0;
};

const std::string windows7 = R"({"platform": 2, "major": 6, "minor": 1})";
const std::string windowsXp = R"({"platform": 2, "major": 5, "minor": 1})";

/// A folder of the host that is gone behind the test.
class Folder {
 public:
  Folder() : path_(std::filesystem::temp_directory_path() / uniqueName()) {
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  static std::string uniqueName() {
    static int made = 0;
    return "zev-killed-" + std::to_string(::getpid()) + "-" + std::to_string(++made);
  }
  std::filesystem::path path_;
};

/// What a machine is like to begin with.
struct Beginning {
  std::string version = windows7;
  std::string files = {};  ///< of the machine, as a scenario names them
  bool onHost = false;     ///< drive C: lies over a folder of the host
  bool sample = false;     ///< the sample product is installed, not the small package
};

/// An install that is killed in front of a change, and one behind it.
class KilledRun {
 public:
  KilledRun(const Beginning& beginning, std::optional<std::size_t> change)
      : killer_(change),
        transcript_(killer_),
        scenario_(scenario::parseScenario(machineOf(beginning))),
        stage_(scenario_, simulator::makeSetupProgram, transcript_) {
    if (beginning.sample) {
      stage_.machine().disks().put(stage_.machine().settings().installer,
                                   {.content = std::filesystem::path(ZEV_PACKAGE)});
    } else {
      laySmallPackage(stage_.machine());
    }
    Drive& drive = *stage_.machine().disks().at(u'C');
    drive.volume = std::make_unique<MortalVolume>(std::move(drive.volume), killer_);
    stage_.perform({&person_});
    if (!change) return;
    EXPECT_TRUE(killer_.struck()) << "nobody was killed";
    EXPECT_TRUE(stage_.ended().isNull());
    stage_.perform({&person_});
  }

  bool finished() const { return stage_.ended() == "unload"; }
  const Killer& killer() const { return killer_; }
  std::vector<ToldBox> boxes() const { return transcript_.boxes(); }
  Snapshot snapshot() { return snapshotOf(stage_.machine()); }

 private:
  std::string machineOf(const Beginning& beginning) const {
    const std::string drives =
        R"(, "drives": {"C": {"host": ")" + folder_.path().string() + R"("}})";
    return R"({"machine": {"version": )" + beginning.version + R"(, "files": {)" + beginning.files +
           "}" + (beginning.onHost ? drives : "") + R"(}, "script": []})";
  }

  Folder folder_;
  Killer killer_;
  MortalTranscript transcript_;
  scenario::Scenario scenario_;
  simulator::SimulatedStage stage_;
  Installer person_{stage_};
};

class Killed : public testing::Test {
 protected:
  void begin(const Beginning& beginning) {
    beginning_ = beginning;
    KilledRun clean(beginning, std::nullopt);
    ASSERT_TRUE(clean.finished());
    ASSERT_EQ(clean.boxes(), std::vector<ToldBox>());
    changes_ = clean.killer().changes();
    replacements_ = clean.killer().replacements();
    typeBegins_ = clean.killer().typeBegins();
    expected_ = clean.snapshot();
  }

  /// A file type without a value is somebody else's, and so the next run asks.
  std::vector<ToldBox> expectedBoxes(std::size_t change) const {
    if (change != typeBegins_ && change - 1 != typeBegins_) return {};
    return {toldBox("association.question")};
  }

  void expectSameBehindAKill(std::size_t change) {
    SCOPED_TRACE("killed in front of change " + std::to_string(change) + " of " +
                 std::to_string(changes_));
    KilledRun run(beginning_, change);
    EXPECT_TRUE(run.finished());
    EXPECT_EQ(run.boxes(), expectedBoxes(change));
    EXPECT_EQ(differences(run.snapshot(), expected_), std::vector<std::string>());
  }

  /// In front of one of so many changes.
  void expectSameBehindKills(const Beginning& beginning, std::size_t every, std::size_t first = 0) {
    begin(beginning);
    EXPECT_GT(changes_, 400u);
    for (std::size_t change = first; change < changes_; change += every) {
      expectSameBehindAKill(change);
    }
  }

  /// Around the key of the file type.
  void expectSameAmidTheType(const Beginning& beginning) {
    begin(beginning);
    ASSERT_TRUE(typeBegins_);
    for (std::size_t change = *typeBegins_ - 1; change <= *typeBegins_ + 2; ++change) {
      expectSameBehindAKill(change);
    }
  }

  /// Around each file that is written whole: it is made, written and put in its place.
  void expectSameAmidValues(const Beginning& beginning, std::size_t files) {
    begin(beginning);
    EXPECT_EQ(replacements_.size(), files);
    for (const std::size_t place : replacements_) {
      for (std::size_t change = place - 1; change <= place + 1; ++change) {
        expectSameBehindAKill(change);
      }
    }
  }

 private:
  Beginning beginning_;
  std::size_t changes_ = 0;
  std::vector<std::size_t> replacements_;
  std::optional<std::size_t> typeBegins_;
  Snapshot expected_;
};

const std::string settings = R"(C:\\Users\\bob\\AppData\\Local\\Tavorns\\ZEV5\\)";
/// What an older version has left: the upgrade has values of its own.
const std::string olderSettings = "\"" + settings + R"(Version": "15\r\n", ")" + settings +
                                  R"(dwKFE": "7\r\n", ")" + settings +
                                  R"(Dizin": "C:\\Program Files\\ZEV Screen Recorder 6\r\n")";

/// Another user of the machine, who has an older version too.
const std::string otherUser = R"(C:\\Users\\anna\\AppData\\Local\\Tavorns\\ZEV5\\)";
const std::string otherSettings = "\"" + otherUser + R"(Version": "16\r\n")";

TEST_F(Killed, AmidValuesAnInstallDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameAmidValues({}, 9);  // the probe, UserF.dat, seven values
}

TEST_F(Killed, AmidValuesAnUpgradeDoneAgainIsThatOfAnUntouchedMachine) {
  constexpr std::size_t own = 10;   // the same but for dwKFE, with two values of the upgrade
  constexpr std::size_t other = 9;  // a probe and eight values, one of them of the upgrade
  expectSameAmidValues({.files = olderSettings + ", " + otherSettings}, own + other);
}

TEST_F(Killed, AmidValuesAnInstallOverAFolderOfTheHostDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameAmidValues({.onHost = true}, 9);
}

TEST_F(Killed, AmidTheFileTypeAnInstallDoneAgainAsksForItAndIsThatOfAnUntouchedMachine) {
  expectSameAmidTheType({});
}

const Beginning untouched = {};
const Beginning upgrade = {.files = olderSettings};
const Beginning beforeVista = {.version = windowsXp};
const Beginning overAFolder = {.onHost = true};
const Beginning sample = {.onHost = true, .sample = true};

TEST_F(Killed, HereAndThereAnInstallDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameBehindKills(untouched, 29);
}

TEST_F(Killed, HereAndThereAnUpgradeDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameBehindKills(upgrade, 31);
}

TEST_F(Killed, HereAndThereAnInstallBeforeVistaDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameBehindKills(beforeVista, 37);
}

TEST_F(Killed, HereAndThereAnInstallOverAFolderOfTheHostDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameBehindKills(overAFolder, 67);
}

TEST_F(Killed, HereAndThereAnInstallOfTheSampleDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameBehindKills(sample, 997);
}

/// In front of every change; where only the drive is another one, or the files are longer and
/// written in many pieces, of some.
class KilledInAll : public Killed, public testing::WithParamInterface<std::size_t> {
 protected:
  static constexpr std::size_t parts = 8;

  void expectSameEverywhere(const Beginning& beginning, std::size_t every = 1) {
    expectSameBehindKills(beginning, parts * every, GetParam() * every);
  }
};

TEST_P(KilledInAll, AnInstallDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameEverywhere(untouched);
}

TEST_P(KilledInAll, AnUpgradeDoneAgainIsThatOfAnUntouchedMachine) { expectSameEverywhere(upgrade); }

TEST_P(KilledInAll, AnInstallBeforeVistaDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameEverywhere(beforeVista);
}

TEST_P(KilledInAll, AnInstallOverAFolderOfTheHostDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameEverywhere(overAFolder, 5);
}

TEST_P(KilledInAll, AnInstallOfTheSampleDoneAgainIsThatOfAnUntouchedMachine) {
  expectSameEverywhere(sample, 31);
}

INSTANTIATE_TEST_SUITE_P(Part, KilledInAll, testing::Range(std::size_t{0}, std::size_t{8}));

}  // namespace
}  // namespace zev
