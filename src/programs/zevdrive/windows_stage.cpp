#include "programs/zevdrive/windows_stage.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "programs/zevdrive/folder_tree.h"
#include "programs/zevdrive/machine_hand.h"
#include "scenario/finding.h"

namespace zev::drive {

using scenario::FormControl;
using scenario::Json;

namespace {

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

bool isNamed(TextView name, std::string_view written) { return equalText(name, fromUtf8(written)); }

/// Whether an entry of a list is meant: of a drive list by the drive that it begins with.
bool isEntry(const Control& list, const Text& entry, const Text& wanted) {
  if (list.kind() != ControlKind::DriveListBox) return entry == wanted;
  return lowerCase(left(entry, 2)) == wanted;
}

}  // namespace

WindowsStage::WindowsStage(Text program, std::vector<Form*> forms, MachineHand& machine,
                           RunningProgram::Clock::time_point deadline)
    : path_(std::move(program)), forms_(std::move(forms)), machine_(machine), deadline_(deadline) {}

// ---- the course of a play

/// The program runs on between the steps; each act waits until it rests again before the next is
/// pulled.
scenario::Judgements WindowsStage::perform(const scenario::Scenario& scenario,
                                           std::vector<scenario::Audience*> audience) {
  play_ = std::make_unique<scenario::Play>(scenario, *this, std::move(audience));
  play_->prepare();
  restart();
  while (play_->step()) {
  }
  return play_->judgements();
}

/// A former program is ended before the next is started: two of them would share files and
/// registry.
void WindowsStage::restart() {
  program_.reset();
  play_->starts();
  program_ = std::make_unique<RunningProgram>(path_, forms_, deadline_);
  settle();
}

/// Waits until the program rests or is over, and answers its boxes meanwhile.
void WindowsStage::settle() {
  while (running()) {
    switch (program_->settle()) {
      case Course::AtRest:
        return;
      case Course::Ended:
        return play_->end(scenario::endedSomehow);
      case Course::BoxOpen:
        handleBox();
    }
  }
}

// ---- boxes

/// What answers a box can set off another one, so nothing is done until this one is gone.
void WindowsStage::handleBox() {
  const HWND box = program_->windows().box();
  if (isInputBox(box)) {
    handleInputBox(readInput(box));
  } else {
    const ShownBox shown = readBox(box);
    if (!handleErrorBox(shown)) handleMessageBox(shown);
  }
  program_->waitUntilGone(box);
}

/// A run-time error that ends the program shows itself in a box, and nothing goes on after it.
bool WindowsStage::handleErrorBox(const ShownBox& box) {
  if (!isErrorBox(box)) return false;
  press(box, BoxAnswer::OK);
  program_->waitForEnd();
  play_->end({{"error", errorNumber(box.text)}});
  return true;
}

void WindowsStage::handleMessageBox(const ShownBox& box) {
  press(box, play_->answer({box.text, box.title, box.style(), box.buttons, box.byDefault}));
}

void WindowsStage::handleInputBox(const ShownInput& box) {
  const auto answer = play_->input(box.prompt, box.title, box.initial);
  if (answer.cancelled) {
    cancel(box);
  } else {
    enter(box, answer.text);
  }
}

// ---- what is there

Form* WindowsStage::activeForm() { return running() ? program_->windows().activeForm() : nullptr; }

/// The focus belongs to the thread of the program, so the system is asked about that thread.
Control* WindowsStage::focused() {
  const Form* form = activeForm();
  if (form == nullptr) return nullptr;
  GUITHREADINFO state{};
  state.cbSize = sizeof state;
  const HWND window = program_->windows().windowOf(*form);
  if (!GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &state)) return nullptr;
  for (Control* each : form->Controls()) {
    const HWND own = program_->windows().windowOf(*form, *each);
    if (own != nullptr && own == state.hwndFocus) return each;
  }
  return nullptr;
}

scenario::Sight WindowsStage::sight() { return running() ? program_->sight() : scenario::Sight(); }

std::optional<Json> WindowsStage::value(Component& component, std::string_view property) {
  if (!running()) return std::nullopt;
  for (const Form* form : forms_) {
    if (form == &component) return formValue(*form, property);
    for (const Control* each : form->Controls()) {
      if (each == &component) return shownProperty(program_->windows(), *form, *each, property);
    }
  }
  return std::nullopt;
}

/// A form without a window is not loaded, and so not visible; nothing else can be told of it.
std::optional<Json> WindowsStage::formValue(const Form& form, std::string_view property) const {
  const HWND window = program_->windows().windowOf(form);
  const bool visible = window != nullptr && IsWindowVisible(window);
  if (isNamed(u"Visible", property)) return visible;
  if (window == nullptr) return std::nullopt;
  if (isNamed(u"Enabled", property)) return IsWindowEnabled(window) != FALSE;
  if (isNamed(u"Caption", property)) return toUtf8(textOf(window).value_or(Text()));
  return std::nullopt;
}

// ---- what a person does

bool WindowsStage::reaches(const FormControl& to) {
  return running() && hand().reaches(to.form, to.control);
}

void WindowsStage::click(const FormControl& to) {
  if (!reaches(to)) return;
  hand().click(to.form, to.control);
  settle();
}

void WindowsStage::focus(const FormControl& to) {
  if (!reaches(to)) return;
  hand().focus(to.form, to.control);
  settle();
}

void WindowsStage::type(const FormControl& box, const Text& text) {
  if (!reaches(box)) return;
  hand().type(box.form, box.control, text);
  settle();
}

std::vector<Text> WindowsStage::entries(const FormControl& list) {
  return hand().entries(list.form, list.control);
}

void WindowsStage::choose(const FormControl& list, const Text& entry) {
  if (!reaches(list)) return;
  if (list.control.kind() == ControlKind::DirListBox) return openFolder(list, entry);
  select(list, entry);
}

/// What a list shows depends on the Windows that this runs on: an entry that it lacks is refused,
/// and no mistake of the scenario.
void WindowsStage::select(const FormControl& list, const Text& entry) {
  const std::vector<Text> all = entries(list);
  const auto found = std::find_if(
      all.begin(), all.end(), [&](const Text& each) { return isEntry(list.control, each, entry); });
  if (found == all.end()) throw scenario::Refused("a list that does not show " + toUtf8(entry));
  hand().select(list.form, list.control, static_cast<int>(found - all.begin()));
  settle();
}

/// As a person does: the drive first if it is another one, then back to the last folder that is on
/// the way, and from there down, one folder after the other.
void WindowsStage::openFolder(const FormControl& tree, const Text& folder) {
  const auto shown = [&] {
    return FolderTree(entries(tree), hand().chosen(tree.form, tree.control));
  };
  if (!shown().onDriveOf(folder)) {
    const FormControl drives = scenario::listOf(ControlKind::DriveListBox, *this, "$");
    if (reaches(drives)) select(drives, join(lowerCase(left(folder, 1)), u":"));
  }
  while (reaches(tree) && !shown().opened(folder)) {
    const auto next = shown().towards(folder);
    if (!next) throw scenario::Refused("a folder that the tree does not show");
    hand().open(tree.form, tree.control, *next);
    settle();
  }
}

void WindowsStage::close(Form& form) {
  if (!running() || !hand().reaches(form)) return;
  hand().close(form);
  settle();
}

namespace {

using scenario::Step;

std::optional<std::string> refusal(const std::vector<Step>& steps);

/// Why a step cannot be played by somebody in front of the screen.
struct StepRefusal {
  std::optional<std::string> operator()(const scenario::At& at) const {
    if (!std::holds_alternative<scenario::AtBox>(at.when)) return "points in the middle of a pass";
    return refusal(at.steps);
  }
  std::optional<std::string> operator()(const scenario::Change& change) const {
    const auto reason = drive::refusal(change.change);
    return reason ? std::optional("a change while it runs: " + *reason) : std::nullopt;
  }
  std::optional<std::string> operator()(const scenario::Set&) const {
    return "globals or properties written by the script";
  }
  std::optional<std::string> operator()(const scenario::EndSession&) const {
    return "the end of the session";
  }
  std::optional<std::string> operator()(const scenario::Other&) const {
    return "what another program does";
  }
  std::optional<std::string> operator()(const scenario::Beside&) const {
    return "a second program";
  }
  template <typename Another>
  std::optional<std::string> operator()(const Another&) const {
    return std::nullopt;
  }
};

std::optional<std::string> refusal(const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    if (auto reason = std::visit(StepRefusal{}, step.action)) return reason;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> refusal(const scenario::Scenario& scenario) {
  if (scenario.machine.faults && !scenario.machine.faults->empty()) return "faults";
  return refusal(scenario.script);
}

}  // namespace zev::drive
