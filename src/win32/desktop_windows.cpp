#include "win32/desktop_windows.h"

#include <vector>

#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

HWND windowOf(WindowHandle window) { return reinterpret_cast<HWND>(window); }

}  // namespace

WindowHandle Win32Windows::GetWindow(WindowHandle window, std::uint32_t command) {
  return reinterpret_cast<WindowHandle>(::GetWindow(windowOf(window), command));
}

std::int32_t Win32Windows::GetWindowTextLengthA(WindowHandle window) {
  return ::GetWindowTextLengthA(windowOf(window));
}

std::int32_t Win32Windows::GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) {
  if (size <= 0 || !::IsWindow(windowOf(window))) return 0;
  std::vector<char> title(static_cast<std::size_t>(size));
  const int bytes = ::GetWindowTextA(windowOf(window), title.data(), size);
  return static_cast<std::int32_t>(
      writeAnswer(buffer, {title.data(), static_cast<std::size_t>(bytes)}));
}

bool Win32Windows::SetForegroundWindow(WindowHandle window) {
  return ::SetForegroundWindow(windowOf(window)) != FALSE;
}

bool Win32Windows::BringWindowToTop(WindowHandle window) {
  return ::BringWindowToTop(windowOf(window)) != FALSE;
}

}  // namespace zev::win32
