#pragma once

#include <cstdint>
#include <map>
#include <ostream>
#include <string_view>
#include <vector>

#include "runtime/form.h"
#include "scenario/json_reader.h"

namespace zev::scenario {

/// Where a control is in what it lies in: twips, which are a whole number of pixels of a screen
/// with 96 dots an inch.
struct SeenPlace {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;  ///< 0 for a list that drops down: the system gives it its height

  bool operator==(const SeenPlace&) const = default;
};

/// What can be seen of a control from outside the program. A kind that shows no text of its own has
/// an empty one.
struct SeenControl {
  Text text{};
  bool enabled = true;
  bool visible = true;
  SeenPlace place{};
  /// False if it is visible and nevertheless nobody sees it: it is empty, out of what it lies in,
  /// or lies under others.
  bool inSight = true;

  bool operator==(const SeenControl&) const = default;
};

/// What can be seen of a form: of its controls those that `isSeen` names, by their places among the
/// form's controls.
struct SeenForm {
  const Form* form = nullptr;  ///< for names and kinds alone
  bool visible = false;
  Text caption{};
  bool enabled = true;
  std::int32_t width = 0;  ///< of what lies within its frame, in twips, as the places of controls
  std::int32_t height = 0;
  std::map<std::size_t, SeenControl> controls{};

  bool operator==(const SeenForm&) const = default;
};

/// All forms of the program, always in the same order.
using Sight = std::vector<SeenForm>;

/// True for a control that somebody outside can find: a line and a progress bar are drawn by what
/// they lie in.
bool isSeen(const Control& control);

/// A place as it comes out on a screen with 96 dots an inch.
SeenPlace seenPlace(const Control& control);

/// Twips of a number of pixels there.
std::int32_t twipsOfPixels(std::int32_t pixels);

/// The name of the property that a control shows as its text: "Caption" or "Text"; empty if there
/// is none.
std::string_view textPropertyOf(const Control& control);

/// What forms show, taken from the forms themselves.
Sight sightOf(const std::vector<Form*>& forms);

/// The part of a message box's style that shows: buttons, icon and default button.
std::int32_t visibleStyle(std::int32_t style);

/// The title and the beginning of the text of the box in which a program tells the run-time error
/// that ends it.
inline constexpr TextView errorBoxTitle = u"ZEVSetup";
inline constexpr TextView errorBoxStart = u"Run-time error '";

/// Writes the transcript that somebody in front of the screen could write, as JSON Lines: `show`,
/// `hide` and `set` for what has changed when the program is looked at, which is at rest, and
/// `step`, `box`, `input` and `end` for what happens between. A form that is seen for the first
/// time is told by the places of its controls and by all else that is not empty, enabled and
/// visible.
class OutsideView {
 public:
  /// Borrows the stream.
  explicit OutsideView(std::ostream& out) : out_(out) {}

  /// The program is started; nothing has been seen of it yet.
  void start() { seen_.clear(); }
  /// Takes in what is to be seen now. While a box is open no form is enabled, whatever the program
  /// has said, so that this side of the forms is left as it was.
  void look(const Sight& sight, bool boxOpen);

  /// A step as it is written, a box with the word of its answer, an input box with what was
  /// entered: each as it happens.
  void step(const Json& step);
  void box(TextView text, TextView title, std::int32_t style, std::string_view answer);
  void input(TextView prompt, TextView title, TextView answer);
  /// `ended` as a player has it: a word, or an object with the number of the `error`. How a program
  /// without an error ended is not to be seen.
  void end(const Json& ended);

 private:
  void lookAt(const SeenForm& now, bool boxOpen);
  void lookAtFrame(const SeenForm& now, SeenForm& before);
  void lookAt(const Form& form, std::size_t place, const SeenControl& now, SeenControl& before);
  void tellSet(const Text& control, std::string_view property, Json value);
  void tell(const Json& event);

  std::ostream& out_;
  std::map<Text, SeenForm> seen_;  ///< by the name of the form
};

}  // namespace zev::scenario
