#pragma once

#include "platform/drives.h"

namespace zev::win32 {

/// The drives of Windows.
class Win32Drives final : public Drives {
 public:
  std::uint32_t GetDriveTypeA(TextView root) override;
  bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) override;
  std::uint32_t GetLogicalDrives() override;
  Text volumeLabel(TextView root) override;
};

}  // namespace zev::win32
