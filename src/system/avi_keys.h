#pragma once

#include "system/registry.h"

namespace zev {

/// True if the ten keys by which the system's AVI file services find their handlers are as they
/// should be, blanks at the ends of their values aside.
bool CheckAviRegistry(Registry& registry);

/// Writes all ten, whatever their state. False if a run-time error stopped it; a write that the
/// system refuses is none.
bool RepairAviRegistry(Registry& registry);

}  // namespace zev
