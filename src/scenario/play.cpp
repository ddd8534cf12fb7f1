#include "scenario/play.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "scenario/finding.h"
#include "scenario/script.h"

namespace zev::scenario {
namespace {

/// Longest value that a failed expectation prints; the transcript has all of it.
constexpr std::size_t longestShown = 2000;

std::string shown(const Json& value) {
  std::string text = value.dump();
  if (text.size() > longestShown) {
    text = text.substr(0, longestShown) + "... (" + std::to_string(text.size()) + " characters)";
  }
  return text;
}

/// Steps that can follow the end of the program.
bool canFollowEnd(const Step& step) {
  return std::holds_alternative<Expect>(step.action) ||
         std::holds_alternative<Change>(step.action) ||
         std::holds_alternative<Restart>(step.action);
}

void requireKind(const Control& control, ControlKind kind, const Step& step, const char* wanted) {
  if (control.kind() == kind) return;
  throw ScenarioError(step.path, toUtf8(control.name()) + " is no " + wanted);
}

/// Whether the machine has a folder of that full path.
bool hasFolder(const Witness& witness, const Text& path) {
  try {
    const auto entry = witness.entry(path);
    return entry && (entry->attributes & file_attribute::directory) != 0;
  } catch (const std::invalid_argument&) {  // a path that none can have
    return false;
  }
}

}  // namespace

std::string failureText(const KeyedValue& expectation, const Verdict& verdict) {
  return "FAILED " + expectation.path + "\n  expected: " + shown(expectation.value) +
         "\n  found:    " + shown(verdict.found);
}

// ---- somebody in front of the screen

void OutsideAudience::starts() {
  view_.start();
  boxOpen_ = false;
}

void OutsideAudience::stepBegins(const Step& step) {
  view_.look(stage_.sight(), boxOpen_);
  view_.step(step.source);
}

void OutsideAudience::boxOpens() {
  boxOpen_ = true;
  view_.look(stage_.sight(), true);
}

void OutsideAudience::boxAnswered(const Box& box, BoxAnswer answer) {
  boxOpen_ = false;
  view_.box(box.text, box.title, box.style, answerName(answer));
}

void OutsideAudience::inputAnswered(TextView prompt, TextView title, TextView answer) {
  boxOpen_ = false;
  view_.input(prompt, title, answer);
}

std::optional<Step> OutsideAudience::goOn() {
  view_.look(stage_.sight(), false);
  return std::nullopt;
}

// ---- the course of a play

Play::Play(const Scenario& scenario, Stage& stage, std::vector<Audience*> audience)
    : scenario_(scenario), stage_(stage), audience_(std::move(audience)), part_{&scenario.script} {}

template <typename... Parameters, typename... Given>
void Play::tell(void (Audience::*what)(Parameters...), const Given&... given) {
  for (Audience* each : audience_) (each->*what)(given...);
}

/// The first one that answers counts; the others are not asked.
template <typename Answer, typename... Parameters, typename... Given>
std::optional<Answer> Play::ask(std::optional<Answer> (Audience::*what)(Parameters...),
                                const Given&... given) {
  for (Audience* each : audience_) {
    if (auto answer = (each->*what)(given...)) return answer;
  }
  return std::nullopt;
}

bool Play::refused(const ScenarioError& error) {
  return std::any_of(audience_.begin(), audience_.end(),
                     [&](Audience* each) { return each->refused(error); });
}

/// Such steps stand in front of all others: the first of another kind ends them.
void Play::prepare() {
  const auto& script = *part_.script;
  while (part_.place < script.size() && preparesOnly(script[part_.place])) {
    perform(script[part_.place++]);
  }
}

void Play::starts() {
  part_.ended = nullptr;
  tell(&Audience::starts);
}

void Play::end(Json how) {
  part_.ended = std::move(how);
  tell(&Audience::ended, part_.ended);
}

/// The audience goes on only where the script of the first program ends, not that of one beside it.
const Step* Play::takeStep() {
  if (part_.ended.isNull()) part_.triggers.rest();
  if (const Step* due = part_.triggers.takeDue()) return due;
  if (part_.place < part_.script->size()) return &(*part_.script)[part_.place++];
  return part_.script == &scenario_.script ? takeOwnStep() : nullptr;
}

const Step* Play::takeOwnStep() {
  auto step = ask(&Audience::goOn);
  if (!step) return nullptr;
  ownSteps_.push_back(std::make_unique<Step>(std::move(*step)));
  return ownSteps_.back().get();
}

bool Play::step() {
  const Step* step = takeStep();
  if (step != nullptr) performGuarded(*step);
  return step != nullptr;
}

bool Play::dueStep() {
  const Step* step = part_.triggers.takeDue();
  if (step != nullptr) performGuarded(*step);
  return step != nullptr;
}

void Play::performGuarded(const Step& step) {
  try {
    perform(step);
  } catch (const ScenarioError& error) {
    if (!refused(error)) throw;
  }
}

/// An expectation is no step to the audience, which is told of its verdict instead.
void Play::perform(const Step& step) {
  if (!part_.ended.isNull() && !canFollowEnd(step)) {
    throw ScenarioError(step.path,
                        "the program has ended; only expect, change and restart can follow");
  }
  if (!std::holds_alternative<Expect>(step.action)) tell(&Audience::stepBegins, step);
  std::visit([&](const auto& action) { carryOut(action, step); }, step.action);
}

void Play::propertyWritten(const Form* form, const PropertyBase& property) {
  if (part_.triggers.watchesProperties()) part_.triggers.written(form, property);
  tell(&Audience::propertyWritten, form, property);
}

// ---- boxes

/// Does what is to be done before a box is answered.
void Play::openBox() {
  tell(&Audience::boxOpens);
  for (const Step* step : part_.triggers.boxOpens()) performGuarded(*step);
}

/// Takes the next answer of the script and what it means for the box; none if there is no answer
/// left, or one that the box does not have and the audience has dealt with.
template <typename Take>
auto Play::takeAnswer(const Take& take) -> std::optional<decltype(take(std::declval<Answer>()))> {
  if (answers_.empty()) return std::nullopt;
  const Answer answer = std::move(answers_.front());
  answers_.pop_front();
  try {
    return take(answer);
  } catch (const ScenarioError& error) {
    if (!refused(error)) throw;
  }
  return std::nullopt;
}

/// The box is on record before anything is done about it, so that a step can expect it while it is
/// open; one that did has taken it off, and the answer has nowhere to go.
BoxAnswer Play::answer(const Box& box) {
  const std::size_t place = boxes_.size();
  boxes_.push_back(
      {{"text", toUtf8(box.text)}, {"title", toUtf8(box.title)}, {"style", box.style}});
  openBox();
  const auto press = [&](const Answer& answer) { return pressedOf(answer, box.buttons, box.text); };
  auto button = takeAnswer(press);
  if (!button) {
    const auto asked = ask(&Audience::answer, box);
    button = asked ? press(*asked) : box.byDefault;
  }
  if (place < boxes_.size()) boxes_[place]["answer"] = answerName(*button);
  tell(&Audience::boxAnswered, box, *button);
  return *button;
}

Play::Entered Play::input(TextView prompt, TextView title, TextView initial) {
  openBox();
  const auto enter = [&](const Answer& answer) {
    return Entered{entered(answer, initial), answer.button == answerName(BoxAnswer::Cancel)};
  };
  auto text = takeAnswer(enter);
  if (!text) {
    const auto asked = ask(&Audience::input, prompt, title, initial);
    text = asked ? enter(*asked) : Entered{Text(initial)};
  }
  tell(&Audience::inputAnswered, prompt, title, text->text);
  return *text;
}

// ---- the verbs

void Play::carryOut(const Click& click, const Step& step) {
  if (const auto to = controlOf(click.control, stage_, step.path)) stage_.click(*to);
}

void Play::carryOut(const Select& select, const Step& step) {
  const auto list = controlOf(select.control, stage_, step.path);
  if (!list) return;
  requireKind(list->control, ControlKind::ComboBox, step, "list");
  if (!stage_.reaches(*list)) return;
  const std::vector<Text> entries = stage_.entries(*list);
  if (std::find(entries.begin(), entries.end(), select.entry) == entries.end()) {
    throw ScenarioError(
        step.path, toUtf8(list->control.name()) + " has no entry \"" + toUtf8(select.entry) + "\"");
  }
  stage_.choose(*list, select.entry);
}

void Play::carryOut(const Type& type, const Step& step) {
  const auto box = controlOf(type.control, stage_, step.path);
  if (!box) return;
  requireKind(box->control, ControlKind::TextBox, step, "text box");
  stage_.type(*box, type.text);
}

void Play::carryOut(const Focus& focus, const Step& step) {
  if (const auto to = controlOf(focus.control, stage_, step.path)) stage_.focus(*to);
}

void Play::carryOut(const ChooseDrive& choice, const Step& step) {
  const FormControl list = listOf(ControlKind::DriveListBox, stage_, step.path);
  const Text drive = join(lowerCase(left(choice.drive, 1)), u":");
  const std::vector<Text> entries = stage_.entries(list);
  const bool shown = std::any_of(entries.begin(), entries.end(), [&](const Text& each) {
    return lowerCase(left(each, 2)) == drive;
  });
  if (!shown) {
    throw ScenarioError(step.path,
                        "the drive list shows no drive \"" + toUtf8(choice.drive) + "\"");
  }
  stage_.choose(list, drive);
}

void Play::carryOut(const ChooseFolder& choice, const Step& step) {
  if (!hasFolder(stage_.witness(), choice.folder)) {
    throw ScenarioError(step.path, "the machine has no folder " + toUtf8(choice.folder));
  }
  stage_.choose(listOf(ControlKind::DirListBox, stage_, step.path), choice.folder);
}

void Play::carryOut(const Close& close, const Step& step) {
  stage_.close(formOf(close.form, stage_, step.path));
}

void Play::carryOut(const GiveAnswers& given, const Step&) {
  answers_.insert(answers_.end(), given.answers.begin(), given.answers.end());
}

/// Before the program's start there are no forms to hold a property against: see hasForms.
void Play::carryOut(const At& at, const Step&) {
  const auto forms = stage_.forms();
  if (!forms.empty()) Triggers::requireProperty(at, forms);
  part_.triggers.arm(at);
}

void Play::carryOut(const Change& change, const Step&) { stage_.change(change.change); }

void Play::carryOut(const Restart&, const Step&) { stage_.restart(); }

void Play::carryOut(const EndSession&, const Step&) { stage_.endSession(); }

void Play::carryOut(const Other& other, const Step&) { stage_.letOther(other); }

/// Boxes and answers are those of both programs, one after the other.
void Play::carryOut(const Beside& beside, const Step&) {
  Part first = std::exchange(part_, Part{&beside.steps});
  try {
    stage_.playBeside();
  } catch (...) {
    part_ = std::move(first);
    throw;
  }
  part_ = std::move(first);
}

void Play::carryOut(const Expect& expect, const Step&) {
  for (const KeyedValue& each : expect.expectations) judgeOne(each);
}

void Play::carryOut(const Set& set, const Step&) {
  for (const KeyedValue& each : set.values) setOne(each);
}

void Play::setOne(const KeyedValue& value) {
  constexpr std::string_view prefix = "global.";
  const PropertyValue wanted = toPropertyValue(value.value);
  if (value.key.starts_with(prefix)) {
    if (stage_.setGlobal(value.key.substr(prefix.size()), wanted)) return;
    throw ScenarioError(value.path, "the program has no such global of that type");
  }
  const Json key = value.key;
  const Name name = readName(JsonReader(key, {}, value.path), 3);
  PropertyBase* property = propertyOf(name, stage_, value.path).property;
  if (property == nullptr || property->value().index() != wanted.index()) {
    throw ScenarioError(value.path, "the property is of another type");
  }
  stage_.write(*property, wanted);
}

// ---- expectations

std::optional<Verdict> Play::verdictOn(const KeyedValue& expectation) {
  return judge(expectation, {stage_, part_.ended, boxes_});
}

void Play::judgeOne(const KeyedValue& expectation) {
  const auto verdict = verdictOn(expectation);
  if (expectation.key == "boxes") boxes_ = Json::list();
  if (!verdict) {
    ++judgements_.notSeen[expectation.key];
  } else {
    ++(verdict->held ? judgements_.held : judgements_.failed);
  }
  const Verdict* seen = verdict ? &*verdict : nullptr;
  tell(&Audience::judged, expectation, seen);
}

}  // namespace zev::scenario
