#pragma once

#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "programs/zevdrive/machine_hand.h"
#include "programs/zevdrive/message_box.h"
#include "programs/zevdrive/running_program.h"
#include "programs/zevdrive/window_hand.h"
#include "programs/zevdrive/windows_witness.h"
#include "script/expectation.h"
#include "script/outside_view.h"
#include "script/scenario.h"

namespace zev::drive {

/// The scenario cannot be played from outside, which shows only now.
class Refused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What came of the expectations of a play.
struct Judgements {
  struct Failure {
    std::string path;
    scenario::Json expected;
    scenario::Json found;
  };
  std::size_t held = 0;
  std::vector<Failure> failures{};
  std::map<std::string, std::size_t> notSeen{};  ///< by key: those that ask for the inside
};

/// Plays the script of a scenario on the real program: it is the person in front of the screen.
class Driver {
 public:
  /// Borrows the scenario, the forms (for names, kinds and places alone) and the view.
  Driver(const scenario::Scenario& scenario, Text program, std::vector<Form*> forms,
         scenario::OutsideView& view, RunningProgram::Clock::time_point deadline);

  /// Plays the whole script. A ScenarioError is a mistake of the script that shows only now, a
  /// DriveError a program that does not come to rest.
  void play(MachineHand& machine);

  const Judgements& judgements() const { return judgements_; }

 private:
  using Step = scenario::Step;
  using Json = scenario::Json;

  void start();
  void settle();
  void stop(Json how);
  bool running() const { return program_ && ended_.is_null(); }

  void perform(const Step& step);
  void carryOut(const scenario::Click& click, const Step& step);
  void carryOut(const scenario::Select& select, const Step& step);
  void carryOut(const scenario::Type& type, const Step& step);
  void carryOut(const scenario::Focus& focus, const Step& step);
  void carryOut(const scenario::ChooseDrive& choice, const Step& step);
  void carryOut(const scenario::ChooseFolder& choice, const Step& step);
  void carryOut(const scenario::Close& close, const Step& step);
  void carryOut(const scenario::GiveAnswers& given, const Step& step);
  void carryOut(const scenario::At& at, const Step& step);
  void carryOut(const scenario::Change& change, const Step& step);
  void carryOut(const scenario::Restart& restart, const Step& step);
  void carryOut(const scenario::EndSession& end, const Step& step);
  void carryOut(const scenario::Other& other, const Step& step);
  void carryOut(const scenario::Beside& beside, const Step& step);
  void carryOut(const scenario::Expect& expect, const Step& step);
  void carryOut(const scenario::Set& set, const Step& step);

  void handleBox();
  bool handleErrorBox(const ShownBox& box);
  void handleMessageBox(const ShownBox& box);
  void handleInputBox(const ShownInput& box);
  void boxOpens();
  std::optional<scenario::Answer> takeAnswer();

  /// A control that a step means, with its form.
  struct Place {
    Form* form = nullptr;
    Control* control = nullptr;
  };
  std::optional<Place> find(const scenario::Name& name, const Step& step) const;
  Form* formOf(std::string_view name) const;
  Place listOf(ControlKind kind, const Step& step) const;
  void chooseDrive(const Place& list, char16_t letter, const Step& step);
  void openFolder(const Place& tree, const Text& folder);

  void judge(const scenario::KeyedValue& expectation);
  std::optional<scenario::Verdict> verdictIfSeen(const scenario::KeyedValue& expectation) const;
  std::optional<scenario::Verdict> verdictOn(const scenario::KeyedValue& expectation) const;
  std::optional<scenario::Verdict> judgeEnded(const Json& expected) const;
  std::optional<Json> propertyOf(const scenario::KeyedValue& expectation) const;
  std::optional<Json> formProperty(const Form& form, const std::string& property) const;
  std::optional<Json> controlProperty(const Place& place, const std::string& property) const;
  Json activeForm() const;
  Json focus() const;

  const scenario::Scenario& scenario_;
  Text path_;
  std::vector<Form*> forms_;
  scenario::OutsideView& view_;
  RunningProgram::Clock::time_point deadline_;
  MachineHand* machine_ = nullptr;
  WindowsWitness witness_;

  std::unique_ptr<RunningProgram> program_;
  struct Countdown {
    std::int32_t left;
    const scenario::At* at;
  };
  std::list<Countdown> atBoxes_;
  std::deque<scenario::Answer> answers_;
  Json boxes_ = Json::array();  ///< not yet expected
  Json ended_;
  Judgements judgements_;
};

}  // namespace zev::drive
