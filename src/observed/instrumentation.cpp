#include "observed/instrumentation.h"

#include <cstring>
#include <stdexcept>
#include <string>

#include "platform/operations.h"

namespace zev::observed {
namespace {

/// The first argument that is a text; empty if none is.
TextView firstText(Arguments arguments) {
  for (const Argument& each : arguments) {
    if (const auto* text = std::get_if<TextView>(&each)) return *text;
    if (const auto* text = std::get_if<Text>(&each)) return *text;
  }
  return {};
}

bool holds(TextView text, const Text& match) {
  return match.empty() || inStrText(text, match) != 0;
}

}  // namespace

Text shownAddress(const SocketAddress& address) {
  std::uint8_t host[4], port[2];
  std::memcpy(host, &address.address, sizeof host);
  std::memcpy(port, &address.port, sizeof port);
  std::string text;
  if (address.family != winsock::internet) {
    text = "family " + std::to_string(address.family) + " ";
  }
  for (const int each : host) text += std::to_string(each) + '.';
  text.back() = ':';
  return fromUtf8(text + std::to_string(port[0] * 256 + port[1]));
}

bool isRuntimeError(std::int32_t code) {
  constexpr auto firstFileError = static_cast<std::int32_t>(ErrorNumber::BadFileNameOrNumber);
  constexpr std::int32_t nobodysNumber = 0;
  return code >= firstFileError && errorDescription(code) != errorDescription(nobodysNumber);
}

Instrumentation::Instrumentation(Listener& listener) : listener_(listener) { forgetCalls(); }

// ---- faults

Instrumentation::Armed Instrumentation::armed(Fault fault) {
  const auto name = findOperation(fault.call);
  if (!name) throw std::invalid_argument("no operation " + fault.call);
  fault.call = *name;
  return {std::move(fault), 0};
}

void Instrumentation::setFaults(std::vector<Fault> faults) {
  std::vector<Armed> all;
  for (Fault& each : faults) all.push_back(armed(std::move(each)));
  faults_ = std::move(all);
}

bool Instrumentation::strikes(Armed& armed, const Operation& operation, TextView argument) {
  const Fault& fault = armed.fault;
  if (fault.call != operation.name && fault.call != operation.alias) return false;
  if (!holds(argument, fault.match) && !holds(operation.subject, fault.match)) return false;
  ++armed.seen;
  return !fault.nth || *fault.nth == armed.seen;
}

// ---- calls

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

void Instrumentation::tell(const Operation& operation, Arguments arguments,
                           const Outcome& outcome) {
  if (listener_.listens()) listener_.called(operation, arguments, outcome);
}

}  // namespace zev::observed
