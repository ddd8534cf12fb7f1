#pragma once

#include "platform/processes.h"
#include "win32/system_library.h"

namespace zev::win32 {

/// The windows of the desktop.
class Win32Windows final : public Windows {
 public:
  WindowHandle GetWindow(WindowHandle window, std::uint32_t command) override;
  std::int32_t GetWindowTextLengthA(WindowHandle window) override;
  std::int32_t GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) override;
  bool SetForegroundWindow(WindowHandle window) override;
  bool BringWindowToTop(WindowHandle window) override;
};

/// The programs of Windows.
class Win32Processes final : public Processes {
 public:
  std::int32_t Shell(TextView commandLine, std::int32_t style) override;
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit, std::int32_t process) override;
  std::uint32_t WaitForSingleObject(ProcessHandle process, std::uint32_t milliseconds) override;
  void CloseHandle(ProcessHandle process) override;
  void Sleep(std::uint32_t milliseconds) override;
  std::uint32_t GetTickCount() override;
  std::intptr_t ShellExecuteA(WindowHandle window, TextView verb, TextView file,
                              TextView parameters, TextView directory, std::int32_t show) override;
  Text ownFolder() override;
  Text ownName() override;

 private:
  SystemLibrary shell32_{"shell32.dll"};
};

}  // namespace zev::win32
