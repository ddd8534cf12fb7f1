#pragma once

#include "platform/system_information.h"

namespace zev::win32 {

/// What Windows says about itself and the user.
class Win32System final : public SystemInformation {
 public:
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
};

/// The drives of Windows.
class Win32Drives final : public Drives {
 public:
  std::uint32_t GetDriveTypeA(TextView root) override;
  bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) override;
  std::uint32_t GetLogicalDrives() override;
  Text volumeLabel(TextView root) override;
};

}  // namespace zev::win32
