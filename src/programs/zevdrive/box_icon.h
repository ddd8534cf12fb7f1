#pragma once

#include <cstdint>

#include "win32/windows_api.h"

namespace zev::drive {

/// Which of the system's icons a window shows on the screen, as the style of a message box has it:
/// 16, 32, 48 or 64. 0 if it shows none of them, even after some time.
std::int32_t iconShownBy(HWND window);

}  // namespace zev::drive
