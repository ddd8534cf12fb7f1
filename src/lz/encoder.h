#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zev::lz {

/// Appends the LZSS data of `plain`, which must be shorter than 4 GiB, to `out`. The same bytes
/// give the same data on every machine. No match refers to the blanks that the ring starts with.
void encode(std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& out);

}  // namespace zev::lz
