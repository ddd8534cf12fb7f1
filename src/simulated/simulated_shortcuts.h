#pragma once

#include "platform/file_system.h"
#include "platform/shell.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// The DDE client. The one server of the machine is its Program Manager, which accepts every
/// command.
class SimulatedDde final : public Dde {
 public:
  /// Borrows the machine.
  explicit SimulatedDde(MachineState& machine) : machine_(machine) {}

  void LinkTopic(TextView topic) override;
  void LinkItem(TextView item) override { item_ = item; }
  void LinkMode(std::int32_t mode) override;
  void LinkTimeout(std::int32_t tenths) override { timeout_ = tenths; }
  void LinkExecute(TextView command) override;

 private:
  void requireServer() const;

  MachineState& machine_;
  Text topic_;
  Text item_;
  std::int32_t timeout_ = 50;
  bool linked_ = false;
};

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
