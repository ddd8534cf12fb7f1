#pragma once

#include <deque>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "scenario/judge.h"
#include "scenario/scenario.h"
#include "scenario/triggers.h"

namespace zev::scenario {

/// Thrown by an audience: the play ends here, and the program is left where it stands.
struct PlayLeft {};

/// A message box that waits for its answer, as far as it shows.
struct Box {
  Text text;
  Text title;
  std::int32_t style = 0;            ///< from outside the part of it that shows
  std::vector<BoxAnswer> buttons{};  ///< that it has
  BoxAnswer byDefault = BoxAnswer::OK;
};

/// Who looks on while a scenario is played, and may go on where it ends: of several the first one
/// that has something to say. Every function has a default that does nothing.
class Audience {
 public:
  virtual ~Audience() = default;

  /// The program is about to start, anew or for the first time.
  virtual void starts() {}
  /// A step of the script is about to be done; an `expect` is none.
  virtual void stepBegins(const Step& /*step*/) {}
  /// Null: not to be seen from there.
  virtual void judged(const KeyedValue& /*expectation*/, const Verdict* /*verdict*/) {}
  /// The program has ended, as Play::ended tells it; it may be started again.
  virtual void ended(const Json& /*how*/) {}

  /// Told of every write, thousands in a run. `form` is null for a component of no known form.
  virtual void propertyWritten(const Form* /*form*/, const PropertyBase& /*property*/) {}
  /// A message box or input box is open, and nothing has been done about it yet.
  virtual void boxOpens() {}
  /// The box is gone, by that button.
  virtual void boxAnswered(const Box& /*box*/, BoxAnswer /*answer*/) {}
  /// An input box was answered, with this text.
  virtual void inputAnswered(TextView /*prompt*/, TextView /*title*/, TextView /*answer*/) {}

  /// The program is at rest, or over, and the script has no more steps: one more; none to stop.
  virtual std::optional<Step> goOn() { return std::nullopt; }
  /// An answer for a box that the script has none for; none: the default button.
  virtual std::optional<Answer> answer(const Box& /*box*/) { return std::nullopt; }
  /// The same for an input box; none: what stands in it.
  virtual std::optional<Answer> input(TextView /*prompt*/, TextView /*title*/,
                                      TextView /*initial*/) {
    return std::nullopt;
  }
  /// A step of its own, or an answer, could not be carried out. True if that was dealt with; false
  /// ends the play with the error.
  virtual bool refused(const ScenarioError& /*error*/) { return false; }
};

/// Writes the transcript of somebody in front of the screen while a scenario is played.
class OutsideAudience final : public Audience {
 public:
  /// Borrows both.
  OutsideAudience(Stage& stage, std::ostream& out) : stage_(stage), view_(out) {}

  void starts() override;
  void stepBegins(const Step& step) override;
  void ended(const Json& how) override { view_.end(how); }
  void boxOpens() override;
  void boxAnswered(const Box& box, BoxAnswer answer) override;
  void inputAnswered(TextView prompt, TextView title, TextView answer) override;
  std::optional<Step> goOn() override;

 private:
  Stage& stage_;
  OutsideView view_;
  bool boxOpen_ = false;
};

/// What came of the expectations of a play.
struct Judgements {
  std::size_t held = 0;
  std::size_t failed = 0;
  std::map<std::string, std::size_t> notSeen{};  ///< by key: those that ask for the inside
};

/// What somebody is told of an expectation that did not hold, in three lines.
std::string failureText(const KeyedValue& expectation, const Verdict& verdict);

/// The course of one scenario over a stage: its steps, its answers to boxes, and its verdicts. The
/// stage pulls it, one step after the other, from wherever its program can be asked.
class Play {
 public:
  /// Borrows all, which outlive it.
  Play(const Scenario& scenario, Stage& stage, std::vector<Audience*> audience);

  // ---- for the stage

  /// Does the steps that are in force before the program starts.
  void prepare();
  /// The program is about to start, anew or for the first time.
  void starts();
  /// The program has its forms. A property that an `at` waits for and that none of them has is a
  /// ScenarioError.
  void hasForms() { part_.triggers.requireProperties(stage_.forms()); }
  /// The program has ended: "unload", "exit", an object with the number of its `error`, or
  /// endedSomehow.
  void end(Json how);

  /// The program is at rest, or over: does the next step. What is due comes first, then the script,
  /// then the audience; false if nothing is left.
  bool step();
  /// A pass of the message loop begins, which `at` counts.
  void passBegins() { part_.triggers.passBegins(); }
  /// In a pass of the message loop: does the next step that is due; false if there is none.
  bool dueStep();
  /// A property was written. `form` is null for a component of no known form.
  void propertyWritten(const Form* form, const PropertyBase& property);

  /// The answer to a box, after what is to be done before it is answered.
  BoxAnswer answer(const Box& box);
  struct Entered {
    Text text;
    bool cancelled = false;
  };
  /// The same for an input box, whose text is `initial` unless something is entered.
  Entered input(TextView prompt, TextView title, TextView initial);

  // ---- for whoever looks at it

  /// How the program ended; null while it runs.
  const Json& ended() const { return part_.ended; }
  /// What came of the expectations so far, those of the second program included.
  const Judgements& judgements() const { return judgements_; }
  /// What came of an expectation if it were one of the script, now.
  std::optional<Verdict> verdictOn(const KeyedValue& expectation);

 private:
  template <typename... Parameters, typename... Given>
  void tell(void (Audience::*what)(Parameters...), const Given&... given);
  template <typename Answer, typename... Parameters, typename... Given>
  std::optional<Answer> ask(std::optional<Answer> (Audience::*what)(Parameters...),
                            const Given&... given);
  bool refused(const ScenarioError& error);

  const Step* takeStep();
  const Step* takeOwnStep();
  void performGuarded(const Step& step);
  void perform(const Step& step);
  void openBox();
  template <typename Take>
  auto takeAnswer(const Take& take) -> std::optional<decltype(take(std::declval<Answer>()))>;

  // One function a verb.
  void carryOut(const Click& click, const Step& step);
  void carryOut(const Select& select, const Step& step);
  void carryOut(const Type& type, const Step& step);
  void carryOut(const Focus& focus, const Step& step);
  void carryOut(const ChooseDrive& choice, const Step& step);
  void carryOut(const ChooseFolder& choice, const Step& step);
  void carryOut(const Close& close, const Step& step);
  void carryOut(const GiveAnswers& given, const Step& step);
  void carryOut(const At& at, const Step& step);
  void carryOut(const Change& change, const Step& step);
  void carryOut(const Restart& restart, const Step& step);
  void carryOut(const EndSession& end, const Step& step);
  void carryOut(const Other& other, const Step& step);
  void carryOut(const Beside& beside, const Step& step);
  void carryOut(const Expect& expect, const Step& step);
  void carryOut(const Set& set, const Step& step);
  void setOne(const KeyedValue& value);
  void judgeOne(const KeyedValue& expectation);

  /// What belongs to one program and the script that is played at it.
  struct Part {
    const std::vector<Step>* script = nullptr;
    std::size_t place = 0;  ///< of the script's next step
    Triggers triggers{};
    Json ended{};
  };

  const Scenario& scenario_;
  Stage& stage_;
  std::vector<Audience*> audience_;

  std::deque<std::unique_ptr<Step>> ownSteps_;  ///< of the audience: triggers borrow them
  Part part_;
  std::deque<Answer> answers_;
  Json boxes_ = Json::list();  ///< not yet expected
  Judgements judgements_;
};

}  // namespace zev::scenario
