#include "simulated/screen.h"

#include <algorithm>

#include "runtime/form.h"

namespace zev::simulated {
namespace {

constexpr double twipsPerPixel = 15;
constexpr double pixelsPerCharacter = 6;
constexpr std::uintptr_t formHandleStep = 2;

Value told(const PropertyValue& value) {
  if (const auto* text = std::get_if<Text>(&value)) return toUtf8(*text);
  if (const auto* flag = std::get_if<bool>(&value)) return *flag;
  return std::get<std::int32_t>(value);
}

}  // namespace

// ---- forms come and go

/// Handles are never used again, so that one of a form that has gone names none.
void Screen::loaded(Form& form) {
  forms_[&form] = &form;
  for (Control* each : form.Controls()) forms_[each] = &form;
  lastHandle_ += formHandleStep;
  handles_[&form] = lastHandle_;
}

/// Any focus that the form had when it was hidden is forgotten: it begins with the first control in
/// tab order.
void Screen::shown(Form& form) {
  Form* before = activeForm();
  if (before != nullptr && focused(*before) != nullptr) {
    post(*focused(*before), focused(*before)->LostFocus);
  }
  everShown_.insert(form.name());
  std::erase(visible_, &form);
  visible_.push_back(&form);
  tell("show", form);
  focus_[&form] = nullptr;
  setFocus(form, nextFocusable(form, nullptr));
}

/// Takes a form from the screen; the one below gets its focus back.
void Screen::lower(Form& form) {
  const Form* before = activeForm();
  std::erase(visible_, &form);
  const Form* after = activeForm();
  if (after == nullptr || after == before) return;
  if (Control* control = focused(*after)) post(*control, control->GotFocus);
}

void Screen::hidden(Form& form) {
  tell("hide", form);
  lower(form);
}

/// Told while the form is still known. Its controls lose the focus without an event: nobody is left
/// to hear it.
void Screen::unloaded(Form& form) {
  tell("unload", form);
  lower(form);
  forms_.erase(&form);
  for (const Control* each : form.Controls()) forms_.erase(each);
  handles_.erase(&form);
  focus_.erase(&form);
}

Form* Screen::formOf(const Component& component) const {
  const auto found = forms_.find(&component);
  return found == forms_.end() ? nullptr : found->second;
}

Form* Screen::activeForm() const {
  const auto enabled = std::find_if(visible_.rbegin(), visible_.rend(),
                                    [](const Form* each) { return each->Enabled.get(); });
  if (enabled != visible_.rend()) return *enabled;
  return visible_.empty() ? nullptr : visible_.back();
}

// ---- the message loop

/// A pass counts as the operation DoEvents, so that faults and counts can name it. A fault
/// that does not raise only keeps the person from hearing of the pass.
void Screen::beginPass() {
  instrumentation_.perform(
      {"DoEvents"}, {}, [&] { person_.passBegins(); }, [](std::int32_t) {}, [] {});
}

/// Messages of hidden windows come before anything that the person does, here and in wait().
bool Screen::pump() { return queue_->dispatch() || person_.duringPass(); }

bool Screen::wait() { return queue_->dispatch() || person_.next(); }

// ---- measures

std::uintptr_t Screen::windowHandle(const Form& form) {
  const auto found = handles_.find(&form);
  return found == handles_.end() ? 0 : found->second;
}

double Screen::TextWidth(const Form&, TextView text) {
  return static_cast<double>(text.size()) * pixelsPerCharacter * twipsPerPixel;
}

double Screen::TwipsPerPixelX() { return twipsPerPixel; }

// ---- the focus

Control* Screen::focused(const Form& form) const {
  const auto found = focus_.find(&form);
  return found == focus_.end() ? nullptr : found->second;
}

/// The form comes to the top first, so that its control gets the events of a focus that counts.
void Screen::moveFocus(Control& control) {
  Form* form = formOf(control);
  if (form == nullptr || !control.canTakeFocus()) return;
  raise(*form);
  setFocus(*form, &control);
}

/// Brings a form to the top; the focus events are those of the two controls that have the focus in
/// the old and the new form.
void Screen::raise(Form& form) {
  const Form* before = activeForm();
  if (before == &form) return;
  if (before != nullptr && focused(*before) != nullptr) {
    post(*focused(*before), focused(*before)->LostFocus);
  }
  std::erase(visible_, &form);
  visible_.push_back(&form);
  if (Control* control = focused(form)) post(*control, control->GotFocus);
}

/// Only the active form's focus fires events; any other form keeps its own for later.
void Screen::setFocus(Form& form, Control* control) {
  Control*& current = focus_[&form];
  if (current == control) return;
  const bool active = activeForm() == &form;
  if (active && current != nullptr) post(*current, current->LostFocus);
  current = control;
  if (active && control != nullptr) post(*control, control->GotFocus);
}

void Screen::focusGiven(Control& control) {
  if (Form* form = formOf(control)) setFocus(*form, &control);
}

/// A control was shown, hidden, enabled or disabled. If the focus is on one that cannot keep it, or
/// on none, it goes to the next that can take it.
void Screen::refocus(Form& form) {
  const Control* current = focused(form);
  if (current == nullptr || !current->canTakeFocus()) setFocus(form, nextFocusable(form, current));
}

/// Queues an event procedure. It does not run if its form is unloaded before its turn comes.
void Screen::post(const Component& component, const EventProcedure& event) {
  if (!event) return;
  application_->post([this, &component, event] {
    if (formOf(component) != nullptr) event();
  });
}

// ---- what the program shows

/// Writing `Visible` of a form shows or hides it, as Show and Hide do.
void Screen::propertyWritten(PropertyBase& property) {
  Form* form = formOf(property.owner());
  if (form == nullptr) return;
  const bool ofForm = form == &property.owner();
  if (ofForm && property.name() == "Visible") {
    form->Visible ? shown(*form) : hidden(*form);
  } else {
    tellWritten(property);
  }
  if (property.name() == "Visible" || property.name() == "Enabled") refocus(*form);
  person_.propertyWritten(property);
}

void Screen::refreshed(Component& component) {
  if (!transcript_.wants("refresh")) return;
  transcript_.add({{"event", "refresh"}, {"control", toUtf8(toldName(component))}});
}

void Screen::tell(std::string_view kind, const Form& form) {
  if (transcript_.wants(kind)) {
    transcript_.add({{"event", kind}, {"form", toUtf8(form.name())}});
  }
}

/// "Form1", or "Form1.Label12" for a control. The form has to be loaded.
Text Screen::toldName(const Component& component) const {
  const Form& form = *formOf(component);
  return &component == &form ? form.name() : join(form.name(), u".", component.name());
}

/// What Load writes before a form is first shown is not in the transcript: nobody sees it happen.
void Screen::tellWritten(PropertyBase& property) {
  const Form& form = *formOf(property.owner());
  if (!everShown_.contains(form.name()) || !transcript_.wants("set")) return;
  transcript_.add({{"event", "set"},
                   {"control", toUtf8(toldName(property.owner()))},
                   {"property", property.name()},
                   {"value", told(property.value())}});
}

}  // namespace zev::simulated
