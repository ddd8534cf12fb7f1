#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// Answers of GetDriveTypeA.
namespace drive_type {
inline constexpr std::uint32_t unknown = 0;
inline constexpr std::uint32_t noRootDirectory = 1;
inline constexpr std::uint32_t removable = 2;
inline constexpr std::uint32_t fixed = 3;
inline constexpr std::uint32_t remote = 4;
inline constexpr std::uint32_t cdRom = 5;
inline constexpr std::uint32_t ramDisk = 6;
}  // namespace drive_type

/// What GetDiskFreeSpaceA tells.
struct DiskSpace {
  std::int32_t sectorsPerCluster = 0;
  std::int32_t bytesPerSector = 0;
  std::int32_t freeClusters = 0;
  std::int32_t totalClusters = 0;
};

/// The drives of the machine.
class Drives {
 public:
  virtual ~Drives() = default;

  /// Type of the drive of a root such as "C:\"; 1 for a root that is not there.
  virtual std::uint32_t GetDriveTypeA(TextView root) = 0;
  /// Space of the drive of a root. False on failure, the numbers unchanged.
  virtual bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) = 0;
  /// Bit n is set if there is a drive of the n-th letter.
  virtual std::uint32_t GetLogicalDrives() = 0;
  /// The label of a drive's volume; empty if it has none or cannot be asked.
  virtual Text volumeLabel(TextView root) = 0;
};

}  // namespace zev
