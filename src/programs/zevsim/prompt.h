#pragma once

#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "programs/zevsim/form_drawing.h"
#include "programs/zevsim/simulated_stage.h"
#include "programs/zevsim/terminal.h"

namespace zev::simulator {

/// What can be typed at the prompt, in lines of a width.
std::string promptHelp(int columns);

/// The verbs of a script typed at a prompt, with the active form drawn as text whenever it has
/// changed. Message boxes are drawn and answered there too. All of it fits on a terminal of 24
/// lines. At `quit` and at the end of the input each function throws PlayLeft.
class Prompt {
 public:
  Prompt(std::istream& in, std::ostream& out, int columns = Sheet().columns);

  /// Draws what is on the screen and reads lines until one is a step.
  scenario::Step nextStep(SimulatedStage& stage);
  /// The button of a box; none for the default one.
  std::optional<scenario::Answer> answer(const scenario::Box& box);
  std::optional<scenario::Answer> input(TextView prompt, TextView title, TextView initial);
  void judged(const scenario::KeyedValue& expectation, const scenario::Verdict& verdict);
  void refused(const scenario::ScenarioError& error);

 private:
  /// A word that is meant for the prompt itself, and what it does.
  struct Command {
    std::string_view word;
    void (Prompt::*obey)(std::string_view rest, SimulatedStage& stage);
  };
  static const Command commands[];

  bool obey(const std::string& line, SimulatedStage& stage);
  std::optional<scenario::Step> stepOf(const std::string& line, SimulatedStage& stage);
  void tellNotices();
  std::string drawn(SimulatedStage& stage) const;
  void drawScreen(SimulatedStage& stage);
  void drawBox(TextView title, TextView text, const Text& below);

  void list(std::string_view rest, SimulatedStage& stage);
  void read(std::string_view rest, SimulatedStage& stage);
  void screen(std::string_view rest, SimulatedStage& stage);
  void show(std::string_view rest, SimulatedStage& stage);
  void state(std::string_view rest, SimulatedStage& stage);
  void width(std::string_view rest, SimulatedStage& stage);

  Terminal terminal_;
  std::string drawn_;                 ///< what the screen shows
  std::vector<std::string> notices_;  ///< to be told below the next drawing
};

}  // namespace zev::simulator
