#include "wizard/first_language.h"

#include <algorithm>

#include "state/globals.h"

namespace zev {
namespace {

struct SystemLanguage {
  TextView primary;
  std::int32_t number;
};

/// French and German stand crosswise: that is how the table is.
constexpr SystemLanguage systemLanguages[] = {
    {u"9", 0},   // English
    {u"1F", 0},  // Turkish
    {u"C", 2},   // French
    {u"7", 3},   // German
    {u"A", 4},   // Spanish
};

}  // namespace

Text PrimaryLanguage(std::uint16_t identifier) { return hexadecimal(identifier & 0x3FFu); }

std::int32_t firstLanguage(SystemInformation& system) {
  const Text primary = PrimaryLanguage(system.GetSystemDefaultUILanguage());
  const auto row =
      std::find_if(std::begin(systemLanguages), std::end(systemLanguages),
                   [&](const SystemLanguage& each) { return each.primary == primary; });
  return row == std::end(systemLanguages) ? language::English : row->number;
}

}  // namespace zev
