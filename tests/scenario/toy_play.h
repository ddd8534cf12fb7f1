#pragma once

#include <memory>
#include <string>
#include <vector>

#include "programs/zevsim/simulated_stage.h"

namespace zev::scenario {

/// Keeps the verdicts of a play.
class VerdictLog final : public Audience {
 public:
  void judged(const KeyedValue& expectation, const Verdict* verdict) override {
    if (!verdict->held) failures.push_back(expectation.key + " found " + verdict->found.dump());
    ++judgements;
  }

  std::vector<std::string> failures;
  int judgements = 0;
};

/// One scenario, given as its text, played with the toy program.
struct ToyPlay {
  explicit ToyPlay(std::string_view text, const std::filesystem::path& folder = {});
  ToyPlay(const ToyPlay&) = delete;
  ToyPlay& operator=(const ToyPlay&) = delete;

  /// The events of a kind, as lines of JSON.
  std::vector<std::string> lines(std::string_view kind) const;
  std::vector<std::string> lines() const;

  Scenario scenario;
  simulated::TranscriptLog transcript;
  VerdictLog verdicts;
  std::unique_ptr<simulator::SimulatedStage> stage;
};

/// A play of a script on the usual machine; `script` is the list's inside.
ToyPlay playScript(std::string_view script);

/// What an expectation holds against at the start of the toy program, with a machine.
bool holds(std::string_view machine, std::string_view expectation);

/// The message of the ScenarioError that `act` fails with; empty if it does not fail.
template <typename Act>
std::string errorOf(const Act& act) {
  try {
    act();
  } catch (const ScenarioError& error) {
    return error.what();
  }
  return {};
}

}  // namespace zev::scenario
