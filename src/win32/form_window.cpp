#include "win32/form_window.h"

#include <algorithm>
#include <utility>

#include "runtime/form.h"
#include "win32/ansi.h"
#include "win32/control_windows.h"
#include "win32/system_library.h"

namespace zev::win32 {
namespace {

constexpr UINT dpiChanged = 0x02E0;  // WM_DPICHANGED

DWORD styleOf(const Form&) { return WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN; }

DWORD extendedStyleOf(const Form& form) {
  return WS_EX_CONTROLPARENT | (form.design().toolWindow ? WS_EX_TOOLWINDOW : 0);
}

/// Each form has a class of its own, so that it can be found from outside.
Text classOf(const Form& form) { return join(u"ZEV.", form.name()); }

/// A label with other controls on it lies below them.
bool liesUnderOthers(const Form& form, const Control& control) {
  if (control.kind() != ControlKind::Label || control.design().bar) return false;
  const RECT own = pixelPlace(control, usualDpi);
  return std::any_of(form.Controls().begin(), form.Controls().end(), [&](const Control* each) {
    if (each == &control || each->container() != control.container()) return false;
    if (each->kind() == ControlKind::Line) return false;
    const RECT other = pixelPlace(*each, usualDpi);
    RECT common{};
    return IntersectRect(&common, &own, &other) != 0 && other.top > own.top;
  });
}

int depthOf(const Control& control) {
  int depth = 0;
  for (const Control* each = control.container(); each != nullptr; each = each->container())
    ++depth;
  return depth;
}

/// A label stands right before the field that it names, where those look for it who read the screen
/// aloud: so buttons, which can come between them in the tab order, come after all fields. What
/// lies under others comes last.
int rankOf(const Form& form, const Control& control) {
  if (liesUnderOthers(form, control)) return 2;
  return control.kind() == ControlKind::CommandButton ? 1 : 0;
}

/// The order in which windows lie upon each other, else that of the tab key. A container comes
/// before what lies in it.
std::vector<Control*> windowOrder(const Form& form) {
  std::vector<Control*> order = tabOrder(form);
  std::stable_sort(order.begin(), order.end(), [&](const Control* first, const Control* second) {
    return std::pair(depthOf(*first), rankOf(form, *first)) <
           std::pair(depthOf(*second), rankOf(form, *second));
  });
  return order;
}

/// Whether a property is part of the place that a control has.
bool isPlace(const PropertyBase& property) {
  constexpr std::string_view names[] = {"Left", "Top", "Width", "Height"};
  return std::find(std::begin(names), std::end(names), property.name()) != std::end(names);
}

/// Why the session is not to end, or none for no reason any more. Systems before version 6 take the
/// answer alone.
void tellReason(HWND window, const std::optional<Text>& reason) {
  static SystemLibrary user32("user32.dll");
  const auto create = user32.find<BOOL WINAPI(HWND, const wchar_t*)>("ShutdownBlockReasonCreate");
  const auto destroy = user32.find<BOOL WINAPI(HWND)>("ShutdownBlockReasonDestroy");
  if (create == nullptr || destroy == nullptr) return;
  destroy(window);
  if (reason) create(window, wide(*reason));
}

}  // namespace

/// The window is made first, since the dots per inch that all else depends on are its own.
FormWindow::FormWindow(Form& form, FormListener& listener) : form_(form), listener_(listener) {
  registerContainerClass();
  const Text className = classOf(form);
  WNDCLASSEXW description{};
  description.cbSize = sizeof description;
  description.lpfnWndProc = procedure;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
  description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
  description.lpszClassName = wide(className);
  RegisterClassExW(&description);
  CreateWindowExW(extendedStyleOf(form), wide(className), wide(form.Caption.get()), styleOf(form),
                  CW_USEDEFAULT, CW_USEDEFAULT, 0, 0, nullptr, nullptr, GetModuleHandleW(nullptr),
                  this);
  dpi_ = windowDpi(window_);
  fonts_ = std::make_unique<FormFonts>(dpi_);
  makeControls();
  layOut();
  centre();
}

/// From here on the procedure knows no form: the messages of the destruction reach nobody.
FormWindow::~FormWindow() {
  SetWindowLongPtrW(window_, GWLP_USERDATA, 0);
  DestroyWindow(window_);
}

// ---- making

void FormWindow::makeControls() {
  for (const Control* each : windowOrder(form_)) {
    const auto place = std::find(form_.Controls().begin(), form_.Controls().end(), each);
    const int id = firstControlId + static_cast<int>(place - form_.Controls().begin());
    windows_[each] = makeControlWindow(*each, parentOf(*each), id);
    if (windows_[each] != nullptr) showContent(*each, windows_[each]);
  }
}

HWND FormWindow::parentOf(const Control& control) const {
  return control.container() == nullptr ? window_ : windows_.at(control.container());
}

void FormWindow::layOut() {
  for (const auto& [control, window] : windows_) {
    if (window == nullptr) continue;
    place(*control);
    takeFont(*control);
  }
}

void FormWindow::place(const Control& control) {
  const HWND window = windowOf(control);
  if (window == nullptr) return;
  const RECT area = pixelPlace(control, dpi_);
  SetWindowPos(window, nullptr, area.left, area.top, area.right - area.left,
               windowHeight(control, area, dpi_), SWP_NOZORDER | SWP_NOACTIVATE);
}

/// True if the control had another font until now.
bool FormWindow::takeFont(const Control& control) {
  const HWND window = windowOf(control);
  const HFONT font = fonts_->fontFor(contentText(control));
  if (reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)) == font) return false;
  SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
  return true;
}

/// Gives the client area its size and puts the form into the middle of the screen.
void FormWindow::centre() {
  RECT area{0, 0, pixels(form_.design().width, dpi_), pixels(form_.design().height, dpi_)};
  AdjustWindowRectEx(&area, styleOf(form_), FALSE, extendedStyleOf(form_));
  const int width = area.right - area.left;
  const int height = area.bottom - area.top;
  SetWindowPos(window_, nullptr, (GetSystemMetrics(SM_CXSCREEN) - width) / 2,
               (GetSystemMetrics(SM_CYSCREEN) - height) / 2, width, height,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

// ---- showing

/// A window keeps the owner that it is first shown with. If a later form that shows it again became
/// its owner, it would be destroyed with that form.
void FormWindow::show(HWND owner) {
  if (!everShown_ && owner != nullptr && owner != window_) {
    SetWindowLongPtrW(window_, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(owner));
  }
  everShown_ = true;
  ShowWindow(window_, SW_SHOWNORMAL);
  setFocus(nextFocusable(form_, nullptr));
  SetForegroundWindow(window_);
  UpdateWindow(window_);
}

void FormWindow::hide() { ShowWindow(window_, SW_HIDE); }

void FormWindow::showProperty(const PropertyBase& property) {
  if (&property.owner() == &form_) {
    if (property.name() == "Caption") SetWindowTextW(window_, wide(form_.Caption.get()));
    if (property.name() == "Enabled") enable();
    if (property.name() == "Icon" && !form_.Icon.get().empty()) {
      const LPARAM small = reinterpret_cast<LPARAM>(programIcon(GetSystemMetrics(SM_CXSMICON)));
      const LPARAM big = reinterpret_cast<LPARAM>(programIcon(GetSystemMetrics(SM_CXICON)));
      SendMessageW(window_, WM_SETICON, ICON_SMALL, small);
      SendMessageW(window_, WM_SETICON, ICON_BIG, big);
    }
    return;
  }
  const auto& control = dynamic_cast<const Control&>(property.owner());
  const HWND window = windowOf(control);
  if (window == nullptr) {
    if (const HWND picture = pictureOf(control)) InvalidateRect(picture, nullptr, FALSE);
  } else if (property.name() == "Visible") {
    ShowWindow(window, control.Visible ? SW_SHOWNA : SW_HIDE);
  } else if (property.name() == "Enabled") {
    EnableWindow(window, control.Enabled ? TRUE : FALSE);
  } else if (property.name() == "SelStart") {
    const auto caret = dynamic_cast<const TextBox&>(control).SelStart.get();
    SendMessageW(window, EM_SETSEL, static_cast<WPARAM>(caret), caret);
  } else if (isPlace(property)) {
    place(control);
  } else {
    const bool fits = !takeFont(control);
    showContent(control, window);
    if (!fits) place(control);
  }
}

/// A disabled window has no focus, even if it is the one in use: it gets it back now.
void FormWindow::enable() {
  EnableWindow(window_, form_.Enabled ? TRUE : FALSE);
  if (form_.Enabled) setFocus(focused_);
}

/// A control is drawn, or marked as to be drawn, when it changes: only what is still to be drawn is
/// drawn now. A form is drawn whole.
void FormWindow::refresh(const Component& component) {
  const auto* control = dynamic_cast<const Control*>(&component);
  const HWND window = control == nullptr ? window_ : pictureOf(*control);
  const UINT anew = control == nullptr ? RDW_INVALIDATE | RDW_ERASE : 0;
  if (window != nullptr)
    RedrawWindow(window, nullptr, nullptr, anew | RDW_ALLCHILDREN | RDW_UPDATENOW);
}

/// The window in which a control is drawn: a progress bar is one picture with the text that lies on
/// it. Null without one.
HWND FormWindow::pictureOf(const Control& control) const {
  if (!control.design().bar) return windowOf(control);
  const auto text =
      std::find_if(form_.Controls().begin(), form_.Controls().end(), [&](const Control* each) {
        return each->design().onBar && each->container() == control.container();
      });
  return text == form_.Controls().end() ? nullptr : windowOf(**text);
}

HWND FormWindow::windowOf(const Control& control) const {
  const auto found = windows_.find(&control);
  return found == windows_.end() ? nullptr : found->second;
}

Control* FormWindow::controlOf(HWND window) const {
  if (window == nullptr || window == window_ || !IsChild(window_, window)) return nullptr;
  return controlOf(GetDlgCtrlID(window));
}

Control* FormWindow::controlOf(int id) const {
  const std::size_t place = static_cast<std::size_t>(id - firstControlId);
  return place < form_.Controls().size() ? form_.Controls()[place] : nullptr;
}

/// Of a form that is not in use the focus is only remembered; it takes it when the window gets it.
void FormWindow::setFocus(Control* control) {
  focused_ = control;
  if (control != nullptr && GetActiveWindow() == window_) SetFocus(windowOf(*control));
}

// ---- hearing

/// The window learns of its object with the very first message, and is known to it from then on.
LRESULT CALLBACK FormWindow::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_NCCREATE) {
    auto* self = static_cast<FormWindow*>(reinterpret_cast<CREATESTRUCTW*>(second)->lpCreateParams);
    self->window_ = window;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  auto* self = reinterpret_cast<FormWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return self == nullptr ? DefWindowProcW(window, message, first, second)
                         : self->handle(message, first, second);
}

LRESULT FormWindow::handle(UINT message, WPARAM first, LPARAM second) {
  switch (message) {
    case WM_CLOSE:
      listener_.closed(form_);
      return 0;
    case WM_QUERYENDSESSION:
      return sessionMayEnd() ? TRUE : FALSE;
    case WM_ENDSESSION:
      if (first != FALSE) listener_.sessionEnds();
      tellReason(window_, std::nullopt);
      return 0;
    case WM_COMMAND:
      command(LOWORD(first), HIWORD(first), reinterpret_cast<HWND>(second));
      return 0;
    case WM_DRAWITEM:
      drawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(second));
      return TRUE;
    case WM_APP:
      drawContainer(reinterpret_cast<HDC>(first), reinterpret_cast<HWND>(second));
      return 0;
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
      SetBkMode(reinterpret_cast<HDC>(first), TRANSPARENT);
      SetTextColor(reinterpret_cast<HDC>(first), GetSysColor(COLOR_BTNTEXT));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
    case WM_SETFOCUS:
      if (focused_ != nullptr && focused_->canTakeFocus()) SetFocus(windowOf(*focused_));
      return 0;
    case dpiChanged:
      changeDpi(HIWORD(first), *reinterpret_cast<const RECT*>(second));
      return 0;
    default:
      break;
  }
  return DefWindowProcW(window_, message, first, second);
}

/// The system shows the reason beside the program's name, if it asks the person.
bool FormWindow::sessionMayEnd() {
  const std::optional<Text> reason = listener_.sessionWaitsFor();
  tellReason(window_, reason);
  return !reason;
}

/// Only tells what happened: nothing of the program runs within the dispatch. What is typed is
/// followed at once, since the text is on the screen already.
void FormWindow::command(int id, int code, HWND from) {
  Control* control = controlOf(id);
  if (control == nullptr || windowOf(*control) != from) return;
  switch (control->kind()) {
    case ControlKind::CommandButton:
    case ControlKind::OptionButton:
    case ControlKind::CheckBox:
      if (code == BN_CLICKED) listener_.clicked(*control);
      return;
    case ControlKind::Image:
      if (code == STN_CLICKED || code == STN_DBLCLK) listener_.clicked(*control);
      return;
    case ControlKind::ComboBox:
    case ControlKind::DriveListBox:
      if (code == CBN_DROPDOWN) listener_.dropsDown(*control);
      if (code == CBN_SELCHANGE) {
        listener_.chosen(*control, static_cast<int>(SendMessageW(from, CB_GETCURSEL, 0, 0)));
      }
      return;
    case ControlKind::DirListBox:
      if (code == LBN_DBLCLK) {
        listener_.chosen(*control, static_cast<int>(SendMessageW(from, LB_GETCURSEL, 0, 0)));
      }
      return;
    case ControlKind::TextBox:
      if (code == EN_CHANGE) dynamic_cast<TextBox&>(*control).Text_.follow(windowText(from));
      return;
    default:
      return;
  }
}

// ---- drawing

void FormWindow::drawItem(const DRAWITEMSTRUCT& item) {
  const Control* control = controlOf(static_cast<int>(item.CtlID));
  if (control == nullptr) return;
  drawControl(form_, *control, item, dpi_, fonts_->fontFor(contentText(*control)));
}

/// The frame of a container, and the lines that lie in it.
void FormWindow::drawContainer(HDC canvas, HWND window) {
  const Control* container = controlOf(window);
  RECT area{};
  GetClientRect(window, &area);
  const bool framed =
      container != nullptr && container->kind() == ControlKind::Frame && container->design().border;
  if (framed) DrawEdge(canvas, &area, EDGE_ETCHED, BF_RECT);
  for (const Control* each : form_.Controls()) {
    if (each->kind() != ControlKind::Line || each->container() != container) continue;
    RECT line{pixels(each->Left, dpi_), pixels(each->Top, dpi_), pixels(each->Width, dpi_),
              pixels(each->Top, dpi_) + 2};
    DrawEdge(canvas, &line, EDGE_ETCHED, BF_TOP);
  }
}

void FormWindow::changeDpi(int dpi, const RECT& suggested) {
  dpi_ = dpi;
  auto former = std::move(fonts_);
  fonts_ = std::make_unique<FormFonts>(dpi_);
  SetWindowPos(window_, nullptr, suggested.left, suggested.top, suggested.right - suggested.left,
               suggested.bottom - suggested.top, SWP_NOZORDER | SWP_NOACTIVATE);
  layOut();
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

}  // namespace zev::win32
