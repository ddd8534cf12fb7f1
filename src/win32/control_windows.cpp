#include "win32/control_windows.h"

#include <algorithm>
#include <vector>

#include "runtime/controls.h"
#include "win32/ansi.h"
#include "win32/system_library.h"

namespace zev::win32 {

RECT pixelPlace(const Control& control, int dpi) {
  return {pixels(control.Left, dpi), pixels(control.Top, dpi),
          pixels(control.Left + control.Width, dpi), pixels(control.Top + control.Height, dpi)};
}

int systemDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = screen == nullptr ? usualDpi : GetDeviceCaps(screen, LOGPIXELSX);
  if (screen != nullptr) ReleaseDC(nullptr, screen);
  return dpi > 0 ? dpi : usualDpi;
}

int windowDpi(HWND window) {
  SystemLibrary user32("user32.dll");
  const auto ask = user32.find<UINT WINAPI(HWND)>("GetDpiForWindow");
  const UINT dpi = ask == nullptr ? 0 : ask(window);
  return dpi == 0 ? systemDpi() : static_cast<int>(dpi);
}

Text windowText(HWND window) {
  std::wstring buffer(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  const int length = GetWindowTextW(window, buffer.data(), static_cast<int>(buffer.size()));
  return Text(buffer.begin(), buffer.begin() + length);
}

// ---- the windows of controls

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

/// The class and styles by which the system draws a kind of control; none for those that their
/// container draws.
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

/// Writes into the window what the control holds. A text that is there already is not written
/// again: the window would tell of it as if the person had typed it.
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

/// Images and what lies on a progress bar are drawn here; all else the system draws.
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

/// What a control tells the window that it lies in, though the form deals with it.
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

/// A container passes on what its controls tell it, and has the form draw what has no window of its
/// own.
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

// ---- lists of entries, drives and folders

namespace {

constexpr int letters = 26;
constexpr std::size_t driveLength = 2;
constexpr std::size_t labelSize = 64;
constexpr TextView levelIndent = u"  ";

WPARAM asPlace(std::size_t place) { return static_cast<WPARAM>(place); }

LPARAM asText(const Text& text) { return reinterpret_cast<LPARAM>(text.c_str()); }

// ---- drives

Text labelOf(const Text& drive) {
  wchar_t label[labelSize] = {};
  const Text root = join(drive, u"\\");
  if (!GetVolumeInformationW(wide(root), label, labelSize, nullptr, nullptr, nullptr, nullptr, 0)) {
    return {};
  }
  return Text(label, label + wcslen(label));
}

bool listed(const Text& drive) {
  const Text root = join(drive, u"\\");
  return GetDriveTypeW(wide(root)) >= DRIVE_REMOVABLE;
}

std::vector<Text> listedDrives() {
  std::vector<Text> drives;
  const DWORD present = GetLogicalDrives();
  for (int place = 0; place < letters; ++place) {
    const Text drive{static_cast<char16_t>(u'a' + place), u':'};
    if ((present >> place & 1) != 0 && listed(drive)) drives.push_back(drive);
  }
  return drives;
}

/// A drive that waits for its medium is not asked for a label.
Text entryOf(const Text& drive) {
  const Text root = join(drive, u"\\");
  const Text label = GetDriveTypeW(wide(root)) == DRIVE_FIXED ? labelOf(drive) : Text();
  return label.empty() ? drive : join(drive, u" [", label, u"]");
}

// ---- folders

/// The opened folder's levels, from the root down.
std::vector<Text> levelsOf(const Text& path) {
  std::vector<Text> levels;
  std::size_t end = std::min(path.find(u'\\'), path.size());
  levels.push_back(path.substr(0, end + 1));
  while (end + 1 < path.size()) {
    const std::size_t start = end + 1;
    end = std::min(path.find(u'\\', start), path.size());
    levels.push_back(path.substr(start, end - start));
  }
  return levels;
}

bool shown(const WIN32_FIND_DATAA& entry) {
  const std::string name = entry.cFileName;
  const DWORD hidden = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
         (entry.dwFileAttributes & hidden) == 0 && name != "." && name != ".." &&
         name.find('?') == std::string::npos;  // a name that the code page cannot write
}

/// By the calls of the code page, so that only folders are shown that the program can open. Sorted
/// without regard to case.
std::vector<Text> foldersIn(const Text& path) {
  std::vector<Text> names;
  WIN32_FIND_DATAA entry{};
  const std::string pattern = toAnsi(join(withoutTrailing(path, u'\\'), u"\\*"));
  const HANDLE search = FindFirstFileA(pattern.c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return names;
  do {
    if (shown(entry)) names.push_back(fromAnsi(entry.cFileName));
  } while (FindNextFileA(search, &entry));
  FindClose(search);
  std::sort(names.begin(), names.end(), [](const Text& first, const Text& second) {
    return upperCase(first) < upperCase(second);
  });
  return names;
}

Text indented(std::size_t level, const Text& name) {
  Text line;
  for (std::size_t each = 0; each < level; ++each) line += levelIndent;
  return line + name;
}

}  // namespace

void showList(const ComboBox& combo, HWND window) {
  SendMessageW(window, CB_RESETCONTENT, 0, 0);
  for (std::int32_t place = 0; place < combo.ListCount(); ++place) {
    SendMessageW(window, CB_ADDSTRING, 0, asText(combo.List(place)));
  }
  SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(combo.ListIndex()), 0);
}

/// No drive is chosen in the list if the control's own is not there any more.
void showDrives(const DriveListBox& drives, HWND window) {
  SendMessageW(window, CB_RESETCONTENT, 0, 0);
  const std::vector<Text> present = listedDrives();
  for (const Text& drive : present) SendMessageW(window, CB_ADDSTRING, 0, asText(entryOf(drive)));
  const auto chosen = std::find(present.begin(), present.end(), drives.Drive());
  const bool known = chosen != present.end();
  SendMessageW(
      window, CB_SETCURSEL,
      known ? asPlace(static_cast<std::size_t>(chosen - present.begin())) : static_cast<WPARAM>(-1),
      0);
}

Text driveAt(HWND window, int place) {
  const LRESULT length = SendMessageW(window, CB_GETLBTEXTLEN, static_cast<WPARAM>(place), 0);
  if (length == CB_ERR) return {};
  std::wstring entry(static_cast<std::size_t>(length) + 1, L'\0');
  SendMessageW(window, CB_GETLBTEXT, static_cast<WPARAM>(place),
               reinterpret_cast<LPARAM>(entry.data()));
  return Text(entry.begin(), entry.begin() + driveLength);
}

/// The levels down to the opened folder, then what lies in it; drawn once, when all of it is there.
void showFolders(const DirListBox& folders, HWND window) {
  SendMessageW(window, WM_SETREDRAW, FALSE, 0);
  SendMessageW(window, LB_RESETCONTENT, 0, 0);
  std::size_t level = 0;
  if (!folders.Path().empty()) {
    for (const Text& name : levelsOf(folders.Path())) {
      SendMessageW(window, LB_ADDSTRING, 0, asText(indented(level++, name)));
    }
    SendMessageW(window, LB_SETCURSEL, asPlace(level - 1), 0);
    for (const Text& name : foldersIn(folders.Path())) {
      SendMessageW(window, LB_ADDSTRING, 0, asText(indented(level, name)));
    }
  }
  SendMessageW(window, WM_SETREDRAW, TRUE, 0);
  InvalidateRect(window, nullptr, TRUE);
}

/// A line is a level of the opened folder, or a folder in it: which one shows by its place.
Text folderAt(const DirListBox& folders, HWND window, int place) {
  const std::vector<Text> levels = levelsOf(folders.Path());
  Text path = levels.front();
  for (std::size_t level = 1; level < levels.size() && level <= static_cast<std::size_t>(place);
       ++level) {
    path = join(withoutTrailing(path, u'\\'), u"\\", levels[level]);
  }
  if (static_cast<std::size_t>(place) < levels.size()) return path;
  const LRESULT length = SendMessageW(window, LB_GETTEXTLEN, static_cast<WPARAM>(place), 0);
  if (length == LB_ERR) return path;
  std::wstring entry(static_cast<std::size_t>(length) + 1, L'\0');
  SendMessageW(window, LB_GETTEXT, static_cast<WPARAM>(place),
               reinterpret_cast<LPARAM>(entry.data()));
  const std::size_t indent = levels.size() * levelIndent.size();
  return join(withoutTrailing(path, u'\\'), u"\\",
              Text(entry.begin() + static_cast<std::ptrdiff_t>(indent), entry.end() - 1));
}

}  // namespace zev::win32
