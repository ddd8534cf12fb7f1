#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zev::lz {

/// The packed file of `plain`: header and LZSS data. `nameByte` is the character that the
/// underscore in the packed name replaces. The same arguments give the same bytes on every machine.
/// Throws std::length_error if the length of `plain` does not fit the header's 32 bits.
std::vector<std::uint8_t> compress(std::span<const std::uint8_t> plain, std::uint8_t nameByte);

}  // namespace zev::lz
