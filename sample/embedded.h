#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zev::sample {

/// The file called `name` that the build has put into the library: the images of the programs and
/// libraries, the help file, the pages of the player. Throws std::invalid_argument if there is
/// none.
std::span<const std::uint8_t> embeddedFile(std::string_view name);

}  // namespace zev::sample
