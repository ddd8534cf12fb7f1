#pragma once

#include <nlohmann/json_fwd.hpp>

#include "simulated/value.h"

namespace zev::simulated {

/// A value as the library has it, and back.
nlohmann::ordered_json toJson(const Value& value);
Value fromJson(const nlohmann::ordered_json& json);

}  // namespace zev::simulated
