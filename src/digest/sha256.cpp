#include "digest/sha256.h"

#include <array>

namespace zev {

void Sha256::add(std::span<const std::uint8_t> bytes) {
  sha256_update(&context_, bytes.size(), bytes.data());
}

/// The library starts its state anew with the digest, so that what was added before is gone.
std::string Sha256::hex() {
  constexpr char digits[] = "0123456789abcdef";
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&context_, digest.size(), digest.data());
  std::string text;
  for (const std::uint8_t byte : digest) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

std::string sha256Hex(std::span<const std::uint8_t> bytes) {
  Sha256 digest;
  digest.add(bytes);
  return digest.hex();
}

}  // namespace zev
