#include "scenarios/fault_run.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "platform/file_system.h"
#include "programs/zevsim/setup_program.h"
#include "scenarios/fault_ends.h"
#include "scenarios/small_package.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using scenario::Json;

/// The number that a fault gives to the calls of an operation. A number below 0 stands for none:
/// the operation has no error code of its own, and any number makes it fail in its own shape.
struct CodeRow {
  const char* operations;  ///< separated by bars
  int code;
};

// clang-format off
constexpr CodeRow codeRows[] = {
    {"FileLen|Shell", 53},
    {"Close|Get|LOF", 57},
    {"Put|PutText|Print", 61},
    {"FreeFile", 67},
    {"Kill|OpenBinary|OpenBinaryWrite|OpenOutput", 70},
    {"MkDir|RmDir|GetAttr", 75},
    {"CreateObject", 429},
    {"CreateShortcut|TargetPath|Arguments|WindowStyle|IconLocation|Description|WorkingDirectory|Save", 440},
    {"RegOpenKeyA|RegCreateKeyA|RegCloseKey|RegEnumKeyA|RegQueryValueExA|RegSetValueExA", 5},
    {"LZOpenFileA", cannotOpen},
    {"LZCopy", badFormat},
    {"GetDriveTypeA", noRoot},
    {"SHGetKnownFolderPath|SHGetSpecialFolderLocation|CLSIDFromString|ShellExecuteA", 2},
    {"Dir|SpecialFolders|ownFolder|ownName", none},
    {"GetTempPathA|GetWindowsDirectoryA|GetSystemDirectoryA|GetSystemDefaultUILanguage", none},
    {"GetVersionExA|GetUserNameA|GetWindow|GetWindowTextLengthA|GetWindowTextA", none},
    {"OpenProcess|WaitForSingleObject|SetForegroundWindow|BringWindowToTop", none},
    {"SHGetPathFromIDList|lstrlenW", none},
    {"CloseHandle|CoTaskMemFree|DoEvents|LZClose", none},
    {"WSAStartup|WSACleanup", 10091},
    {"VirtualAlloc|VirtualLock|VirtualFree|GetProcAddress", none},
};
// clang-format on

std::string machineOf(const std::string& version, const std::string& faults) {
  return R"("machine": {"version": )" + version + R"(, "faults": [)" + faults + "]}";
}

/// The steps to the run, by way of a directory that is typed if there is one.
std::string stepsInto(const std::string& directory) {
  if (directory.empty()) return stepsToInstall;
  return R"({"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
      {"type": ["Text2", ")" +
         directory + R"("]}, {"click": "Command2"})";
}

/// The number that a fault has for a call, also where any will do.
int injectedCode(const Call& call) {
  constexpr int anyNumber = 1;
  const int code = codeOf(call.operation);
  return code == none ? anyNumber : code;
}

}  // namespace

bool isAmong(const std::string& name, const std::string& list) {
  return list == "*" || ("|" + list + "|").find("|" + name + "|") != std::string::npos;
}

int codeOf(const std::string& operation) {
  for (const CodeRow& row : codeRows) {
    if (isAmong(operation, row.operations)) return row.code;
  }
  throw std::out_of_range("no error is known for " + operation);
}

const std::string profileVersion = R"({"platform": 2, "major": 6, "minor": 1})";
const std::string registryVersion = R"({"platform": 2, "major": 5, "minor": 1, "build": 2600})";

std::string faultOf(const Call& call) {
  return R"({"call": ")" + call.operation + R"(", "nth": )" + std::to_string(call.nth) +
         R"(, "error": )" + std::to_string(injectedCode(call)) + "}";
}

// ---- the person

std::optional<scenario::Step> Leaver::goOn() {
  if (!stage->ended().isNull() || left_) return std::nullopt;
  left_ = true;
  const auto caption = stage->play().verdictOn({"Form1.Command2.Caption", nullptr, "$"});
  finished = caption.value().found == "Finish";
  const Json step = {{"click", finished ? "Form1.Command2" : "Form1.Command3"}};
  return scenario::readStep(scenario::JsonReader(step, {}, "$"));
}

// ---- the onlooker

void Onlooker::pauseAt(std::set<std::size_t> places, std::function<void(std::size_t place)> what) {
  places_ = std::move(places);
  pause_ = std::move(what);
  reach(events.size());
}

void Onlooker::add(simulated::Event event) {
  events.push_back(std::move(event));
  reach(events.size());
}

void Onlooker::reach(std::size_t place) {
  if (places_.erase(place) != 0) pause_(place);
}

std::vector<simulated::Event> Onlooker::boxes() const {
  std::vector<simulated::Event> boxes;
  std::ranges::copy_if(events, std::back_inserter(boxes),
                       [](const simulated::Event& each) { return each["event"] == "box"; });
  return boxes;
}

// ---- the run

FaultRun::FaultRun(const std::string& version, const std::string& faults, bool withCalls,
                   const Pauses& pauses, const std::string& directory)
    : closes(faults.find(R"("Close")") == std::string::npos),
      scenario(scenario::parseScenario("{" + machineOf(version, faults) + R"(, "script": [)" +
                                       stepsInto(directory) + "]}")),
      log(withCalls),
      stage(scenario, simulator::makeSetupProgram, log) {
  person.stage = &stage;
  laySmallPackage(machine());
  log.pauseAt(pauses.places, [&](std::size_t place) { pauses.what(*this, place); });
  stage.perform({&person});
}

void FaultRun::fail(const Call& call) {
  const std::uint64_t made = machine().calls(call.operation);
  EXPECT_EQ(made + 1, call.nth) << "it is not the next call";
  machine().setFaults({{.call = call.operation, .nth = 1, .code = injectedCode(call)}});
  closes = call.operation != "Close";
  log.leaveCallsOut();
}

/// Files stay open if closing them fails; and the run's trap closes nothing, so that UserF.dat does
/// whenever its line cannot be printed.
Snapshot FaultRun::left() {
  Snapshot all = snapshotOf(machine(), longestFile);
  if (!closes) return withoutReplacements(std::move(all));
  all.erase(installFolder + "\\UserF.dat" + toUtf8(replacementSuffix));
  return all;
}

const std::vector<Call>& callsOf(const std::string& version) {
  static std::map<std::string, std::vector<Call>> traced;
  std::vector<Call>& calls = traced[version];
  if (calls.empty()) calls = traceCalls(FaultRun(version, "", true).log.events);
  return calls;
}

}  // namespace zev
