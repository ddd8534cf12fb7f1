#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "programs/zevdrive/machine_hand.h"
#include "programs/zevdrive/running_program.h"
#include "programs/zevdrive/shown_box.h"
#include "programs/zevdrive/window_hand.h"
#include "programs/zevdrive/windows_witness.h"
#include "scenario/play.h"
#include "scenario/scenario.h"

namespace zev::drive {

/// The stage of windows: the real program on the Windows that this runs on. Each act leaves the
/// program at rest, or over; boxes that open meanwhile are answered by the play.
class WindowsStage final : public scenario::Stage {
 public:
  /// Borrows the forms (for names, kinds and places alone) and the machine.
  WindowsStage(Text program, std::vector<Form*> forms, MachineHand& machine,
               RunningProgram::Clock::time_point deadline);

  /// Plays the whole script, once, to an audience that is borrowed. A ScenarioError is a mistake of
  /// the script that shows only now, a DriveError a program that does not come to rest.
  scenario::Judgements perform(const scenario::Scenario& scenario,
                               std::vector<scenario::Audience*> audience);

  // Stage
  bool seesInside() const override { return false; }
  std::vector<Form*> forms() override { return forms_; }
  Form* activeForm() override;
  Control* focused() override;
  scenario::Sight sight() override;
  const scenario::Witness& witness() const override { return witness_; }
  std::optional<scenario::Json> value(Component& component, std::string_view property) override;
  std::optional<scenario::Json> find(std::string_view, std::string_view) override {
    return std::nullopt;
  }
  bool reaches(const scenario::FormControl& to) override;
  void click(const scenario::FormControl& to) override;
  void focus(const scenario::FormControl& to) override;
  void type(const scenario::FormControl& box, const Text& text) override;
  std::vector<Text> entries(const scenario::FormControl& list) override;
  void choose(const scenario::FormControl& list, const Text& entry) override;
  void close(Form& form) override;
  void change(const scenario::MachineChange& change) override { machine_.change(change); }
  void restart() override;

 private:
  bool running() const { return program_ && play_->ended().isNull(); }
  WindowHand hand() const { return WindowHand(program_->windows()); }
  void settle();

  void handleBox();
  bool handleErrorBox(const ShownBox& box);
  void handleMessageBox(const ShownBox& box);
  void handleInputBox(const ShownInput& box);

  void select(const scenario::FormControl& list, const Text& entry);
  void openFolder(const scenario::FormControl& tree, const Text& folder);
  std::optional<scenario::Json> formValue(const Form& form, std::string_view property) const;

  Text path_;
  std::vector<Form*> forms_;
  MachineHand& machine_;
  RunningProgram::Clock::time_point deadline_;
  WindowsWitness witness_;
  std::unique_ptr<scenario::Play> play_;
  std::unique_ptr<RunningProgram> program_;
};

/// Why a scenario cannot be played from outside, in one line; none if it can.
std::optional<std::string> refusal(const scenario::Scenario& scenario);

}  // namespace zev::drive
