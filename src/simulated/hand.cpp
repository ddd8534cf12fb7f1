#include "simulated/hand.h"

#include <utility>

namespace zev::simulated {
namespace {

/// Kinds on which a mouse button does something that the program hears of as a click.
bool hearsClicks(ControlKind kind) {
  switch (kind) {
    case ControlKind::ComboBox:
    case ControlKind::DriveListBox:
    case ControlKind::DirListBox:
    case ControlKind::Line:
      return false;
    default:
      return true;
  }
}

bool chainEnabled(const Control& control) {
  const Control* container = control.container();
  return control.Enabled && (container == nullptr || chainEnabled(*container));
}

}  // namespace

bool Hand::reaches(const Form& form) const {
  return form.loaded() && form.Visible && form.Enabled && !screen_.boxOpen();
}

bool Hand::reaches(const Control& control) const {
  const Form* form = screen_.formOf(control);
  return form != nullptr && reaches(*form) && control.showing() && chainEnabled(control);
}

void Hand::moveFocus(Control& control) { screen_.moveFocus(control); }

/// What the person does runs in its turn, if the form is still there.
void Hand::post(Control& control, EventProcedure event) {
  screen_.application().post([this, &control, event = std::move(event)] {
    if (screen_.formOf(control) != nullptr) event();
  });
}

void Hand::clickHandler(Control& control) {
  if (auto* option = dynamic_cast<OptionButton*>(&control)) {
    choose(*option, screen_.formOf(control)->Controls());
  } else if (auto* check = dynamic_cast<CheckBox*>(&control)) {
    check->Value = check->Value == 0 ? 1 : 0;
  }
  if (control.Click) control.Click();
}

bool Hand::click(Control& control) {
  if (!reaches(control)) return false;
  moveFocus(control);
  if (hearsClicks(control.kind())) post(control, [this, &control] { clickHandler(control); });
  return true;
}

bool Hand::select(ComboBox& combo, TextView item) {
  for (std::int32_t place = 0; place < combo.ListCount(); ++place) {
    if (combo.List(place) == item) return select(combo, place);
  }
  return false;
}

bool Hand::select(ComboBox& combo, std::int32_t place) {
  if (!reaches(combo) || place < 0 || place >= combo.ListCount()) return false;
  moveFocus(combo);
  post(combo, [&combo, place] { combo.setListIndex(place); });
  return true;
}

bool Hand::type(TextBox& box, TextView text) {
  if (!reaches(box) || box.design().locked) return false;
  moveFocus(box);
  post(box, [&box, typed = Text(text)] {
    box.Text_ = typed;
    box.SelStart = len(typed);
  });
  return true;
}

bool Hand::focus(Control& control) {
  if (!reaches(control) || !control.canTakeFocus()) return false;
  moveFocus(control);
  return true;
}

bool Hand::endSession() {
  Application& application = screen_.application();
  if (application.busyWith()) return false;
  application.endSession();
  return true;
}

bool Hand::close(Form& form) {
  if (!reaches(form)) return false;
  Application& application = screen_.application();
  application.post([&application, &form] {
    if (form.loaded()) application.Unload(form, UnloadMode::ControlMenu);
  });
  return true;
}

}  // namespace zev::simulated
