#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace zev::lz {

inline constexpr std::size_t kMagicSize = 8;
inline constexpr std::size_t kHeaderSize = 14;
inline constexpr std::array<std::uint8_t, kMagicSize> kMagic{0x53, 0x5A, 0x44, 0x44,
                                                             0x88, 0xF0, 0x27, 0x33};

/// The one compression mode there is.
inline constexpr std::uint8_t kModeLzss = 'A';

/// What stands between the magic bytes of a packed file and its data.
struct SzddHeader {
  std::uint8_t mode = kModeLzss;
  /// The character that the underscore in the packed name replaced; 0 if none is known.
  std::uint8_t nameByte = 0;
  /// Bytes in the expanded file, as declared. Nothing vouches for it.
  std::uint32_t expandedLength = 0;
};

/// True if `start` begins with all of the magic bytes.
bool hasMagic(std::span<const std::uint8_t> start);

/// The fields of a header whose magic bytes were already found; they are not looked at again.
SzddHeader parseHeader(std::span<const std::uint8_t, kHeaderSize> bytes);

/// The header as it stands in a file, magic bytes included.
std::array<std::uint8_t, kHeaderSize> formatHeader(const SzddHeader& header);

}  // namespace zev::lz
