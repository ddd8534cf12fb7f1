#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "destination/folder_browser.h"
#include "destination/validate_destination.h"
#include "simulated/simulated_machine.h"

namespace zev {

/// A box as a test compares it: its title, its style and its text.
inline std::string told(TextView title, std::int32_t style, TextView text) {
  return toUtf8(join(u"[", title, u"] ", decimal(style), u" ", text));
}

/// Answers what it was told to answer, otherwise with the default button, and keeps all it saw.
class NotingPerson final : public simulated::Person {
 public:
  struct Question {
    Text prompt;
    Text title;
    Text initial;
  };

  bool next() override { return false; }
  BoxAnswer answer(const simulated::Box& box) override {
    boxes.push_back(told(box.title, box.style, box.text));
    if (answers.empty()) return simulated::defaultAnswer(box.style);
    const BoxAnswer given = answers.front();
    answers.pop_front();
    return given;
  }
  Text input(TextView prompt, TextView title, TextView initial) override {
    questions.push_back({Text(prompt), Text(title), Text(initial)});
    return entered;
  }

  std::vector<std::string> boxes;
  std::deque<BoxAnswer> answers;
  std::vector<Question> questions;
  Text entered;  ///< into every input box
};

/// Counts what the destination asks of the wizard.
class NotingWizard final : public Form1Procedures {
 public:
  void Command1_Click() override {}
  void Command4_Click() override { ++browsers; }
  void DizinGuncelle() override { ++completions; }
  void RemoveTempFiles() override {}

  int browsers = 0;
  int completions = 0;
};

/// A machine whose wizard stands on its directory page, with the destination's parts behind it.
/// Beside C: it has the fixed drive D:, and one drive each of the types that do not suit.
class OnThePage {
 public:
  explicit OnThePage(simulated::Transcript& transcript) : machine(person, transcript) {
    layDrives();
    machine.startProgram();
    program.reset(new Program{.platform = machine.platform()});
    speak(language::English);
    registry.emplace(*program, phrases.value());
    globals().gWinDir = u"C:\\Windows";
    program->platform.application.Show(program->form1);
  }
  OnThePage() : OnThePage(ownTranscript()) {}

  Globals& globals() { return program->globals; }
  Text directory() { return globals().gInstallDir.trimmed(); }
  bool stands(TextView path) const { return machine.disks().exists(path); }
  /// The path of every file and folder on all drives.
  std::vector<std::string> everything() const {
    std::vector<std::string> paths;
    for (const char16_t letter : machine.disks().letters()) {
      collect(join(TextView(&letter, 1), u":\\"), paths);
    }
    return paths;
  }

  void speak(std::int32_t number) {
    if (!phrases) phrases.emplace(globals().gLanguage);
    globals().gLanguage = number;
    phrases->dimension(0);
    phrases->LoadPhrases();
    phrases->Translate(Phrases::HafizaTemizle);
  }

  /// The check of a directory: true if the run may begin in it.
  bool check(TextView wanted) {
    globals().gInstallDir = wanted;
    std::int16_t ok = 7;
    DestinationCheck(*program, *phrases, *registry, wizard).ValidateDestination(ok);
    if (ok != 0 && ok != -1) throw std::logic_error("neither true nor false");
    return ok == -1;
  }

  /// Forgets the boxes that were told, and gives them.
  std::vector<std::string> boxes() { return std::exchange(person.boxes, {}); }

  void record(TextView key, TextView directory) {
    machine.registry().setValue(HKEY_LOCAL_MACHINE, key, u"Dizin",
                                simulated::RegistryValue::ofText(directory));
  }

  /// Calls of an operation whose first text holds a piece have that effect: all of them, or one.
  simulated::Fault fault(const char* call, TextView match, simulated::Fault::Effect effect,
                         std::int32_t code = 0, std::optional<std::uint32_t> nth = {}) {
    return {.call = call, .nth = nth, .match = Text(match), .effect = effect, .code = code};
  }

  NotingPerson person;
  NotingWizard wizard;
  simulated::SimulatedMachine machine;
  std::unique_ptr<Program> program;
  std::optional<Phrases> phrases;
  std::optional<Registry> registry;

 private:
  static simulated::Transcript& ownTranscript() {
    static simulated::NoTranscript none;
    return none;
  }

  void collect(const Text& folder, std::vector<std::string>& paths) const {
    for (const Text& name : machine.disks().names(folder).value_or(std::vector<Text>())) {
      const Text path = join(folder, name);
      paths.push_back(toUtf8(path));
      collect(join(path, u"\\"), paths);
    }
  }

  void layDrives() {
    machine.disks().setDrive(u'D', {});
    machine.disks().setDrive(u'R', {.type = 2});
    machine.disks().setDrive(u'N', {.type = 4});
    machine.disks().setDrive(u'E', {.type = 5});
    machine.disks().setDrive(u'M', {.type = 6});
  }
};

}  // namespace zev
