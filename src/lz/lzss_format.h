#pragma once

#include <cstddef>

namespace zev::lz {

// The LZSS data of a packed file. Eight tokens follow each flag byte, the first one under bit 0: a
// set bit stands for one literal byte, a clear bit for a match of two bytes. A match copies `low
// nibble of the second byte + 3` bytes from a position in a ring of the last 4096 bytes; the low 8
// bits of the position are the first byte, the high 4 bits are the high nibble of the second.
// Reader and writer both start at position 4080 of a ring full of blanks.

inline constexpr std::size_t kRingSize = 4096;
inline constexpr std::size_t kRingMask = kRingSize - 1;
inline constexpr std::size_t kShortestMatch = 3;
inline constexpr std::size_t kLongestMatch = kShortestMatch + 15;
inline constexpr std::size_t kRingStart = kRingSize - 16;
inline constexpr unsigned char kRingFill = 0x20;

inline constexpr std::size_t kTokensPerFlagByte = 8;
inline constexpr std::size_t kMatchBytes = 2;

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
