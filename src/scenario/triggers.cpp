#include "scenario/triggers.h"

#include <algorithm>

#include "scenario/expectation.h"
#include "scenario/matcher.h"

namespace zev::scenario {
namespace {

bool sameName(std::string_view written, TextView name) {
  return equalText(fromUtf8(written), name);
}

/// Whether a name means the property: `Form1.Caption`, `Label1.Caption` on any form, or
/// `Form1.Label1.Caption`.
bool means(const Name& name, const Form* form, const PropertyBase& property) {
  const auto& parts = name.parts;
  if (!sameName(parts.back(), fromUtf8(property.name()))) return false;
  if (!sameName(parts[parts.size() - 2], property.owner().name())) return false;
  return parts.size() == 2 || (form != nullptr && sameName(parts.front(), form->name()));
}

bool has(const Component* component, const std::string& property) {
  return component != nullptr && component->findProperty(property) != nullptr;
}

/// Whether a form has the property that a name of two or three parts means.
bool has(const Form& form, const Name& name) {
  const auto& parts = name.parts;
  const bool ofForm = sameName(parts.front(), form.name());
  if (parts.size() == 2 && ofForm && has(&form, parts.back())) return true;
  return (parts.size() == 2 || ofForm) &&
         has(form.findControl(fromUtf8(parts[parts.size() - 2])), parts.back());
}

}  // namespace

void Triggers::requireProperty(const At& at, const std::vector<Form*>& forms) {
  const auto* set = std::get_if<AtSet>(&at.when);
  if (set == nullptr) return;
  const bool known = std::any_of(forms.begin(), forms.end(),
                                 [&](const Form* form) { return has(*form, set->property); });
  if (known) return;
  throw ScenarioError(set->path, "the program has no property " + set->property.written());
}

void Triggers::requireProperties(const std::vector<Form*>& forms) const {
  for (const At* each : sets_) requireProperty(*each, forms);
}

void Triggers::arm(const At& at) {
  if (const auto* pass = std::get_if<AtPass>(&at.when)) passes_.push_back({pass->count, &at});
  if (const auto* box = std::get_if<AtBox>(&at.when)) boxes_.push_back({box->count, &at});
  if (std::holds_alternative<AtSet>(at.when)) sets_.push_back(&at);
}

std::vector<const At*> Triggers::countDown(std::list<Countdown>& all) {
  std::vector<const At*> fired;
  for (Countdown& each : all) {
    if (--each.left == 0) fired.push_back(each.at);
  }
  all.remove_if([](const Countdown& each) { return each.left == 0; });
  return fired;
}

void Triggers::passBegins() {
  release();
  for (const At* each : countDown(passes_)) makeDue(*each);
}

void Triggers::release() {
  for (const At* each : released_) makeDue(*each);
  released_.clear();
}

void Triggers::written(const Form* form, const PropertyBase& property) {
  sets_.remove_if([&](const At* each) {
    const AtSet& set = std::get<AtSet>(each->when);
    const bool fires =
        means(set.property, form, property) && matches(set.value, toJson(property.value()));
    if (fires) released_.push_back(each);
    return fires;
  });
}

std::vector<const Step*> Triggers::boxOpens() {
  std::vector<const Step*> steps;
  for (const At* at : countDown(boxes_)) {
    for (const Step& each : at->steps) steps.push_back(&each);
  }
  return steps;
}

const Step* Triggers::takeDue() {
  if (due_.empty()) return nullptr;
  const Step* next = due_.front();
  due_.pop_front();
  return next;
}

void Triggers::makeDue(const At& at) {
  for (const Step& each : at.steps) due_.push_back(&each);
}

}  // namespace zev::scenario
