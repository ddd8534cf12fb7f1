#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "lz/lzss_format.h"

namespace zev::lz {

/// A stretch that already stands `distance` bytes earlier. A length of 0 means that there is none.
struct Match {
  std::uint16_t distance = 0;
  std::uint16_t length = 0;
};

/// Finds repeats within reach of the ring, one position after the other. The positions of equal
/// hash are chained from the latest back; a search gives up after kLongestSearch of them, which
/// bounds the time on any input.
class MatchFinder {
 public:
  /// `plain` must outlive the finder and be shorter than 4 GiB.
  explicit MatchFinder(std::span<const std::uint8_t> plain);

  /// The longest match at `position` that ends at `end` or before, the nearest among equals; then
  /// the position itself becomes one to be found. Positions are passed once each, in ascending
  /// order.
  Match advance(std::size_t position, std::size_t end);

 private:
  static constexpr unsigned kHashBits = 15;
  static constexpr std::size_t kLongestSearch = 64;

  std::size_t hashAt(std::size_t position) const;
  Match search(std::size_t position, std::size_t candidate, std::size_t limit) const;
  std::size_t commonLength(std::size_t a, std::size_t b, std::size_t limit) const;

  std::span<const std::uint8_t> plain_;
  std::vector<std::uint32_t> latest_;                // by hash: position + 1, 0 for none
  std::array<std::uint32_t, kRingSize> previous_{};  // by position modulo the ring: the same
};

/// Appends the LZSS data of `plain`, which must be shorter than 4 GiB, to `out`. The same bytes
/// give the same data on every machine. No match refers to the blanks that the ring starts with.
void encode(std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& out);

/// The packed file of `plain`: header and LZSS data. `nameByte` is the character that the
/// underscore in the packed name replaces. The same arguments give the same bytes on every machine.
/// Throws std::length_error if `plain` is longer than an expansion can tell, 2 GiB less a byte.
std::vector<std::uint8_t> compress(std::span<const std::uint8_t> plain, std::uint8_t nameByte);

}  // namespace zev::lz
