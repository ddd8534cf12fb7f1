#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "scenario/player.h"
#include "simulated/transcript.h"

namespace zev {

/// A scenario of the setup program played to its end, and all that happened.
class WholeRun {
 public:
  /// Plays a scenario given as its text. Without a package of its own it installs the sample.
  explicit WholeRun(const std::string& scenario);

  /// True if every expectation of the scenario held.
  bool held() const { return player_.failures() == 0; }
  const scenario::Json& ended() const { return player_.ended(); }
  simulated::SimulatedMachine& machine() { return player_.machine(); }
  /// The events of one kind, in order.
  std::vector<simulated::Event> events(std::string_view kind) const { return log_.of(kind); }
  const std::vector<simulated::Event>& events() const { return log_.events(); }
  /// How many passes of the message loop the run made.
  std::size_t passes() const { return passes_; }

 private:
  scenario::Scenario scenario_;
  simulated::TranscriptLog log_;
  scenario::Companion companion_;
  scenario::Player player_;
  std::size_t passes_ = 0;
};

/// The steps from the welcome page to the run: the last one presses Install.
extern const char* const stepsToInstall;

}  // namespace zev
