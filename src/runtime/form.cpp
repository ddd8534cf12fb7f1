#include "runtime/form.h"

#include <algorithm>
#include <stdexcept>

#include "runtime/controls.h"

namespace zev {
namespace {

std::unique_ptr<Control> makeControl(const ControlDesign& design) {
  switch (design.kind) {
    case ControlKind::Label:
      return std::make_unique<Label>(design);
    case ControlKind::CommandButton:
      return std::make_unique<CommandButton>(design);
    case ControlKind::PictureBox:
      return std::make_unique<PictureBox>(design);
    case ControlKind::Image:
      return std::make_unique<Image>(design);
    case ControlKind::ComboBox:
      return std::make_unique<ComboBox>(design);
    case ControlKind::OptionButton:
      return std::make_unique<OptionButton>(design);
    case ControlKind::CheckBox:
      return std::make_unique<CheckBox>(design);
    case ControlKind::TextBox:
      return std::make_unique<TextBox>(design);
    case ControlKind::Frame:
      return std::make_unique<Frame>(design);
    case ControlKind::Menu:
      return std::make_unique<Menu>(design);
    case ControlKind::Line:
      return std::make_unique<Line>(design);
    case ControlKind::DriveListBox:
      return std::make_unique<DriveListBox>(design);
    case ControlKind::DirListBox:
      return std::make_unique<DirListBox>(design);
  }
  throw std::logic_error("no such kind of control");
}

}  // namespace

Form::Form(const FormDesign& design) : Component(Text(design.name)), design_(design) {
  Caption.design(Text(design.caption));
  Icon.design(Text(design.icon));
  for (const ControlDesign& row : design.controls) {
    owned_.push_back(makeControl(row));
    controls_.push_back(owned_.back().get());
  }
  for (Control* each : controls_) {
    const TextView container = each->design().container;
    if (!container.empty()) each->lieIn(&designed(container));
  }
}

Control* Form::findControl(TextView name) const {
  const auto found = std::find_if(controls_.begin(), controls_.end(), [&](const Control* each) {
    return equalText(each->name(), name);
  });
  return found == controls_.end() ? nullptr : *found;
}

Control& Form::designed(TextView name) const {
  Control* found = findControl(name);
  if (found == nullptr) throw std::logic_error("no control " + toUtf8(name));
  return *found;
}

void Form::observeAll(FormObserver* observer) {
  observe(observer);
  for (Control* each : controls_) each->observe(observer);
}

void Form::restoreDesign() {
  Component::restoreDesign();
  for (Control* each : controls_) each->restoreDesign();
}

// ---- the tab order

std::vector<Control*> tabOrder(const Form& form) {
  std::vector<Control*> order = form.Controls();
  const auto place = [](const Control* control) {
    return static_cast<std::uint32_t>(control->TabIndex.get());  // -1 is the greatest
  };
  std::stable_sort(order.begin(), order.end(), [&](const Control* first, const Control* second) {
    return place(first) < place(second);
  });
  return order;
}

Control* nextFocusable(const Form& form, const Control* from, TabDirection direction) {
  std::vector<Control*> order = tabOrder(form);
  if (direction == TabDirection::Backward) std::reverse(order.begin(), order.end());
  const auto start = std::find(order.begin(), order.end(), from);
  if (start != order.end()) std::rotate(order.begin(), start + 1, order.end());
  const auto found = std::find_if(order.begin(), order.end(),
                                  [](const Control* each) { return each->canTakeFocus(); });
  return found == order.end() ? nullptr : *found;
}

}  // namespace zev
