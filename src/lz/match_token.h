#pragma once

#include <cstddef>

#include "lz/lzss_format.h"

namespace zev::lz {

/// The two bytes of a match.
struct MatchToken {
  std::size_t low;
  std::size_t high;

  /// Its position in the ring.
  constexpr std::size_t position() const { return low | (high & 0xF0) << 4; }

  /// kShortestMatch to kLongestMatch.
  constexpr std::size_t length() const { return (high & 0x0F) + kShortestMatch; }

  /// How far back the copied bytes begin: 1 to kRingSize. `last` is the position of the byte before
  /// the match, of which only the value modulo the ring's size counts.
  constexpr std::size_t distance(std::size_t last) const {
    return ((last - position()) & kRingMask) + 1;
  }
};

}  // namespace zev::lz
