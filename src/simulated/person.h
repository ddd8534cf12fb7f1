#pragma once

#include <string_view>

#include "platform/dialogs.h"
#include "runtime/property.h"
#include "runtime/text.h"

namespace zev::simulated {

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

}  // namespace zev::simulated
