#include "programs/zevsim/event_writer.h"

namespace zev::simulator {
namespace {

using simulated::Event;

/// The kinds that a summary is made of.
constexpr std::string_view counted[] = {"file", "registry", "box"};

bool succeeded(const Event& event) { return !event.contains("error") || event["error"] == 0; }

}  // namespace

const std::vector<std::string_view>& eventKinds() {
  static const std::vector<std::string_view> kinds = {
      "start", "show", "hide",  "unload",   "set",      "refresh", "box",
      "input", "step", "file",  "registry", "shortcut", "dde",     "shell",
      "wait",  "open", "sleep", "call",     "expect",   "end",
  };
  return kinds;
}

EventWriter::EventWriter(std::ostream* out, const std::vector<std::string>& selected)
    : out_(out), selected_(selected.begin(), selected.end()) {}

bool EventWriter::selects(std::string_view kind) const {
  if (out_ == nullptr) return false;
  return selected_.empty() ? !simulated::onDemandOnly(kind) : selected_.contains(kind);
}

bool EventWriter::wants(std::string_view kind) const {
  for (const std::string_view each : counted) {
    if (each == kind) return true;
  }
  return selects(kind);
}

void EventWriter::add(Event event) {
  const std::string& kind = event.at("event").text();
  count(kind, event);
  if (selects(kind)) *out_ << event.dump() << '\n';
}

void EventWriter::count(std::string_view kind, const Event& event) {
  if (kind == "box") ++tally_.boxes;
  if (kind == "registry" && event["op"] == "set" && succeeded(event)) ++tally_.settings;
  if (kind == "file" && event["op"] == "write") {
    tally_.written.insert(upperCase(fromUtf8(event["path"].text())));
  }
}

}  // namespace zev::simulator
