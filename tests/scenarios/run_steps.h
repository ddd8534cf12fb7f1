#pragma once

#include <string>
#include <vector>

#include "scenarios/run_marks.h"

namespace zev {

/// What is done in a step of run_steps.tsv, and how a failure of it comes to the trap of the run.
struct StepMark {
  std::string what;  ///< as the table has it
  Mark mark{};
  std::vector<std::string> boxes{};  ///< the failure is told in boxes; they have to fail, too
  std::optional<Mark> later{};  ///< the failure is passed over: what is written next fails, too
  bool untold = false;          ///< whatever fails in it, no trap tells
};

/// The one row without a mark: nothing happens in it that could be seen.
inline const std::string unmarkedStep = "table of sizes set up";

/// The marks of all other rows, in the order of the table. Where the classes of machines differ a
/// row has one for each.
const std::vector<StepMark>& stepMarks();

/// How to make a run fail in a step that this run, without failures, has taken.
Strike strikeOf(const WatchedRun& run, const StepMark& step);

}  // namespace zev
