#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "socket/instances.h"

namespace zev::socket_bench {

/// Who notes the notifications that reach it, and does something meanwhile if it is told to.
class Target final : public NotificationTarget {
 public:
  struct Arguments {
    std::int32_t hwnd, uMsg, wParam, lParam;
    bool operator==(const Arguments&) const = default;
  };

  std::vector<Arguments> taken;
  std::function<void()> during;
  std::int32_t answer = 0;

  std::int32_t WndProc(std::int32_t hwnd, std::int32_t uMsg, std::int32_t wParam,
                       std::int32_t lParam) override {
    taken.push_back({hwnd, uMsg, wParam, lParam});
    const std::function<void()> action = during;
    if (action) action();
    return answer;
  }
};

/// A procedure of a window that notes what reaches it.
class RecordingRoutine final : public MessageRoutine {
 public:
  std::vector<WindowMessage> taken;
  std::function<void()> during;
  std::intptr_t answer = 0;

  std::intptr_t enter(const WindowMessage& message) override {
    taken.push_back(message);
    const std::function<void()> action = during;
    if (action) action();
    return answer;
  }
};

}  // namespace zev::socket_bench
