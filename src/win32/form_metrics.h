#pragma once

#include <cstdint>

#include "runtime/controls.h"
#include "win32/windows_api.h"

namespace zev::win32 {

inline constexpr int twipsPerInch = 1440;
inline constexpr int usualDpi = 96;

/// Twips in pixels of a screen of `dpi` dots an inch.
inline int pixels(std::int32_t twips, int dpi) { return MulDiv(twips, dpi, twipsPerInch); }

/// The place of a control within its container, in pixels.
RECT pixelPlace(const Control& control, int dpi);

/// Dots an inch of the whole system, and of the screen on which a window lies where the system
/// tells them apart.
int systemDpi();
int windowDpi(HWND window);

/// The text of a window.
Text windowText(HWND window);

}  // namespace zev::win32
