#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "scenario/script.h"
#include "simulated/person.h"

namespace zev::scenario {

/// The word for a button, such as "yes", and back; none for a word that is no button's.
std::string_view answerWord(BoxAnswer answer);
std::optional<BoxAnswer> answerOf(std::string_view word);

/// Words of the buttons that a style has, from the left.
std::vector<std::string_view> buttonsOf(std::int32_t style);

/// The button that an answer presses. Cancel closes a box that has an OK alone, as the escape key
/// does. An answer that the box does not have is a ScenarioError.
BoxAnswer pressed(const Answer& answer, const simulated::Box& box);

/// The text that an answer leaves in an input box: its own, the initial one for OK, empty for
/// Cancel. Any other is a ScenarioError.
Text entered(const Answer& answer, TextView initial);

}  // namespace zev::scenario
