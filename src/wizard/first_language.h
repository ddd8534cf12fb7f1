#pragma once

#include <cstdint>

#include "platform/system_information.h"

namespace zev {

/// The primary language of a language identifier: its low ten bits as upper-case hexadecimal text.
Text PrimaryLanguage(std::uint16_t identifier);

/// The language number that a first run starts with, by the language of the system.
std::int32_t firstLanguage(SystemInformation& system);

}  // namespace zev
