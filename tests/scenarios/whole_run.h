#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "programs/zevsim/simulated_stage.h"
#include "simulated/transcript.h"

namespace zev {

/// A scenario of the setup program played to its end, and all that happened.
class WholeRun {
 public:
  /// Plays a scenario given as its text. Without a package of its own it installs the sample. With
  /// all, events that are told on demand are kept as well.
  explicit WholeRun(const std::string& scenario, bool all = false);

  /// True if every expectation of the scenario held.
  bool held() const { return stage_.judgements().failed == 0; }
  const scenario::Json& ended() const { return stage_.ended(); }
  simulated::SimulatedMachine& machine() { return stage_.machine(); }
  /// The events of one kind, in order.
  std::vector<simulated::Event> events(std::string_view kind) const { return log_.of(kind); }
  const std::vector<simulated::Event>& events() const { return log_.events(); }
  /// How many passes of the message loop the run made.
  std::size_t passes() const { return passes_; }

 private:
  scenario::Scenario scenario_;
  simulated::TranscriptLog log_;
  simulator::SimulatedStage stage_;
  std::size_t passes_ = 0;
};

/// Where things lie on the usual machine.
inline const std::string installFolder = "C:\\Program Files\\ZEV Screen Recorder 6";
inline const std::string userFolder = "C:\\Users\\bob\\AppData\\Local";
inline const std::string temporaryFolder = userFolder + "\\Temp\\ZEVTMP";

/// The steps from the welcome page to the run: the last one presses Install.
extern const char* const stepsToInstall;

/// How many passes of the message loop a run without failures makes on a usual machine, from the
/// click on Install on: one for each level of the directory that the check makes (its folder alone:
/// the one above it is there), one behind the temporary folder, one a member that is laid (all but
/// ZEVUser.exe), one behind the redistributable, one for each entry that the listing of the
/// profiles gives (".", ".." and bob), one at the end. The shortcuts are made without any.
inline constexpr std::size_t passesOfARun = 1 + 1 + 55 + 1 + 3 + 1;
/// Before Vista no profiles are listed.
inline constexpr std::size_t passesBeforeVista = passesOfARun - 3;

}  // namespace zev
