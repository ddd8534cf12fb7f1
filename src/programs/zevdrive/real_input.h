#pragma once

#include "win32/windows_api.h"

namespace zev::drive {

/// A click with the left button of the mouse at a point of the screen.
void clickAt(POINT point);

/// The same on a button there: false if it does not go down and up again in time.
bool clickButtonAt(POINT point, HWND button);

/// A key, down and up, for whichever window has the focus.
void pressKey(WORD virtualKey);

/// True if the mouse would reach the window there: nothing of another one lies in front of it.
bool reachedAt(POINT point, HWND window);

}  // namespace zev::drive
