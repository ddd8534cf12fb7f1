#include "wizard/first_language.h"

#include "state/languages.h"

namespace zev {

Text PrimaryLanguage(std::uint16_t identifier) { return hexadecimal(identifier & 0x3FFu); }

std::int32_t firstLanguage(SystemInformation& system) {
  return languageOfSystem(PrimaryLanguage(system.GetSystemDefaultUILanguage()));
}

}  // namespace zev
