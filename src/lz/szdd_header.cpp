#include "lz/szdd_header.h"

#include <algorithm>

namespace zev::lz {
namespace {

constexpr std::size_t kModeOffset = 8;
constexpr std::size_t kNameByteOffset = 9;
constexpr std::size_t kLengthOffset = 10;
constexpr std::size_t kLengthSize = 4;

}  // namespace

bool hasMagic(std::span<const std::uint8_t> start) {
  return start.size() >= kMagicSize && std::equal(kMagic.begin(), kMagic.end(), start.begin());
}

SzddHeader parseHeader(std::span<const std::uint8_t, kHeaderSize> bytes) {
  SzddHeader header{bytes[kModeOffset], bytes[kNameByteOffset], 0};
  for (std::size_t i = kLengthSize; i-- > 0;) {
    header.expandedLength = header.expandedLength << 8 | bytes[kLengthOffset + i];
  }
  return header;
}

std::array<std::uint8_t, kHeaderSize> formatHeader(const SzddHeader& header) {
  std::array<std::uint8_t, kHeaderSize> bytes{};
  std::copy(kMagic.begin(), kMagic.end(), bytes.begin());
  bytes[kModeOffset] = header.mode;
  bytes[kNameByteOffset] = header.nameByte;
  for (std::size_t i = 0; i < kLengthSize; ++i) {
    bytes[kLengthOffset + i] = static_cast<std::uint8_t>(header.expandedLength >> (8 * i));
  }
  return bytes;
}

}  // namespace zev::lz
