#pragma once

#include <cstdint>
#include <vector>

#include "scenario/machine_change.h"
#include "simulated/simulated_machine.h"

namespace zev::scenario {

/// Makes a usual machine into the one that a scenario describes. The folders that the system names
/// follow the user's name unless they are given.
void setUp(simulated::SimulatedMachine& machine, const MachineChange& description);

/// Puts the installer's file where the machine has it.
void layInstaller(simulated::SimulatedMachine& machine, std::vector<std::uint8_t> bytes);

/// Changes a machine, before or in the midst of a run. What cannot be done, such as a file on a
/// drive that is not there, is a ScenarioError.
void change(simulated::SimulatedMachine& machine, const MachineChange& change);

}  // namespace zev::scenario
