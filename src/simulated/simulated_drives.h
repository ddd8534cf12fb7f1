#pragma once

#include "platform/drives.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

class SimulatedDrives final : public Drives {
 public:
  /// Borrows the machine.
  explicit SimulatedDrives(const MachineState& machine) : machine_(machine) {}

  std::uint32_t GetDriveTypeA(TextView root) override;
  bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) override;
  std::uint32_t GetLogicalDrives() override;
  Text volumeLabel(TextView root) override;

 private:
  const Drive* driveOf(TextView root) const;

  const MachineState& machine_;
};

}  // namespace zev::simulated
