#include "win32/form_engine.h"

#include <algorithm>

#include "runtime/controls.h"
#include "runtime/form.h"
#include "win32/control_windows.h"

namespace zev::win32 {

// ---- forms come and go

void Win32FormEngine::loaded(Form& form) {
  forms_[&form] = &form;
  for (Control* each : form.Controls()) forms_[each] = &form;
  windows_[&form] = std::make_unique<FormWindow>(form, listener());
  windows_[&form]->showProperty(form.Icon);
}

/// When the window is first shown, the form then on top becomes its owner: Windows keeps it above
/// its owner.
void Win32FormEngine::shown(Form& form) {
  HWND owner = visible_.empty() ? nullptr : windows_.at(visible_.back())->handle();
  std::erase(visible_, &form);
  visible_.push_back(&form);
  windows_.at(&form)->show(owner);
  trackFocus();
}

void Win32FormEngine::hidden(Form& form) {
  std::erase(visible_, &form);
  windows_.at(&form)->hide();
}

/// No LostFocus for a control that goes with its form: nobody is left to hear it.
void Win32FormEngine::unloaded(Form& form) {
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

FormWindow* Win32FormEngine::windowOf(const Component& component) const {
  const auto form = forms_.find(&component);
  return form == forms_.end() ? nullptr : windows_.at(form->second).get();
}

/// The form's window that a window is or lies in: of a message's window, or of the focus.
FormWindow* Win32FormEngine::windowAround(HWND window) const {
  for (const auto& [form, each] : windows_) {
    if (each->handle() == window || IsChild(each->handle(), window)) return each.get();
  }
  return nullptr;
}

/// The enabled form on top; null while none is enabled.
HWND Win32FormEngine::activeWindow() const {
  const auto enabled = std::find_if(visible_.rbegin(), visible_.rend(),
                                    [](const Form* each) { return each->Enabled.get(); });
  return enabled == visible_.rend() ? nullptr : windows_.at(*enabled)->handle();
}

// ---- the message loop

bool Win32FormEngine::pump() {
  MSG message{};
  if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
  dispatch(message);
  return true;
}

bool Win32FormEngine::wait() {
  MSG message{};
  if (GetMessageW(&message, nullptr, 0, 0) <= 0) return false;
  dispatch(message);
  return true;
}

/// Keys that belong to the whole form never reach the control. The focus is looked at after each
/// message, whichever of them has moved it.
void Win32FormEngine::dispatch(MSG& message) {
  if (!translateKey(message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  trackFocus();
}

// ---- measures

std::uintptr_t Win32FormEngine::windowHandle(const Form& form) {
  const auto found = windows_.find(&form);
  return found == windows_.end() ? 0 : reinterpret_cast<std::uintptr_t>(found->second->handle());
}

// Twips are 1440 to the inch whatever the screen, so both depend on the form's dots per inch.

double Win32FormEngine::TextWidth(const Form& form, TextView text) {
  const FormWindow& window = *windows_.at(&form);
  return static_cast<double>(textWidth(window.font(), text)) * twipsPerInch / window.dpi();
}

double Win32FormEngine::TwipsPerPixelX() {
  const int dpi = windows_.empty() ? systemDpi() : windows_.begin()->second->dpi();
  return static_cast<double>(twipsPerInch) / dpi;
}

// ---- what the program shows

/// Writing `Visible` of a form shows or hides it, as Show and Hide do.
void Win32FormEngine::propertyWritten(PropertyBase& property) {
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

void Win32FormEngine::refreshed(Component& component) {
  if (FormWindow* window = windowOf(component)) window->refresh(component);
}

// ---- the focus

void Win32FormEngine::focusGiven(Control& control) {
  FormWindow* window = windowOf(control);
  if (window == nullptr) return;
  window->setFocus(&control);
  trackFocus();
}

/// Focus events are posted only when the focus has come to another control of the program. While a
/// box or another program has it, nothing is posted: it will come back. The same holds for the
/// moment after a control was hidden, when Windows gives the focus to the window around it.
void Win32FormEngine::trackFocus() {
  const HWND focus = GetFocus();
  FormWindow* window = windowAround(focus);
  Control* now = window == nullptr ? nullptr : window->controlOf(focus);
  if (now == nullptr || now == focused_ || !now->canTakeFocus()) return;
  window->followFocus(*now);
  loseFocus();
  focused_ = now;
  post(*focused_, focused_->GotFocus);
}

void Win32FormEngine::loseFocus() {
  if (focused_ != nullptr) post(*focused_, focused_->LostFocus);
  focused_ = nullptr;
}

/// A control was shown, hidden, enabled or disabled. If the focus is on one that cannot keep it, or
/// on none, it goes to the next that can take it.
void Win32FormEngine::refocus(FormWindow& window) {
  const Control* current = window.focused();
  if (current != nullptr && current->canTakeFocus()) return;
  Control* next = nextFocusable(window.form(), current);
  if (next == nullptr && current == focused_) loseFocus();
  window.setFocus(next);
  trackFocus();
}

// ---- what a person does

/// Windows may still deliver a click to a control that was disabled, hidden or covered by a box
/// when the message was already on its way.
bool Win32FormEngine::takesInput(const Control& control) const {
  const FormWindow* window = windowOf(control);
  if (window == nullptr || openBoxes_ > 0 || !window->form().Enabled) return false;
  bool enabled = control.showing();
  for (const Control* each = &control; each != nullptr; each = each->container()) {
    enabled = enabled && each->Enabled;
  }
  return enabled;
}

/// Queues an event procedure. It does not run if its form is unloaded before its turn comes.
void Win32FormEngine::post(Control& control, EventProcedure event) {
  if (!event) return;
  application_->post([this, &control, event = std::move(event)] {
    if (windowOf(control) != nullptr) event();
  });
}

/// The focus first: the program is to see LostFocus and GotFocus before the click.
void Win32FormEngine::clicked(Control& control) {
  if (!takesInput(control)) return;
  trackFocus();
  post(control, [this, &control] { click(control); });
}

/// From the top of the loop: the control changes its state by itself, then its handler runs.
void Win32FormEngine::click(Control& control) {
  if (auto* option = dynamic_cast<OptionButton*>(&control)) {
    choose(*option, windowOf(control)->form().Controls());
  } else if (auto* check = dynamic_cast<CheckBox*>(&control)) {
    check->Value = check->Value == 0 ? 1 : 0;
  }
  if (control.Click) control.Click();
}

/// What stands at the place is read now, while the list still shows it; the choice itself waits for
/// its turn.
void Win32FormEngine::chosen(Control& list, int place) {
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

/// The unloading waits for its turn, by which the form may be gone.
void Win32FormEngine::closed(Form& form) {
  if (openBoxes_ > 0 || !form.Enabled) return;
  application_->post([this, &form] {
    if (form.loaded()) application_->Unload(form, UnloadMode::ControlMenu);
  });
}

/// The list is filled anew each time, since drives come and go while the form is open.
void Win32FormEngine::dropsDown(Control& list) {
  if (const auto* drives = dynamic_cast<const DriveListBox*>(&list)) {
    showDrives(*drives, windowOf(list)->windowOf(list));
  }
}

// ---- the keyboard

/// True if the key was used up here and must not reach the window that it was sent to.
bool Win32FormEngine::translateKey(const MSG& message) {
  if (message.message != WM_KEYDOWN && message.message != WM_SYSCHAR) return false;
  FormWindow* window = windowAround(message.hwnd);
  if (window == nullptr || openBoxes_ > 0 || !window->form().Enabled) return false;
  if (message.message == WM_SYSCHAR) {
    return pressedAccessKey(*window, static_cast<char16_t>(message.wParam));
  }
  return pressedKey(*window, message.wParam);
}

/// Enter and Escape belong to a list while it is dropped down. Arrows move among option buttons
/// only; elsewhere they are the control's own.
bool Win32FormEngine::pressedKey(FormWindow& window, WPARAM key) {
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

/// Tab leaves a group of option buttons at once: from one of them it passes over the others of the
/// same container. The loop is bounded since nothing else on the form may be able to take the
/// focus.
bool Win32FormEngine::moveFocus(FormWindow& window, Control* from, TabDirection direction) {
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

/// An arrow chooses the option button that it goes to, round the ends of the group.
bool Win32FormEngine::moveWithinOptions(FormWindow& window, Control& from, TabDirection direction) {
  Control* next = &from;
  do {
    next = nextFocusable(window.form(), next, direction);
  } while (next != &from &&
           (next->kind() != ControlKind::OptionButton || next->container() != from.container()));
  window.setFocus(next);
  clicked(*next);
  return true;
}

/// The first control whose caption marks the letter with "&". Text boxes are left out: an "&" in
/// their text is only text.
bool Win32FormEngine::pressedAccessKey(FormWindow& window, char16_t key) {
  const char16_t wanted = lowerCase(TextView(&key, 1)).front();
  for (Control* each : window.form().Controls()) {
    if (!each->canTakeFocus() || accessKey(contentText(*each)) != wanted) continue;
    if (each->kind() == ControlKind::TextBox) continue;
    press(window, each);
    return true;
  }
  return false;
}

/// Escape clicks the form's cancel button without moving the focus there.
bool Win32FormEngine::pressCancel(FormWindow& window) {
  Control* button = window.form().findControl(window.form().design().cancelButton);
  if (button != nullptr) clicked(*button);
  return true;
}

/// The focus goes along, as it does with the mouse.
void Win32FormEngine::press(FormWindow& window, Control* control) {
  if (control == nullptr || !control->canTakeFocus()) return;
  window.setFocus(control);
  clicked(*control);
}

}  // namespace zev::win32
