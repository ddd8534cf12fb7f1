#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "platform/files.h"

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
  std::uint64_t end = 0;  ///< past its headers, its sections and its symbols
  Stretch certificates;   ///< the table that signing leaves; of no size if none is named
};

/// The header of the image that a file begins with; none if it begins with something else. The
/// numbers are the header's own and may be wrong.
std::optional<ImageHeader> readImageHeader(const ReadAt& read);

/// Where the package ends in a file of `length` bytes: the members are counted back from there.
///
/// That is the file's end. Signing puts a table of certificates after it, which the header of the
/// image names: if that table ends the file, the package ends where the table begins, less the 0 to
/// 7 bytes of zero that align the table. A table that is not at the file's end, or lies beyond it
/// or over the image, is none.
std::uint64_t packageEnd(std::uint64_t length, const ReadAt& read);

/// The same for a file on the machine, by its name or by its number while it is open. Raises what
/// keeps it from being read.
std::int32_t packageEnd(Files& files, TextView path, std::int32_t length);
std::int32_t packageEnd(Files& files, std::int32_t number, std::int32_t length);

}  // namespace zev
