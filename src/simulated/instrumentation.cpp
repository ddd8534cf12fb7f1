#include "simulated/instrumentation.h"

#include <algorithm>

namespace zev::simulated {
namespace {

/// The first argument that is a text; empty if none is.
TextView firstText(Arguments arguments) {
  for (const Argument& each : arguments) {
    if (const auto* text = std::get_if<TextView>(&each)) return *text;
  }
  return {};
}

bool holds(TextView text, const Text& match) {
  return match.empty() || inStrText(text, match) != 0;
}

Event toJson(const Argument& argument) {
  if (const auto* text = std::get_if<TextView>(&argument)) return toUtf8(*text);
  if (const auto* flag = std::get_if<bool>(&argument)) return *flag;
  return std::get<std::int64_t>(argument);
}

}  // namespace

void Instrumentation::setFaults(std::vector<Fault> faults) {
  faults_.clear();
  for (Fault& each : faults) faults_.push_back({std::move(each), 0});
}

std::uint64_t Instrumentation::calls(std::string_view name) const {
  const auto found = calls_.find(name);
  return found == calls_.end() ? 0 : found->second;
}

void Instrumentation::count(std::string_view name) {
  if (name.empty()) return;
  const auto found = calls_.find(name);
  if (found != calls_.end()) {
    ++found->second;
  } else {
    calls_.emplace(name, 1);
  }
}

bool Instrumentation::strikes(Armed& armed, const Operation& operation, TextView argument) {
  const Fault& fault = armed.fault;
  if (fault.call != operation.name && fault.call != operation.alias) return false;
  if (!holds(argument, fault.match) && !holds(operation.subject, fault.match)) return false;
  ++armed.seen;
  return !fault.nth || *fault.nth == armed.seen;
}

const Fault* Instrumentation::begin(const Operation& operation, Arguments arguments) {
  count(operation.name);
  count(operation.alias);
  const TextView argument = firstText(arguments);
  const Fault* striking = nullptr;
  for (Armed& each : faults_) {
    if (strikes(each, operation, argument) && striking == nullptr) striking = &each.fault;
  }
  if (striking != nullptr && striking->effect == Fault::Effect::Raise) {
    throw RuntimeError(striking->code);
  }
  return striking;
}

void Instrumentation::tell(const Operation& operation, Arguments arguments, const Event& result) {
  if (!transcript_.wants("call")) return;
  Event list = Event::array();
  for (const Argument& each : arguments) list.push_back(toJson(each));
  transcript_.add({{"event", "call"},
                   {"name", operation.name},
                   {"arguments", std::move(list)},
                   {"result", result}});
}

}  // namespace zev::simulated
