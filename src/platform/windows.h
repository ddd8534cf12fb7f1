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
  virtual bool SetForegroundWindow(WindowHandle window) = 0;
  virtual bool BringWindowToTop(WindowHandle window) = 0;
};

}  // namespace zev
