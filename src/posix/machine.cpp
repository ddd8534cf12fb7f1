#include "posix/machine.h"

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace zev::posix {
namespace {

using Clock = std::chrono::steady_clock;

/// Messages that are dispatched in a row before the system is looked at all the same, so that
/// windows which keep posting to each other leave room for the sockets.
constexpr int longestRow = 256;

/// How often in a row a look at the sockets that are to be examined again is enough, if it brings
/// messages. One that has more to read than fits into a call needs no other.
constexpr int longestExamining = 8;

constexpr rlim_t enoughFiles = 65536;

void allowManyFiles() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= enoughFiles) return;
  limit.rlim_cur = std::min(limit.rlim_max, enoughFiles);
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// The shorter one of two times to wait, of which a negative one is for ever.
int earlier(int first, int second) {
  if (first < 0 || second < 0) return std::max(first, second);
  return std::min(first, second);
}

/// A moment until which somebody waits.
class Deadline {
 public:
  explicit Deadline(int milliseconds)
      : forEver_(milliseconds < 0), end_(Clock::now() + std::chrono::milliseconds(milliseconds)) {}

  /// Milliseconds that are left, the last one begun counting whole; -1 for ever.
  int left() const {
    if (forEver_) return -1;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
  }

 private:
  bool forEver_;
  Clock::time_point end_;
};

}  // namespace

Machine::Machine(Settings settings)
    : kernel_(settings.codePage),
      sockets_(windows_, poller_, settings.codePage, std::move(settings.resolver)) {
  allowManyFiles();
}

bool Machine::dispatch(int timeoutMilliseconds) {
  if (dispatched_ < longestRow && dispatchNext()) {
    ++dispatched_;
    return true;
  }
  const Deadline deadline(timeoutMilliseconds);
  for (;;) {
    const int left = deadline.left();
    const Outcome outcome = collect(left);
    if (windows_.dispatch() || outcome.told) return true;
    if (left == 0 || outcome.interrupted) return false;
  }
}

bool Machine::dispatchNext() {
  if (windows_.waiting() == 0 && examined_ < longestExamining) {
    ++examined_;
    sockets_.examineAgain();
  }
  return windows_.dispatch();
}

/// Posts what has happened since the last look. Waits for it only if there is nothing else to do.
Machine::Outcome Machine::collect(int milliseconds) {
  dispatched_ = examined_ = 0;
  sockets_.examineAgain();
  const bool busy = windows_.waiting() != 0 || hasSteadyWatch();
  errno = 0;
  const std::span<const Readiness> ready =
      poller_.wait(busy ? 0 : earlier(milliseconds, sockets_.nextLook()));
  const bool interrupted = ready.empty() && errno == EINTR;
  for (const Readiness& each : ready) hand(each);
  // Only now: a callback may do with the sockets what it likes.
  return {tellWatches(), interrupted};
}

void Machine::hand(const Readiness& readiness) {
  switch (readiness.token.subject) {
    case Subject::socket:
      return sockets_.notice(static_cast<std::int32_t>(readiness.token.number), readiness.events);
    case Subject::lookUps:
      return sockets_.finishLookUps();
    case Subject::watch:
      return readyWatches_.push_back(static_cast<int>(readiness.token.number));
  }
}

// ---- watches

void Machine::watch(int descriptor, Watch what, std::function<void()> ready) {
  const std::uint32_t events = what == Watch::reading ? EPOLLIN : EPOLLOUT;
  const Token token{Subject::watch, static_cast<std::uint32_t>(descriptor)};
  const bool told = poller_.add(descriptor, events, token);
  // EPERM: it is always ready; EBADF: it is not there, which every call on it tells at once.
  const bool always = !told && (errno == EPERM || errno == EBADF);
  if ((!told && !always) || findWatch(descriptor) != nullptr) {
    const int error = told || always ? EEXIST : errno;
    throw std::system_error(error, std::generic_category(), "watch");
  }
  watched_.push_back({descriptor, always, std::move(ready)});
}

void Machine::unwatch(int descriptor) {
  if (std::erase_if(watched_, [&](const Watched& each) { return each.descriptor == descriptor; })) {
    poller_.remove(descriptor);
  }
}

bool Machine::tellWatches() {
  for (const Watched& each : watched_) {
    if (each.always) readyWatches_.push_back(each.descriptor);
  }
  bool told = false;
  for (const int descriptor : std::exchange(readyWatches_, {})) {
    const Watched* const found = findWatch(descriptor);
    if (found == nullptr) continue;
    const std::function<void()> ready = found->ready;  // it may end its own watch
    ready();
    told = true;
  }
  return told;
}

Machine::Watched* Machine::findWatch(int descriptor) {
  const auto found = std::find_if(watched_.begin(), watched_.end(), [&](const Watched& each) {
    return each.descriptor == descriptor;
  });
  return found == watched_.end() ? nullptr : &*found;
}

bool Machine::hasSteadyWatch() const {
  return std::any_of(watched_.begin(), watched_.end(),
                     [](const Watched& each) { return each.always; });
}

}  // namespace zev::posix
