#include "programs/zevsim/form_pieces.h"
#include "programs/zevsim/meant.h"
#include "programs/zevsim/simulated_stage.h"
#include "scenario/finding.h"

namespace zev::simulator {
namespace {

using Hindrance = std::optional<std::string>;

Hindrance of(const Form& form) {
  const std::string name = toUtf8(form.name());
  if (!form.loaded() || !form.Visible) return name + " is not shown";
  if (!form.Enabled) return name + " is disabled";
  return std::nullopt;
}

Hindrance of(const Form& form, const Control& control) {
  if (auto reason = of(form)) return reason;
  if (!control.showing()) return calledBy(control) + " is hidden";
  if (!isEnabled(control)) return calledBy(control) + " is disabled";
  return std::nullopt;
}

/// Finds what a step is done to, and what is in its way.
struct Finder {
  SimulatedStage& stage;

  template <typename Special>
  Hindrance find(const scenario::Name& name, const Special& special) const {
    const Form* form =
        name.parts.size() > 1 ? findForm(stage, name.parts.front()) : stage.activeForm();
    const Control* control =
        form == nullptr ? nullptr : form->findControl(fromUtf8(name.parts.back()));
    if (control == nullptr) return std::nullopt;
    if (auto reason = of(*form, *control)) return reason;
    return special(*control);
  }

  Hindrance find(const scenario::Name& name) const {
    return find(name, [](const Control&) { return std::nullopt; });
  }

  Hindrance operator()(const scenario::Click& click) const { return find(click.control); }
  Hindrance operator()(const scenario::Select& select) const { return find(select.control); }

  Hindrance operator()(const scenario::Type& type) const {
    return find(type.control, [](const Control& control) {
      return control.design().locked ? Hindrance(calledBy(control) + " is locked") : std::nullopt;
    });
  }

  Hindrance operator()(const scenario::Focus& focus) const {
    return find(focus.control, [](const Control& control) {
      return control.canTakeFocus() ? std::nullopt
                                    : Hindrance(calledBy(control) + " takes no focus");
    });
  }

  Hindrance operator()(const scenario::Close& close) const {
    const Form* form = findForm(stage, close.form.written());
    return form == nullptr ? std::nullopt : of(*form);
  }

  template <typename Other>
  Hindrance operator()(const Other&) const {
    return std::nullopt;
  }
};

}  // namespace

std::optional<std::string> hindranceOf(const scenario::Step& step, SimulatedStage& stage) {
  if (!stage.ended().isNull()) return std::nullopt;
  return std::visit(Finder{stage}, step.action);
}

}  // namespace zev::simulator
