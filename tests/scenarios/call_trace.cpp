#include "scenarios/call_trace.h"

#include <map>
#include <tuple>

#include "package/manifest.h"

namespace zev {
namespace {

using simulated::Event;

constexpr const char* phaseNames[] = {"load",        "check",     "opening",  "before a member",
                                      "copying out", "expanding", "main out", "main expanded",
                                      "settings",    "file type", "language", "cleaning",
                                      "shortcuts",   "users",     "finish",   "unload"};

/// The clicks of the person: the last but one presses Install, the last one Finish.
constexpr int installClick = 4;
constexpr int finishClick = 5;

constexpr int mainProgram = 3;
constexpr std::size_t firstSlotTick = 1;  ///< the tick before it belongs to no slot
constexpr std::size_t behindCodecs = 59;  ///< places of the later ticks among all of them
constexpr std::size_t beforeUsers = 60;
constexpr std::size_t lastTick = 61;

/// Which stretch a text of the status line begins.
struct StatusRow {
  const char* beginning;
  Phase phase;
};
constexpr StatusRow statusRows[] = {
    {"Copying files into temporary folder", Phase::Opening},
    {"Registry settings are being done", Phase::Settings},
    {"'.zrd' file type registry", Phase::FileType},
    {"Temporary files are being deleted", Phase::CleanUp},
    {"ZEV has been sucessfully installed", Phase::Shortcuts},
};

/// Walks a transcript and knows where in the program's life it is.
class Tracer {
 public:
  void take(const Event& event) {
    const std::string kind = event["event"].text();
    if (kind == "step" && event["step"].contains("click")) takeClick();
    if (kind == "set")
      takeProperty(event["control"].text(), event["property"].text(), event["value"]);
    if (kind == "call") takeCall(event);
    ++place_;
  }

  std::vector<Call> calls;

 private:
  void takeClick() {
    ++clicks_;
    if (clicks_ == installClick) phase_ = Phase::Check;
    if (clicks_ == finishClick) phase_ = Phase::Unload;
  }

  void takeProperty(const std::string& control, const std::string& property, const Event& value) {
    if (property != "Caption") return;
    if (control == "Form1.Label11") takeStatus(value.text());
    if (control == "Form1.Label12") takeFile(value.text());
    if (control == "Form1.Label8") takeTick();
  }

  void takeStatus(const std::string& text) {
    for (const StatusRow& each : statusRows) {
      if (text.starts_with(each.beginning)) phase_ = each.phase;
    }
  }

  /// The label names a member as it is packed, and then as it is laid.
  void takeFile(const std::string& text) {
    if (text.empty()) return;
    const bool packed = phase_ == Phase::Prepare;
    if (row_ == mainProgram) {
      phase_ = packed ? Phase::MainOut : Phase::MainIn;
    } else {
      phase_ = packed ? Phase::Extract : Phase::Expand;
    }
  }

  void takeTick() {
    const std::size_t place = ticks_++;
    const std::size_t slot = place - firstSlotTick;
    row_ = 0;
    if (place >= firstSlotTick && slot < manifest().size()) {
      phase_ = Phase::Prepare;
      row_ = manifest()[slot].row;
    }
    if (place == behindCodecs) phase_ = Phase::Language;
    if (place == beforeUsers) phase_ = Phase::Users;
    if (place == lastTick) phase_ = Phase::Finish;
  }

  void takeCall(const Event& event) {
    Call call;
    call.operation = event["name"].text();
    call.nth = ++counts_[call.operation];
    // A text that is put counts as a Put, too.
    if (call.operation == "PutText") ++counts_["Put"];
    call.phase = phase_;
    call.place = place_;
    call.row = row_;
    call.empty = event["result"] == "";
    if (call.operation == "CreateShortcut") ++links_;
    call.link = links_;
    takeArguments(event["arguments"], event["result"], call);
    call.repeat = ++repeats_[{call.operation, call.path, call.phase}];
    calls.push_back(std::move(call));
  }

  void takeArguments(const Event& arguments, const Event& result, Call& call) {
    std::vector<int> numbers;
    for (const Event& each : arguments) {
      if (each.isText() && call.path.empty()) call.path = each.text();
      if (each.isNumber()) numbers.push_back(each.get<int>());
    }
    if (!numbers.empty()) call.number = numbers.back();
    const std::string& name = call.operation;
    if (name == "FreeFile") waiting_.push_back(calls.size());
    if (name.starts_with("Open") && name != "OpenProcess") opened(numbers.at(0), call.path);
    if (name == "LZOpenFileA") handles_[result.get<int>()] = call.path;
    if (name == "LZCopy" || name == "LZClose") call.path = handles_[numbers.at(0)];
    for (const char* each : {"LOF", "Get", "Put", "PutText", "Print", "Close"}) {
      if (name == each) call.path = files_[numbers.at(0)];
    }
  }

  /// The numbers that were asked for are for this file.
  void opened(int number, const std::string& path) {
    files_[number] = path;
    for (const std::size_t place : waiting_) calls[place].path = path;
    waiting_.clear();
  }

  Phase phase_ = Phase::Load;
  int row_ = 0;
  int clicks_ = 0;
  std::size_t place_ = 0;
  std::size_t ticks_ = 0;
  std::size_t links_ = 0;
  std::map<std::string, std::size_t> counts_;
  std::map<std::tuple<std::string, std::string, Phase>, std::size_t> repeats_;
  std::map<int, std::string> files_;
  std::map<int, std::string> handles_;
  std::vector<std::size_t> waiting_;
};

/// The value that the next change of the registry sets, as a snapshot names it.
std::string nextValue(const std::vector<Event>& events, std::size_t place) {
  for (; place < events.size(); ++place) {
    const Event& each = events[place];
    if (each["event"] != "registry" || each["op"] != "set") continue;
    std::string key = each["hive"].text() + "\\" + each["key"].text();
    const std::string classes = "HKEY_CLASSES_ROOT";
    if (key.starts_with(classes)) {
      key = "HKEY_LOCAL_MACHINE\\Software\\Classes" + key.substr(classes.size());
    }
    return key + "|" + each["name"].text();
  }
  return {};
}

/// What the question for a folder of value files is asked for: the next file in it that is written,
/// or looked for.
void findFile(std::vector<Call>& calls, std::size_t place) {
  constexpr int hiddenFiles = 38;
  Call& asks = calls[place];
  for (std::size_t next = place + 1; next < calls.size(); ++next) {
    const Call& each = calls[next];
    const bool looks = each.operation == "Dir" && each.number == hiddenFiles;
    if (!each.path.starts_with(asks.path + "\\")) continue;
    if (!looks && each.operation != "OpenOutput") continue;
    asks.value = each.path;
    asks.read = looks;
    return;
  }
}

/// A key is made for a value if it is not closed at once.
void findValues(std::vector<Call>& calls, const std::vector<Event>& events) {
  for (std::size_t place = 0; place < calls.size(); ++place) {
    Call& call = calls[place];
    if (place > 0) call.begin = calls[place - 1].place + 1;
    const bool last = place + 1 == calls.size();
    const bool forValue = !last && calls[place + 1].operation == "RegSetValueExA";
    if (call.operation == "Dir" && call.path.ends_with("\\ZEV5")) findFile(calls, place);
    if (call.operation == "RegSetValueExA" || (call.operation == "RegCreateKeyA" && forValue)) {
      call.value = nextValue(events, call.begin);
    }
  }
}

}  // namespace

const char* nameOf(Phase phase) { return phaseNames[static_cast<std::size_t>(phase)]; }

std::vector<Call> traceCalls(const std::vector<Event>& events) {
  Tracer tracer;
  for (const Event& each : events) tracer.take(each);
  findValues(tracer.calls, events);
  return std::move(tracer.calls);
}

}  // namespace zev
