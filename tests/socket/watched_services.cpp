#include "socket/watched_services.h"

#include <algorithm>

namespace zev::socket_bench {

namespace {

struct Written {
  std::string operator()(std::int64_t number) const { return std::to_string(number); }
  std::string operator()(bool flag) const { return flag ? "true" : "false"; }
  std::string operator()(TextView text) const { return toUtf8(text); }
  std::string operator()(const Text& text) const { return toUtf8(text); }
};

}  // namespace

Calls::Calls() = default;
Calls::~Calls() = default;

void Calls::fail(std::string_view name, std::int32_t error, int nth) {
  failures_[std::string(name)] = {error, nth == all ? all : count(name) + nth};
  setFailures();
}

void Calls::heal(std::string_view name) {
  failures_.erase(std::string(name));
  setFailures();
}

int Calls::count(std::string_view name) const { return static_cast<int>(watch_.calls(name)); }

std::vector<std::string> Calls::linesOf(std::initializer_list<std::string_view> names) const {
  std::vector<std::string> found;
  for (const std::string& line : lines_) {
    const std::string_view name = std::string_view(line).substr(0, line.find(' '));
    if (std::find(names.begin(), names.end(), name) != names.end()) found.push_back(line);
  }
  return found;
}

void Calls::setFailures() {
  std::vector<observed::Fault> faults;
  for (const auto& [name, failure] : failures_) {
    observed::Fault fault{.call = name, .code = failure.error};
    const int left = failure.at - count(name);
    if (failure.at != all && left <= 0) continue;
    if (failure.at != all) fault.nth = static_cast<std::uint32_t>(left);
    faults.push_back(std::move(fault));
  }
  watch_.setFaults(std::move(faults));
}

void Calls::called(const observed::Operation& operation, observed::Arguments arguments,
                   const observed::Outcome&) {
  const bool ofBlock =
      !arguments.empty() && (operation.name == "GlobalLock" || operation.name == "GlobalUnlock" ||
                             operation.name == "GlobalFree");
  std::string line(operation.name);
  if (!operation.subject.empty()) line += ' ' + toUtf8(operation.subject);
  for (const observed::Argument& each : arguments) {
    const std::string written = std::visit(Written(), each);
    line += ' ' + (ofBlock && written != "0" ? "block" : written);
  }
  lines_.push_back(std::move(line));
}

WatchedSockets::WatchedSockets(zev::Sockets& next, Calls& calls) : Sockets(next, calls.watch()) {}
WatchedSockets::~WatchedSockets() = default;

std::int32_t WatchedSockets::getpeername(std::int32_t socket, SocketAddress& address) {
  const std::int32_t result = observed::Sockets::getpeername(socket, address);
  if (result != winsock::failed && peer_) address = *peer_;
  return result;
}

struct WatchedWindows::Counter final : MessageRoutine {
  MessageRoutine* routine = nullptr;
  int entries = 0;

  std::intptr_t enter(const WindowMessage& message) override {
    ++entries;
    return routine->enter(message);
  }
};

WatchedWindows::WatchedWindows(zev::MessageWindows& next, Calls& calls)
    : MessageWindows(next, calls.watch()) {}
WatchedWindows::~WatchedWindows() = default;

int WatchedWindows::entries(std::uintptr_t address) const {
  const auto found = routines_.find(address);
  return found == routines_.end() ? 0 : found->second->entries;
}

void WatchedWindows::standIn(std::uintptr_t address, MessageRoutine* routine) {
  if (routine == nullptr) return next_.standIn(address, nullptr);
  std::unique_ptr<Counter>& counter = routines_[address];
  if (!counter) counter = std::make_unique<Counter>();
  counter->routine = routine;
  next_.standIn(address, counter.get());
}

WatchedKernel::WatchedKernel(zev::Kernel& next, Calls& calls) : Kernel(next, calls.watch()) {}
WatchedKernel::~WatchedKernel() = default;

void WatchedKernel::setProcAddress(const std::string& library, const std::string& function,
                                   std::uintptr_t address) {
  functions_[library + '!' + function] = address;
}

std::uintptr_t WatchedKernel::ProcAddress(std::string_view library, std::string_view function) {
  const std::uintptr_t address = observed::Kernel::ProcAddress(library, function);
  const auto put = functions_.find(std::string(library) + '!' + std::string(function));
  return put == functions_.end() ? address : put->second;
}

WatchedServices::WatchedServices(Sockets& nextSockets, MessageWindows& nextWindows,
                                 Kernel& nextKernel)
    : sockets(nextSockets, calls), windows(nextWindows, calls), kernel(nextKernel, calls) {}
WatchedServices::~WatchedServices() = default;

}  // namespace zev::socket_bench
