#pragma once

#include "platform/file_system.h"
#include "platform/shortcuts.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// The automation object that makes shortcuts. A saved one is a file, and the machine remembers its
/// properties.
class SimulatedShortcuts final : public Shortcuts {
 public:
  /// Borrows both; so do the objects that it makes.
  SimulatedShortcuts(MachineState& machine, FileSystem& files) : machine_(machine), files_(files) {}

  std::unique_ptr<WScriptShell> CreateObject() override;

 private:
  MachineState& machine_;
  FileSystem& files_;
};

}  // namespace zev::simulated
