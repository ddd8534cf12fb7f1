#include "programs/zevpack/long_work.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <exception>
#include <system_error>
#include <thread>
#include <vector>

namespace zev::packing {

Progress::Progress(std::string_view work, std::size_t total)
    : work_(work), total_(total), shown_(isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown_) std::fprintf(stderr, "\r\x1B[K");
}

void Progress::step(std::string_view piece) {
  const std::lock_guard alone(telling_);
  ++done_;
  if (!shown_) return;
  std::fprintf(stderr, "\r\x1B[K%s %zu of %zu: %.*s", work_.c_str(), done_, total_,
               static_cast<int>(piece.size()), piece.data());
}

namespace {

/// The calls that are still to be made, and what those that were made threw.
class Calls {
 public:
  Calls(std::size_t count, const std::function<void(std::size_t)>& task)
      : task_(task), thrown_(count) {}

  void work() {
    for (std::size_t number = next_++; number < thrown_.size(); number = next_++) {
      try {
        task_(number);
      } catch (...) {
        thrown_[number] = std::current_exception();
        next_ = thrown_.size();
      }
    }
  }

  void rethrow() const {
    for (const std::exception_ptr& each : thrown_) {
      if (each) std::rethrow_exception(each);
    }
  }

 private:
  const std::function<void(std::size_t)>& task_;
  std::vector<std::exception_ptr> thrown_;
  std::atomic<std::size_t> next_ = 0;
};

}  // namespace

void inParallel(std::size_t count, const std::function<void(std::size_t)>& task) {
  Calls calls(count, task);
  std::vector<std::jthread> others;
  const std::size_t threads = std::min<std::size_t>(std::thread::hardware_concurrency(), count);
  try {
    while (others.size() + 1 < threads) others.emplace_back([&calls] { calls.work(); });
  } catch (const std::system_error&) {
    // Those that there are do it.
  }
  calls.work();
  others.clear();
  calls.rethrow();
}

}  // namespace zev::packing
