#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>

#include "lz/streams.h"

namespace zev::lz {

struct Expanded {
  std::int32_t result = 0;
  Bytes bytes;

  bool operator==(const Expanded&) const = default;
};

/// The result, and of the bytes the length and the first few.
std::ostream& operator<<(std::ostream& out, const Expanded& expanded);

/// The result of expanding the file `bytes`, worked out the slow and obvious way: byte by byte over
/// a ring. It shares no code with what is tested.
Expanded expandByRing(std::span<const std::uint8_t> bytes);

/// The same by `expand`, from reads of at most `step` bytes and by writes.
Expanded expandBySteps(std::span<const std::uint8_t> bytes, std::size_t step = 1 << 20);

/// The same by `expand` from memory, where nothing lies behind the bytes, into memory.
Expanded expandInMemory(std::span<const std::uint8_t> bytes);

/// The fewest bits, flags included, that any choice of tokens spends on `plain`.
std::size_t fewestBits(std::span<const std::uint8_t> plain);

}  // namespace zev::lz
