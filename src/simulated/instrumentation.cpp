#include "simulated/instrumentation.h"

#include <stdexcept>
#include <string>

#include "platform/operations.h"

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

bool isRuntimeError(std::int32_t code) {
  constexpr auto firstFileError = static_cast<std::int32_t>(ErrorNumber::BadFileNameOrNumber);
  constexpr std::int32_t nobodysNumber = 0;
  return code >= firstFileError && errorDescription(code) != errorDescription(nobodysNumber);
}

Instrumentation::Instrumentation(Transcript& transcript) : transcript_(transcript) {
  forgetCalls();
}

void Instrumentation::setFaults(std::vector<Fault> faults) {
  std::vector<Armed> armed;
  for (Fault& each : faults) {
    const auto name = findOperation(each.call);
    if (!name) throw std::invalid_argument("no operation " + each.call);
    each.call = *name;
    armed.push_back({std::move(each), 0});
  }
  faults_ = std::move(armed);
}

std::uint64_t Instrumentation::calls(std::string_view name) const {
  const auto known = findOperation(name);
  return known ? calls_.at(*known) : 0;
}

void Instrumentation::forgetCalls() {
  for (const std::string_view each : operationNames()) calls_[each] = 0;
}

void Instrumentation::count(std::string_view name) {
  if (name.empty()) return;
  const auto found = calls_.find(name);
  if (found == calls_.end()) {
    throw std::logic_error("not in the list of operations: " + std::string(name));
  }
  ++found->second;
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
