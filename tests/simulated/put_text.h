#pragma once

#include <string_view>
#include <vector>

#include "simulated/disks.h"

namespace zev::simulated {

/// Lays a file of these bytes on a machine's disks, with the directories above it. Fails as
/// Disks::put does.
inline void putText(Disks& disks, TextView path, std::string_view bytes) {
  FileSettings settings;
  settings.content = std::vector<std::uint8_t>(bytes.begin(), bytes.end());
  disks.put(path, settings);
}

}  // namespace zev::simulated
