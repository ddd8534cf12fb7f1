#include "programs/zevdrive/shown_box.h"

#include <algorithm>

#include "programs/zevdrive/program_windows.h"
#include "programs/zevdrive/screen_picture.h"
#include "programs/zevdrive/window_hand.h"
#include "win32/dialogs.h"

namespace zev::drive {
namespace {

constexpr int tries = 50;
constexpr DWORD iconPause = 10;  // milliseconds

struct IconRow {
  std::int32_t style;
  LPCWSTR name;
};

// clang-format off
const IconRow iconRows[] = {
    {MB_ICONHAND, reinterpret_cast<LPCWSTR>(IDI_HAND)},
    {MB_ICONQUESTION, reinterpret_cast<LPCWSTR>(IDI_QUESTION)},
    {MB_ICONEXCLAMATION, reinterpret_cast<LPCWSTR>(IDI_EXCLAMATION)},
    {MB_ICONASTERISK, reinterpret_cast<LPCWSTR>(IDI_ASTERISK)},
};
// clang-format on

/// One of the system's icons as it looks on a background, to be held against what is on the screen.
Pixels iconPixels(LPCWSTR icon, std::uint32_t background, int width, int height) {
  const Canvas canvas(width, height);
  const RECT area{0, 0, width, height};
  const HBRUSH brush =
      CreateSolidBrush(RGB(background >> 16 & 0xFF, background >> 8 & 0xFF, background & 0xFF));
  FillRect(canvas.context(), &area, brush);
  DeleteObject(brush);
  DrawIconEx(canvas.context(), 0, 0, LoadIconW(nullptr, icon), width, height, 0, nullptr,
             DI_NORMAL);
  return canvas.pixels();
}

}  // namespace

/// The corner of each icon is clear, so that it shows the background of the box.
std::int32_t iconShownBy(HWND window) {
  RECT area{};
  GetClientRect(window, &area);
  const int width = static_cast<int>(area.right);
  const int height = static_cast<int>(area.bottom);
  if (width <= 0 || height <= 0) return 0;
  for (int each = 0; each < tries; ++each, Sleep(iconPause)) {
    const Pixels shown = shownPixels(window, width, height);
    for (const IconRow& row : iconRows) {
      if (iconPixels(row.name, shown.front(), width, height) == shown) return row.style;
    }
  }
  return 0;
}

// ---- the box

namespace {

constexpr int defaultButtonShift = 8;

/// The buttons that the lowest digit of a style stands for, in their order.
const std::vector<BoxAnswer> buttonSets[] = {
    {BoxAnswer::OK},
    {BoxAnswer::OK, BoxAnswer::Cancel},
    {BoxAnswer::Abort, BoxAnswer::Retry, BoxAnswer::Ignore},
    {BoxAnswer::Yes, BoxAnswer::No, BoxAnswer::Cancel},
    {BoxAnswer::Yes, BoxAnswer::No},
    {BoxAnswer::Retry, BoxAnswer::Cancel},
};

bool shows(HWND window) { return (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0; }

/// Reads one window of the box: a button, the icon or a piece of the text. Others are passed over.
BOOL CALLBACK readPart(HWND window, LPARAM box) {
  auto& shown = *reinterpret_cast<ShownBox*>(box);
  const Text name = classOf(window);
  if (!shows(window)) return TRUE;
  if (equalText(name, u"Button")) {
    shown.buttons.push_back(static_cast<BoxAnswer>(GetDlgCtrlID(window)));
  } else if (equalText(name, u"Static")) {
    const bool icon = (GetWindowLongW(window, GWL_STYLE) & SS_TYPEMASK) == SS_ICON;
    if (icon) shown.icon = iconShownBy(window);
    if (!icon) shown.text += textOf(window).value_or(Text());
  }
  return TRUE;
}

/// Does what a press of the button does, without the mouse.
void command(HWND box, int id) {
  PostMessageW(box, WM_COMMAND, MAKEWPARAM(static_cast<WORD>(id), BN_CLICKED),
               reinterpret_cast<LPARAM>(GetDlgItem(box, id)));
}

/// The default button has the focus when a box opens.
BoxAnswer defaultButton(HWND box) {
  GUITHREADINFO state{};
  state.cbSize = sizeof state;
  GetGUIThreadInfo(GetWindowThreadProcessId(box, nullptr), &state);
  if (state.hwndFocus != nullptr && IsChild(box, state.hwndFocus)) {
    return static_cast<BoxAnswer>(GetDlgCtrlID(state.hwndFocus));
  }
  return static_cast<BoxAnswer>(LOWORD(ask(box, DM_GETDEFID).value_or(0)));
}

/// A box that is wider than the screen has its icon beside it.
void bringOntoScreen(HWND box) {
  RECT place{};
  GetWindowRect(box, &place);
  if (place.left >= 0 && place.top >= 0) return;
  SetWindowPos(box, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

/// A box with a single button gives it the number of Cancel on some systems.
void nameSingleButton(ShownBox& box) {
  if (box.buttons.size() != 1) return;
  box.buttons = {BoxAnswer::OK};
  box.byDefault = BoxAnswer::OK;
}

}  // namespace

/// Buttons make the lowest digit, the place of the default one the third, the icon the second. -1
/// for a set of buttons that no style has.
std::int32_t ShownBox::style() const {
  const auto set =
      std::find_if(std::begin(buttonSets), std::end(buttonSets), [&](const auto& each) {
        return each.size() == buttons.size() &&
               std::is_permutation(each.begin(), each.end(), buttons.begin());
      });
  if (set == std::end(buttonSets)) return -1;
  const auto place = std::find(set->begin(), set->end(), byDefault) - set->begin();
  return static_cast<std::int32_t>((set - std::begin(buttonSets)) | place << defaultButtonShift) |
         icon;
}

bool isInputBox(HWND box) { return GetDlgItem(box, win32::input_box::field) != nullptr; }

ShownBox readBox(HWND box) {
  bringOntoScreen(box);
  ShownBox shown;
  shown.window = box;
  shown.title = textOf(box).value_or(Text());
  EnumChildWindows(box, readPart, reinterpret_cast<LPARAM>(&shown));
  shown.byDefault = defaultButton(box);
  nameSingleButton(shown);
  return shown;
}

/// By the Enter key what it stands for, else by the mouse. A box of a text wider than the screen
/// can have its buttons beyond the edge.
void press(const ShownBox& box, BoxAnswer answer) {
  const int named = static_cast<int>(answer);
  const int id = GetDlgItem(box.window, named) == nullptr ? IDCANCEL : named;
  const HWND button = GetDlgItem(box.window, id);
  if (answer == box.byDefault && GetForegroundWindow() == box.window) return pressKey(VK_RETURN);
  const POINT middle = middleOf(button);
  if (button != nullptr && reachedAt(middle, button)) return clickAt(middle);
  command(box.window, id);
}

ShownInput readInput(HWND box) {
  const auto part = [&](int id) { return textOf(GetDlgItem(box, id)).value_or(Text()); };
  return {box, part(win32::input_box::prompt), textOf(box).value_or(Text()),
          part(win32::input_box::field)};
}

void enter(const ShownInput& box, const Text& text) {
  SendMessageW(GetDlgItem(box.window, win32::input_box::field), WM_SETTEXT, 0,
               reinterpret_cast<LPARAM>(text.c_str()));
  command(box.window, IDOK);
}

void cancel(const ShownInput& box) { command(box.window, IDCANCEL); }

}  // namespace zev::drive
