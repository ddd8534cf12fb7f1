#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zev::lz {

/// Where bytes come from, front to back.
class ByteSource {
 public:
  virtual ~ByteSource() = default;

  /// Reads up to `into.size()` bytes into the front of `into`, which is not empty. The number of
  /// bytes read, which may be fewer than there are still to come; 0 at the end; negative on a
  /// failure.
  virtual std::ptrdiff_t read(std::span<std::uint8_t> into) = 0;

  /// All that is still to come, for a reader that takes it where it lies: it then counts as read,
  /// and stays for as long as the source. None of a source that has to be read.
  virtual std::optional<std::span<const std::uint8_t>> takeRest() { return std::nullopt; }
};

/// Where bytes go, front to back.
class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Takes all of `from`, or returns false; how much of it was taken is then unknown.
  virtual bool write(std::span<const std::uint8_t> from) = 0;

  /// Where all that it is given is appended, for a writer that makes its bytes there itself. Null
  /// of a sink that has to be written.
  virtual std::vector<std::uint8_t>* memory() { return nullptr; }
};

}  // namespace zev::lz
