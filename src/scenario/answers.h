#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/dialogs.h"
#include "scenario/script.h"

namespace zev::scenario {

/// The button among those of a message box that an answer presses. Cancel closes a box that has an
/// OK alone, as the escape key does. An answer that the box does not have is a ScenarioError.
BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText);

/// The text that an answer leaves in an input box: its own, the initial one for OK, empty for
/// Cancel. Any other is a ScenarioError.
Text entered(const Answer& answer, TextView initial);

}  // namespace zev::scenario
