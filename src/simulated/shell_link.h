#pragma once

#include <cstdint>
#include <vector>

#include "simulated/shortcut_properties.h"

namespace zev::simulated {

/// The bytes of a shortcut's file: a shell link with its target in a LinkInfo structure and Unicode
/// strings. The window style is kept as the link's show command.
std::vector<std::uint8_t> shellLink(const ShortcutProperties& properties, std::uint32_t codePage);

}  // namespace zev::simulated
