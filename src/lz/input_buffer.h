#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "lz/byte_stream.h"

namespace zev::lz {

/// Reads a source in large pieces, and only once the piece before is used up. What lies in memory
/// already is used where it lies.
class InputBuffer {
 public:
  /// What `next` returns in place of a byte.
  enum : int { kEnd = -1, kFailed = -2 };

  /// Borrows the source. Throws std::bad_alloc.
  explicit InputBuffer(ByteSource& source);

  /// The next byte, or kEnd or kFailed.
  int next() {
    if (rest_.empty()) return refill();
    const int byte = rest_.front();
    skip(1);
    return byte;
  }

  /// The bytes at hand and not yet used. `skip` counts bytes of it as used.
  std::span<const std::uint8_t> rest() const { return rest_; }
  void skip(std::size_t count) { rest_ = rest_.subspan(count); }

 private:
  int refill();

  ByteSource& source_;
  std::unique_ptr<std::uint8_t[]> bytes_;  ///< none for a source that lies in memory
  std::span<const std::uint8_t> rest_;
};

}  // namespace zev::lz
