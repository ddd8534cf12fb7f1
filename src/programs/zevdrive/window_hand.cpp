#include "programs/zevdrive/window_hand.h"

#include "programs/zevdrive/program_windows.h"
#include "programs/zevdrive/running_program.h"
#include "win32/control_windows.h"

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

/// The pointer is brought there beforehand, and the messages that say so are waited for: else a
/// window that opens or closes under its old place would tell of a move away in the midst of the
/// click.
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

// ---- what a person does to windows

namespace {

bool isButton(ControlKind kind) {
  return kind == ControlKind::CommandButton || kind == ControlKind::OptionButton ||
         kind == ControlKind::CheckBox;
}

/// The messages of a list box and of a list that drops down.
struct ListMessages {
  UINT count, textLength, text, choice, choose;
};
constexpr ListMessages listBox{LB_GETCOUNT, LB_GETTEXTLEN, LB_GETTEXT, LB_GETCURSEL, LB_SETCURSEL};
constexpr ListMessages comboBox{CB_GETCOUNT, CB_GETLBTEXTLEN, CB_GETLBTEXT, CB_GETCURSEL,
                                CB_SETCURSEL};

const ListMessages& messagesOf(const Control& control) {
  return control.kind() == ControlKind::DirListBox ? listBox : comboBox;
}

}  // namespace

bool WindowHand::reaches(const Form& form) const {
  const HWND window = windows_.windowOf(form);
  return window != nullptr && IsWindowVisible(window) && IsWindowEnabled(window) &&
         windows_.box() == nullptr;
}

bool WindowHand::reaches(const Form& form, const Control& control) const {
  const HWND own = windows_.windowOf(form, control);
  if (own == nullptr || !reaches(form) || !IsWindowVisible(own)) return false;
  for (HWND each = own; each != windows_.windowOf(form); each = GetParent(each)) {
    if (!IsWindowEnabled(each)) return false;
  }
  return true;
}

/// By the mouse, where the control is. Of a list a click would drop it down, and of a text box move
/// the caret: they only take the focus.
void WindowHand::click(const Form& form, const Control& control) const {
  if (!reaches(form, control)) return;
  if (takesFocus(control.kind()) && !isButton(control.kind())) return focus(form, control);
  const HWND window = windows_.windowOf(form, control);
  const POINT middle = middleOf(window);
  if (!reachedAt(middle, window)) SetForegroundWindow(windows_.windowOf(form));
  if (!reachedAt(middle, window)) {
    throw DriveError(toUtf8(control.name()) + " lies under other windows");
  }
  if (!isButton(control.kind())) return clickAt(middle);
  if (!clickButtonAt(middle, window)) {
    throw DriveError(toUtf8(control.name()) + " does not hear the mouse");
  }
}

/// The program hears of a new focus when its message loop turns.
void WindowHand::focus(const Form& form, const Control& control) const {
  if (!reaches(form, control) || !takesFocus(control.kind())) return;
  const HWND window = windows_.windowOf(form, control);
  const DWORD thread = GetWindowThreadProcessId(window, nullptr);
  AttachThreadInput(GetCurrentThreadId(), thread, TRUE);
  SetForegroundWindow(windows_.windowOf(form));
  SetFocus(window);
  AttachThreadInput(GetCurrentThreadId(), thread, FALSE);
  PostMessageW(windows_.windowOf(form), WM_NULL, 0, 0);
}

/// Written in one piece, with the caret at its end as after typing.
void WindowHand::type(const Form& form, const Control& control, const Text& text) const {
  const HWND window = windows_.windowOf(form, control);
  if (!reaches(form, control)) return;
  if ((GetWindowLongW(window, GWL_STYLE) & ES_READONLY) != 0) return;
  focus(form, control);
  SendMessageW(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
  SendMessageW(window, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
}

void WindowHand::close(const Form& form) const {
  if (reaches(form)) PostMessageW(windows_.windowOf(form), WM_CLOSE, 0, 0);
}

std::vector<Text> WindowHand::entries(const Form& form, const Control& control) const {
  const HWND window = windows_.windowOf(form, control);
  const ListMessages& messages = messagesOf(control);
  std::vector<Text> all;
  const LRESULT count = SendMessageW(window, messages.count, 0, 0);
  for (LRESULT place = 0; place < count; ++place) {
    const auto index = static_cast<WPARAM>(place);
    const LRESULT length = SendMessageW(window, messages.textLength, index, 0);
    std::wstring entry(static_cast<std::size_t>(length) + 1, L'\0');
    SendMessageW(window, messages.text, index, reinterpret_cast<LPARAM>(entry.data()));
    all.emplace_back(entry.begin(), entry.end() - 1);
  }
  return all;
}

int WindowHand::chosen(const Form& form, const Control& control) const {
  return static_cast<int>(
      SendMessageW(windows_.windowOf(form, control), messagesOf(control).choice, 0, 0));
}

void WindowHand::select(const Form& form, const Control& control, int place) const {
  focus(form, control);
  const HWND window = windows_.windowOf(form, control);
  SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(place), 0);
  notify(window, CBN_SELCHANGE);
}

void WindowHand::open(const Form& form, const Control& control, int place) const {
  focus(form, control);
  const HWND window = windows_.windowOf(form, control);
  SendMessageW(window, LB_SETCURSEL, static_cast<WPARAM>(place), 0);
  notify(window, LBN_DBLCLK);
}

/// What the control itself would tell what it lies in.
void WindowHand::notify(HWND window, int code) const {
  PostMessageW(GetParent(window), WM_COMMAND,
               MAKEWPARAM(static_cast<WORD>(GetDlgCtrlID(window)), static_cast<WORD>(code)),
               reinterpret_cast<LPARAM>(window));
}

}  // namespace zev::drive
