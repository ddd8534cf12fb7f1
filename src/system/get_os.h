#pragma once

#include <cstdint>

#include "platform/system_information.h"
#include "runtime/text.h"

namespace zev {

/// The coarse class of the machine, 0 to 4, on which the whole program branches: 4 NT 6, 3 NT 5 and
/// everything above 6, 2 NT below 5, 1 the 9x line, 0 anything else and a failing query. Sets
/// `gVersionNT62` to 1 on NT 6.2 and leaves it alone otherwise.
std::uint8_t GetOSClass(SystemInformation& system, std::uint8_t& gVersionNT62);

/// A compact name of the exact edition with processor width and service pack, such as "Win7UE64";
/// empty for a system that the tables do not know and that has no service pack. Raises the run-time
/// error -1 if the version or the emulation cannot be asked.
Text GetOSName(SystemInformation& system);

}  // namespace zev
