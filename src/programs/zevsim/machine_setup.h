#pragma once

#include "scenario/machine_change.h"
#include "scenario/scenario.h"
#include "simulated/simulated_machine.h"

namespace zev::simulator {

/// Makes a usual machine into the one that a scenario describes. The folders that the system names
/// follow the user's name unless they are given.
void setUp(simulated::SimulatedMachine& machine, const scenario::MachineChange& description);

/// Puts the installer's file where the machine has it. What the host has of it is read when the
/// program asks for it.
void layInstaller(simulated::SimulatedMachine& machine, const scenario::InstallerBytes& bytes);

/// Changes a machine, before or in the midst of a run. What cannot be done, such as a file on a
/// drive that is not there, is a ScenarioError.
void change(simulated::SimulatedMachine& machine, const scenario::MachineChange& change);

}  // namespace zev::simulator
