#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "scenario/played_program.h"
#include "script/expectation.h"
#include "script/script.h"
#include "simulated/simulated_machine.h"

namespace zev::scenario {

/// All that an expectation can ask about. Borrowed for one judgement.
struct Scene {
  simulated::SimulatedMachine& machine;
  PlayedProgram& program;
  const Json& ended;  ///< null, "unload", "exit", or {"error", "description"}
  const Json& boxes;  ///< list of {text, title, style, answer}, those not yet expected
};

/// Holds one expectation against the scene. A key that names no form, control, property or global
/// is a ScenarioError.
Verdict judge(const KeyedValue& expectation, const Scene& scene);

/// The form of that name, letter case aside; null if the program has none.
Form* findForm(PlayedProgram& program, std::string_view name);

/// The property that a name means; one without a form means the active form's.
PropertyBase& findProperty(const Name& name, const Scene& scene, const std::string& path);

}  // namespace zev::scenario
