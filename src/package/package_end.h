#pragma once

#include <cstdint>

#include "package/image_header.h"
#include "platform/files.h"

namespace zev {

/// Where the package ends in a file of `length` bytes: the members are counted back from there.
///
/// That is the file's end. Signing puts a table of certificates behind it, which the header of the
/// image names: if that table ends the file, the package ends where the table begins, less the 0 to
/// 7 bytes of zero that align the table. A table that is not at the file's end, or lies beyond it
/// or over the image, is none.
std::uint64_t packageEnd(std::uint64_t length, const ReadAt& read);

/// The same for a file on the machine, by its name or by its number while it is open. Raises what
/// keeps it from being read.
std::int32_t packageEnd(Files& files, TextView path, std::int32_t length);
std::int32_t packageEnd(Files& files, std::int32_t number, std::int32_t length);

}  // namespace zev
