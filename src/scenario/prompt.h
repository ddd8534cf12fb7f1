#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <string_view>

#include "scenario/player.h"

namespace zev::scenario {

/// The verbs of a script typed at a prompt, with the active form drawn as text after each. Message
/// boxes are drawn and answered there too.
class Prompt {
 public:
  Prompt(std::istream& in, std::ostream& out) : in_(in), out_(out) {}

  /// Draws what is on the screen and reads lines until one is a step; none at `quit` or the end of
  /// the input.
  std::optional<Step> nextStep(Player& player);
  std::optional<Answer> answer(const simulated::Box& box);
  std::optional<Answer> input(TextView prompt, TextView title, TextView initial);
  void judged(const KeyedValue& expectation, const Verdict& verdict);
  void refused(const ScenarioError& error);

 private:
  bool readLine(std::string_view prompt, std::string& line);
  void drawScreen(Player& player);
  bool obey(const std::string& line, Player& player);
  void show(const std::string& key, Player& player);

  std::istream& in_;
  std::ostream& out_;
  bool over_ = false;
};

/// The step that a typed line stands for: a verb with its arguments, or a step in JSON. `active` is
/// the form that a caption in place of a name is looked up on; null for none. A line that is no
/// step is a ScenarioError.
Step parseLine(const std::string& line, const Form* active);

}  // namespace zev::scenario
