#pragma once

#include <string_view>

#include "platform/dialogs.h"
#include "runtime/controls.h"
#include "runtime/form.h"
#include "runtime/property.h"
#include "runtime/text.h"

namespace zev::simulated {

class Screen;

/// A message box that waits for its answer.
struct Box {
  Text text;
  std::int32_t style = 0;
  Text title;
};

/// Whoever sits at a simulated machine. All calls come on the thread of the program, which waits
/// until they return. What the person does is done through the Hand and only posts events; it never
/// runs a handler of the program by itself.
class Person {
 public:
  virtual ~Person() = default;

  /// The program waits for input: do the next thing. False if there is none left to do.
  virtual bool next() = 0;
  /// A pass of the message loop begins while the program works.
  virtual void passBegins() {}
  /// Called in a pass, after all that was posted has run, until it returns false: do one thing that
  /// is due in this pass. True if something was done.
  virtual bool duringPass() { return false; }

  /// The answer to a message box. While the box is open the hand does nothing to the forms.
  virtual BoxAnswer answer(const Box& box) = 0;
  /// The answer to an input box; empty if the person cancels.
  virtual Text input(TextView prompt, TextView title, TextView initial) = 0;

  /// A property of a form or control was written. Not the place to do anything to the forms.
  virtual void propertyWritten(PropertyBase& property) { static_cast<void>(property); }
};

/// The button that a box takes when nobody chooses one, by its style.
BoxAnswer defaultAnswer(std::int32_t style);

/// Whether a box of that style has the button.
bool hasButton(std::int32_t style, BoxAnswer answer);

/// What a mouse and a keyboard do to the forms on a screen. Everything is posted to the message
/// loop; nothing runs inside these calls. Each tells whether the person could do it at all: nothing
/// happens on a control that is disabled or hidden or lies in such a container, on a form that is
/// disabled, hidden or not loaded, or while a box is open.
class Hand {
 public:
  /// Borrows the screen.
  explicit Hand(Screen& screen) : screen_(screen) {}

  /// Moves the focus to a control that takes it, then clicks: an option button is chosen, a check
  /// box toggled, and then the click event runs.
  bool click(Control& control);
  /// Moves the focus and chooses the entry of that text, or at that place; false as well if the
  /// list has none.
  bool select(ComboBox& combo, TextView item);
  bool select(ComboBox& combo, std::int32_t place);
  /// Moves the focus and replaces the text; the caret goes to its end. False as well for a
  /// locked text box.
  bool type(TextBox& box, TextView text);
  /// Moves the focus there; false as well for a control that takes none.
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
