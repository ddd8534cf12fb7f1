#include "win32/form_engine.h"

#include <algorithm>

#include "runtime/file_lists.h"
#include "runtime/tab_order.h"
#include "win32/control_windows.h"
#include "win32/file_list_windows.h"

namespace zev::win32 {

// ---- forms come and go

void WindowsEngine::loaded(Form& form) {
  forms_[&form] = &form;
  for (Control* each : form.Controls()) forms_[each] = &form;
  windows_[&form] = std::make_unique<FormWindow>(form, listener());
  windows_[&form]->showProperty(form.Icon);
}

void WindowsEngine::shown(Form& form) {
  HWND owner = visible_.empty() ? nullptr : windows_.at(visible_.back())->handle();
  std::erase(visible_, &form);
  visible_.push_back(&form);
  windows_.at(&form)->show(owner);
  trackFocus();
}

void WindowsEngine::hidden(Form& form) {
  std::erase(visible_, &form);
  windows_.at(&form)->hide();
}

void WindowsEngine::unloaded(Form& form) {
  std::erase(visible_, &form);
  forms_.erase(&form);
  for (const Control* each : form.Controls()) {
    forms_.erase(each);
    if (focused_ == each) focused_ = nullptr;
  }
  windows_.erase(&form);
  if (!visible_.empty()) SetForegroundWindow(windows_.at(visible_.back())->handle());
  trackFocus();
}

FormWindow* WindowsEngine::windowOf(const Component& component) const {
  const auto form = forms_.find(&component);
  return form == forms_.end() ? nullptr : windows_.at(form->second).get();
}

FormWindow* WindowsEngine::windowAround(HWND window) const {
  for (const auto& [form, each] : windows_) {
    if (each->handle() == window || IsChild(each->handle(), window)) return each.get();
  }
  return nullptr;
}

HWND WindowsEngine::activeWindow() const {
  const auto enabled = std::find_if(visible_.rbegin(), visible_.rend(),
                                    [](const Form* each) { return each->Enabled.get(); });
  return enabled == visible_.rend() ? nullptr : windows_.at(*enabled)->handle();
}

// ---- the message loop

bool WindowsEngine::pump() {
  MSG message{};
  if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
  dispatch(message);
  return true;
}

bool WindowsEngine::wait() {
  MSG message{};
  if (GetMessageW(&message, nullptr, 0, 0) <= 0) return false;
  dispatch(message);
  return true;
}

void WindowsEngine::dispatch(MSG& message) {
  if (!translateKey(message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  trackFocus();
}

// ---- measures

std::uintptr_t WindowsEngine::windowHandle(const Form& form) {
  const auto found = windows_.find(&form);
  return found == windows_.end() ? 0 : reinterpret_cast<std::uintptr_t>(found->second->handle());
}

double WindowsEngine::TextWidth(const Form& form, TextView text) {
  const FormWindow& window = *windows_.at(&form);
  return static_cast<double>(textWidth(window.font(), text)) * twipsPerInch / window.dpi();
}

double WindowsEngine::TwipsPerPixelX() {
  const int dpi = windows_.empty() ? systemDpi() : windows_.begin()->second->dpi();
  return static_cast<double>(twipsPerInch) / dpi;
}

// ---- what the program shows

void WindowsEngine::propertyWritten(PropertyBase& property) {
  FormWindow* window = windowOf(property.owner());
  if (window == nullptr) return;
  const bool ofForm = &property.owner() == &window->form();
  if (ofForm && property.name() == "Visible") {
    window->form().Visible ? shown(window->form()) : hidden(window->form());
    return;
  }
  window->showProperty(property);
  if (property.name() == "Visible" || property.name() == "Enabled") refocus(*window);
}

void WindowsEngine::refreshed(Component& component) {
  if (FormWindow* window = windowOf(component)) window->refresh(component);
}

// ---- the focus

void WindowsEngine::focusGiven(Control& control) {
  FormWindow* window = windowOf(control);
  if (window == nullptr) return;
  window->setFocus(&control);
  trackFocus();
}

/// A handler hears of a change only if the focus went to another control of the program: a box or
/// another program takes it for a time alone. So does the window that a hidden control lies in,
/// until the focus finds its place.
void WindowsEngine::trackFocus() {
  const HWND focus = GetFocus();
  FormWindow* window = windowAround(focus);
  Control* now = window == nullptr ? nullptr : window->controlOf(focus);
  if (now == nullptr || now == focused_ || !now->canTakeFocus()) return;
  window->followFocus(*now);
  loseFocus();
  focused_ = now;
  post(*focused_, focused_->GotFocus);
}

void WindowsEngine::loseFocus() {
  if (focused_ != nullptr) post(*focused_, focused_->LostFocus);
  focused_ = nullptr;
}

/// The control with the focus may not keep it, or there is one again that can take what nobody had.
void WindowsEngine::refocus(FormWindow& window) {
  const Control* current = window.focused();
  if (current != nullptr && current->canTakeFocus()) return;
  Control* next = nextFocusable(window.form(), current);
  if (next == nullptr && current == focused_) loseFocus();
  window.setFocus(next);
  trackFocus();
}

// ---- what a person does

bool WindowsEngine::takesInput(const Control& control) const {
  const FormWindow* window = windowOf(control);
  if (window == nullptr || openBoxes_ > 0 || !window->form().Enabled) return false;
  bool enabled = control.showing();
  for (const Control* each = &control; each != nullptr; each = each->container()) {
    enabled = enabled && each->Enabled;
  }
  return enabled;
}

/// An event of a form that is gone by its turn does not run.
void WindowsEngine::post(Control& control, EventProcedure event) {
  if (!event) return;
  application_->post([this, &control, event = std::move(event)] {
    if (windowOf(control) != nullptr) event();
  });
}

void WindowsEngine::clicked(Control& control) {
  if (!takesInput(control)) return;
  trackFocus();
  post(control, [this, &control] { click(control); });
}

void WindowsEngine::click(Control& control) {
  if (auto* option = dynamic_cast<OptionButton*>(&control)) {
    choose(*option, windowOf(control)->form().Controls());
  } else if (auto* check = dynamic_cast<CheckBox*>(&control)) {
    check->Value = check->Value == 0 ? 1 : 0;
  }
  if (control.Click) control.Click();
}

void WindowsEngine::chosen(Control& list, int place) {
  if (!takesInput(list) || place < 0) return;
  trackFocus();
  const HWND window = windowOf(list)->windowOf(list);
  if (auto* combo = dynamic_cast<ComboBox*>(&list)) {
    post(list, [combo, place] { combo->setListIndex(place); });
  } else if (auto* drives = dynamic_cast<DriveListBox*>(&list)) {
    post(list, [drives, drive = driveAt(window, place)] {
      if (!drives->available || drives->available(drive)) drives->setDrive(drive);
    });
  } else if (auto* folders = dynamic_cast<DirListBox*>(&list)) {
    post(list, [folders, folder = folderAt(*folders, window, place)] { folders->setPath(folder); });
  }
}

void WindowsEngine::closed(Form& form) {
  if (openBoxes_ > 0 || !form.Enabled) return;
  application_->post([this, &form] {
    if (form.loaded()) application_->Unload(form, UnloadMode::ControlMenu);
  });
}

/// Drives come and go while the form is open.
void WindowsEngine::dropsDown(Control& list) {
  if (const auto* drives = dynamic_cast<const DriveListBox*>(&list)) {
    showDrives(*drives, windowOf(list)->windowOf(list));
  }
}

// ---- the keyboard

bool WindowsEngine::translateKey(const MSG& message) {
  if (message.message != WM_KEYDOWN && message.message != WM_SYSCHAR) return false;
  FormWindow* window = windowAround(message.hwnd);
  if (window == nullptr || openBoxes_ > 0 || !window->form().Enabled) return false;
  if (message.message == WM_SYSCHAR) {
    return pressedAccessKey(*window, static_cast<char16_t>(message.wParam));
  }
  return pressedKey(*window, message.wParam);
}

bool WindowsEngine::pressedKey(FormWindow& window, WPARAM key) {
  Control* focus = window.focused();
  const auto direction = GetKeyState(VK_SHIFT) < 0 ? TabDirection::Backward : TabDirection::Forward;
  const bool option = focus != nullptr && focus->kind() == ControlKind::OptionButton;
  const bool dropped = focus != nullptr && SendMessageW(GetFocus(), CB_GETDROPPEDSTATE, 0, 0) != 0;
  switch (key) {
    case VK_TAB:
      return moveFocus(window, focus, direction);
    case VK_RETURN:
      if (focus != nullptr && focus->kind() == ControlKind::CommandButton) press(window, focus);
      if (focus != nullptr && focus->kind() == ControlKind::DirListBox) {
        chosen(*focus, static_cast<int>(SendMessageW(GetFocus(), LB_GETCURSEL, 0, 0)));
      }
      return !dropped;
    case VK_ESCAPE:
      return !dropped && pressCancel(window);
    case VK_UP:
    case VK_LEFT:
      return option && moveWithinOptions(window, *focus, TabDirection::Backward);
    case VK_DOWN:
    case VK_RIGHT:
      return option && moveWithinOptions(window, *focus, TabDirection::Forward);
    default:
      return false;
  }
}

/// Of the option buttons of a group only the chosen one is a stop, and the first while none is.
bool WindowsEngine::moveFocus(FormWindow& window, Control* from, TabDirection direction) {
  Control* next = from;
  for (std::size_t step = 0; step < window.form().Controls().size(); ++step) {
    next = nextFocusable(window.form(), next, direction);
    const bool sameGroup = next != nullptr && from != nullptr && next != from &&
                           next->kind() == ControlKind::OptionButton &&
                           from->kind() == ControlKind::OptionButton &&
                           next->container() == from->container();
    if (!sameGroup) break;
  }
  window.setFocus(next);
  return true;
}

bool WindowsEngine::moveWithinOptions(FormWindow& window, Control& from, TabDirection direction) {
  Control* next = &from;
  do {
    next = nextFocusable(window.form(), next, direction);
  } while (next != &from &&
           (next->kind() != ControlKind::OptionButton || next->container() != from.container()));
  window.setFocus(next);
  clicked(*next);
  return true;
}

bool WindowsEngine::pressedAccessKey(FormWindow& window, char16_t key) {
  const char16_t wanted = lowerCase(TextView(&key, 1)).front();
  for (Control* each : window.form().Controls()) {
    if (!each->canTakeFocus() || accessKey(contentText(*each)) != wanted) continue;
    if (each->kind() == ControlKind::TextBox) continue;
    press(window, each);
    return true;
  }
  return false;
}

/// The focus stays where it is.
bool WindowsEngine::pressCancel(FormWindow& window) {
  Control* button = window.form().findControl(window.form().design().cancelButton);
  if (button != nullptr) clicked(*button);
  return true;
}

void WindowsEngine::press(FormWindow& window, Control* control) {
  if (control == nullptr || !control->canTakeFocus()) return;
  window.setFocus(control);
  clicked(*control);
}

}  // namespace zev::win32
