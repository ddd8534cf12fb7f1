#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "scenario/json_reader.h"
#include "scenario/played_program.h"
#include "scenario/script.h"
#include "simulated/simulated_machine.h"

namespace zev::scenario {

/// All that an expectation can ask about. Borrowed for one judgement.
struct Scene {
  simulated::SimulatedMachine& machine;
  PlayedProgram& program;
  const Json& ended;  ///< null, "unload", "exit", or {"error", "description"}
  const Json& boxes;  ///< list of {text, title, style, answer}, those not yet expected
};

/// What came of one expectation.
struct Verdict {
  bool held = false;
  Json found;
};

/// Checks one key of an `expect` and its value as far as that can be done before the scenario is
/// played. Fails with a ScenarioError.
void checkExpectation(const std::string& key, const JsonReader& expected);

/// Holds one expectation against the scene. A key that names no form, control, property or global
/// is a ScenarioError.
Verdict judge(const KeyedValue& expectation, const Scene& scene);

/// True for the name of a global (`global.gLanguage`) or of a property (`Form1.Command2.Caption`).
bool isPropertyKey(std::string_view key);

/// The value of a property or global in JSON, and back.
Json toJson(const PropertyValue& value);
PropertyValue toPropertyValue(const Json& value);

/// The form of that name, letter case aside; null if the program has none.
Form* findForm(PlayedProgram& program, std::string_view name);

/// The property that a name means; one without a form means the active form's.
PropertyBase& findProperty(const Name& name, const Scene& scene, const std::string& path);

}  // namespace zev::scenario
