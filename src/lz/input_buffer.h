#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "lz/byte_stream.h"

namespace zev::lz {

/// Reads a source in large pieces, and only once the piece before is used up.
class InputBuffer {
 public:
  /// What `next` returns in place of a byte.
  enum : int { kEnd = -1, kFailed = -2 };

  /// Borrows the source. Throws std::bad_alloc.
  explicit InputBuffer(ByteSource& source);

  /// The next byte, or kEnd or kFailed.
  int next() { return begin_ != end_ ? bytes_[begin_++] : refill(); }

  /// The bytes read and not yet used; kInputSlack meaningless ones follow, which may be loaded.
  /// `skip` counts bytes of it as used.
  std::span<const std::uint8_t> rest() const { return {bytes_.get() + begin_, end_ - begin_}; }
  void skip(std::size_t count) { begin_ += count; }

 private:
  int refill();

  ByteSource& source_;
  std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

}  // namespace zev::lz
