#include "win32/drives.h"

#include <algorithm>
#include <limits>

#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// A size that the interface's number cannot hold becomes the largest that it can.
std::int32_t number(DWORD value) {
  constexpr DWORD most = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(std::min(value, most));
}

}  // namespace

std::uint32_t Win32Drives::GetDriveTypeA(TextView root) {
  return ::GetDriveTypeA(ansiArgument(root).c_str());
}

bool Win32Drives::GetDiskFreeSpaceA(TextView root, DiskSpace& space) {
  DWORD sectors = 0;
  DWORD bytes = 0;
  DWORD free = 0;
  DWORD total = 0;
  if (!::GetDiskFreeSpaceA(ansiArgument(root).c_str(), &sectors, &bytes, &free, &total)) {
    return false;
  }
  space = {number(sectors), number(bytes), number(free), number(total)};
  return true;
}

std::uint32_t Win32Drives::GetLogicalDrives() { return ::GetLogicalDrives(); }

Text Win32Drives::volumeLabel(TextView root) {
  char label[MAX_PATH + 1] = {};
  const BOOL asked = ::GetVolumeInformationA(ansiArgument(root).c_str(), label, sizeof label,
                                             nullptr, nullptr, nullptr, nullptr, 0);
  return asked != FALSE ? fromAnsi(label) : Text();
}

}  // namespace zev::win32
