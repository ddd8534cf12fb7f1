#pragma once

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "scenario/expectation.h"
#include "scenario/played_program.h"
#include "scenario/triggers.h"
#include "script/scenario.h"
#include "simulated/simulated_machine.h"

namespace zev::scenario {

class Player;

/// Thrown by a companion: the play ends here, and the program is left where it stands.
struct PlayLeft {};

/// Who looks on while a scenario is played, and may go on where it ends. Every function has a
/// default that does nothing.
class Companion {
 public:
  virtual ~Companion() = default;

  /// The program is about to start, anew or for the first time.
  virtual void starts() {}
  /// A step of the script is about to be done; an `expect` is none.
  virtual void stepBegins(Player& /*player*/, const Step& /*step*/) {}
  virtual void ended(const Json& /*how*/) {}

  virtual void propertyWritten(const Form* /*form*/, const PropertyBase& /*property*/) {}
  /// A message box or input box is open, and nothing has been done about it yet.
  virtual void boxOpens(Player& /*player*/) {}
  /// A message box was answered.
  virtual void boxAnswered(const simulated::Box& /*box*/, BoxAnswer /*answer*/) {}
  /// An input box was answered, with this text.
  virtual void inputAnswered(TextView /*prompt*/, TextView /*title*/, TextView /*answer*/) {}
  virtual void judged(const KeyedValue& /*expectation*/, const Verdict& /*verdict*/) {}

  /// The program is at rest, or over, and the script has no more steps: one more; none to stop.
  virtual std::optional<Step> goOn(Player& /*player*/) { return std::nullopt; }
  /// An answer for a box that the script has none for; none: the default button.
  virtual std::optional<Answer> answer(const simulated::Box& /*box*/) { return std::nullopt; }
  virtual std::optional<Answer> input(TextView /*prompt*/, TextView /*title*/,
                                      TextView /*initial*/) {
    return std::nullopt;
  }
  /// A step of its own, or an answer, could not be carried out. True if that was dealt with; false
  /// ends the play with the error.
  virtual bool refused(const ScenarioError& /*error*/) { return false; }
};

/// Plays one scenario on a machine of its own: it is the person at the machine.
class Player final : private simulated::Person {
 public:
  /// Borrows all, which outlive it. The machine is set up here; a machine that cannot be is a
  /// ScenarioError.
  Player(const Scenario& scenario, ProgramFactory factory, simulated::Transcript& transcript,
         Companion& companion);
  ~Player() override;

  /// Plays the whole script. A ScenarioError is a mistake of the script that shows only now.
  void play();

  /// How many expectations did not hold.
  std::size_t failures() const { return failures_; }
  std::size_t boxesShown() const { return boxesShown_; }
  /// How the program ended: null, "unload", "exit", or an object with `error` and `description`.
  const Json& ended() const { return part_.ended; }
  simulated::SimulatedMachine& machine() { return machine_; }
  /// The running program, or the one that ran last; only from within and after play().
  PlayedProgram& program() { return *part_.program; }
  /// The forms of the program that runs; none while there is none.
  std::vector<Form*> forms();
  /// What an expectation would be held against now.
  Scene scene() { return {machine_, *part_.program, part_.ended, boxes_}; }

 private:
  // Person
  bool next() override;
  void passBegins() override { part_.triggers.passBegins(); }
  bool duringPass() override;
  BoxAnswer answer(const simulated::Box& box) override;
  Text input(TextView prompt, TextView title, TextView initial) override;
  void propertyWritten(PropertyBase& property) override;

  void playScript();
  void live();
  void runProgram();
  void end(Json how);
  const Step* takeStep();
  const Step* takeOwnStep();
  void performGuarded(const Step& step);
  bool perform(const Step& step);
  void openBox();
  template <typename Take>
  auto takeAnswer(const Take& take) -> std::optional<decltype(take(std::declval<Answer>()))>;

  // One function a verb: true if the message loop has something to do now.
  bool carryOut(const Click& click, const Step& step);
  bool carryOut(const Select& select, const Step& step);
  bool carryOut(const Type& type, const Step& step);
  bool carryOut(const Focus& focus, const Step& step);
  bool carryOut(const ChooseDrive& choice, const Step& step);
  bool carryOut(const ChooseFolder& choice, const Step& step);
  bool carryOut(const Close& close, const Step& step);
  bool carryOut(const GiveAnswers& given, const Step& step);
  bool carryOut(const At& at, const Step& step);
  bool carryOut(const Change& change, const Step& step);
  bool carryOut(const Restart& restart, const Step& step);
  bool carryOut(const EndSession& end, const Step& step);
  bool carryOut(const Other& other, const Step& step);
  bool carryOut(const Beside& beside, const Step& step);
  bool carryOut(const Expect& expect, const Step& step);
  bool carryOut(const Set& set, const Step& step);

  Control* findControl(const Name& name, const Step& step);
  void requireControl(const Name& name, const Step& step);
  bool choose(ControlKind kind, const Text& entry, const Step& step);
  void setOne(const KeyedValue& value);
  void tellStep(const Step& step);
  void tellExpectation(const KeyedValue& expectation, const Verdict& verdict);

  /// What belongs to one program and the script that is played at it.
  struct Part {
    const std::vector<Step>* script = nullptr;
    std::size_t place = 0;  ///< of the script's next step
    std::unique_ptr<PlayedProgram> program{};
    Triggers triggers{};
    Json ended{};
  };

  const Scenario& scenario_;
  ProgramFactory factory_;
  simulated::Transcript& transcript_;
  Companion& companion_;
  simulated::SimulatedMachine machine_;
  std::deque<std::unique_ptr<Step>> ownSteps_;  ///< of the companion: triggers borrow them
  Part part_;
  std::deque<Answer> answers_;
  Json boxes_ = Json::array();  ///< not yet expected
  std::size_t failures_ = 0;
  std::size_t boxesShown_ = 0;
};

}  // namespace zev::scenario
