#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/dialogs.h"
#include "scenario/script.h"

namespace zev::scenario {

/// The word for a button, such as "yes", and back; none for a word that is no button's.
std::string_view answerWord(BoxAnswer answer);
std::optional<BoxAnswer> answerOf(std::string_view word);

/// The button among those of a message box that an answer presses. Cancel closes a box that has an
/// OK alone, as the escape key does. An answer that the box does not have is a ScenarioError.
BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText);

/// The text that an answer leaves in an input box: its own, the initial one for OK, empty for
/// Cancel. Any other is a ScenarioError.
Text entered(const Answer& answer, TextView initial);

}  // namespace zev::scenario
