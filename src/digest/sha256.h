#pragma once

#include <nettle/sha2.h>

#include <cstdint>
#include <span>
#include <string>

namespace zev {

/// SHA-256 of bytes that come piece by piece.
class Sha256 {
 public:
  Sha256() { sha256_init(&context_); }
  void add(std::span<const std::uint8_t> bytes);
  /// The digest of all that was added, in lower-case hexadecimal digits. Ends the object's work.
  std::string hex();

 private:
  sha256_ctx context_;
};

/// The digest of one piece.
std::string sha256Hex(std::span<const std::uint8_t> bytes);

}  // namespace zev
