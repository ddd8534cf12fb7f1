#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "programs/zevsim/simulated_stage.h"
#include "simulated/transcript.h"

namespace zev {

/// All scenarios, by the path of their file below tests/scenarios, those of a table with the case:
/// "pages/forward.json", "pages/directory.json#empty". Sorted.
const std::vector<std::string>& scenarioFiles();

/// A scenario as its document, written out, with nothing in its expectations.
scenario::Json readStory(const std::string& file);

/// Calls a function for each list of steps of a document: the script and what an `at` does later.
void forEachSteps(scenario::Json& document, const std::function<void(scenario::Json&)>& change);

/// All that happened when a document was played.
struct PlayedStory {
  std::vector<simulated::Event> events;
  std::optional<simulated::Value> state;  ///< of its machine in the end; none where nobody asked
  std::int32_t language = 0;              ///< that the program ended with
  std::string refusal;                    ///< why the document cannot be played; empty if it was
};

/// Plays a document of a file, with a package of zeros in place of one of which the length alone is
/// said: its members are laid as they are, which is faster and changes nothing of what is shown.
PlayedStory play(scenario::Json document, const std::string& file);

/// The same for who looks at the machine's state too.
PlayedStory playToState(scenario::Json document, const std::string& file);

}  // namespace zev
