#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace zev {

/// Reads bytes of a file at an offset; false if they are not all there.
using ReadAt = std::function<bool(std::uint64_t offset, std::span<std::uint8_t> into)>;

/// A stretch of a file, in bytes.
struct Stretch {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;

  std::uint64_t end() const { return offset + size; }
};

/// What the header of a program's image says of its file.
struct ImageHeader {
  std::uint64_t end = 0;  ///< behind its headers, its sections and its symbols
  Stretch certificates;   ///< the table that signing leaves; of no size if none is named
};

/// The header of the image that a file begins with; none if it begins with something else. The
/// numbers are the header's own and may be wrong.
std::optional<ImageHeader> readImageHeader(const ReadAt& read);

}  // namespace zev
