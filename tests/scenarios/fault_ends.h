#pragma once

#include <string>

#include "scenarios/call_trace.h"
#include "scenarios/snapshot.h"

namespace zev {

/// What a machine keeps behind runs of which nothing fails, and in front of a call of one of them.
struct Known {
  const Snapshot& clean;       ///< the same machine
  const Snapshot& otherClass;  ///< one that keeps its settings in the registry
  const Snapshot& elsewhere;   ///< the same machine, installed into C:\Program Files itself
  const Snapshot& before;      ///< the same machine in front of the call
};

/// What must be left of a run that one failing call has not stopped: what a run without failures
/// leaves, and of what failed nothing, or what the call left of it.
Snapshot leftBehind(const Call& call, const Known& known);

/// What must be left of a run that a failing call has stopped: what there was, and no temporary
/// folder.
Snapshot leftBehindAStop(const Known& known);

/// Without what a program that has ended had still open.
Snapshot withoutReplacements(Snapshot snapshot);

}  // namespace zev
