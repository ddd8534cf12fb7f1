#include "simulated/simulated_drives.h"

#include <algorithm>
#include <limits>

namespace zev::simulated {
namespace {

std::int32_t clusters(std::uint64_t bytes, const Drive& drive) {
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(bytes / drive.clusterBytes(), most));
}

}  // namespace

/// The drive of a root such as "C:\"; null for a root that is not there.
const Drive* SimulatedDrives::driveOf(TextView root) const {
  Path path;
  if (root.size() < 2 || root[1] != u':') return nullptr;
  const SystemError error = parsePath(machine_.throughAnsi(root), Path{}, path);
  return error == system_error::success && path.isRoot() ? machine_.disks.at(path.drive) : nullptr;
}

std::uint32_t SimulatedDrives::GetDriveTypeA(TextView root) {
  const Drive* drive = driveOf(root);
  return drive == nullptr ? drive_type::noRootDirectory : drive->settings.type;
}

bool SimulatedDrives::GetDiskFreeSpaceA(TextView root, DiskSpace& space) {
  const Drive* drive = driveOf(root);
  if (drive == nullptr || !drive->settings.ready) return false;
  const std::uint64_t used = static_cast<std::uint64_t>(std::max<std::int64_t>(drive->used, 0));
  space.sectorsPerCluster = static_cast<std::int32_t>(drive->settings.sectorsPerCluster);
  space.bytesPerSector = static_cast<std::int32_t>(drive->settings.bytesPerSector);
  space.freeClusters = clusters(drive->settings.free, *drive);
  space.totalClusters = clusters(drive->settings.free + used, *drive);
  return true;
}

std::uint32_t SimulatedDrives::GetLogicalDrives() {
  std::uint32_t bits = 0;
  for (const char16_t letter : machine_.disks.letters()) {
    if (machine_.disks.at(letter)->settings.type >= drive_type::removable) {
      bits |= std::uint32_t{1} << (letter - u'A');
    }
  }
  return bits;
}

Text SimulatedDrives::volumeLabel(TextView root) {
  const Drive* drive = driveOf(root);
  if (drive == nullptr || !drive->settings.ready) return {};
  return machine_.throughAnsi(drive->settings.label);
}

}  // namespace zev::simulated
