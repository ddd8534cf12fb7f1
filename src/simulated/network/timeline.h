#pragma once

#include <cstdint>
#include <functional>
#include <map>

namespace zev::simulated {

/// A clock in milliseconds that moves only when it is told to, and what is to happen on its way.
class Timeline {
 public:
  static constexpr std::uint64_t never = ~std::uint64_t{0};

  /// Milliseconds since the clock was made.
  std::uint64_t now() const { return now_; }
  /// Runs the action when the clock has moved that far; actions of one moment in the order in which
  /// they came. Even without delay it waits for the clock to be moved, be it by 0.
  void after(std::uint64_t milliseconds, std::function<void()> action);
  /// Moves the clock and runs on the way what falls due.
  void advance(std::uint64_t milliseconds);
  /// Moves the clock to the next action and runs it. If there is none up to the moment `limit`,
  /// moves the clock there (not for `never`) and gives false.
  bool advanceToNext(std::uint64_t limit = never);

 private:
  std::uint64_t now_ = 0;
  std::multimap<std::uint64_t, std::function<void()>>
      actions_;  ///< equal keys in order of insertion
};

}  // namespace zev::simulated
