#include "state/languages.h"

#include <algorithm>
#include <array>

namespace zev {
namespace {

struct Language {
  std::int32_t number;
  TextView entry;                     ///< of the list; empty for one that cannot be chosen there
  std::int32_t place;                 ///< in the list, chosen when the number is read
  std::array<TextView, 2> systems{};  ///< primary languages of systems that begin with it
};

/// French and German are exchanged in `systems` on purpose.
constexpr Language languages[] = {
    {language::English, u"English", 0, {u"9", u"1F"}}, {language::Turkish, u"", 1, {}},
    {language::German, u"Deutsch", 1, {u"C"}},         {language::French, u"Français", 2, {u"7"}},
    {language::Spanish, u"Espanol", 3, {u"A"}},
};

template <typename Test>
const Language* find(Test test) {
  const auto row = std::find_if(std::begin(languages), std::end(languages), test);
  return row == std::end(languages) ? nullptr : row;
}

std::int32_t numberOf(const Language* row) { return row ? row->number : language::English; }

}  // namespace

std::vector<Text> languageEntries() {
  std::vector<Text> entries;
  for (const Language& each : languages) {
    if (!each.entry.empty()) entries.emplace_back(each.entry);
  }
  return entries;
}

std::int32_t languageOfEntry(TextView entry) {
  return numberOf(
      find([&](const Language& each) { return !entry.empty() && each.entry == entry; }));
}

std::optional<std::int32_t> listPlaceOf(std::int32_t number) {
  const Language* const row = find([&](const Language& each) { return each.number == number; });
  return row ? std::optional(row->place) : std::nullopt;
}

Text PrimaryLanguage(std::uint16_t identifier) { return hexadecimal(identifier & 0x3FFu); }

std::int32_t firstLanguage(SystemInformation& system) {
  const Text primary = PrimaryLanguage(system.GetSystemDefaultUILanguage());
  return numberOf(
      find([&](const Language& each) { return std::ranges::count(each.systems, primary) != 0; }));
}

}  // namespace zev
