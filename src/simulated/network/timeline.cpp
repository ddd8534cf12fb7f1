#include "simulated/network/timeline.h"

#include <algorithm>
#include <utility>

namespace zev::simulated {

void Timeline::after(std::uint64_t milliseconds, std::function<void()> action) {
  actions_.emplace(now_ + milliseconds, std::move(action));
}

void Timeline::advance(std::uint64_t milliseconds) {
  const std::uint64_t limit = now_ + milliseconds;
  while (advanceToNext(limit)) {
  }
}

bool Timeline::advanceToNext(std::uint64_t limit) {
  const auto next = actions_.begin();
  if (next == actions_.end() || next->first > limit) {
    if (limit != never) now_ = std::max(now_, limit);
    return false;
  }
  now_ = std::max(now_, next->first);
  const std::function<void()> action = std::move(next->second);
  actions_.erase(next);
  action();
  return true;
}

}  // namespace zev::simulated
