#include "programs/zevdrive/driver.h"

#include <algorithm>
#include <charconv>

#include "programs/zevdrive/folder_tree.h"
#include "programs/zevdrive/shown_property.h"
#include "script/answers.h"
#include "script/matcher.h"

namespace zev::drive {

using scenario::Answer;
using scenario::Json;
using scenario::KeyedValue;
using scenario::Name;
using scenario::ScenarioError;
using scenario::Step;
using scenario::Verdict;

namespace {

/// Steps that can follow the end of the program.
bool canFollowEnd(const Step& step) {
  return std::holds_alternative<scenario::Expect>(step.action) ||
         std::holds_alternative<scenario::Change>(step.action) ||
         std::holds_alternative<scenario::Restart>(step.action);
}

/// The number in "Run-time error '75': ..".
std::int32_t errorNumber(const Text& text) {
  const std::string digits = toUtf8(text.substr(scenario::errorBoxStart.size()));
  std::int32_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

bool isErrorBox(const ShownBox& box) {
  return box.title == scenario::errorBoxTitle && box.text.starts_with(scenario::errorBoxStart);
}

/// Styles in an expectation of boxes, brought to the part of them that shows.
Json visibleStyles(Json boxes) {
  if (!boxes.is_array()) return boxes;
  for (Json& each : boxes) {
    if (!each.is_object() || !each.contains("style")) continue;
    if (each["style"].is_number_integer()) {
      each["style"] = scenario::visibleStyle(each["style"].get<std::int32_t>());
    }
  }
  return boxes;
}

bool sameName(TextView name, std::string_view written) {
  return equalText(name, fromUtf8(written));
}

void requireKind(const Control& control, ControlKind kind, const Step& step,
                 const std::string& wanted) {
  if (control.kind() == kind) return;
  throw ScenarioError(step.path, toUtf8(control.name()) + " is no " + wanted);
}

}  // namespace

Driver::Driver(const scenario::Scenario& scenario, Text program, std::vector<Form*> forms,
               scenario::OutsideView& view, RunningProgram::Clock::time_point deadline)
    : scenario_(scenario),
      path_(std::move(program)),
      forms_(std::move(forms)),
      view_(view),
      deadline_(deadline) {}

// The course of a play.

void Driver::play(MachineHand& machine) {
  machine_ = &machine;
  for (const Step& step : scenario_.script) {
    if (!program_ && !preparesOnly(step)) start();
    perform(step);
  }
  if (!program_) start();
  if (running()) view_.look(program_->sight(), false);
}

void Driver::start() {
  program_.reset();
  ended_ = nullptr;
  view_.start();
  program_ = std::make_unique<RunningProgram>(path_, forms_, deadline_);
  settle();
}

/// Waits until the program rests or is over, and answers its boxes meanwhile.
void Driver::settle() {
  while (running()) {
    switch (program_->settle()) {
      case Course::AtRest:
        return;
      case Course::Ended:
        return stop("ended");
      case Course::BoxOpen:
        handleBox();
    }
  }
}

void Driver::stop(Json how) {
  ended_ = std::move(how);
  view_.end(ended_);
}

void Driver::perform(const Step& step) {
  if (!ended_.is_null() && !canFollowEnd(step)) {
    throw ScenarioError(step.path,
                        "the program has ended; only expect, change and restart can follow");
  }
  if (!std::holds_alternative<scenario::Expect>(step.action)) {
    const bool boxOpen = running() && program_->windows().box() != nullptr;
    if (running()) view_.look(program_->sight(), boxOpen);
    view_.step(step.source);
  }
  std::visit([&](const auto& action) { carryOut(action, step); }, step.action);
}

// Boxes.

std::optional<Answer> Driver::takeAnswer() {
  if (answers_.empty()) return std::nullopt;
  Answer answer = std::move(answers_.front());
  answers_.pop_front();
  return answer;
}

void Driver::handleBox() {
  const HWND box = program_->windows().box();
  if (isInputBox(box)) {
    handleInputBox(readInput(box));
  } else {
    const ShownBox shown = readBox(box);
    if (!handleErrorBox(shown)) handleMessageBox(shown);
  }
  program_->waitUntilGone(box);
}

/// Does what is to be done before a box is answered.
void Driver::boxOpens() {
  view_.look(program_->sight(), true);
  std::vector<const scenario::At*> due;
  for (Countdown& each : atBoxes_) {
    if (--each.left == 0) due.push_back(each.at);
  }
  atBoxes_.remove_if([](const Countdown& each) { return each.left == 0; });
  for (const scenario::At* at : due) {
    for (const Step& step : at->steps) perform(step);
  }
}

/// A run-time error that ends the program tells itself in a box, and nothing goes on behind it.
bool Driver::handleErrorBox(const ShownBox& box) {
  if (!isErrorBox(box)) return false;
  press(box, BoxAnswer::OK);
  program_->waitForEnd();
  stop({{"error", errorNumber(box.text)}});
  return true;
}

void Driver::handleMessageBox(const ShownBox& box) {
  const std::size_t place = boxes_.size();
  boxes_.push_back(
      {{"text", toUtf8(box.text)}, {"title", toUtf8(box.title)}, {"style", box.style()}});
  boxOpens();
  const auto given = takeAnswer();
  const BoxAnswer answer = given ? pressedOf(*given, box.buttons, box.text) : box.byDefault;
  if (place < boxes_.size()) boxes_[place]["answer"] = scenario::answerWord(answer);
  press(box, answer);
  view_.box(box.text, box.title, box.style(), scenario::answerWord(answer));
}

void Driver::handleInputBox(const ShownInput& box) {
  boxOpens();
  const auto given = takeAnswer();
  const Text text = given ? scenario::entered(*given, box.initial) : box.initial;
  if (given && given->button == "cancel") {
    cancel(box);
  } else {
    enter(box, text);
  }
  view_.input(box.prompt, box.title, text);
}

// Finding controls.

Form* Driver::formOf(std::string_view name) const {
  const auto found = std::find_if(forms_.begin(), forms_.end(),
                                  [&](const Form* each) { return sameName(each->name(), name); });
  return found == forms_.end() ? nullptr : *found;
}

/// None if the step means a control of the active form and there is no such form.
std::optional<Driver::Place> Driver::find(const Name& name, const Step& step) const {
  const std::string& control = name.parts.back();
  if (name.parts.size() > 1 && formOf(name.parts.front()) == nullptr) {
    throw ScenarioError(step.path, "the program has no form " + name.parts.front());
  }
  Form* form =
      name.parts.size() > 1 ? formOf(name.parts.front()) : program_->windows().activeForm();
  if (form == nullptr) return std::nullopt;
  Control* found = form->findControl(fromUtf8(control));
  if (found == nullptr) {
    throw ScenarioError(step.path, toUtf8(form->name()) + " has no control " + control);
  }
  return Place{form, found};
}

/// The list of that kind on the active form.
Driver::Place Driver::listOf(ControlKind kind, const Step& step) const {
  Form* form = program_->windows().activeForm();
  for (Control* each : form == nullptr ? std::vector<Control*>() : form->Controls()) {
    if (each->kind() == kind) return {form, each};
  }
  throw ScenarioError(step.path, "the active form has no such list");
}

// The verbs. Each leaves the program at rest.

void Driver::carryOut(const scenario::Click& click, const Step& step) {
  const auto place = find(click.control, step);
  if (!place) return;
  WindowHand(program_->windows()).click(*place->form, *place->control);
  settle();
}

void Driver::carryOut(const scenario::Select& select, const Step& step) {
  const auto place = find(select.control, step);
  if (!place) return;
  requireKind(*place->control, ControlKind::ComboBox, step, "list");
  const WindowHand hand(program_->windows());
  if (!hand.reaches(*place->form, *place->control)) return;
  const std::vector<Text> entries = hand.entries(*place->form, *place->control);
  const auto entry = std::find(entries.begin(), entries.end(), select.entry);
  if (entry == entries.end()) {
    throw ScenarioError(step.path, toUtf8(place->control->name()) + " has no entry \"" +
                                       toUtf8(select.entry) + "\"");
  }
  hand.select(*place->form, *place->control, static_cast<int>(entry - entries.begin()));
  settle();
}

void Driver::carryOut(const scenario::Type& type, const Step& step) {
  const auto place = find(type.control, step);
  if (!place) return;
  requireKind(*place->control, ControlKind::TextBox, step, "text box");
  WindowHand(program_->windows()).type(*place->form, *place->control, type.text);
  settle();
}

void Driver::carryOut(const scenario::Focus& focus, const Step& step) {
  const auto place = find(focus.control, step);
  if (!place) return;
  WindowHand(program_->windows()).focus(*place->form, *place->control);
  settle();
}

void Driver::chooseDrive(const Place& list, char16_t letter, const Step& step) {
  const WindowHand hand(program_->windows());
  if (!hand.reaches(*list.form, *list.control)) return;
  const std::vector<Text> entries = hand.entries(*list.form, *list.control);
  const Text drive{lowerCase(TextView(&letter, 1)).front(), u':'};
  const auto entry = std::find_if(entries.begin(), entries.end(), [&](const Text& each) {
    return lowerCase(left(each, 2)) == drive;
  });
  if (entry == entries.end()) {
    throw ScenarioError(step.path, "the drive list shows no drive \"" + toUtf8(drive) + "\"");
  }
  hand.select(*list.form, *list.control, static_cast<int>(entry - entries.begin()));
  settle();
}

void Driver::carryOut(const scenario::ChooseDrive& choice, const Step& step) {
  if (choice.drive.empty()) throw ScenarioError(step.path, "no drive is named");
  chooseDrive(listOf(ControlKind::DriveListBox, step), choice.drive.front(), step);
}

/// As a person does: the drive first if it is another one, then back to the last folder that is on
/// the way, and from there down, one folder after the other.
void Driver::openFolder(const Place& tree, const Text& folder) {
  const WindowHand hand(program_->windows());
  while (running() && hand.reaches(*tree.form, *tree.control)) {
    const FolderTree shown(hand.entries(*tree.form, *tree.control),
                           hand.chosen(*tree.form, *tree.control));
    if (shown.opened(folder)) return;
    const auto next = shown.towards(folder);
    if (!next) {
      throw Refused("a folder that the tree does not show");
    }
    hand.open(*tree.form, *tree.control, *next);
    settle();
  }
}

void Driver::carryOut(const scenario::ChooseFolder& choice, const Step& step) {
  const Place tree = listOf(ControlKind::DirListBox, step);
  const WindowHand hand(program_->windows());
  if (!hand.reaches(*tree.form, *tree.control)) return;
  const FolderTree shown(hand.entries(*tree.form, *tree.control),
                         hand.chosen(*tree.form, *tree.control));
  if (!shown.onDriveOf(choice.folder)) {
    chooseDrive(listOf(ControlKind::DriveListBox, step), choice.folder.front(), step);
  }
  openFolder(tree, choice.folder);
}

void Driver::carryOut(const scenario::Close& close, const Step& step) {
  const Form* form = formOf(close.form.written());
  if (form == nullptr) {
    throw ScenarioError(step.path, "the program has no form " + close.form.written());
  }
  WindowHand(program_->windows()).close(*form);
  settle();
}

void Driver::carryOut(const scenario::GiveAnswers& given, const Step&) {
  answers_.insert(answers_.end(), given.answers.begin(), given.answers.end());
}

void Driver::carryOut(const scenario::At& at, const Step& step) {
  const auto* box = std::get_if<scenario::AtBox>(&at.when);
  if (box == nullptr) throw ScenarioError(step.path, "a point in the middle of a pass");
  atBoxes_.push_back({box->count, &at});
}

void Driver::carryOut(const scenario::Change& change, const Step&) {
  machine_->change(change.change);
}

void Driver::carryOut(const scenario::Restart&, const Step&) { start(); }

void Driver::carryOut(const scenario::EndSession&, const Step&) {}  // refused before
void Driver::carryOut(const scenario::Other&, const Step&) {}       // refused before
void Driver::carryOut(const scenario::Beside&, const Step&) {}      // refused before

void Driver::carryOut(const scenario::Expect& expect, const Step&) {
  for (const KeyedValue& each : expect.expectations) judge(each);
}

void Driver::carryOut(const scenario::Set&, const Step& step) {
  throw ScenarioError(step.path, "globals and properties are not written from outside");
}

// Expectations.

void Driver::judge(const KeyedValue& expectation) {
  const auto verdict = verdictIfSeen(expectation);
  if (expectation.key == "boxes") boxes_ = Json::array();
  if (!verdict) {
    ++judgements_.notSeen[expectation.key];
  } else if (verdict->held) {
    ++judgements_.held;
  } else {
    judgements_.failures.push_back({expectation.path, expectation.value, verdict->found});
  }
}

/// A file that somebody has open without sharing cannot be looked into.
std::optional<Verdict> Driver::verdictIfSeen(const KeyedValue& expectation) const {
  try {
    return verdictOn(expectation);
  } catch (const InUse&) {
    return std::nullopt;
  }
}

std::optional<Verdict> Driver::verdictOn(const KeyedValue& expectation) const {
  const std::string_view kind = scenario::kindOfKey(expectation.key);
  const auto rest = std::string_view(expectation.key).substr(kind.size());
  const Json& expected = expectation.value;
  if (kind == "file:") return scenario::judgeFile(rest, expected, witness_);
  if (kind == "dir:") return scenario::judgeDirectory(rest, expected, witness_);
  if (kind == "registry:") return scenario::judgeRegistry(rest, expected, witness_);
  if (kind == "boxes") return scenario::verdict(visibleStyles(expected), boxes_);
  if (kind == "ended") return judgeEnded(expected);
  if (kind == "active" && running()) return scenario::verdict(expected, activeForm());
  if (kind == "focus" && running()) return scenario::verdict(expected, focus());
  if (!kind.empty()) return std::nullopt;
  const auto found = propertyOf(expectation);
  return found ? std::optional(scenario::verdict(expected, *found)) : std::nullopt;
}

/// From outside one end looks like the other, unless it is an error's.
std::optional<Verdict> Driver::judgeEnded(const Json& expected) const {
  if (ended_.is_object() || ended_.is_null()) return scenario::judgeEnd(expected, ended_);
  if (expected == "unload" || expected == "exit") return Verdict{true, expected};
  if (expected.is_null() || expected == "error" || expected.contains("error")) {
    return Verdict{false, ended_};
  }
  return std::nullopt;
}

std::optional<Json> Driver::propertyOf(const KeyedValue& expectation) const {
  if (!running()) return std::nullopt;
  const Json key = expectation.key;
  const Name name = scenario::readName(scenario::JsonReader(key, {}, expectation.path), 3);
  const std::string& property = name.parts.back();
  Form* form = formOf(name.parts.front());
  if (form != nullptr && name.parts.size() == 2) return formProperty(*form, property);
  if (form == nullptr && name.parts.size() == 2) form = program_->windows().activeForm();
  if (form == nullptr) return std::nullopt;
  Control* control = form->findControl(fromUtf8(name.parts[name.parts.size() - 2]));
  if (control == nullptr) return std::nullopt;
  return controlProperty({form, control}, property);
}

std::optional<Json> Driver::formProperty(const Form& form, const std::string& property) const {
  const HWND window = program_->windows().windowOf(form);
  const bool visible = window != nullptr && IsWindowVisible(window);
  if (sameName(u"Visible", property)) return visible;
  if (window == nullptr) return std::nullopt;
  if (sameName(u"Enabled", property)) return IsWindowEnabled(window) != FALSE;
  if (sameName(u"Caption", property)) return toUtf8(textOf(window).value_or(Text()));
  return std::nullopt;
}

Json Driver::activeForm() const {
  const Form* form = program_->windows().activeForm();
  return form == nullptr ? Json(nullptr) : Json(toUtf8(form->name()));
}

Json Driver::focus() const {
  const Form* form = program_->windows().activeForm();
  if (form == nullptr) return nullptr;
  GUITHREADINFO state{};
  state.cbSize = sizeof state;
  const HWND window = program_->windows().windowOf(*form);
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &state)) return nullptr;
  for (const Control* each : form->Controls()) {
    const HWND own = program_->windows().windowOf(*form, *each);
    if (own == nullptr || own != state.hwndFocus) continue;
    return toUtf8(join(form->name(), u".", each->name()));
  }
  return nullptr;
}

std::optional<Json> Driver::controlProperty(const Place& place, const std::string& property) const {
  return shownProperty(program_->windows(), *place.form, *place.control, property);
}

}  // namespace zev::drive
