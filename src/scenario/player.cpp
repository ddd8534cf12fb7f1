#include "scenario/player.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "scenario/boxes.h"
#include "scenario/machine_setup.h"

namespace zev::scenario {
namespace {

/// The unwinding of a program that is left where it stands, to be started anew. As PlayLeft it is
/// no run-time error, so no trap of the program catches it.
struct RestartRequested {};

/// Steps that can follow the end of the program.
bool canFollowEnd(const Step& step) {
  return std::holds_alternative<Expect>(step.action) ||
         std::holds_alternative<Change>(step.action) ||
         std::holds_alternative<Restart>(step.action);
}

template <typename T>
T& requireKind(Control& control, const Step& step, std::string_view wanted) {
  auto* typed = dynamic_cast<T*>(&control);
  if (typed == nullptr) {
    throw ScenarioError(step.path, toUtf8(control.name()) + " is no " + std::string(wanted));
  }
  return *typed;
}

bool has(const ComboBox& combo, TextView entry) {
  for (std::int32_t place = 0; place < combo.ListCount(); ++place) {
    if (combo.List(place) == entry) return true;
  }
  return false;
}

/// Whether the machine has a folder of that full path.
bool hasFolder(const simulated::Disks& disks, const Text& path) {
  try {
    const auto entry = disks.find(path);
    return entry && (entry->attributes & file_attribute::directory) != 0;
  } catch (const std::invalid_argument&) {  // a path that none can have
    return false;
  }
}

/// Whether the machine has its installer already, as one of its files.
bool hasInstaller(const simulated::SimulatedMachine& machine) {
  const Text& path = machine.settings().installer;
  try {
    return machine.disks().exists(path);
  } catch (const std::invalid_argument&) {
    return false;
  }
}

}  // namespace

Player::Player(const Scenario& scenario, ProgramFactory factory, simulated::Transcript& transcript,
               Companion& companion)
    : scenario_(scenario),
      factory_(std::move(factory)),
      transcript_(transcript),
      companion_(companion),
      machine_(*this, transcript) {
  part_.script = &scenario.script;
  setUp(machine_, scenario.machine);
  if (!hasInstaller(machine_) || !scenario.package.path.empty()) {
    layInstaller(machine_, makeInstaller(scenario.package));
  }
}

Player::~Player() = default;

// The course of a play.

void Player::play() {
  try {
    playScript();
  } catch (const PlayLeft&) {
    return;
  }
}

void Player::playScript() {
  const auto& script = *part_.script;
  while (part_.place < script.size() && preparesOnly(script[part_.place])) {
    perform(script[part_.place++]);
  }
  for (bool again = true; std::exchange(again, false);) {
    try {
      live();
    } catch (const RestartRequested&) {
      again = true;
    }
  }
}

/// One life of the program, from its start to the end of the script.
void Player::live() {
  part_.program.reset();
  part_.ended = nullptr;
  companion_.starts();
  machine_.startProgram();
  part_.program = factory_(machine_.platform());
  part_.triggers.requireProperties(part_.program->forms());
  runProgram();
  while (const Step* step = part_.ended.is_null() ? nullptr : takeStep()) performGuarded(*step);
}

void Player::runProgram() {
  try {
    machine_.platform().application.run([this] { part_.program->start(); });
  } catch (const ProgramEnd& over) {
    end(over.kind == EndKind::Exit ? "exit" : "unload");
  } catch (const UnhandledError& unhandled) {
    end({{"error", unhandled.error.number()},
         {"description", toUtf8(unhandled.error.description())}});
  }
}

void Player::end(Json how) {
  part_.ended = std::move(how);
  companion_.ended(part_.ended);
  if (!transcript_.wants("end")) return;
  Json event{{"event", "end"}, {"how", part_.ended.is_object() ? Json("error") : part_.ended}};
  if (part_.ended.is_object()) event.update(part_.ended);
  transcript_.add(std::move(event));
}

/// What is due comes first, then the script, then the companion; null if nothing is left.
const Step* Player::takeStep() {
  if (part_.ended.is_null()) part_.triggers.rest();
  if (const Step* due = part_.triggers.takeDue()) return due;
  if (part_.place < part_.script->size()) return &(*part_.script)[part_.place++];
  return part_.script == &scenario_.script ? takeOwnStep() : nullptr;
}

const Step* Player::takeOwnStep() {
  auto step = companion_.goOn(*this);
  if (!step) return nullptr;
  ownSteps_.push_back(std::make_unique<Step>(std::move(*step)));
  return ownSteps_.back().get();
}

bool Player::next() {
  const Step* step = takeStep();
  if (step != nullptr) performGuarded(*step);
  return step != nullptr;
}

bool Player::duringPass() {
  const Step* step = part_.triggers.takeDue();
  if (step != nullptr) performGuarded(*step);
  return step != nullptr;
}

void Player::performGuarded(const Step& step) {
  try {
    perform(step);
  } catch (const ScenarioError& error) {
    if (!companion_.refused(error)) throw;
  }
}

bool Player::perform(const Step& step) {
  if (!part_.ended.is_null() && !canFollowEnd(step)) {
    throw ScenarioError(step.path,
                        "the program has ended; only expect, change and restart can follow");
  }
  if (!std::holds_alternative<Expect>(step.action)) {
    companion_.stepBegins(*this, step);
    tellStep(step);
  }
  return std::visit([&](const auto& action) { return carryOut(action, step); }, step.action);
}

std::vector<Form*> Player::forms() {
  return part_.program && part_.ended.is_null() ? part_.program->forms() : std::vector<Form*>();
}

void Player::propertyWritten(PropertyBase& property) {
  const Form* form = machine_.screen().formOf(property.owner());
  if (part_.triggers.watchesProperties()) part_.triggers.written(form, property);
  companion_.propertyWritten(form, property);
}

// Boxes.

/// Does what is to be done before a box is answered.
void Player::openBox() {
  companion_.boxOpens(*this);
  for (const Step* step : part_.triggers.boxOpens()) performGuarded(*step);
}

/// Takes the next answer of the script and what it means for the box; none if there is no answer
/// left, or one that the box does not have and the companion has dealt with.
template <typename Take>
auto Player::takeAnswer(const Take& take) -> std::optional<decltype(take(std::declval<Answer>()))> {
  if (answers_.empty()) return std::nullopt;
  const Answer answer = std::move(answers_.front());
  answers_.pop_front();
  try {
    return take(answer);
  } catch (const ScenarioError& error) {
    if (!companion_.refused(error)) throw;
  }
  return std::nullopt;
}

BoxAnswer Player::answer(const simulated::Box& box) {
  ++boxesShown_;
  const std::size_t place = boxes_.size();
  boxes_.push_back(
      {{"text", toUtf8(box.text)}, {"title", toUtf8(box.title)}, {"style", box.style}});
  openBox();
  const auto press = [&](const Answer& answer) { return pressed(answer, box); };
  auto button = takeAnswer(press);
  if (!button) {
    const auto asked = companion_.answer(box);
    button = asked ? press(*asked) : simulated::defaultAnswer(box.style);
  }
  if (place < boxes_.size()) boxes_[place]["answer"] = answerWord(*button);
  companion_.boxAnswered(box, *button);
  return *button;
}

Text Player::input(TextView prompt, TextView title, TextView initial) {
  ++boxesShown_;
  openBox();
  const auto enter = [&](const Answer& answer) { return entered(answer, initial); };
  auto text = takeAnswer(enter);
  if (!text) {
    const auto asked = companion_.input(prompt, title, initial);
    text = asked ? enter(*asked) : Text(initial);
  }
  companion_.inputAnswered(prompt, title, *text);
  return *text;
}

// Finding controls.

/// The control that a step means; null if it stands on no active form. A name that no form has is
/// an error of the script.
Control* Player::findControl(const Name& name, const Step& step) {
  const std::string& control = name.parts.back();
  Form* form = name.parts.size() > 1 ? findForm(*part_.program, name.parts.front())
                                     : machine_.screen().activeForm();
  if (form == nullptr) {
    requireControl(name, step);
    return nullptr;
  }
  Control* found = form->findControl(fromUtf8(control));
  if (found == nullptr) {
    throw ScenarioError(step.path, toUtf8(form->name()) + " has no control " + control);
  }
  return found;
}

/// Without an active form a bare name must at least be that of some form's control.
void Player::requireControl(const Name& name, const Step& step) {
  if (name.parts.size() > 1) {
    throw ScenarioError(step.path, "the program has no form " + name.parts.front());
  }
  const auto forms = part_.program->forms();
  const bool known = std::any_of(forms.begin(), forms.end(), [&](const Form* form) {
    return form->findControl(fromUtf8(name.parts.back())) != nullptr;
  });
  if (!known) throw ScenarioError(step.path, "no form has a control " + name.parts.back());
}

// The verbs.

bool Player::carryOut(const Click& click, const Step& step) {
  Control* control = findControl(click.control, step);
  return control != nullptr && machine_.hand().click(*control);
}

bool Player::carryOut(const Select& select, const Step& step) {
  Control* control = findControl(select.control, step);
  if (control == nullptr) return false;
  auto& combo = requireKind<ComboBox>(*control, step, "list");
  if (!machine_.hand().reaches(combo)) return false;
  if (!has(combo, select.entry)) {
    throw ScenarioError(step.path,
                        toUtf8(combo.name()) + " has no entry \"" + toUtf8(select.entry) + "\"");
  }
  return machine_.hand().select(combo, select.entry);
}

bool Player::carryOut(const Type& type, const Step& step) {
  Control* control = findControl(type.control, step);
  if (control == nullptr) return false;
  return machine_.hand().type(requireKind<TextBox>(*control, step, "text box"), type.text);
}

bool Player::carryOut(const Focus& focus, const Step& step) {
  Control* control = findControl(focus.control, step);
  return control != nullptr && machine_.hand().focus(*control);
}

/// Chooses an entry of the drive list or the directory tree of the active form.
bool Player::choose(ControlKind kind, const Text& entry, const Step& step) {
  Form* form = machine_.screen().activeForm();
  Control* list = nullptr;
  for (Control* each : form == nullptr ? std::vector<Control*>() : form->Controls()) {
    if (each->kind() == kind) list = each;
  }
  if (list == nullptr) throw ScenarioError(step.path, "the active form has no such list");
  if (!machine_.hand().reaches(*list)) return false;
  machine_.hand().focus(*list);
  machine_.platform().application.post(
      [this, list, entry] { part_.program->choose(*list, entry); });
  return true;
}

bool Player::carryOut(const ChooseDrive& choice, const Step& step) {
  const Text letter = lowerCase(TextView(choice.drive).substr(0, 1));
  const auto drive =
      letter.empty() ? std::nullopt : machine_.disks().drive(upperCase(letter).front());
  if (!drive || drive->type < drive_type::removable) {
    throw ScenarioError(step.path,
                        "the drive list shows no drive \"" + toUtf8(choice.drive) + "\"");
  }
  return choose(ControlKind::DriveListBox, letter + u":", step);
}

bool Player::carryOut(const ChooseFolder& choice, const Step& step) {
  if (!hasFolder(machine_.disks(), choice.folder)) {
    throw ScenarioError(step.path, "the machine has no folder " + toUtf8(choice.folder));
  }
  return choose(ControlKind::DirListBox, choice.folder, step);
}

bool Player::carryOut(const Close& close, const Step& step) {
  Form* form = findForm(*part_.program, close.form.written());
  if (form == nullptr) {
    throw ScenarioError(step.path, "the program has no form " + close.form.written());
  }
  return machine_.hand().close(*form);
}

bool Player::carryOut(const GiveAnswers& given, const Step&) {
  answers_.insert(answers_.end(), given.answers.begin(), given.answers.end());
  return false;
}

bool Player::carryOut(const At& at, const Step&) {
  if (part_.program) Triggers::requireProperty(at, part_.program->forms());
  part_.triggers.arm(at);
  return false;
}

bool Player::carryOut(const Change& change, const Step&) {
  scenario::change(machine_, change.change);
  return false;
}

bool Player::carryOut(const Restart&, const Step&) { throw RestartRequested{}; }

bool Player::carryOut(const EndSession&, const Step&) { return machine_.hand().endSession(); }

/// The other program keeps what it holds until the end of the play.
bool Player::carryOut(const Other& other, const Step&) {
  FileSystem& files = machine_.otherFileSystem();
  std::uint32_t attributes = 0;
  std::size_t written = 0;
  FileHandle file = 0;
  if (other.kind == Other::Kind::Deletes) files.DeleteFileA(other.file);
  if (other.kind == Other::Kind::Holds) {
    files.HoldEntryA(other.file, Holding::ToKeep, attributes, file);
  }
  if (other.kind != Other::Kind::Writes) return false;
  const std::string bytes = files.toAnsi(other.text);
  if (files.CreateFileA(other.file, FileAccess::Write, FileShare::All,
                        FileDisposition::CreateAlways, file) != system_error::success) {
    return false;
  }
  files.WriteFile(file, 0, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                  written);
  files.CloseHandle(file);
  return false;
}

/// Boxes and answers are those of both programs, one behind the other.
bool Player::carryOut(const Beside& beside, const Step&) {
  Part first = std::exchange(part_, Part{&beside.steps});
  const auto back = [&] {
    part_.program.reset();
    machine_.endBeside();
    part_ = std::move(first);
  };
  machine_.beginBeside();
  try {
    playScript();
  } catch (...) {
    back();
    throw;
  }
  back();
  return false;
}

bool Player::carryOut(const Expect& expect, const Step&) {
  for (const KeyedValue& each : expect.expectations) {
    const Verdict verdict = judge(each, scene());
    if (!verdict.held) ++failures_;
    if (each.key == "boxes") boxes_ = Json::array();
    tellExpectation(each, verdict);
  }
  return false;
}

bool Player::carryOut(const Set& set, const Step&) {
  for (const KeyedValue& each : set.values) setOne(each);
  return false;
}

void Player::setOne(const KeyedValue& value) {
  constexpr std::string_view prefix = "global.";
  const PropertyValue wanted = toPropertyValue(value.value);
  if (value.key.starts_with(prefix)) {
    if (part_.program->setGlobal(value.key.substr(prefix.size()), wanted)) return;
    throw ScenarioError(value.path, "the program has no such global of that type");
  }
  const Json key = value.key;
  PropertyBase& property =
      findProperty(readName(JsonReader(key, {}, value.path), 3), scene(), value.path);
  if (property.value().index() != wanted.index()) {
    throw ScenarioError(value.path, "the property is of another type");
  }
  property.write(wanted);
}

// The transcript.

void Player::tellStep(const Step& step) {
  if (transcript_.wants("step")) transcript_.add({{"event", "step"}, {"step", step.source}});
}

void Player::tellExpectation(const KeyedValue& expectation, const Verdict& verdict) {
  companion_.judged(expectation, verdict);
  if (!transcript_.wants("expect")) return;
  transcript_.add({{"event", "expect"},
                   {"key", expectation.key},
                   {"held", verdict.held},
                   {"expected", expectation.value},
                   {"found", verdict.found}});
}

}  // namespace zev::scenario
