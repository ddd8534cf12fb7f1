#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "runtime/text.h"

namespace zev {

/// Styles of the message boxes: buttons, icon, default button and modality in one number.
namespace box_style {
inline constexpr std::int32_t plain = 0;             ///< OK
inline constexpr std::int32_t yesNoQuestion = 36;    ///< Yes and No, question mark
inline constexpr std::int32_t exclamation = 48;      ///< OK, exclamation
inline constexpr std::int32_t information = 64;      ///< OK, information
inline constexpr std::int32_t yesNoDefaultNo = 292;  ///< Yes and No, question mark, No default
/// OK and Cancel, exclamation, Cancel default
inline constexpr std::int32_t okCancelDefaultCancel = 305;
inline constexpr std::int32_t systemExclamation = 4144;  ///< OK, exclamation, system modal
/// Yes and No, question mark, No default, system modal
inline constexpr std::int32_t systemYesNoDefaultNo = 4388;
}  // namespace box_style

/// What a message box returns.
enum class BoxAnswer : std::int32_t {
  None = 0,  ///< nobody answered: the box could not be shown
  OK = 1,
  Cancel = 2,
  Abort = 3,
  Retry = 4,
  Ignore = 5,
  Yes = 6,
  No = 7,
};

/// The word for a button: "ok", "cancel", "abort", "retry", "ignore", "yes" or "no"; "none" for
/// None.
std::string_view answerName(BoxAnswer answer);
/// The button of a word; none if it is no button's.
std::optional<BoxAnswer> answerNamed(std::string_view word);

/// Boxes that wait for the person.
class Dialogs {
 public:
  virtual ~Dialogs() = default;
  /// A box with buttons, icon and default as the style's number says. It returns when the person
  /// has answered; meanwhile the forms take no input. A box that the system cannot show returns at
  /// once, without an answer.
  virtual BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) = 0;
  /// A box with a prompt and one text field. The text, empty if the person cancels or the box
  /// cannot be shown.
  virtual Text InputBox(TextView prompt, TextView title, TextView initial) = 0;
  /// The title that a box has when the program gives none.
  virtual Text defaultTitle() = 0;
};

}  // namespace zev
