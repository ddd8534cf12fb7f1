#include "runtime/controls.h"

#include "runtime/error.h"

namespace zev {
namespace {

Text fullName(const ControlDesign& design) {
  if (design.index < 0) return Text(design.name);
  return join(design.name, u"(", decimal(design.index), u")");
}

}  // namespace

bool takesFocus(ControlKind kind) {
  switch (kind) {
    case ControlKind::CommandButton:
    case ControlKind::ComboBox:
    case ControlKind::OptionButton:
    case ControlKind::CheckBox:
    case ControlKind::TextBox:
    case ControlKind::DriveListBox:
    case ControlKind::DirListBox:
      return true;
    default:
      return false;
  }
}

Control::Control(const ControlDesign& design) : Component(fullName(design)), design_(design) {
  Visible.design(design.visible);
  Enabled.design(design.enabled);
  Left.design(design.place.left);
  Top.design(design.place.top);
  Width.design(design.place.width);
  Height.design(design.place.height);
  TabIndex.design(design.tabIndex);
}

bool Control::dropsDown() const {
  return kind() == ControlKind::ComboBox || kind() == ControlKind::DriveListBox;
}

bool Control::showing() const {
  return Visible && (container_ == nullptr || container_->showing());
}

bool Control::canTakeFocus() const {
  bool enabled = takesFocus(kind()) && showing();
  for (const Control* each = this; enabled && each != nullptr; each = each->container_) {
    enabled = each->Enabled;
  }
  return enabled;
}

void Control::SetFocus() {
  if (!canTakeFocus()) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  if (observer() != nullptr) observer()->focusGiven(*this);
}

Label::Label(const ControlDesign& design) : Control(design) { Caption.design(Text(design.text)); }

CommandButton::CommandButton(const ControlDesign& design) : Control(design) {
  Caption.design(Text(design.text));
}

OptionButton::OptionButton(const ControlDesign& design) : Control(design) {
  Caption.design(Text(design.text));
}

CheckBox::CheckBox(const ControlDesign& design) : Control(design) {
  Caption.design(Text(design.text));
}

TextBox::TextBox(const ControlDesign& design) : Control(design) { Text_.design(Text(design.text)); }

Frame::Frame(const ControlDesign& design) : Control(design) { Caption.design(Text(design.text)); }

Menu::Menu(const ControlDesign& design) : Control(design) { Caption.design(Text(design.text)); }

void ComboBox::designList(std::vector<Text> items) {
  design_ = std::move(items);
  items_ = design_;
}

void ComboBox::restoreDesign() {
  Control::restoreDesign();
  items_ = design_;
}

void ComboBox::AddItem(Text item) { items_.push_back(std::move(item)); }

const Text& ComboBox::List(std::int32_t place) const {
  if (place < 0 || place >= ListCount()) throw RuntimeError(ErrorNumber::InvalidPropertyArrayIndex);
  return items_[static_cast<std::size_t>(place)];
}

void ComboBox::setList(std::int32_t place, Text item) {
  List(place);
  items_[static_cast<std::size_t>(place)] = std::move(item);
  if (place == listIndex_) shownText_ = items_[static_cast<std::size_t>(place)];
}

void ComboBox::setListIndex(std::int32_t place) {
  if (place < -1 || place >= ListCount()) throw RuntimeError(ErrorNumber::InvalidPropertyValue);
  listIndex_ = place;
  shownText_ = text();
  if (Click) Click();
}

Text ComboBox::text() const { return listIndex_ < 0 ? Text() : List(listIndex_); }

void choose(OptionButton& button, const std::vector<Control*>& siblings) {
  for (Control* each : siblings) {
    auto* other = dynamic_cast<OptionButton*>(each);
    if (other == nullptr || other == &button || other->container() != button.container()) continue;
    if (other->Value) other->Value = false;
  }
  button.Value = true;
}

// ---- lists of drives and folders

namespace {

constexpr std::size_t driveLength = 2;  ///< a letter and a colon

Text driveOf(TextView text) { return join(lowerCase(left(text, 1)), u":"); }

/// "D:\" for a drive alone and for its root, otherwise a folder without a backslash at its end.
Text listedFolder(TextView path) {
  const TextView folder = withoutTrailing(path, u'\\');
  const bool drive = folder.size() == driveLength && folder.back() == u':';
  return drive ? join(upperCase(folder), u"\\") : Text(folder);
}

}  // namespace

void DriveListBox::setDrive(TextView drive) {
  const Text wanted = driveOf(drive);
  if (wanted == Drive()) return;
  if (available && !available(wanted)) throw RuntimeError(ErrorNumber::DeviceUnavailable);
  drive_ = wanted;
  if (Change) Change();
}

void DriveListBox::comeUpOn(TextView drive) { drive_ = driveOf(drive); }

void DirListBox::comeUpOn(TextView path) { path_ = listedFolder(path); }

void DirListBox::setPath(TextView path) {
  const Text wanted = listedFolder(path);
  if (wanted == Path() || (exists && !exists(wanted))) return;
  path_ = wanted;
  if (Change) Change();
}

}  // namespace zev
