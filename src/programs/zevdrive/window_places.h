#pragma once

#include "scenario/outside_view.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// Where a control's window is in what it lies in. `dropsDown`: the system gives it its height.
scenario::SeenPlace placeOf(HWND control, bool dropsDown);

/// Size of what lies within a window's frame, in pixels.
SIZE insideOf(HWND window);

/// True if a control that is visible can be seen: it is not empty, lies within its form and what is
/// between, and is not all covered by its neighbours; what takes the focus is covered nowhere.
bool inSight(HWND control, HWND form, bool takesFocus);

/// The middle of a window, as the screen counts.
POINT middleOf(HWND window);

}  // namespace zev::drive
