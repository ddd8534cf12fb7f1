#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "runtime/controls.h"

namespace zev {

/// Who asks for an unload: the query of a form may tell them apart.
enum class UnloadMode {
  ControlMenu = 0,  ///< the person, by the title bar
  Code = 1,         ///< the program
};

/// A form as it stands at design time.
struct FormDesign {
  TextView name;
  TextView caption;
  TextView icon = {};       ///< name of the form whose icon it shows; empty for none
  std::int32_t width = 0;   ///< of the client area, twips
  std::int32_t height = 0;  ///< of the client area, twips
  bool toolWindow = false;
  TextView cancelButton = {};  ///< the button that the Escape key presses
  std::span<const ControlDesign> controls;
};

/// A form: its properties, its controls in the order of the design, and its event procedures. Forms
/// are plain objects; the application loads, shows, hides and unloads them.
class Form : public Component {
 public:
  explicit Form(const FormDesign& design);

  const FormDesign& design() const { return design_; }

  Property<Text> Caption{*this, "Caption"};
  /// Empty for none, or the name of the form whose icon the title bar shows.
  Property<Text> Icon{*this, "Icon"};
  Property<bool> Enabled{*this, "Enabled", true};
  Property<bool> Visible{*this, "Visible", false};
  /// The scale of positions within the form; 1 is twips.
  Property<std::int32_t> ScaleMode{*this, "ScaleMode", 1};

  /// All controls, in the order of the design.
  const std::vector<Control*>& Controls() const { return controls_; }
  /// The control of that name, letter case aside, "Frame1(2)" for one of an array; null if none.
  Control* findControl(TextView name) const;

  /// The control of that name as its own type. A design without it is an error of the program and
  /// throws std::logic_error.
  template <typename T>
  T& control(TextView name) const {
    return dynamic_cast<T&>(designed(name));
  }

  /// Event procedures. `Cancel` set to -1 keeps the form open. `Initialize` runs before `Load`,
  /// with the controls on the form, `Terminate` when it is gone.
  EventProcedure Initialize;
  EventProcedure Load;
  std::function<void(std::int16_t& Cancel, UnloadMode mode)> QueryUnload;
  std::function<void(std::int16_t& Cancel)> Unload;
  EventProcedure Terminate;

  /// Lets an observer learn of the form and of all its controls.
  void observeAll(FormObserver* observer);

  /// Takes the form and all its controls back to their state at design time.
  void restoreDesign() override;

  bool loaded() const { return loaded_; }

 private:
  friend class Application;
  Control& designed(TextView name) const;

  FormDesign design_;
  std::vector<std::unique_ptr<Control>> owned_;
  std::vector<Control*> controls_;
  bool loaded_ = false;
};

/// The controls of a form in tab order; those without a place in it come last.
std::vector<Control*> tabOrder(const Form& form);

enum class TabDirection { Forward, Backward };

/// The first control after `from` in tab order, round the end, that can take the focus; null if
/// none can. Without `from` the order's own first one.
Control* nextFocusable(const Form& form, const Control* from,
                       TabDirection direction = TabDirection::Forward);

}  // namespace zev
