#pragma once

#include <cstdint>

#include "runtime/text.h"
#include "simulated/transcript.h"

namespace zev::simulated {

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

/// The properties as a JSON object, in the order of the structure.
Event toJson(const ShortcutProperties& properties);

}  // namespace zev::simulated
