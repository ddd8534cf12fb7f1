#include "simulated/simulated_system.h"

#include <algorithm>
#include <limits>

namespace zev::simulated {
namespace {

constexpr std::uintptr_t ownProcess = ~std::uintptr_t{0};  // the system's pseudo handle
constexpr std::size_t serviceNameUnits = 128;
constexpr std::uint32_t sidBytes = 28;  // of an account of a machine or domain

}  // namespace

std::uint32_t SimulatedSystem::answerPath(const std::optional<Text>& path, Text& buffer,
                                          std::uint32_t size) {
  if (!path) return 0;
  const std::string answer = machine_.toAnsi(machine_.givenPath(*path));
  const auto needed = static_cast<std::uint32_t>(answer.size() + 1);
  return needed > size ? needed : writeAnswer(buffer, answer, machine_.codePage());
}

std::uint32_t SimulatedSystem::GetTempPathA(std::uint32_t size, Text& buffer) {
  return answerPath(machine_.settings.folders.temp, buffer, size);
}

std::uint32_t SimulatedSystem::GetWindowsDirectoryA(Text& buffer, std::uint32_t size) {
  return answerPath(machine_.settings.folders.windows, buffer, size);
}

std::uint32_t SimulatedSystem::GetSystemDirectoryA(Text& buffer, std::uint32_t size) {
  return answerPath(machine_.settings.folders.system, buffer, size);
}

std::uint16_t SimulatedSystem::GetSystemDefaultUILanguage() {
  return machine_.settings.system.uiLanguage;
}

bool SimulatedSystem::GetUserNameA(Text& buffer, std::uint32_t& size) {
  const std::optional<Text>& user = machine_.settings.system.user;
  if (!user) return false;
  const std::string answer = machine_.toAnsi(*user);
  const auto needed = static_cast<std::uint32_t>(answer.size() + 1);
  const bool fits = needed <= size;
  size = fits ? writeAnswer(buffer, answer, machine_.codePage()) + 1 : needed;
  return fits;
}

bool SimulatedSystem::LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                                         std::uint32_t& domainSize) {
  const SystemSettings& system = machine_.settings.system;
  if (!system.domain || !system.user) return false;
  if (!equalText(machine_.throughAnsi(beforeNul(account)), *system.user)) return false;
  const std::string answer = machine_.toAnsi(*system.domain);
  const auto needed = static_cast<std::uint32_t>(answer.size() + 1);
  const bool fits = needed <= domainSize && sidSize >= sidBytes;
  domainSize = fits ? writeAnswer(domain, answer, machine_.codePage()) : needed;
  return fits;
}

bool SimulatedSystem::GetVersionExA(OSVERSIONINFO& record) {
  const OsVersion& version = machine_.settings.system.version;
  const bool extended = record.dwOSVersionInfoSize == OSVERSIONINFO::extendedForm;
  if (version.fails) return false;
  if (!extended && record.dwOSVersionInfoSize != OSVERSIONINFO::shortForm) return false;
  record.dwMajorVersion = version.major;
  record.dwMinorVersion = version.minor;
  record.dwBuildNumber = version.build;
  record.dwPlatformId = version.platform;
  record.szCSDVersion.assign(serviceNameUnits, u'\0');
  const std::string csd = machine_.toAnsi(version.csd).substr(0, serviceNameUnits - 1);
  writeAnswer(record.szCSDVersion, csd, machine_.codePage());
  if (extended) {
    record.wSuiteMask = version.suiteMask;
    record.wProductType = version.productType;
  }
  return true;
}

std::int32_t SimulatedSystem::GetSystemMetrics(std::int32_t index) {
  const auto& metrics = machine_.settings.system.metrics;
  const auto found = metrics.find(index);
  return found == metrics.end() ? 0 : found->second;
}

std::uintptr_t SimulatedSystem::GetCurrentProcess() { return ownProcess; }

bool SimulatedSystem::IsWow64Process(std::uintptr_t process, bool& emulated) {
  if (process != ownProcess) return false;
  emulated = machine_.settings.system.wow64;
  return true;
}

std::uint16_t SimulatedSystem::GetNativeSystemInfo() {
  return machine_.settings.system.architecture;
}

std::uint16_t SimulatedSystem::GetSystemInfo() { return machine_.settings.system.architecture; }

bool SimulatedSystem::GetProductInfo(std::uint32_t major, std::uint32_t, std::uint32_t,
                                     std::uint32_t, std::uint32_t& code) {
  constexpr std::uint32_t firstWithEditions = 6;
  if (major < firstWithEditions) return false;
  if (machine_.settings.system.version.major < firstWithEditions) return false;
  code = machine_.settings.system.productInfo;
  return true;
}

// ---- drives

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
