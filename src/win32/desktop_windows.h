#pragma once

#include "platform/windows.h"

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

}  // namespace zev::win32
