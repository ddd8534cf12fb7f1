#pragma once

#include <optional>
#include <vector>

#include "scenario/json_reader.h"

namespace zev::scenario {

/// The values from one to another, both counted in: whole numbers from 0 on, or texts that end in
/// numbers of as many digits after the same beginning, "A0099" and "A0100". None if nothing can be
/// counted so, and of more than 100,000 values.
std::optional<std::vector<Json>> countedUp(const Json& from, const Json& to);

}  // namespace zev::scenario
