#pragma once

#include <map>
#include <memory>
#include <set>

#include "platform/message_windows.h"

namespace zev::win32 {

/// Hidden windows of Windows. A procedure that a routine replaces, and every one of the system, is
/// entered through one procedure of this class, which knows the window's own address for it;
/// only machine code becomes the window's procedure as it stands. Windows that others made are
/// refused.
class Win32MessageWindows final : public MessageWindows {
 public:
  Win32MessageWindows();
  /// Ends the windows that are left. No routine hears of it.
  ~Win32MessageWindows() override;
  Win32MessageWindows(const Win32MessageWindows&) = delete;
  Win32MessageWindows& operator=(const Win32MessageWindows&) = delete;

  WindowHandle CreateWindowExA(TextView className, TextView caption) override;
  bool DestroyWindow(WindowHandle window) override;
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override;
  /// Where machine code cannot be entered, an address that no routine replaces is refused.
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override;
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override;
  /// In a process of 32 bits.
  bool entersMachineCode() const override;
  void standIn(std::uintptr_t address, MessageRoutine* routine) override;
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override;

  /// Windows that have not been destroyed.
  std::size_t openWindows() const { return windows_.size(); }

 private:
  struct Window;
  struct Entries;

  bool isSystems(std::uintptr_t procedure) const { return systems_.count(procedure) != 0; }
  bool standsIn(std::uintptr_t procedure) const { return routines_.count(procedure) != 0; }
  Window* find(WindowHandle window, std::int32_t index) const;
  std::uintptr_t procedureOf(const Window& window) const;
  bool take(WindowHandle window);
  void forget(WindowHandle window);
  void followRules();

  std::map<WindowHandle, std::unique_ptr<Window>> windows_;
  std::map<std::uintptr_t, MessageRoutine*> routines_;
  std::set<std::uintptr_t> systems_;  ///< procedures of the system that windows had or got
  void* hook_ = nullptr;              ///< of the thread's message loops, while a rule is in force
};

}  // namespace zev::win32
