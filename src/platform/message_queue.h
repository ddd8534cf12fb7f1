#pragma once

#include <deque>
#include <map>

#include "platform/message_windows.h"

namespace zev {

/// Windows of a system that has none: a queue of posted messages, and a procedure for each window.
/// One thread.
class MessageQueue : public MessageWindows {
 public:
  /// The procedure that a window is born with. It answers every message with 0.
  static constexpr std::uintptr_t defaultProcedure = 0x10;

  WindowHandle CreateWindowExA(TextView className, TextView caption) override;
  bool DestroyWindow(WindowHandle window) override;
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override;
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override;
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override;
  bool entersMachineCode() const override { return false; }
  void standIn(std::uintptr_t address, MessageRoutine* routine) override;
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override;

  /// Queues a message. False if there is no such window.
  bool post(const WindowMessage& message);
  /// Enters the window's procedure at once.
  std::intptr_t send(const WindowMessage& message);
  /// Dispatches the oldest posted message. False if none waited.
  bool dispatch();
  /// Posted messages that wait.
  std::size_t waiting() const { return queue_.size(); }
  /// Windows that have not been destroyed.
  std::size_t openWindows() const { return windows_.size(); }

 protected:
  /// Enters a procedure that no routine replaces. Here such an address leads nowhere: 0.
  virtual std::intptr_t enterCode(std::uintptr_t procedure, const WindowMessage& message);

 private:
  struct Window {
    std::uintptr_t procedure = defaultProcedure;
    std::function<bool(const WindowMessage&)> drops;
  };

  std::map<WindowHandle, Window> windows_;
  std::map<std::uintptr_t, MessageRoutine*> routines_;
  std::deque<WindowMessage> queue_;
  WindowHandle lastHandle_ = 0x10060;
};

}  // namespace zev
