#include "scenario/finding.h"

#include <algorithm>

namespace zev::scenario {
namespace {

[[noreturn]] void failNoForm(const std::string& path, const std::string& name) {
  throw ScenarioError(path, "the program has no form " + name);
}

/// Without an active form a bare name must at least be that of some form's control.
void requireControl(const std::string& name, Stage& stage, const std::string& path) {
  const auto forms = stage.forms();
  const bool known = std::any_of(forms.begin(), forms.end(), [&](const Form* form) {
    return form->findControl(fromUtf8(name)) != nullptr;
  });
  if (!known) throw ScenarioError(path, "no form has a control " + name);
}

/// The form that a control is looked for on whose form is not named.
Form& requireActiveForm(const Name& name, Stage& stage, const std::string& path) {
  Form* active = stage.activeForm();
  if (active != nullptr) return *active;
  failNoForm(path, name.parts.front() + ", and no form is active that could have such a control");
}

Component& componentOf(const Name& name, Stage& stage, const std::string& path) {
  Form* form = findForm(stage, name.parts.front());
  const bool formNamed = name.parts.size() > 2;
  if (form != nullptr && !formNamed) return *form;
  if (form == nullptr && formNamed) failNoForm(path, name.parts.front());
  if (form == nullptr) form = &requireActiveForm(name, stage, path);
  const std::string& control = name.parts[name.parts.size() - 2];
  Control* found = form->findControl(fromUtf8(control));
  if (found != nullptr) return *found;
  const std::string noForm = formNamed ? "" : "the program has no form " + control + ", and ";
  throw ScenarioError(path, noForm + toUtf8(form->name()) + " has no control " + control);
}

/// What a list offers beside its properties.
bool isListFact(const Component& component, TextView name) {
  return dynamic_cast<const ComboBox*>(&component) != nullptr &&
         (equalText(name, u"ListCount") || equalText(name, u"List"));
}

}  // namespace

Form* findForm(Stage& stage, std::string_view name) {
  const auto forms = stage.forms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](const Form* each) {
    return equalText(each->name(), fromUtf8(name));
  });
  return found == forms.end() ? nullptr : *found;
}

Form& formOf(const Name& name, Stage& stage, const std::string& path) {
  Form* form = findForm(stage, name.written());
  if (form == nullptr) failNoForm(path, name.written());
  return *form;
}

std::optional<FormControl> controlOf(const Name& name, Stage& stage, const std::string& path) {
  const std::string& control = name.parts.back();
  const bool formNamed = name.parts.size() > 1;
  Form* form = formNamed ? findForm(stage, name.parts.front()) : stage.activeForm();
  if (form == nullptr && formNamed) failNoForm(path, name.parts.front());
  if (form == nullptr) {
    requireControl(control, stage, path);
    return std::nullopt;
  }
  Control* found = form->findControl(fromUtf8(control));
  if (found != nullptr) return FormControl{*form, *found};
  throw ScenarioError(path, toUtf8(form->name()) + " has no control " + control);
}

FormControl listOf(ControlKind kind, Stage& stage, const std::string& path) {
  Form* form = stage.activeForm();
  for (Control* each : form == nullptr ? std::vector<Control*>() : form->Controls()) {
    if (each->kind() == kind) return {*form, *each};
  }
  throw ScenarioError(path, "the active form has no such list");
}

FoundProperty propertyOf(const Name& name, Stage& stage, const std::string& path) {
  Component& component = componentOf(name, stage, path);
  const std::string& written = name.parts.back();
  PropertyBase* property = component.findProperty(written);
  if (property == nullptr && !isListFact(component, fromUtf8(written))) {
    throw ScenarioError(path, toUtf8(component.name()) + " has no property " + written);
  }
  return {component, written, property};
}

}  // namespace zev::scenario
