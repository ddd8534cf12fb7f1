#pragma once

#include <string_view>
#include <vector>

#include "sample/archive.h"

namespace zev::sample {

/// More files than fit for the archive that is installed under `installedName`, in the order in
/// which they are taken: pictures for the editor (Graphics.zev), buttons of the Flash player
/// (SWFGraphs.zev), page, style, script, buttons and posters of a player (VideoPlayer*.zev).
std::vector<Entry> archiveCandidates(std::string_view installedName);

}  // namespace zev::sample
