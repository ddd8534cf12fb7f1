#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// A window's handle; 0 is none.
using WindowHandle = std::uintptr_t;

inline constexpr std::uint32_t GW_HWNDFIRST = 0;
inline constexpr std::uint32_t GW_HWNDNEXT = 2;

/// The windows of the desktop, those of other programs included.
class Windows {
 public:
  virtual ~Windows() = default;

  /// The window that stands to `window` as the command says: the first one of its level, or the
  /// next. 0 if there is none.
  virtual WindowHandle GetWindow(WindowHandle window, std::uint32_t command) = 0;
  /// Bytes of the title in the code page of the system, at least. 0 without a title.
  virtual std::int32_t GetWindowTextLengthA(WindowHandle window) = 0;
  /// The title into a buffer of `size` bytes, the terminating NUL included, cut to fit. Returns the
  /// units of what fitted, without the NUL.
  virtual std::int32_t GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) = 0;
  /// Both bring a window in front of the others, this one gives it the keyboard as well. False if
  /// the system refuses.
  virtual bool SetForegroundWindow(WindowHandle window) = 0;
  virtual bool BringWindowToTop(WindowHandle window) = 0;
};

inline constexpr std::uint32_t SYNCHRONIZE = 1048576;
inline constexpr std::uint32_t INFINITE = 0xFFFFFFFF;

/// Style of the window that a program is started with: normal, with the focus.
inline constexpr std::int32_t normalWindow = 1;

/// A handle of a process; 0 is none.
using ProcessHandle = std::uintptr_t;

/// Starting programs and waiting.
class Processes {
 public:
  virtual ~Processes() = default;

  /// The run-time's statement: starts a command line with a window of that style (1: normal, with
  /// focus), does not wait, and returns the identifier of the process. A program that is not there
  /// is error 53, one that cannot be started error 5.
  virtual std::int32_t Shell(TextView commandLine, std::int32_t style) = 0;
  /// 0 on failure.
  virtual ProcessHandle OpenProcess(std::uint32_t access, bool inherit, std::int32_t process) = 0;
  /// Waits until the process has ended, at most that many milliseconds. 0 if it has, 258 if the
  /// time is over, 0xFFFFFFFF on failure.
  virtual std::uint32_t WaitForSingleObject(ProcessHandle process, std::uint32_t milliseconds) = 0;
  /// Gives a handle back; the process goes on.
  virtual void CloseHandle(ProcessHandle process) = 0;
  /// Stands still for that many milliseconds: no message is dispatched meanwhile.
  virtual void Sleep(std::uint32_t milliseconds) = 0;
  /// Milliseconds since the system was started, modulo 2^32.
  virtual std::uint32_t GetTickCount() = 0;
  /// Opens a file or folder with the program of its type. Above 32 for success.
  virtual std::intptr_t ShellExecuteA(WindowHandle window, TextView verb, TextView file,
                                      TextView parameters, TextView directory,
                                      std::int32_t show) = 0;
  /// Folder of the program's own file, without a trailing backslash but for a root, and the name of
  /// that file without its extension: both of the short form, if there is one, of a path that the
  /// code page of the system cannot write.
  virtual Text ownFolder() = 0;
  virtual Text ownName() = 0;
};

}  // namespace zev
