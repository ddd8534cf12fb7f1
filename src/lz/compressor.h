#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zev::lz {

/// The packed file of `plain`: header and LZSS data. `nameByte` is the character that the
/// underscore in the packed name replaces. The same arguments give the same bytes on every machine.
/// Throws std::length_error if `plain` is longer than an expansion can tell, 2 GiB less a byte.
std::vector<std::uint8_t> compress(std::span<const std::uint8_t> plain, std::uint8_t nameByte);

}  // namespace zev::lz
