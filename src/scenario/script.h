#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/dialogs.h"
#include "scenario/json_reader.h"
#include "scenario/machine_change.h"

namespace zev::scenario {

struct Step;

/// A form, a control of a form, or a property of either, as a script names it: `Form1`,
/// `Form1.Command2`, `Command2`. Parts are as written; who plays the script finds them.
struct Name {
  std::vector<std::string> parts;
  std::string written() const;
};

/// What a person answers to a box: a button by its word, or a text for an input box.
struct Answer {
  std::string button;
  std::optional<Text> text;
  std::string path;  ///< in the document, for messages
};

// The verbs.

/// What a person does: nothing at all on what cannot be reached, and a ScenarioError for a name
/// that the program does not have.
struct Click {
  Name control;
};
struct Select {
  Name control;
  Text entry;
};
struct Type {
  Name control;
  Text text;
};
struct Focus {
  Name control;
};
struct ChooseDrive {
  Text drive;
};
struct ChooseFolder {
  Text folder;
};
struct Close {
  Name form;
};
/// Answers for the boxes to come, in their order, after those that were given before.
struct GiveAnswers {
  std::vector<Answer> answers;
};
/// The program is started again, whether or not it has ended.
struct Restart {};
/// The person logs off; nothing happens if the program asks to wait.
struct EndSession {};
/// What another program does meanwhile, by the rules of the system; it counts for nothing if it is
/// refused.
struct Other {
  enum class Kind { Writes, Deletes, Holds };
  Kind kind{};
  Text file;
  Text text;  ///< what is written
};
/// What changes on the machine in the midst of a run.
struct Change {
  MachineChange change;
};
/// A second program beside the first, which stands still meanwhile: its steps, at the end of which
/// it is left where it stands.
struct Beside {
  std::vector<Step> steps;
};

// When steps are done that are done later.

/// In the n-th pass of the message loop from here.
struct AtPass {
  std::int32_t count = 1;
};
/// When a property takes a value, or one that meets a condition; at the next pass.
struct AtSet {
  Name property;
  Json value;
  std::string path;  ///< of the property in the document, for messages
};
/// Before the n-th box from here is answered.
struct AtBox {
  std::int32_t count = 1;
};
/// Steps that are done later, once.
struct At {
  std::variant<AtPass, AtSet, AtBox> when;
  std::vector<Step> steps;
};

/// One key of an expectation or one thing to set, with its value.
struct KeyedValue {
  std::string key;
  Json value;
  std::string path;
};
/// What must hold now. All of it is judged, also after one has failed.
struct Expect {
  std::vector<KeyedValue> expectations;
};
/// Writes globals of the program or properties of its forms.
struct Set {
  std::vector<KeyedValue> values;
};

using Action =
    std::variant<Click, Select, Type, Focus, ChooseDrive, ChooseFolder, Close, GiveAnswers, At,
                 Change, Restart, EndSession, Other, Beside, Expect, Set>;

/// One step of a script.
struct Step {
  Json source;       ///< as it stands in the script
  std::string path;  ///< of the verb in the document, for messages
  Action action;
};

/// Steps that only prepare what comes later: at the head of a script they are in force before the
/// program starts.
bool preparesOnly(const Step& step);

/// Reads a list of steps, and one step.
std::vector<Step> readSteps(const JsonReader& steps);
Step readStep(const JsonReader& step);

/// Reads a name of one to `mostParts` parts; the index of a control array stays with its part, as
/// in `Form1.Frame1(2)`.
Name readName(const JsonReader& name, std::size_t mostParts);

/// The parts of a text between its points, each an identifier that an index in parentheses may
/// follow, as in "Form1.Label3(2).Caption". None if one is something else.
std::optional<std::vector<std::string>> partsOfName(std::string_view written);

/// The button among those of a message box that an answer presses. Cancel closes a box that has an
/// OK alone, as the escape key does. An answer that the box does not have is a ScenarioError.
BoxAnswer pressedOf(const Answer& answer, const std::vector<BoxAnswer>& buttons, TextView boxText);

/// The text that an answer leaves in an input box: its own, the initial one for OK, empty for
/// Cancel. Any other is a ScenarioError.
Text entered(const Answer& answer, TextView initial);

}  // namespace zev::scenario
