#pragma once

#include "runtime/controls.h"
#include "runtime/form.h"
#include "simulated/screen.h"

namespace zev::simulated {

/// What a mouse and a keyboard do to the forms on a screen. Everything is posted to the message
/// loop; nothing runs inside these calls. Each tells whether the person could do it at all: nothing
/// happens on a control that is disabled or hidden or lies in such a container, on a form that is
/// disabled, hidden or not loaded, or while a box is open.
class Hand {
 public:
  explicit Hand(Screen& screen) : screen_(screen) {}

  /// Moves the focus to a control that takes it, then clicks: an option button is chosen, a check
  /// box toggled, and then the click event runs.
  bool click(Control& control);
  /// Moves the focus and chooses the entry of that text, or at that place; false as well if the
  /// list has none.
  bool select(ComboBox& combo, TextView item);
  bool select(ComboBox& combo, std::int32_t place);
  /// Moves the focus and replaces the text; the caret comes to stand behind it. False as well for a
  /// locked text box.
  bool type(TextBox& box, TextView text);
  bool focus(Control& control);
  /// The close box of the title bar.
  bool close(Form& form);

  /// Ends the session, as by logging off: false if the program asks it to wait.
  bool endSession();

  /// Whether a person can use the control, now.
  bool reaches(const Control& control) const;
  bool reaches(const Form& form) const;

 private:
  void moveFocus(Control& control);
  void clickHandler(Control& control);
  void post(Control& control, EventProcedure event);

  Screen& screen_;
};

}  // namespace zev::simulated
