#include "win32/processes.h"

#include <vector>

#include "platform/file_system.h"
#include "runtime/error.h"
#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {

// ---- the windows of the desktop

namespace {

HWND desktopWindow(WindowHandle window) { return reinterpret_cast<HWND>(window); }

}  // namespace

WindowHandle Win32Windows::GetWindow(WindowHandle window, std::uint32_t command) {
  return reinterpret_cast<WindowHandle>(::GetWindow(desktopWindow(window), command));
}

std::int32_t Win32Windows::GetWindowTextLengthA(WindowHandle window) {
  return ::GetWindowTextLengthA(desktopWindow(window));
}

std::int32_t Win32Windows::GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) {
  if (size <= 0 || !::IsWindow(desktopWindow(window))) return 0;
  std::vector<char> title(static_cast<std::size_t>(size));
  const int bytes = ::GetWindowTextA(desktopWindow(window), title.data(), size);
  return static_cast<std::int32_t>(
      writeAnswer(buffer, {title.data(), static_cast<std::size_t>(bytes)}));
}

bool Win32Windows::SetForegroundWindow(WindowHandle window) {
  return ::SetForegroundWindow(desktopWindow(window)) != FALSE;
}

bool Win32Windows::BringWindowToTop(WindowHandle window) {
  return ::BringWindowToTop(desktopWindow(window)) != FALSE;
}

}  // namespace zev::win32

// The shell's header needs the system's before it.
#include <shellapi.h>

namespace zev::win32 {

// ---- programs and time

namespace {

constexpr std::intptr_t noShell = 0;

HANDLE processHandle(ProcessHandle process) { return reinterpret_cast<HANDLE>(process); }

[[noreturn]] void raise(SystemError error) {
  const bool missing = error == system_error::fileNotFound || error == system_error::pathNotFound;
  throw RuntimeError(missing ? ErrorNumber::FileNotFound : ErrorNumber::InvalidProcedureCall);
}

/// An argument that is not given, as the system takes it.
const char* orNone(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

Text ownPath() {
  Text path(longestPath, u'\0');
  const DWORD length =
      ::GetModuleFileNameW(nullptr, reinterpret_cast<wchar_t*>(path.data()), longestPath);
  path.resize(length);
  return fromAnsi(toAnsi(writablePath(path)));
}

}  // namespace

// ---- starting

std::int32_t Win32Processes::Shell(TextView commandLine, std::int32_t style) {
  std::string line = ansiArgument(commandLine);
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESHOWWINDOW;
  start.wShowWindow = static_cast<WORD>(style);
  PROCESS_INFORMATION started{};
  if (!::CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &started)) {
    raise(::GetLastError());
  }
  ::CloseHandle(started.hThread);
  ::CloseHandle(started.hProcess);
  return static_cast<std::int32_t>(started.dwProcessId);
}

std::intptr_t Win32Processes::ShellExecuteA(WindowHandle window, TextView verb, TextView file,
                                            TextView parameters, TextView directory,
                                            std::int32_t show) {
  const auto call = shell32_.find<decltype(::ShellExecuteA)>("ShellExecuteA");
  if (call == nullptr) return noShell;
  const std::string what = ansiArgument(verb);
  const std::string with = ansiArgument(parameters);
  const std::string from = ansiArgument(directory);
  return reinterpret_cast<std::intptr_t>(call(reinterpret_cast<HWND>(window), orNone(what),
                                              ansiArgument(file).c_str(), orNone(with),
                                              orNone(from), show));
}

// ---- processes

ProcessHandle Win32Processes::OpenProcess(std::uint32_t access, bool inherit,
                                          std::int32_t process) {
  return reinterpret_cast<ProcessHandle>(
      ::OpenProcess(access, inherit ? TRUE : FALSE, static_cast<DWORD>(process)));
}

std::uint32_t Win32Processes::WaitForSingleObject(ProcessHandle process,
                                                  std::uint32_t milliseconds) {
  return ::WaitForSingleObject(processHandle(process), milliseconds);
}

void Win32Processes::CloseHandle(ProcessHandle process) { ::CloseHandle(processHandle(process)); }

void Win32Processes::Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

std::uint32_t Win32Processes::GetTickCount() { return ::GetTickCount(); }

// ---- the own program

Text Win32Processes::ownFolder() {
  const Text path = ownPath();
  const std::size_t end = path.find_last_of(u'\\');
  if (end == Text::npos) return {};
  const bool root = end == 2;
  return path.substr(0, root ? 3 : end);
}

Text Win32Processes::ownName() {
  const Text path = ownPath();
  const Text name = path.substr(path.find_last_of(u'\\') + 1);
  return name.substr(0, name.find_last_of(u'.'));
}

}  // namespace zev::win32
