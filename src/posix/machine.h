#pragma once

#include <functional>
#include <vector>

#include "posix/code_queue.h"
#include "posix/descriptors.h"
#include "posix/kernel.h"
#include "posix/look_ups.h"
#include "posix/sockets.h"

namespace zev::posix {

/// What a watched descriptor is to become ready for.
enum class Watch { reading, writing };

/// A POSIX system as the socket component needs it: windows, kernel and sockets of one thread, and
/// the loop that dispatches their messages.
class Machine {
 public:
  struct Settings {
    /// By default one byte a character, so that texts can carry any bytes.
    std::uint32_t codePage = 1252;
    /// Answers names; called on several threads.
    LookUps::Resolver resolver = lookUp;
  };

  /// Lets the process open as many files as the system grants it. Throws std::system_error if the
  /// system has no room.
  Machine() : Machine(Settings{}) {}
  explicit Machine(Settings settings);
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// The services that modEventSocket is made with.
  WindowQueue& windows() { return windows_; }
  PosixKernel& kernel() { return kernel_; }
  PosixSockets& sockets() { return sockets_; }

  /// Dispatches one posted message. If none waits, waits for what posts one, that many milliseconds
  /// at most, for ever if negative. True if a message was dispatched or a watch was told; a signal
  /// ends the waiting.
  bool dispatch(int timeoutMilliseconds);

  /// Calls `ready` from within `dispatch`, again and again, while a descriptor can be read from or
  /// written to without waiting: also one that has ended or failed, and one of a kind that is
  /// always ready, such as a plain file. Each descriptor has one watch: a second one throws
  /// std::system_error.
  void watch(int descriptor, Watch what, std::function<void()> ready);
  /// Ends the watch of a descriptor, if it has one. A callback may do this.
  void unwatch(int descriptor);

 private:
  struct Watched {
    int descriptor = -1;
    bool always = false;  ///< the system cannot tell, since it is always ready
    std::function<void()> ready;
  };

  /// What one look at the system has come to.
  struct Outcome {
    bool told = false;         ///< a watch was
    bool interrupted = false;  ///< by a signal
  };

  bool dispatchNext();
  Outcome collect(int milliseconds);
  void hand(const Readiness& readiness);
  bool tellWatches();
  Watched* findWatch(int descriptor);
  bool hasSteadyWatch() const;

  WindowQueue windows_;
  Poller poller_;
  PosixKernel kernel_;
  PosixSockets sockets_;
  std::vector<Watched> watched_;
  std::vector<int> readyWatches_;
  int dispatched_ = 0;  ///< messages since the last look
  int examined_ = 0;    ///< looks at some sockets alone since then
};

}  // namespace zev::posix
