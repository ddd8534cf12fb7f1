#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "socket/bench.h"

namespace zev::socket_bench {

/// Dispatches until something holds. False if it does not within that time of the bench's clock, or
/// if messages never end.
inline bool pumpUntil(Bench& bench, const std::function<bool()>& holds, int milliseconds = 5000) {
  constexpr int step = 20;
  constexpr int mostMessages = 1000000;
  int messages = 0;
  while (!holds()) {
    if (bench.pump(step)) {
      if (++messages > mostMessages) return false;
    } else if ((milliseconds -= step) <= 0) {
      return holds();
    }
  }
  return true;
}

/// Dispatches until nothing has come for a while: long enough for what loopback carries.
inline void pumpUntilQuiet(Bench& bench, int milliseconds = 150) {
  while (bench.pump(milliseconds)) {
  }
}

/// A window that writes down the messages which reach its procedure. Messages of the system go on
/// to the procedure that the window was born with.
class Ear final : public MessageRoutine {
 public:
  /// Of messages that belong to nobody but the tests.
  static constexpr std::uint32_t firstMessage = 0x800;

  /// Borrows the windows. `address` is where its procedure is said to be, another one for each ear.
  explicit Ear(MessageWindows& windows, std::uintptr_t address = 0x401000);
  ~Ear() override;
  Ear(const Ear&) = delete;
  Ear& operator=(const Ear&) = delete;

  WindowHandle window() const { return window_; }
  /// Where its procedure is.
  std::uintptr_t address() const { return address_; }
  /// The procedure that the window had.
  std::uintptr_t former() const { return former_; }
  /// What reached the procedure.
  std::vector<WindowMessage> messages;
  /// The result of every message from firstMessage on.
  std::intptr_t result = 0;
  /// Ends the window.
  bool destroy();
  /// How many messages of that number came.
  std::size_t count(std::uint32_t message) const;

  std::intptr_t enter(const WindowMessage& message) override;

 private:
  MessageWindows& windows_;
  std::uintptr_t address_;
  WindowHandle window_;
  std::uintptr_t former_ = 0;
};

/// One test on one bench, with the service started and a window that listens.
class ContractTest : public testing::Test {
 protected:
  Bench& bench() { return *bench_; }
  Sockets& sockets() { return bench().sockets(); }
  MessageWindows& windows() { return bench().windows(); }
  Kernel& kernel() { return bench().kernel(); }
  bool waitUntil(const std::function<bool()>& holds) { return pumpUntil(bench(), holds); }
  void quiet() { pumpUntilQuiet(bench()); }
  bool onWine() { return bench().name() == "wine"; }

 private:
  std::unique_ptr<Bench> bench_ = makeBench();
};

}  // namespace zev::socket_bench
