#pragma once

#include <string>

#include "simulated/simulated_machine.h"

namespace zev {

/// What a member of the small package expands to: a text of its own.
std::string smallMember(int row);

/// Lays the small package where the machine has its installer: whole, its members really packed,
/// but so short when they are expanded that a run takes a few milliseconds. What follows them up to
/// the size of their row is never read.
void laySmallPackage(simulated::SimulatedMachine& machine);

}  // namespace zev
