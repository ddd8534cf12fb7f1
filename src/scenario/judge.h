#pragma once

#include <optional>

#include "scenario/expectation.h"
#include "scenario/stage.h"

namespace zev::scenario {

/// How a program ended of which that is all that can be seen.
inline constexpr std::string_view endedSomehow = "ended";

/// All that an expectation can ask about. Borrowed for one judgement.
struct Scene {
  Stage& stage;
  const Json& ended;  ///< null, "unload", "exit", endedSomehow, or an object with `error`
  const Json& boxes;  ///< list of {text, title, style, answer}, those not yet expected
};

/// Holds one expectation against the scene; none if what it asks about cannot be seen from there. A
/// key that names no form, control, property or global is a ScenarioError.
std::optional<Verdict> judge(const KeyedValue& expectation, const Scene& scene);

}  // namespace zev::scenario
