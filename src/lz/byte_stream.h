#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zev::lz {

/// Where bytes come from, front to back.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Reads up to `into.size()` bytes into the front of `into`, which is not empty. The number of
  /// bytes read, which may be fewer than there are still to come; 0 at the end; negative on a
  /// failure.
  virtual std::ptrdiff_t read(std::span<std::uint8_t> into) = 0;
};

/// Where bytes go, front to back.
class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Takes all of `from`, or returns false; how much of it was taken is then unknown.
  virtual bool write(std::span<const std::uint8_t> from) = 0;
};

}  // namespace zev::lz
