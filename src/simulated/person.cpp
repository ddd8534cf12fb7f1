#include "simulated/person.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "simulated/screen.h"

namespace zev::simulated {
namespace {

constexpr std::int32_t buttonMask = 0xF;
constexpr std::int32_t defaultButtonShift = 8;
constexpr std::int32_t defaultButtonMask = 3;

/// The buttons of a box, in their order, by the lowest digit of its style.
std::vector<BoxAnswer> buttonsOf(std::int32_t style) {
  using enum BoxAnswer;
  switch (style & buttonMask) {
    case 1:
      return {OK, Cancel};
    case 2:
      return {Abort, Retry, Ignore};
    case 3:
      return {Yes, No, Cancel};
    case 4:
      return {Yes, No};
    case 5:
      return {Retry, Cancel};
    default:
      return {OK};
  }
}

}  // namespace

BoxAnswer defaultAnswer(std::int32_t style) {
  const std::vector<BoxAnswer> buttons = buttonsOf(style);
  const auto place = static_cast<std::size_t>((style >> defaultButtonShift) & defaultButtonMask);
  return place < buttons.size() ? buttons[place] : buttons.front();
}

bool hasButton(std::int32_t style, BoxAnswer answer) {
  const std::vector<BoxAnswer> buttons = buttonsOf(style);
  return std::find(buttons.begin(), buttons.end(), answer) != buttons.end();
}

// ---- the hand

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
