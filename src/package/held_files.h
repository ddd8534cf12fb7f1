#pragma once

#include <cstdint>
#include <span>

#include "platform/holds.h"

namespace zev {

/// Whether a file is held and has these bytes, or their beginning, and nothing else.
bool holdsNothingBut(const Hold& file, std::span<const std::uint8_t> bytes);

/// Whether a file is held and, if the packed one is held too, is all of what that expands to.
bool holdsExpanded(const Hold& file, const Hold& packed);

}  // namespace zev
