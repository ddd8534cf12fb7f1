#include "scenarios/run_marks.h"

#include "package/manifest.h"
#include "programs/zevsim/setup_program.h"
#include "runtime/error.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using simulated::Event;

constexpr std::int64_t imageLength = 1000;
const std::string permissionDenied = "70";

/// A fault as JSON, with a comma behind it.
std::string raising(const std::string& call, const std::string& which) {
  return R"({"call": ")" + call + R"(", )" + which + R"(, "raise": )" + permissionDenied + "},";
}

std::string faultsOf(const RunMachine& machine, const Strike& strike) {
  std::string faults = machine.faults;
  if (strike.call != nullptr) {
    faults += raising(strike.call->operation, R"("nth": )" + std::to_string(strike.call->nth));
  }
  for (const std::string& box : strike.boxes) {
    faults += raising("MsgBox", R"("match": ")" + box + R"(")");
  }
  if (!faults.empty()) faults.pop_back();
  return faults;
}

scenario::Scenario scenarioOn(const RunMachine& machine, const Strike& strike) {
  const std::string package = R"("C:\\Users\\bob\\Downloads\\ZEVSetup.exe": {"size": )" +
                              std::to_string(packageSize + imageLength) + "}";
  return scenario::parseScenario(
      R"({"machine": {"version": )" + machine.version + R"(, "files": {)" + package +
      R"(, "C:\\Users\\bob.BOBPC\\AppData\\Local": {"directory": true}})" + machine.machine +
      R"(, "faults": [)" + faultsOf(machine, strike) + R"(]}, "script": [)" + machine.steps +
      stepsToInstall + "]}");
}

/// Whether an event is the writing that a mark tells.
bool isWriting(const Event& event, const Mark& mark) {
  return event["event"] == "set" && event["value"].isText() &&
         event["control"].text() + "." + event["property"].text() ==
             std::string("Form1.") + mark.about &&
         event["value"].text().starts_with(mark.text);
}

bool isCall(const Call& call, const Mark& mark) {
  return call.operation == mark.operation && call.phase == mark.phase &&
         call.path.find(mark.about) != std::string::npos &&
         (mark.number == 0 || call.number == mark.number) &&
         (mark.repeat == 0 || call.repeat == mark.repeat) &&
         (mark.row == 0 || call.row == mark.row);
}

const std::string ownFileType =
    R"(, "registry": {"HKEY_CLASSES_ROOT": {".zrd": {"": "ZEV.ReelDeskProject"}}})";

}  // namespace

const RunMachine profileMachine = {"with profiles", R"({"platform": 2, "major": 6, "minor": 1})",
                                   ownFileType + R"(, "folders": {"localAppData": null})", "", ""};
const RunMachine registryMachine = {"with a registry", R"({"platform": 2, "major": 5, "minor": 1})",
                                    ownFileType, "", ""};

void WatchedRun::Striker::propertyWritten(const Form* form, const PropertyBase& property) {
  if (!write_ || form == nullptr) return;
  const auto value = property.value();
  const auto* text = std::get_if<Text>(&value);
  const std::string name = toUtf8(property.owner().name()) + "." + std::string(property.name());
  if (name != write_->about) return;
  if (text != nullptr && !toUtf8(*text).starts_with(write_->text)) return;
  write_.reset();
  throw RuntimeError(ErrorNumber::PermissionDenied);
}

WatchedRun::WatchedRun(const RunMachine& machine, const Strike& strike)
    : scenario_(scenarioOn(machine, strike)),
      log_(true),
      striker_(strike.write),
      stage_(scenario_, simulator::makeSetupProgram, log_) {
  stage_.perform({&striker_});
  calls_ = traceCalls(log_.events());
}

const Call* WatchedRun::call(const Mark& mark) const {
  for (const Call& each : calls_) {
    if (isCall(each, mark)) return &each;
  }
  return nullptr;
}

std::optional<std::size_t> WatchedRun::place(const Mark& mark) const {
  if (*mark.operation != '\0') {
    const Call* found = call(mark);
    return found == nullptr ? std::nullopt : std::optional(found->place);
  }
  for (std::size_t each = 0; each < events().size(); ++each) {
    if (isWriting(events()[each], mark)) return each;
  }
  return std::nullopt;
}

std::int32_t WatchedRun::toldStep() const {
  const std::string front = "Error occured during installing. Error No.";
  const std::string behind = "-" + permissionDenied + ": Permission denied";
  for (const Event& box : log_.of("box")) {
    const std::string text = box["text"].text();
    if (text.starts_with(front) && text.ends_with(behind)) {
      return std::stoi(text.substr(front.size()));
    }
  }
  return 0;
}

}  // namespace zev
