#include "win32/control_windows.h"

#include <algorithm>

#include "runtime/file_lists.h"
#include "win32/file_list_windows.h"

namespace zev::win32 {
namespace {

constexpr COLORREF barColour = RGB(0, 192, 0);
constexpr int dropDownTwips = 1800;
constexpr int iconResource = 1;

struct WindowKind {
  const wchar_t* className;
  DWORD style;
  DWORD extendedStyle;
};

WindowKind labelKind(const ControlDesign& design) {
  if (design.onBar) return {L"STATIC", SS_OWNERDRAW, 0};
  return {L"STATIC", static_cast<DWORD>(SS_NOPREFIX | (design.centred ? SS_CENTER : SS_LEFT)), 0};
}

WindowKind textKind(const ControlDesign& design) {
  DWORD style = WS_TABSTOP | ES_LEFT;
  style |= design.multiLine ? static_cast<DWORD>(ES_MULTILINE | WS_VSCROLL) : ES_AUTOHSCROLL;
  if (design.locked) style |= ES_READONLY;
  return {L"EDIT", style, WS_EX_CLIENTEDGE};
}

WindowKind kindOf(const Control& control) {
  switch (control.kind()) {
    case ControlKind::Label:
      return labelKind(control.design());
    case ControlKind::CommandButton:
      return {L"BUTTON", WS_TABSTOP | BS_PUSHBUTTON, 0};
    case ControlKind::OptionButton:
      return {L"BUTTON", WS_TABSTOP | BS_RADIOBUTTON, 0};
    case ControlKind::CheckBox:
      return {L"BUTTON", WS_TABSTOP | BS_CHECKBOX, 0};
    case ControlKind::Image:
      return {L"STATIC", SS_OWNERDRAW | SS_NOTIFY, 0};
    case ControlKind::ComboBox:
    case ControlKind::DriveListBox:
      return {L"COMBOBOX", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0};
    case ControlKind::DirListBox:
      return {L"LISTBOX", WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
              WS_EX_CLIENTEDGE};
    case ControlKind::TextBox:
      return textKind(control.design());
    case ControlKind::Frame:
      return {containerClass, WS_CLIPCHILDREN, WS_EX_CONTROLPARENT};
    case ControlKind::PictureBox:
      return {containerClass, WS_CLIPCHILDREN,
              static_cast<DWORD>(WS_EX_CONTROLPARENT |
                                 (control.design().border ? WS_EX_STATICEDGE : 0))};
    default:
      return {nullptr, 0, 0};
  }
}

/// The label that is a progress bar in the same container; null if there is none.
const Control* barBeside(const Form& form, const Control& control) {
  const auto found =
      std::find_if(form.Controls().begin(), form.Controls().end(), [&](const Control* each) {
        return each->design().bar && each->container() == control.container();
      });
  return found == form.Controls().end() ? nullptr : *found;
}

void fill(HDC canvas, const RECT& area, COLORREF colour) {
  SetDCBrushColor(canvas, colour);
  FillRect(canvas, &area, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

void drawIcon(const DRAWITEMSTRUCT& item) {
  const int size = static_cast<int>(std::min(item.rcItem.right, item.rcItem.bottom));
  FillRect(item.hDC, &item.rcItem, GetSysColorBrush(COLOR_BTNFACE));
  if (const HICON icon = programIcon(size)) {
    DrawIconEx(item.hDC, 0, 0, icon, size, size, 0, nullptr, DI_NORMAL);
  }
}

void drawBar(const Control* bar, const DRAWITEMSTRUCT& item, int dpi) {
  RECT done = item.rcItem;
  RECT left = item.rcItem;
  done.right = bar == nullptr ? 0 : std::min<LONG>(pixels(bar->Width, dpi), item.rcItem.right);
  left.left = done.right;
  fill(item.hDC, done, barColour);
  FillRect(item.hDC, &left, GetSysColorBrush(COLOR_BTNFACE));
}

int textLength(const Text& text) { return static_cast<int>(text.size()); }

}  // namespace

HICON programIcon(int size) {
  return static_cast<HICON>(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(iconResource),
                                       IMAGE_ICON, size, size, LR_SHARED));
}

HWND makeControlWindow(const Control& control, HWND parent, int id) {
  const WindowKind kind = kindOf(control);
  if (kind.className == nullptr || control.design().bar) return nullptr;
  const DWORD style = WS_CHILD | WS_CLIPSIBLINGS | kind.style | (control.Visible ? WS_VISIBLE : 0) |
                      (control.Enabled ? 0 : WS_DISABLED);
  return CreateWindowExW(kind.extendedStyle | WS_EX_NOPARENTNOTIFY, kind.className, L"", style, 0,
                         0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                         GetModuleHandleW(nullptr), nullptr);
}

int windowHeight(const Control& control, const RECT& place, int dpi) {
  const int dropped = control.dropsDown() ? pixels(dropDownTwips, dpi) : 0;
  return static_cast<int>(place.bottom - place.top) + dropped;
}

Text contentText(const Control& control) {
  for (const char* name : {"Caption", "Text"}) {
    if (const PropertyBase* property = control.findProperty(name)) {
      return std::get<Text>(property->value());
    }
  }
  return {};
}

void showContent(const Control& control, HWND window) {
  if (const auto* combo = dynamic_cast<const ComboBox*>(&control)) {
    showList(*combo, window);
  } else if (const auto* drives = dynamic_cast<const DriveListBox*>(&control)) {
    showDrives(*drives, window);
  } else if (const auto* folders = dynamic_cast<const DirListBox*>(&control)) {
    showFolders(*folders, window);
  } else if (const auto* option = dynamic_cast<const OptionButton*>(&control)) {
    SendMessageW(window, BM_SETCHECK, option->Value ? BST_CHECKED : BST_UNCHECKED, 0);
  } else if (const auto* check = dynamic_cast<const CheckBox*>(&control)) {
    SendMessageW(window, BM_SETCHECK, static_cast<WPARAM>(check->Value.get()), 0);
  }
  const bool listed = control.kind() == ControlKind::ComboBox;
  const Text text = contentText(control);
  if (!listed && windowText(window) != text) SetWindowTextW(window, wide(text));
}

void drawControl(const Form& form, const Control& control, const DRAWITEMSTRUCT& item, int dpi,
                 HFONT font) {
  if (control.kind() == ControlKind::Image) return drawIcon(item);
  drawBar(barBeside(form, control), item, dpi);
  const Text text = contentText(control);
  const HGDIOBJ before = SelectObject(item.hDC, font);
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, GetSysColor(COLOR_BTNTEXT));
  RECT area = item.rcItem;
  DrawTextW(item.hDC, wide(text), textLength(text), &area,
            DT_CENTER | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
  SelectObject(item.hDC, before);
}

char16_t accessKey(TextView caption) {
  for (std::size_t place = 0; place + 1 < caption.size(); ++place) {
    if (caption[place] != u'&') continue;
    if (caption[place + 1] != u'&') return lowerCase(caption.substr(place + 1, 1)).front();
    ++place;
  }
  return 0;
}

// ---- containers

namespace {

bool concernsForm(UINT message) {
  switch (message) {
    case WM_COMMAND:
    case WM_DRAWITEM:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      return true;
    default:
      return false;
  }
}

LRESULT CALLBACK containerProcedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (concernsForm(message)) return SendMessageW(GetParent(window), message, first, second);
  if (message == WM_PRINTCLIENT || message == WM_PAINT) {
    PAINTSTRUCT paint{};
    const HDC canvas = BeginPaint(window, &paint);
    SendMessageW(GetAncestor(window, GA_ROOT), WM_APP, reinterpret_cast<WPARAM>(canvas),
                 reinterpret_cast<LPARAM>(window));
    EndPaint(window, &paint);
    return 0;
  }
  return DefWindowProcW(window, message, first, second);
}

}  // namespace

void registerContainerClass() {
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.lpfnWndProc = containerProcedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = containerClass;
  RegisterClassExW(&description);
}

}  // namespace zev::win32
