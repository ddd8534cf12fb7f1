#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "localisation/phrases.h"
#include "simulated/simulated_machine.h"
#include "state/program.h"
#include "system/registry.h"

namespace zev {

/// Presses the default button of every box, or the one told, and keeps the box.
class QuietPerson final : public simulated::Person {
 public:
  bool next() override { return false; }
  BoxAnswer answer(const simulated::Box& box) override {
    boxes.push_back(box);
    return reply.value_or(simulated::defaultAnswer(box.style));
  }
  Text input(TextView, TextView, TextView initial) override { return Text(initial); }

  std::optional<BoxAnswer> reply;
  std::vector<simulated::Box> boxes;
};

/// A usual machine with the shared parts of the program on it, its form shown.
class OnAMachine {
 public:
  /// With its calls the transcript holds every platform operation.
  explicit OnAMachine(bool withCalls = false) : transcript(withCalls) {
    machine.startProgram();
    program.reset(new Program{.platform = machine.platform()});
    phrases.emplace(program->globals.gLanguage);
    phrases->dimension(0);
    registry.emplace(*program, *phrases);
    program->platform.application.Show(program->form1);
  }

  Globals& globals() { return program->globals; }
  Files& files() { return program->platform.files; }
  std::string textOf(TextView path) {
    const auto bytes = machine.disks().read(path);
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(no file)";
  }

  QuietPerson person;
  simulated::TranscriptLog transcript;
  simulated::SimulatedMachine machine{person, transcript};
  std::unique_ptr<Program> program;
  std::optional<Phrases> phrases;
  std::optional<Registry> registry;
};

}  // namespace zev
