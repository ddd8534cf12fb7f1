#pragma once

#include <cstdint>

#include "state/program.h"

namespace zev {

/// Decides whether the install directory may be used: `ok` becomes -1 if so, else 0.
///
/// Stand-in for the check of the destination: makes the directory with its missing parents and
/// accepts it; refuses one that cannot be made, without a word.
void ValidateDestination(Program& program, std::int16_t& ok);

}  // namespace zev
