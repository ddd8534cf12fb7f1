#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "lz/lzss_format.h"

namespace zev::lz {

/// A group is a flag byte with its eight tokens. The most that one takes and gives:
inline constexpr std::size_t kGroupInput = 1 + kTokensPerFlagByte * kMatchBytes;
inline constexpr std::size_t kGroupOutput = kTokensPerFlagByte * kLongestMatch;

/// How many bytes past the room may be overwritten, which nobody looks at.
inline constexpr std::size_t kOutputSlack = 16;

struct GroupProgress {
  std::size_t taken = 0;  ///< bytes of input
  std::size_t given = 0;  ///< bytes of output
};

/// Expands groups for speed, as long as the largest would fit into what is left of the room, and of
/// the input with some bytes to spare. `input` begins with a flag byte. `out` has `room` bytes and
/// kOutputSlack more, and the kRingSize bytes before it are the ring; `at` is its position in
/// there, or that plus any multiple of kRingSize up to the start of the memory that `out` points
/// into.
GroupProgress expandGroups(std::span<const std::uint8_t> input, std::uint8_t* out, std::size_t room,
                           std::size_t at);

}  // namespace zev::lz
