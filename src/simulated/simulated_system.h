#pragma once

#include "platform/system_information.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// What the machine says about itself, from its settings. Borrows the state.
class SimulatedSystem final : public SystemInformation {
 public:
  /// Borrows the machine.
  explicit SimulatedSystem(MachineState& machine) : machine_(machine) {}

  std::uint32_t GetTempPathA(std::uint32_t size, Text& buffer) override;
  std::uint32_t GetWindowsDirectoryA(Text& buffer, std::uint32_t size) override;
  std::uint32_t GetSystemDirectoryA(Text& buffer, std::uint32_t size) override;
  std::uint16_t GetSystemDefaultUILanguage() override;
  bool GetUserNameA(Text& buffer, std::uint32_t& size) override;
  bool LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                          std::uint32_t& domainSize) override;
  bool GetVersionExA(OSVERSIONINFO& record) override;
  std::int32_t GetSystemMetrics(std::int32_t index) override;
  std::uintptr_t GetCurrentProcess() override;
  bool IsWow64Process(std::uintptr_t process, bool& emulated) override;
  std::uint16_t GetNativeSystemInfo() override;
  std::uint16_t GetSystemInfo() override;
  bool GetProductInfo(std::uint32_t major, std::uint32_t minor, std::uint32_t packMajor,
                      std::uint32_t packMinor, std::uint32_t& code) override;

 private:
  std::uint32_t answerPath(const std::optional<Text>& path, Text& buffer, std::uint32_t size);

  MachineState& machine_;
};

/// The drives as the machine has them now. Borrows the state.
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
