#include "programs/zevsim/simulated_stage.h"

#include <stdexcept>
#include <utility>

#include "programs/zevsim/machine_setup.h"
#include "programs/zevsim/meant.h"
#include "scenario/expectation.h"

namespace zev::simulator {

using scenario::FormControl;
using scenario::Json;
using scenario::Other;

namespace {

/// The unwinding of a program that is left where it stands, to be started anew. As PlayLeft it is
/// no run-time error, so no trap of the program catches it.
struct RestartRequested {};

/// Whether the machine has its installer already, as one of its files.
bool hasInstaller(const simulated::SimulatedMachine& machine) {
  const Text& path = machine.settings().installer;
  try {
    return machine.disks().exists(path);
  } catch (const std::invalid_argument&) {
    return false;
  }
}

scenario::Box shownBox(const simulated::Box& box) {
  constexpr BoxAnswer allButtons[] = {
      BoxAnswer::OK,    BoxAnswer::Yes,    BoxAnswer::No,     BoxAnswer::Abort,
      BoxAnswer::Retry, BoxAnswer::Ignore, BoxAnswer::Cancel,
  };
  scenario::Box shown{box.text, box.title, box.style, {}, simulated::defaultAnswer(box.style)};
  for (const BoxAnswer each : allButtons) {
    if (simulated::hasButton(box.style, each)) shown.buttons.push_back(each);
  }
  return shown;
}

/// Writes a file anew if the system lets it.
void overwrite(FileSystem& files, const Text& path, const Text& text) {
  FileHandle file = 0;
  const SystemError error = files.CreateFileA(path, FileAccess::Write, FileShare::All,
                                              FileDisposition::CreateAlways, file);
  if (error != system_error::success) return;
  const std::string bytes = files.toAnsi(text);
  std::size_t written = 0;
  files.WriteFile(file, 0, {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                  written);
  files.CloseHandle(file);
}

// ---- what expectations find

/// What a list offers beside its properties.
std::optional<Json> listFact(const Component& component, TextView name) {
  const auto* combo = dynamic_cast<const ComboBox*>(&component);
  if (combo == nullptr) return std::nullopt;
  if (equalText(name, u"ListCount")) return combo->ListCount();
  if (!equalText(name, u"List")) return std::nullopt;
  Json entries = Json::list();
  for (const Text& each : entriesOf(*combo)) entries.push_back(toUtf8(each));
  return entries;
}

Json shortcut(SimulatedStage& stage, std::string_view path) {
  const auto properties = stage.machine().shortcut(fromUtf8(path));
  return properties ? simulated::told(*properties) : Json(nullptr);
}

Json calls(SimulatedStage& stage, std::string_view name) { return stage.machine().calls(name); }

/// A text counts up to its first NUL, without blanks at its ends, as the program takes it where its
/// length is fixed.
Json global(SimulatedStage& stage, std::string_view name) {
  auto value = stage.program().global(name);
  if (!value) throw std::invalid_argument("the program has no global " + std::string(name));
  if (Text* text = std::get_if<Text>(&*value)) *text = trim(beforeNul(*text));
  return scenario::toJson(*value);
}

/// What was started or opened, in its order, each as an expectation writes it whole.
Json startsOf(const std::vector<simulated::Start>& starts, const char* what) {
  Json found = Json::list();
  for (const simulated::Start& each : starts) {
    found.push_back(
        {{what, toUtf8(each.what)}, {"style", each.style}, {"directory", toUtf8(each.directory)}});
  }
  return found;
}

Json shell(SimulatedStage& stage, std::string_view) {
  return startsOf(stage.machine().records().shell, "command");
}

Json opened(SimulatedStage& stage, std::string_view) {
  return startsOf(stage.machine().records().opened, "path");
}

Json dde(SimulatedStage& stage, std::string_view) {
  Json list = Json::list();
  for (const Text& each : stage.machine().records().dde) list.push_back(toUtf8(each));
  return list;
}

struct FindRow {
  std::string_view kind;
  Json (*find)(SimulatedStage& stage, std::string_view rest);
};

constexpr FindRow findRows[] = {
    {"shortcut:", shortcut}, {"calls:", calls}, {"global.", global},
    {"shell", shell},        {"dde", dde},      {"opened", opened},
};

}  // namespace

// ---- the transcript

/// Writes steps, verdicts and the end into the machine's transcript.
class SimulatedStage::Teller final : public scenario::Audience {
 public:
  explicit Teller(simulated::Transcript& transcript) : transcript_(transcript) {}

  void stepBegins(const scenario::Step& step) override {
    if (transcript_.wants("step")) transcript_.add({{"event", "step"}, {"step", step.source}});
  }
  void judged(const scenario::KeyedValue& expectation, const scenario::Verdict* verdict) override {
    if (!transcript_.wants("expect") || verdict == nullptr) return;
    transcript_.add({{"event", "expect"},
                     {"key", expectation.key},
                     {"held", verdict->held},
                     {"expected", expectation.value},
                     {"found", verdict->found}});
  }
  void ended(const Json& how) override {
    if (!transcript_.wants("end")) return;
    Json event{{"event", "end"}, {"how", how.isMembers() ? Json("error") : how}};
    if (how.isMembers()) event.update(how);
    transcript_.add(std::move(event));
  }

 private:
  simulated::Transcript& transcript_;
};

// ---- the course of a play

/// The installer's file is laid unless the scenario has laid one itself and names no package.
SimulatedStage::SimulatedStage(const scenario::Scenario& scenario, ProgramFactory factory,
                               simulated::Transcript& transcript)
    : scenario_(scenario),
      factory_(std::move(factory)),
      machine_(*this, transcript),
      teller_(std::make_unique<Teller>(transcript)) {
  setUp(machine_, scenario.machine);
  if (!hasInstaller(machine_) || !scenario.package.path.empty()) {
    layInstaller(machine_, makeInstaller(scenario.package));
  }
}

SimulatedStage::~SimulatedStage() = default;

/// The transcript hears of everything before the other audiences do. An audience that leaves ends
/// the play there and then.
void SimulatedStage::perform(std::vector<scenario::Audience*> audiences) {
  audiences.insert(audiences.begin(), teller_.get());
  play_ = std::make_unique<scenario::Play>(scenario_, *this, std::move(audiences));
  try {
    playPart();
  } catch (const scenario::PlayLeft&) {
    return;
  }
}

/// All lives of one program, up to the end of the script that is played at it.
void SimulatedStage::playPart() {
  play_->prepare();
  for (bool again = true; std::exchange(again, false);) {
    try {
      live();
    } catch (const RestartRequested&) {
      again = true;
    }
  }
}

/// One life of the program, from its start to the end of the script.
void SimulatedStage::live() {
  program_.reset();
  play_->starts();
  machine_.startProgram();
  program_ = factory_(machine_.platform());
  play_->hasForms();
  runProgram();
  while (!ended().isNull() && play_->step()) {
  }
}

/// Runs the program to its end, of whatever kind, and tells the play which it was. It returns too
/// when nobody has anything left to do.
void SimulatedStage::runProgram() {
  try {
    machine_.platform().application.run([this] { program_->start(); });
  } catch (const ProgramEnd& over) {
    play_->end(over.kind == EndKind::Exit ? "exit" : "unload");
  } catch (const UnhandledError& unhandled) {
    play_->end({{"error", unhandled.error.number()},
                {"description", toUtf8(unhandled.error.description())}});
  }
}

BoxAnswer SimulatedStage::answer(const simulated::Box& box) { return play_->answer(shownBox(box)); }

Text SimulatedStage::input(TextView prompt, TextView title, TextView initial) {
  return play_->input(prompt, title, initial).text;
}

void SimulatedStage::propertyWritten(PropertyBase& property) {
  play_->propertyWritten(machine_.screen().formOf(property.owner()), property);
}

// ---- what is there

std::vector<Form*> SimulatedStage::forms() {
  return program_ ? program_->forms() : std::vector<Form*>();
}

Control* SimulatedStage::focused() {
  const Form* active = activeForm();
  return active == nullptr ? nullptr : machine_.screen().focused(*active);
}

/// Of a program that has ended nothing shows, though its forms are still there to be asked.
scenario::Sight SimulatedStage::sight() {
  return ended().isNull() ? scenario::sightOf(forms()) : scenario::Sight();
}

std::optional<Json> SimulatedStage::value(Component& component, std::string_view property) {
  if (auto fact = listFact(component, fromUtf8(property))) return fact;
  return scenario::toJson(component.findProperty(property)->value());
}

std::optional<Json> SimulatedStage::find(std::string_view kind, std::string_view rest) {
  for (const FindRow& row : findRows) {
    if (row.kind == kind) return row.find(*this, rest);
  }
  return std::nullopt;
}

// ---- what a person does

bool SimulatedStage::reaches(const FormControl& to) { return machine_.hand().reaches(to.control); }

void SimulatedStage::click(const FormControl& to) { machine_.hand().click(to.control); }

void SimulatedStage::focus(const FormControl& to) { machine_.hand().focus(to.control); }

void SimulatedStage::type(const FormControl& box, const Text& text) {
  machine_.hand().type(dynamic_cast<TextBox&>(box.control), text);
}

std::vector<Text> SimulatedStage::entries(const FormControl& list) {
  const auto* combo = dynamic_cast<const ComboBox*>(&list.control);
  return combo != nullptr ? entriesOf(*combo) : shownDrives(machine_.disks());
}

void SimulatedStage::choose(const FormControl& list, const Text& entry) {
  if (auto* combo = dynamic_cast<ComboBox*>(&list.control)) {
    machine_.hand().select(*combo, entry);
    return;
  }
  if (!reaches(list)) return;
  machine_.hand().focus(list.control);
  Control& chosen = list.control;
  machine_.platform().application.post([this, &chosen, entry] { program_->choose(chosen, entry); });
}

void SimulatedStage::close(Form& form) { machine_.hand().close(form); }

// ---- what is done to the program and its machine

void SimulatedStage::change(const scenario::MachineChange& change) {
  simulator::change(machine_, change);
}

void SimulatedStage::restart() { throw RestartRequested{}; }

/// The other program keeps what it holds until the end of the play.
void SimulatedStage::letOther(const Other& other) {
  FileSystem& files = machine_.otherFileSystem();
  std::uint32_t attributes = 0;
  FileHandle held = 0;
  switch (other.kind) {
    case Other::Kind::Writes:
      return overwrite(files, other.file, other.text);
    case Other::Kind::Deletes:
      files.DeleteFileA(other.file);
      return;
    case Other::Kind::Holds:
      files.HoldEntryA(other.file, Holding::ToKeep, attributes, held);
  }
}

void SimulatedStage::playBeside() {
  std::unique_ptr<PlayedProgram> first = std::exchange(program_, nullptr);
  const auto back = [&] {
    program_.reset();
    machine_.endBeside();
    program_ = std::move(first);
  };
  machine_.beginBeside();
  try {
    playPart();
  } catch (...) {
    back();
    throw;
  }
  back();
}

bool SimulatedStage::setGlobal(std::string_view name, const PropertyValue& value) {
  return program_->setGlobal(name, value);
}

void SimulatedStage::write(PropertyBase& property, const PropertyValue& value) {
  property.write(value);
}

std::vector<Text> shownDrives(const simulated::Disks& disks) {
  std::vector<Text> drives;
  for (const char16_t letter : disks.letters()) {
    const bool listed = disks.drive(letter)->type >= drive_type::removable;
    if (listed) drives.push_back(lowerCase(Text{letter, u':'}));
  }
  return drives;
}

}  // namespace zev::simulator
