#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "scenario/script.h"
#include "scenario/stage.h"

namespace zev::scenario {

// What the names of a script mean on a stage. A name that the program does not have is a
// ScenarioError, which `path` places in the document.

/// The form of that name, letter case aside; null if the program has none.
Form* findForm(Stage& stage, std::string_view name);
/// The same for a form that has to be there.
Form& formOf(const Name& name, Stage& stage, const std::string& path);

/// The control that a step means; none if it would be one of the active form and there is no such
/// form.
std::optional<FormControl> controlOf(const Name& name, Stage& stage, const std::string& path);

/// The list of that kind on the active form.
FormControl listOf(ControlKind kind, Stage& stage, const std::string& path);

/// A property of a form or control, or what a list offers beside its properties: `ListCount` and
/// `List`.
struct FoundProperty {
  Component& component;
  std::string_view name;   ///< borrowed from the name that was looked for
  PropertyBase* property;  ///< null for what is no property
};
/// `name` is `Form.Control.Property`, `Form.Property`, or `Control.Property` on the active form.
FoundProperty propertyOf(const Name& name, Stage& stage, const std::string& path);

}  // namespace zev::scenario
