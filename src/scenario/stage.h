#pragma once

#include <optional>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "runtime/form.h"
#include "runtime/property.h"
#include "scenario/outside_view.h"
#include "scenario/script.h"
#include "scenario/witness.h"

namespace zev::scenario {

/// The scenario cannot be played from where the person sits, which shows only now.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A control and the form that it is on, both of the program.
struct FormControl {
  Form& form;
  Control& control;
};

/// A program and its machine, as a person in front of it meets them. There are two: the simulated
/// machine of zevsim, and the windows of the real program of zevdrive. What a person does is done
/// when an act returns, or as soon as the program's message loop turns; on a control that cannot be
/// reached it does nothing at all.
class Stage {
 public:
  virtual ~Stage() = default;

  /// Whether it looks into the program. From outside nothing but what shows can be held against an
  /// expectation: of a box the visible part of its style, of the forms what their windows show.
  virtual bool seesInside() const = 0;

  // ---- what is there

  /// All forms of the program, those that are not loaded included: for their names, and the names
  /// and kinds of what is on them.
  virtual std::vector<Form*> forms() = 0;
  /// The visible form on top, of the enabled ones if there are any; null without one.
  virtual Form* activeForm() = 0;
  /// The control of the active form that has the focus; null without one.
  virtual Control* focused() = 0;
  /// What the forms of the running program show; nothing while none runs.
  virtual Sight sight() = 0;
  /// The machine's files and registry, as the program's own calls would find them.
  virtual const Witness& witness() const = 0;
  /// A property of a form, or of a control on it; none if it cannot be seen from here, or now.
  virtual std::optional<Json> value(Component& component, std::string_view property) = 0;
  /// What an expectation of another kind finds: `kind` is one of kindOfKey, `rest` what stands
  /// after it. None if it cannot be seen from here. A global that the program does not have is
  /// std::invalid_argument.
  virtual std::optional<Json> find(std::string_view kind, std::string_view rest) = 0;

  // ---- what a person does

  /// Whether a person can use the control, now.
  virtual bool reaches(const FormControl& to) = 0;
  /// The focus goes to the control too, if it takes one.
  virtual void click(const FormControl& to) = 0;
  /// Nothing happens on a control that takes no focus.
  virtual void focus(const FormControl& to) = 0;
  /// Replaces the text of a text box.
  virtual void type(const FormControl& box, const Text& text) = 0;
  /// The entries of a list that drops down; those of a drive list begin as "c:".
  virtual std::vector<Text> entries(const FormControl& list) = 0;
  /// Chooses one of these entries, or the folder of that full path in a directory tree.
  virtual void choose(const FormControl& list, const Text& entry) = 0;
  /// The close box of the title bar.
  virtual void close(Form& form) = 0;

  // ---- what is done to the program and its machine

  /// Fails with a ScenarioError for what the machine refuses.
  virtual void change(const MachineChange& change) = 0;
  /// Starts the program anew. It may do so by throwing what unwinds the one that runs.
  virtual void restart() = 0;
  /// The person logs off; nothing happens if the program asks to wait.
  virtual void endSession() { throw Refused("the session is not ended from outside"); }
  /// Another program does this meanwhile; it counts for nothing if the system refuses it.
  virtual void letOther(const Other& /*other*/) {
    throw Refused("no other program is played from outside");
  }
  /// Plays a second program beside the one that runs, which stands still meanwhile: from its start
  /// to the end of its steps, at which it is left where it stands.
  virtual void playBeside() { throw Refused("no second program is played from outside"); }
  /// Writes a global. False if there is none of that name and type.
  virtual bool setGlobal(std::string_view /*name*/, const PropertyValue& /*value*/) {
    throw Refused("globals are not written from outside");
  }
  /// Writes a property as the program's own code does.
  virtual void write(PropertyBase& /*property*/, const PropertyValue& /*value*/) {
    throw Refused("properties are not written from outside");
  }
};

}  // namespace zev::scenario
