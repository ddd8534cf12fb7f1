#pragma once

#include <optional>
#include <string>

#include "programs/zevsim/simulated_stage.h"

namespace zev::scenario {

/// Why nothing happens if a person does a step now: what it is done to is disabled or hidden. None
/// if there is no such reason, or if the step is done to no control and no form.
std::optional<std::string> hindranceOf(const Step& step, SimulatedStage& stage);

}  // namespace zev::scenario
