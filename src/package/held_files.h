#pragma once

#include <cstdint>
#include <span>

#include "platform/holds.h"

namespace zev {

/// Whether a held file holds these bytes, or their beginning, and nothing else. A file that the
/// system could not hold is taken for what it was when it was written.
bool holdsNothingBut(const Hold& file, std::span<const std::uint8_t> bytes);

/// Whether a held file is all of what a packed one expands to; both as above.
bool holdsExpanded(const Hold& file, const Hold& packed);

}  // namespace zev
