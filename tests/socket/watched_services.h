#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "observed/sockets.h"

namespace zev::socket_bench {

/// The calls that went through a set of observed services, and which of them are to fail. One for
/// all services of a test, so that its lines show the order of calls across them.
class Calls final : private observed::Listener {
 public:
  static constexpr int all = 0;

  /// From now on calls of that name fail with that error without being made: all of them, or the
  /// `nth` from here on (1: the next one) alone. Asking anew takes the place of what was asked
  /// before. The error is what WSAGetLastError tells behind it, or the result itself where a call
  /// gives its error; calls of windows and kernel have none.
  void fail(std::string_view name, std::int32_t error = 0, int nth = all) {
    failures_[std::string(name)] = {error, nth == all ? all : count(name) + nth};
    setFailures();
  }
  /// Calls of that name are made again.
  void heal(std::string_view name) {
    failures_.erase(std::string(name));
    setFailures();
  }

  /// Calls of that name so far, those that were made to fail included.
  int count(std::string_view name) const { return static_cast<int>(watch_.calls(name)); }
  /// One line a call in the order of their ends: its name, what `match` of a fault looks at first,
  /// and those arguments that a test can know, as in "connect 97 192.168.1.20:80". Of a block of
  /// memory it tells whether there is one: "GlobalFree 0" or "GlobalFree block".
  const std::vector<std::string>& lines() const { return lines_; }
  /// The lines that begin with one of those names.
  std::vector<std::string> linesOf(std::initializer_list<std::string_view> names) const {
    std::vector<std::string> found;
    for (const std::string& line : lines_) {
      const std::string_view name = std::string_view(line).substr(0, line.find(' '));
      if (std::find(names.begin(), names.end(), name) != names.end()) found.push_back(line);
    }
    return found;
  }
  /// Forgets the lines; the counts and the failures stay.
  void clearLines() { lines_.clear(); }

  observed::Instrumentation& watch() { return watch_; }

 private:
  struct Written {
    std::string operator()(std::int64_t number) const { return std::to_string(number); }
    std::string operator()(bool flag) const { return flag ? "true" : "false"; }
    std::string operator()(TextView text) const { return toUtf8(text); }
    std::string operator()(const Text& text) const { return toUtf8(text); }
  };

  struct Failure {
    std::int32_t error = 0;
    int at = all;  ///< which call of the name, of all that there have been
  };

  /// Faults count from when they are set, so one that still waits gets what is left of its way.
  void setFailures() {
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

  bool listens() const override { return true; }
  void called(const observed::Operation& operation, observed::Arguments arguments,
              const observed::Outcome&) override {
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

  observed::Instrumentation watch_{*this};
  std::map<std::string, Failure> failures_;
  std::vector<std::string> lines_;
};

/// Observed sockets whose peers can have another address than they have.
class WatchedSockets final : public observed::Sockets {
 public:
  /// Borrows both, as do the others.
  WatchedSockets(zev::Sockets& next, Calls& calls) : Sockets(next, calls.watch()) {}

  /// From now on every peer has that address, as behind something that hands connections on.
  void setPeer(const SocketAddress& address) { peer_ = address; }
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override {
    const std::int32_t result = observed::Sockets::getpeername(socket, address);
    if (result != winsock::failed && peer_) address = *peer_;
    return result;
  }

 private:
  std::optional<SocketAddress> peer_;
};

/// Observed windows that count how often a routine that stands in is entered.
class WatchedWindows final : public observed::MessageWindows {
 public:
  WatchedWindows(zev::MessageWindows& next, Calls& calls) : MessageWindows(next, calls.watch()) {}

  /// Entries of the routine that stands in for that address.
  int entries(std::uintptr_t address) const {
    const auto found = routines_.find(address);
    return found == routines_.end() ? 0 : found->second->entries;
  }
  /// Counters stay until the end: one can be running when it is taken out.
  void standIn(std::uintptr_t address, MessageRoutine* routine) override {
    if (routine == nullptr) return next_.standIn(address, nullptr);
    std::unique_ptr<Counter>& counter = routines_[address];
    if (!counter) counter = std::make_unique<Counter>();
    counter->routine = routine;
    next_.standIn(address, counter.get());
  }

 private:
  struct Counter final : MessageRoutine {
    MessageRoutine* routine = nullptr;
    int entries = 0;

    std::intptr_t enter(const WindowMessage& message) override {
      ++entries;
      return routine->enter(message);
    }
  };

  std::map<std::uintptr_t, std::unique_ptr<Counter>> routines_;
};

/// An observed kernel in whose libraries functions can be put somewhere.
class WatchedKernel final : public observed::Kernel {
 public:
  WatchedKernel(zev::Kernel& next, Calls& calls) : Kernel(next, calls.watch()) {}

  /// Puts a function of a library somewhere.
  void setProcAddress(const std::string& library, const std::string& function,
                      std::uintptr_t address) {
    functions_[library + '!' + function] = address;
  }
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override {
    const std::uintptr_t address = observed::Kernel::ProcAddress(library, function);
    const auto put = functions_.find(std::string(library) + '!' + std::string(function));
    return put == functions_.end() ? address : put->second;
  }

 private:
  std::map<std::string, std::uintptr_t> functions_;
};

/// A machine's services under observation, with one list of calls.
struct WatchedServices {
  WatchedServices(Sockets& nextSockets, MessageWindows& nextWindows, Kernel& nextKernel)
      : sockets(nextSockets, calls), windows(nextWindows, calls), kernel(nextKernel, calls) {}

  Calls calls;
  WatchedSockets sockets;
  WatchedWindows windows;
  WatchedKernel kernel;
};

}  // namespace zev::socket_bench
