#pragma once

#include <nlohmann/json_fwd.hpp>

#include "simulated/value.h"

namespace zev::simulator {

/// A value as the library has it, and back.
nlohmann::ordered_json toJson(const simulated::Value& value);
simulated::Value fromJson(const nlohmann::ordered_json& json);

}  // namespace zev::simulator
