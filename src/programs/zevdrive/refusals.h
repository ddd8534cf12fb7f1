#pragma once

#include <optional>
#include <string>

#include "scenario/scenario.h"

namespace zev::drive {

/// Why a scenario cannot be played from outside, in one line; none if it can.
std::optional<std::string> refusal(const scenario::Scenario& scenario);

}  // namespace zev::drive
