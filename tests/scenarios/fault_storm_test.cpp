// Whole runs in which more than one call fails: two of them, or all of an operation from one on. No
// table could tell what each must lead to; but a run comes to an end, what it lays is whole and in
// its place, and what is lost is not lost without a word.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "package/manifest.h"
#include "scenarios/fault_run.h"
#include "scenarios/small_package.h"
#include "scenarios/snapshot.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using testing::AnyOf;

constexpr std::size_t pairs = 2000;
constexpr std::uint32_t seed = 20261122;
// ---- what may be left

const std::string file = "32 ";

/// Runs without failures, which between them lay everything that a run can lay.
const std::vector<Snapshot>& cleanRuns() {
  static const std::vector<Snapshot> runs = {
      FaultRun(profileVersion, "").left(), FaultRun(registryVersion, "").left(),
      FaultRun(profileVersion, "", false, {}, "C:\\\\Program Files").left()};
  return runs;
}

std::string nameIn(const std::string& path) { return path.substr(path.rfind('\\') + 1); }

/// The content of each member, by the name that it is laid under.
const std::map<std::string, std::string>& members() {
  static const std::map<std::string, std::string> all = [] {
    std::map<std::string, std::string> found;
    for (const ManifestRow& row : manifest()) {
      if (row.row != 0) found[toUtf8(row.installedName)] = file + smallMember(row.row);
    }
    return found;
  }();
  return all;
}

/// The settings that a run writes, each with the texts that it can have. Two are an upgrade's,
/// which a machine that cannot be asked for a version is taken for.
bool isSetting(const std::string& name, const std::string& value) {
  static const std::map<std::string, std::set<std::string>> texts = {
      {"Version", {"21"}},
      {"IncCur", {"1"}},
      {"dwKFE", {"15"}},
      {"RecSnd", {"1"}},
      {"CapSpeed", {"1"}},
      {"Language", {"0"}},
      {"InterfaceStyle", {"1"}},
      {"AutoCodec", {"0"}},
      {"Dizin", {installFolder, "C:\\Program Files"}}};
  const auto known = texts.find(name);
  if (known == texts.end()) return false;
  return std::ranges::any_of(
      known->second, [&](const std::string& text) { return value == file + text + "\r\n"; });
}

/// The project carries the path of its video, also where there is nothing else in it.
bool isProject(const std::string& value) {
  constexpr std::size_t videoPlace = 25;
  constexpr std::size_t videoEnd = videoPlace + 512;
  const std::string whole = members().at("SampleProject.zrd");
  const std::string bytes = value.substr(file.size());
  if (value == whole || bytes.empty()) return true;
  if (bytes.size() < videoEnd || !bytes.substr(videoPlace).starts_with("C:\\Program Files")) {
    return false;
  }
  const std::string front = bytes.substr(0, videoPlace);
  return front == std::string(videoPlace, '\0') ||
         (front == whole.substr(file.size(), videoPlace) &&
          bytes.substr(videoEnd) == whole.substr(file.size() + videoEnd));
}

/// Where members are laid. A system directory that is not known is the root of the drive; projects
/// have a place without a documents folder, too.
bool isPlaceOfMembers(const std::string& folder) {
  static const std::set<std::string> places = {installFolder,
                                               "C:\\Program Files",
                                               "C:\\Windows\\system32",
                                               "C:",
                                               "C:\\Users\\bob\\Documents\\ZEV Projects",
                                               installFolder + "\\Projects",
                                               "C:\\Program Files\\Projects"};
  return places.contains(folder);
}

/// A member is whole or empty.
bool isMember(const std::string& path, const std::string& value) {
  const std::string name = nameIn(path);
  if (!isPlaceOfMembers(path.substr(0, path.rfind('\\')))) return false;
  if (name == "SampleProject.zrd") return isProject(value);
  const auto member = members().find(name);
  return member != members().end() && (value == member->second || value == file);
}

/// UserF.dat names the user's folder, or none; the probe is whole. What is being done when a run is
/// left stays in the temporary folder.
bool isOwn(const std::string& path, const std::string& value) {
  const std::string name = nameIn(path);
  if (path.find("ZEVTMP") != std::string::npos) return true;
  if (name == "UserF.dat") {
    return value == file + userFolder + "\r\n" || value == file + "\r\n" ||
           value == file + "C:\\Program Files\\ZEVConf\r\n";
  }
  return name == "deneme_sil" && value == file + "deneme_sil\r\n";
}

/// A folder that a clean run leaves too, maybe elsewhere, or one of a run that has lost its way.
bool isFolder(const std::string& path, const std::string& value) {
  static const std::set<std::string> names = [] {
    std::set<std::string> found = {"Projects", "ZEVConf", "ZEVTMP"};
    for (const Snapshot& clean : cleanRuns()) {
      for (const auto& [name, each] : clean) {
        if (each == "16 ") found.insert(nameIn(name));
      }
    }
    return found;
  }();
  return value == "16 " && names.contains(nameIn(path));
}
bool isInRegistry(const std::string& name) { return name.starts_with("HKEY"); }
bool isValue(const std::string& name) { return name.find('|') != std::string::npos; }

/// A link stands for a program or a file of the folder that was installed into.
bool isLink(const std::string& name, const std::string& value) {
  return name.ends_with(".lnk") && value.find(R"("TargetPath":"C:\\Program Files)") != value.npos;
}

bool isKnown(const std::string& name, const std::string& value) {
  if (isInRegistry(name) && !isValue(name)) return true;
  for (const Snapshot& clean : cleanRuns()) {
    const auto there = clean.find(name);
    if (there != clean.end() && there->second == value) return true;
  }
  return isLink(name, value);
}

void expectOnlyWholeThings(const Snapshot& left) {
  for (const auto& [name, value] : left) {
    if (isFolder(name, value) || isKnown(name, value) || isMember(name, value) ||
        isOwn(name, value)) {
      continue;
    }
    EXPECT_TRUE(isSetting(nameIn(name), value)) << name << ": " << value;
  }
}

/// How many of the members that every machine gets are not laid whole.
std::size_t lostMembers(const Snapshot& left) {
  std::set<std::string> whole;
  for (const auto& [name, value] : left) {
    if (isMember(name, value) && value != file) whole.insert(nameIn(name));
  }
  std::size_t lost = 0;
  const Snapshot& other = cleanRuns().at(1);
  for (const auto& [name, value] : cleanRuns().front()) {
    const bool everywhere = other.contains(name) && members().contains(nameIn(name));
    if (everywhere && !whole.contains(nameIn(name))) ++lost;
  }
  return lost;
}

void expectGoodEnd(FaultRun& run) {
  EXPECT_THAT(run.ended(), AnyOf("unload", "exit"));
  const Snapshot left = run.left();
  expectOnlyWholeThings(left);
  if (run.person.finished && run.log.boxes().empty()) {
    EXPECT_EQ(lostMembers(left), 0u) << "lost without a word";
  }
}

// ---- the storms

/// One of so many pairs.
void failPairs(std::size_t every, std::size_t begin = 0) {
  std::mt19937 random(seed);
  for (std::size_t pair = 0; pair < pairs; ++pair) {
    const std::string& version = pair % 4 == 0 ? registryVersion : profileVersion;
    const std::vector<Call>& calls = callsOf(version);
    const std::string first = faultOf(calls[random() % calls.size()]);
    const std::string second = faultOf(calls[random() % calls.size()]);
    if (pair % every != begin) continue;
    SCOPED_TRACE("pair " + std::to_string(pair) + ": " + first + ", " + second);
    FaultRun run(version, first + ", " + second);
    expectGoodEnd(run);
  }
}

/// The first call of each operation, one in the middle, and the last one.
std::vector<Call> beginningsOfStretches(const std::string& version) {
  std::map<std::string, std::vector<Call>> byOperation;
  for (const Call& call : callsOf(version)) byOperation[call.operation].push_back(call);
  std::vector<Call> chosen;
  for (const auto& [name, calls] : byOperation) {
    std::set<std::size_t> places = {0, calls.size() / 4, calls.size() / 2, calls.size() - 1};
    for (const std::size_t place : places) chosen.push_back(calls[place]);
  }
  return chosen;
}

/// This call of its operation and all behind it, those too that only a failing run makes.
std::string faultsFrom(Call call, const std::vector<Call>& calls) {
  constexpr std::size_t more = 100;
  const auto same = [&](const Call& each) { return each.operation == call.operation; };
  const auto count = static_cast<std::size_t>(std::ranges::count_if(calls, same));
  std::string faults = faultOf(call);
  while (call.nth < count + more) {
    ++call.nth;
    faults += ", " + faultOf(call);
  }
  return faults;
}

/// One of so many of these calls.
void failStretches(std::size_t every, std::size_t begin = 0) {
  for (const std::string& version : {profileVersion, registryVersion}) {
    const std::vector<Call> chosen = beginningsOfStretches(version);
    EXPECT_GT(chosen.size(), 100u);
    for (std::size_t place = begin; place < chosen.size(); place += every) {
      SCOPED_TRACE("from " + faultOf(chosen[place]) + " on");
      FaultRun run(version, faultsFrom(chosen[place], callsOf(version)));
      expectGoodEnd(run);
    }
  }
}

TEST(FaultStorm, TwoCallsThatFailLeaveOnlyWholeThings) { failPairs(25); }

TEST(FaultStorm, AllCallsThatFailFromOneOnLeaveOnlyWholeThings) { failStretches(7); }

class FaultStormInAll : public testing::TestWithParam<std::size_t> {
 protected:
  static constexpr std::size_t parts = 8;
};

TEST_P(FaultStormInAll, TwoCallsThatFailLeaveOnlyWholeThings) { failPairs(parts, GetParam()); }

TEST_P(FaultStormInAll, AllCallsThatFailFromOneOnLeaveOnlyWholeThings) {
  failStretches(parts, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Part, FaultStormInAll, testing::Range(std::size_t{0}, std::size_t{8}));

}  // namespace
}  // namespace zev
