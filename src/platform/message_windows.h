#pragma once

#include <cstdint>
#include <functional>

#include "platform/processes.h"

namespace zev {

/// Index of a window's procedure for GetWindowLongA and SetWindowLongA.
inline constexpr std::int32_t windowProcedureIndex = -4;

/// The four arguments that a window procedure gets.
struct WindowMessage {
  WindowHandle window = 0;
  std::uint32_t message = 0;
  std::uintptr_t wParam = 0;
  std::intptr_t lParam = 0;
};

/// Takes the place of a window procedure whose machine code this process cannot enter.
class MessageRoutine {
 public:
  virtual ~MessageRoutine() = default;
  /// The result of the message. Must not throw.
  virtual std::intptr_t enter(const WindowMessage& message) = 0;
};

/// Hidden windows of the program, whose procedures can be replaced to get at their messages. All
/// calls and all messages are on the one thread that dispatches.
class MessageWindows {
 public:
  virtual ~MessageWindows() = default;

  /// A window of a class of the system, without style, place, size, parent, menu or parameter; 0 on
  /// failure.
  virtual WindowHandle CreateWindowExA(TextView className, TextView caption) = 0;
  /// Ends a window. Its procedure gets WM_DESTROY and WM_NCDESTROY before this returns; what was
  /// posted to it vanishes. False if there is no such window.
  virtual bool DestroyWindow(WindowHandle window) = 0;

  /// The procedure of a window (windowProcedureIndex, the only index that is served); 0 on failure.
  virtual std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) = 0;
  /// Gives the window another procedure and returns the one that it had; 0 on failure. With the
  /// procedure 0 a window does what the system does by default.
  virtual std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                        std::uintptr_t procedure) = 0;
  /// Enters a procedure with a message.
  virtual std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) = 0;

  /// Whether procedures are entered as 32-bit x86 code (stdcall). If not, an address of such code
  /// needs a routine in its place (`standIn`).
  virtual bool entersMachineCode() const = 0;
  /// From now on `routine`, borrowed, is entered where the procedure `address` would be; null ends
  /// that.
  virtual void standIn(std::uintptr_t address, MessageRoutine* routine) = 0;
  /// Messages posted to the window are dropped before dispatch if `drops` says so, until the window
  /// is gone. An empty function ends that.
  virtual void dropBeforeDispatch(WindowHandle window,
                                  std::function<bool(const WindowMessage&)> drops) = 0;
};

}  // namespace zev
