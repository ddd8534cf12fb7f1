#pragma once

#include <cstdint>
#include <vector>

#include "json/value.h"
#include "runtime/text.h"

namespace zev::simulated {

using json::Value;

/// What a shortcut says, under the names that the automation object gives its properties.
struct ShortcutProperties {
  Text TargetPath{};
  Text Arguments{};
  std::int32_t WindowStyle = 1;
  Text IconLocation = u",0";
  Text Description{};
  Text WorkingDirectory{};

  bool operator==(const ShortcutProperties&) const = default;
};

/// The properties by their names, in the order of the structure.
Value told(const ShortcutProperties& properties);

/// The bytes of a shortcut's file: a shell link with its target in a LinkInfo structure and Unicode
/// strings. The window style is kept as the link's show command.
std::vector<std::uint8_t> shellLink(const ShortcutProperties& properties, std::uint32_t codePage);

}  // namespace zev::simulated
