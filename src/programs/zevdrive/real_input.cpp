#include "programs/zevdrive/real_input.h"

#include "programs/zevdrive/program_windows.h"

namespace zev::drive {
namespace {

constexpr ULONGLONG longestClick = 5000;  // milliseconds
constexpr DWORD betweenAsks = 1;
constexpr DWORD pointerRest = 20;

/// A point as the mouse tells it: in parts of the whole screen.
LONG partOf(LONG pixel, int metric) {
  constexpr LONG whole = 65536;
  const LONG size = GetSystemMetrics(metric);
  return (pixel * whole + size - 1) / size;
}

/// Moves the mouse there and presses or leaves its button, in one.
void mouse(POINT point, DWORD what) {
  INPUT input{};
  input.type = INPUT_MOUSE;
  input.mi.dx = partOf(point.x, SM_CXSCREEN);
  input.mi.dy = partOf(point.y, SM_CYSCREEN);
  input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | what;
  SendInput(1, &input, sizeof input);
}

/// The pointer is brought there beforehand, and all that tells of it heard: else a window that
/// opens or closes under its old place would tell of a move away in the midst of the click.
void bringPointer(POINT point) {
  SetCursorPos(point.x, point.y);
  Sleep(pointerRest);
}

/// Input reaches a program when it gets round to it.
bool waitUntilPushed(HWND button, bool pushed) {
  for (const ULONGLONG begin = GetTickCount64(); GetTickCount64() - begin < longestClick;
       Sleep(betweenAsks)) {
    const auto state = ask(button, BM_GETSTATE);
    if (state && ((*state & BST_PUSHED) != 0) == pushed) return true;
    if (!IsWindow(button)) return !pushed;
  }
  return false;
}

INPUT key(WORD virtualKey, DWORD what) {
  INPUT input{};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = virtualKey;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = what;
  return input;
}

}  // namespace

void clickAt(POINT point) {
  bringPointer(point);
  mouse(point, MOUSEEVENTF_LEFTDOWN);
  mouse(point, MOUSEEVENTF_LEFTUP);
}

bool clickButtonAt(POINT point, HWND button) {
  bringPointer(point);
  mouse(point, MOUSEEVENTF_LEFTDOWN);
  const bool down = waitUntilPushed(button, true);
  mouse(point, MOUSEEVENTF_LEFTUP);
  return waitUntilPushed(button, false) && down;
}

void pressKey(WORD virtualKey) {
  INPUT inputs[] = {key(virtualKey, 0), key(virtualKey, KEYEVENTF_KEYUP)};
  SendInput(2, inputs, sizeof inputs[0]);
}

bool reachedAt(POINT point, HWND window) {
  const HWND found = WindowFromPoint(point);
  return found == window || IsChild(window, found) || GetParent(window) == found;
}

}  // namespace zev::drive
