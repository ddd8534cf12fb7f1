#pragma once

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

  Calls();
  ~Calls();

  /// From now on calls of that name fail with that error without being made: all of them, or the
  /// `nth` from here on (1: the next one) alone. Asking anew takes the place of what was asked
  /// before. The error is what WSAGetLastError tells behind it, or the result itself where a call
  /// gives its error; calls of windows and kernel have none.
  void fail(std::string_view name, std::int32_t error = 0, int nth = all);
  /// Calls of that name are made again.
  void heal(std::string_view name);

  /// Calls of that name so far, those that were made to fail included.
  int count(std::string_view name) const;
  /// One line a call in the order of their ends: its name, what `match` of a fault looks at first,
  /// and those arguments that a test can know, as in "connect 97 192.168.1.20:80". Of a block of
  /// memory it tells whether there is one: "GlobalFree 0" or "GlobalFree block".
  const std::vector<std::string>& lines() const { return lines_; }
  /// The lines that begin with one of those names.
  std::vector<std::string> linesOf(std::initializer_list<std::string_view> names) const;
  /// Forgets the lines; the counts and the failures stay.
  void clearLines() { lines_.clear(); }

  observed::Instrumentation& watch() { return watch_; }

 private:
  struct Failure {
    std::int32_t error = 0;
    int at = all;  ///< which call of the name, of all that there have been
  };

  /// Faults count from when they are set, so one that still waits gets what is left of its way.
  void setFailures();

  bool listens() const override { return true; }
  void called(const observed::Operation& operation, observed::Arguments arguments,
              const observed::Outcome&) override;

  observed::Instrumentation watch_{*this};
  std::map<std::string, Failure> failures_;
  std::vector<std::string> lines_;
};

/// Observed sockets whose peers can have another address than they have.
class WatchedSockets final : public observed::Sockets {
 public:
  /// Borrows both, as do the others.
  WatchedSockets(zev::Sockets& next, Calls& calls);
  ~WatchedSockets() override;

  /// From now on every peer has that address, as behind something that hands connections on.
  void setPeer(const SocketAddress& address) { peer_ = address; }
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override;

 private:
  std::optional<SocketAddress> peer_;
};

/// Observed windows that count how often a routine that stands in is entered.
class WatchedWindows final : public observed::MessageWindows {
 public:
  WatchedWindows(zev::MessageWindows& next, Calls& calls);
  ~WatchedWindows() override;

  /// Entries of the routine that stands in for that address.
  int entries(std::uintptr_t address) const;
  /// Counters stay until the end: one can be running when it is taken out.
  void standIn(std::uintptr_t address, MessageRoutine* routine) override;

 private:
  struct Counter;

  std::map<std::uintptr_t, std::unique_ptr<Counter>> routines_;
};

/// An observed kernel in whose libraries functions can be put somewhere.
class WatchedKernel final : public observed::Kernel {
 public:
  WatchedKernel(zev::Kernel& next, Calls& calls);
  ~WatchedKernel() override;

  /// Puts a function of a library somewhere.
  void setProcAddress(const std::string& library, const std::string& function,
                      std::uintptr_t address);
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override;

 private:
  std::map<std::string, std::uintptr_t> functions_;
};

/// A machine's services under observation, with one list of calls.
struct WatchedServices {
  WatchedServices(Sockets& nextSockets, MessageWindows& nextWindows, Kernel& nextKernel);
  ~WatchedServices();

  Calls calls;
  WatchedSockets sockets;
  WatchedWindows windows;
  WatchedKernel kernel;
};

}  // namespace zev::socket_bench
