#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>

namespace zev::netcat {

/// A time that passes while nothing happens.
class Limit {
 public:
  /// None: it never passes.
  explicit Limit(std::optional<double> seconds) : seconds_(seconds) {}

  void beginAnew() { since_ = Clock::now(); }
  bool over() const { return left() == 0; }
  /// Milliseconds; -1 for ever.
  int left() const {
    if (!seconds_) return -1;
    const std::chrono::duration<double, std::milli> passed = Clock::now() - since_;
    return static_cast<int>(std::ceil(std::max(*seconds_ * 1000.0 - passed.count(), 0.0)));
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<double> seconds_;
  Clock::time_point since_ = Clock::now();
};

/// The shorter one of two times in milliseconds, of which a negative one is for ever.
inline int earlier(int first, int second) {
  if (first < 0 || second < 0) return std::max(first, second);
  return std::min(first, second);
}

}  // namespace zev::netcat
