#include "lz/compressor.h"

#include <cstddef>
#include <limits>
#include <stdexcept>

#include "lz/encoder.h"
#include "lz/szdd_header.h"

namespace zev::lz {

std::vector<std::uint8_t> compress(std::span<const std::uint8_t> plain, std::uint8_t nameByte) {
  if (plain.size() > std::numeric_limits<std::int32_t>::max()) {
    throw std::length_error("file too long to be packed");
  }
  const SzddHeader header{kModeLzss, nameByte, static_cast<std::uint32_t>(plain.size())};
  const auto headerBytes = formatHeader(header);
  std::vector<std::uint8_t> packed(headerBytes.begin(), headerBytes.end());
  packed.reserve(kHeaderSize + plain.size() / 2);
  encode(plain, packed);
  return packed;
}

}  // namespace zev::lz
