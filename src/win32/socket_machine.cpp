#include "win32/socket_machine.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

using Clock = std::chrono::steady_clock;

/// Milliseconds until a moment; for ever if there is none.
DWORD left(bool forEver, Clock::time_point end) {
  if (forEver) return 0xFFFFFFFF;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
  return static_cast<DWORD>(std::max<decltype(left)>(left, 0));
}

bool isSignalled(void* object) { return ::WaitForSingleObject(object, 0) == WAIT_OBJECT_0; }

}  // namespace

/// Watches come first, so that messages without end leave room for them.
bool SocketMachine::dispatch(int timeoutMilliseconds) {
  const bool forEver = timeoutMilliseconds < 0;
  const auto end = Clock::now() + std::chrono::milliseconds(timeoutMilliseconds);
  for (;;) {
    const bool told = tellWatches();
    if (dispatchMessage() || told) return true;
    const DWORD wait = left(forEver, end);
    if (wait == 0) return false;
    std::vector<HANDLE> objects;
    for (const Watched& each : watched_) objects.push_back(each.object);
    ::MsgWaitForMultipleObjects(static_cast<DWORD>(objects.size()), objects.data(), FALSE, wait,
                                QS_ALLINPUT);
  }
}

bool SocketMachine::dispatchMessage() {
  MSG message;
  if (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) == FALSE) return false;
  ::DispatchMessageA(&message);
  return true;
}

void SocketMachine::watch(void* object, std::function<void()> ready) {
  watched_.push_back({object, std::move(ready)});
}

void SocketMachine::unwatch(void* object) {
  std::erase_if(watched_, [&](const Watched& each) { return each.object == object; });
}

/// The first one that is ready: it may end its own watch, and others.
bool SocketMachine::tellWatches() {
  const auto found = std::find_if(watched_.begin(), watched_.end(),
                                  [](const Watched& each) { return isSignalled(each.object); });
  if (found == watched_.end()) return false;
  const std::function<void()> ready = found->ready;
  ready();
  return true;
}

}  // namespace zev::win32
