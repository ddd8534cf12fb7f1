#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "runtime/property.h"

namespace zev {

/// An event procedure; empty if the program has none for the event.
using EventProcedure = std::function<void()>;

enum class ControlKind {
  Label,
  CommandButton,
  PictureBox,
  Image,
  ComboBox,
  OptionButton,
  CheckBox,
  TextBox,
  Frame,
  Menu,
  Line,
  DriveListBox,
  DirListBox,
};

/// Place and size within the container, in twips.
struct Place {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
};

/// Whether a person can give a control of a kind the focus.
bool takesFocus(ControlKind kind);

/// One control as it stands at design time: a row of a form's table of controls.
struct ControlDesign {
  TextView name;
  std::int32_t index = -1;  ///< within a control array; -1 for a control of its own
  ControlKind kind{};
  TextView container = {};  ///< its name, "Frame1(2)" for one of an array; empty: the form
  Place place{};            ///< for a line the two end points
  std::int32_t tabIndex = -1;
  TextView text = {};  ///< caption or text
  bool visible = true;
  bool enabled = true;
  bool centred = false;
  bool border = true;      ///< of a frame or picture box
  bool multiLine = false;  ///< of a text box: several lines and a vertical scroll bar
  bool locked = false;     ///< of a text box: a person cannot change it
  bool bar = false;        ///< of a label: it is a progress bar, filled with green
  bool onBar = false;      ///< of a label: its text stands on the bar in the same container
};

/// What every control has. `Left`, `Top`, `Width` and `Height` are twips within the container.
class Control : public Component {
 public:
  explicit Control(const ControlDesign& design);

  const ControlDesign& design() const { return design_; }
  ControlKind kind() const { return design_.kind; }
  /// The control that this one lies in; null for the form itself.
  Control* container() const { return container_; }
  void lieIn(Control* container) { container_ = container; }
  /// True for a list of which one entry is seen until it drops down; the system gives such a list
  /// its height.
  bool dropsDown() const;
  /// True if the control and all that it lies in are visible.
  bool showing() const;
  /// True if a person can give it the focus, now.
  bool canTakeFocus() const;
  /// Gives it the focus, at the latest when its form is in use; error 5 if it cannot take it.
  void SetFocus();

  Property<bool> Visible{*this, "Visible"};
  Property<bool> Enabled{*this, "Enabled"};
  Property<std::int32_t> Left{*this, "Left"};
  Property<std::int32_t> Top{*this, "Top"};
  Property<std::int32_t> Width{*this, "Width"};
  Property<std::int32_t> Height{*this, "Height"};
  Property<std::int32_t> TabIndex{*this, "TabIndex"};
  Property<Text> Tag{*this, "Tag"};

  EventProcedure Click;
  EventProcedure GotFocus;
  EventProcedure LostFocus;

 private:
  ControlDesign design_;
  Control* container_ = nullptr;
};

class Label final : public Control {
 public:
  explicit Label(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
};

class CommandButton final : public Control {
 public:
  explicit CommandButton(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
};

class PictureBox final : public Control {
 public:
  explicit PictureBox(const ControlDesign& design) : Control(design) {}
  Property<Text> ToolTipText{*this, "ToolTipText"};
};

/// An image shows one picture; of pictures this program knows only "the icon of the form".
class Image final : public Control {
 public:
  explicit Image(const ControlDesign& design) : Control(design) {}
  Property<Text> ToolTipText{*this, "ToolTipText"};
  /// Empty, or the name of the form whose icon is shown.
  Property<Text> Picture{*this, "Picture"};
};

class OptionButton final : public Control {
 public:
  explicit OptionButton(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
  Property<bool> Value{*this, "Value"};
};

/// `Value`: 0 unchecked, 1 checked, 2 greyed.
class CheckBox final : public Control {
 public:
  explicit CheckBox(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
  Property<std::int32_t> Value{*this, "Value"};
};

/// `SelStart` is the caret, in characters from the start.
class TextBox final : public Control {
 public:
  explicit TextBox(const ControlDesign& design);
  Property<Text> Text_{*this, "Text"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
  Property<std::int32_t> SelStart{*this, "SelStart"};
};

/// A frame; a caption and no tool tip that the program uses.
class Frame final : public Control {
 public:
  explicit Frame(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
  Property<Text> ToolTipText{*this, "ToolTipText"};
};

class Menu final : public Control {
 public:
  explicit Menu(const ControlDesign& design);
  Property<Text> Caption{*this, "Caption"};
};

class Line final : public Control {
 public:
  explicit Line(const ControlDesign& design) : Control(design) {}
};

/// A list of texts with a selected place. Choosing one, by a person or by code, fires the click.
class ComboBox final : public Control {
 public:
  explicit ComboBox(const ControlDesign& design) : Control(design) {}
  Property<Text> ToolTipText{*this, "ToolTipText"};

  /// The entries at design time, which every load of the form begins with.
  void designList(std::vector<Text> items);
  void restoreDesign() override;

  void AddItem(Text item);
  std::int32_t ListCount() const { return static_cast<std::int32_t>(items_.size()); }
  /// An entry; error 381 for a place that the list does not have.
  const Text& List(std::int32_t place) const;
  void setList(std::int32_t place, Text item);
  /// The selected place, -1 for none.
  std::int32_t ListIndex() const { return listIndex_; }
  /// Selects a place, -1 for none, and fires the click; error 380 for a place that the list does
  /// not have.
  void setListIndex(std::int32_t place);
  /// The text of the selected entry; empty without one.
  Text text() const;

 private:
  std::vector<Text> design_;
  std::vector<Text> items_;
  Property<std::int32_t> listIndex_{*this, "ListIndex", -1};
  Property<Text> shownText_{*this, "Text"};
};

/// Writes `value` into an option button as a person's choice does: the others in the same container
/// go off. A value of false only clears this one.
void choose(OptionButton& button, const std::vector<Control*>& siblings);

/// A list of the machine's drives with one of them chosen, by a person or by code.
class DriveListBox final : public Control {
 public:
  explicit DriveListBox(const ControlDesign& design) : Control(design) {}

  /// The chosen drive as a lower-case letter and a colon, without a label; empty before one is.
  const Text& Drive() const { return drive_; }
  /// Chooses the drive of the text's first letter and fires the change, unless it is the one that
  /// is chosen already; error 68 for a drive that the list does not have.
  void setDrive(TextView drive);
  /// Sets the drive that the list first shows. No event is fired.
  void comeUpOn(TextView drive);

  /// Tells whether the machine has a drive, given as letter and colon. Set by the program.
  std::function<bool(TextView drive)> available;
  EventProcedure Change;

 private:
  Property<Text> drive_{*this, "Drive"};
};

/// The folders of a drive as a tree with one of them opened, by a person or by code.
class DirListBox final : public Control {
 public:
  explicit DirListBox(const ControlDesign& design) : Control(design) {}

  /// The opened folder, with a backslash at its end only if it is a root; empty before one is.
  const Text& Path() const { return path_; }
  /// Opens a folder and fires the change. A drive alone stands for its root. The tree stays as it
  /// is for the folder that is opened already, and for one that does not exist.
  void setPath(TextView path);
  /// Sets the folder that the tree first shows. No event is fired.
  void comeUpOn(TextView path);

  /// Tells whether a folder exists. Set by the program.
  std::function<bool(TextView folder)> exists;
  EventProcedure Change;

 private:
  Property<Text> path_{*this, "Path"};
};

}  // namespace zev
