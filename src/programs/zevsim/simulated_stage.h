#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "programs/zevsim/played_program.h"
#include "programs/zevsim/simulated_witness.h"
#include "scenario/play.h"
#include "simulated/simulated_machine.h"

namespace zev::simulator {

/// The stage of the simulated machine, which it owns: it is the person at that machine. The machine
/// asks from inside its message loop for what comes next, and the play is pulled from there.
class SimulatedStage final : public scenario::Stage, private simulated::Person {
 public:
  /// Borrows the scenario and the transcript, which outlive it. The machine is set up here; a
  /// machine that cannot be is a ScenarioError.
  SimulatedStage(const scenario::Scenario& scenario, ProgramFactory factory,
                 simulated::Transcript& transcript);
  ~SimulatedStage() override;

  /// Plays the whole script, once, to an audience that is borrowed. A ScenarioError is a mistake of
  /// the script that shows only now.
  void perform(std::vector<scenario::Audience*> audiences = {});

  simulated::SimulatedMachine& machine() { return machine_; }
  /// The running program, or the one that ran last; only from within and after perform().
  PlayedProgram& program() { return *program_; }
  /// The same for the play.
  scenario::Play& play() { return *play_; }
  const scenario::Judgements& judgements() const { return play_->judgements(); }
  /// How the program ended: null, "unload", "exit", or an object with `error` and `description`.
  const scenario::Json& ended() const { return play_->ended(); }

  // Stage
  bool seesInside() const override { return true; }
  std::vector<Form*> forms() override;
  Form* activeForm() override { return machine_.screen().activeForm(); }
  Control* focused() override;
  scenario::Sight sight() override;
  const scenario::Witness& witness() const override { return witness_; }
  std::optional<scenario::Json> value(Component& component, std::string_view property) override;
  std::optional<scenario::Json> find(std::string_view kind, std::string_view rest) override;
  bool reaches(const scenario::FormControl& to) override;
  void click(const scenario::FormControl& to) override;
  void focus(const scenario::FormControl& to) override;
  void type(const scenario::FormControl& box, const Text& text) override;
  std::vector<Text> entries(const scenario::FormControl& list) override;
  void choose(const scenario::FormControl& list, const Text& entry) override;
  void close(Form& form) override;
  void change(const scenario::MachineChange& change) override;
  void restart() override;
  void endSession() override { machine_.hand().endSession(); }
  void letOther(const scenario::Other& other) override;
  void playBeside() override;
  bool setGlobal(std::string_view name, const PropertyValue& value) override;
  void write(PropertyBase& property, const PropertyValue& value) override;

 private:
  class Teller;

  // Person
  bool next() override { return play_->step(); }
  void passBegins() override { play_->passBegins(); }
  bool duringPass() override { return play_->dueStep(); }
  BoxAnswer answer(const simulated::Box& box) override;
  Text input(TextView prompt, TextView title, TextView initial) override;
  void propertyWritten(PropertyBase& property) override;

  void playPart();
  void live();
  void runProgram();

  const scenario::Scenario& scenario_;
  ProgramFactory factory_;
  simulated::SimulatedMachine machine_;
  SimulatedWitness witness_{machine_};
  std::unique_ptr<PlayedProgram> program_;
  std::unique_ptr<Teller> teller_;
  std::unique_ptr<scenario::Play> play_;
};

/// The drives that a drive list shows on a machine, as "c:".
std::vector<Text> shownDrives(const simulated::Disks& disks);

/// Why nothing happens if a person does a step now: what it is done to is disabled or hidden. None
/// if there is no such reason, or if the step is done to no control and no form.
std::optional<std::string> hindranceOf(const scenario::Step& step, SimulatedStage& stage);

}  // namespace zev::simulator
