#pragma once

#include <functional>
#include <vector>

#include "win32/kernel.h"
#include "win32/message_windows.h"
#include "win32/sockets.h"

namespace zev::win32 {

/// Windows as the socket component needs it: hidden windows, kernel and sockets of one thread, and
/// a loop that dispatches the thread's messages, for programs that have no other.
class SocketMachine {
 public:
  SocketMachine() = default;
  SocketMachine(const SocketMachine&) = delete;
  SocketMachine& operator=(const SocketMachine&) = delete;

  /// The services that modEventSocket is made with.
  Win32MessageWindows& windows() { return windows_; }
  Win32Kernel& kernel() { return kernel_; }
  Win32Sockets& sockets() { return sockets_; }

  /// Dispatches one message of the thread. If none waits, waits for one, or for a watched object,
  /// that many milliseconds at most, for ever if negative. True if a message was dispatched or a
  /// watch was told.
  bool dispatch(int timeoutMilliseconds);

  /// Calls `ready` from within `dispatch` while an object of the system is signalled. The object is
  /// a handle that can be waited for, and is borrowed. At most 63 at once.
  void watch(void* object, std::function<void()> ready);
  /// Ends the watch of an object, if it has one. A callback may do this.
  void unwatch(void* object);

 private:
  struct Watched {
    void* object;
    std::function<void()> ready;
  };

  bool dispatchMessage();
  bool tellWatches();

  Win32MessageWindows windows_;
  Win32Kernel kernel_;
  Win32Sockets sockets_;
  std::vector<Watched> watched_;
};

}  // namespace zev::win32
