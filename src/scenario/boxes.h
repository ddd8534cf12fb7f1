#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "script/answers.h"
#include "simulated/person.h"

namespace zev::scenario {

/// Words of the buttons that a style has, always in the same order.
std::vector<std::string_view> buttonsOf(std::int32_t style);

/// The button that an answer presses; one that the box does not have is a ScenarioError.
BoxAnswer pressed(const Answer& answer, const simulated::Box& box);

}  // namespace zev::scenario
