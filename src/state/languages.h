#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/system_information.h"
#include "runtime/text.h"

namespace zev {

/// Numbers of the languages.
namespace language {
inline constexpr std::int32_t English = 0;
inline constexpr std::int32_t Turkish = 1;
inline constexpr std::int32_t German = 2;
inline constexpr std::int32_t French = 3;
inline constexpr std::int32_t Spanish = 4;
}  // namespace language

// Who adds a language adds a row to the table in languages.cpp, a column to the catalogue and a
// text to the agreement.

/// The entries of the list of languages, in their order.
std::vector<Text> languageEntries();

/// The number of the language that an entry of the list chooses; English for any other text.
std::int32_t languageOfEntry(TextView entry);

/// The place in the list that is chosen for a number read from the machine; none for a number
/// without a language. What is kept on a machine is the place of an entry, and what is read from it
/// is taken for a number, so that German comes back as the number of Turkish and finds its place
/// all the same, French as German.
std::optional<std::int32_t> listPlaceOf(std::int32_t number);

/// The primary language of a language identifier: its low ten bits as upper-case hexadecimal text.
Text PrimaryLanguage(std::uint16_t identifier);

/// The number that a first run starts with, by the primary language of the system; English if no
/// row has it.
std::int32_t firstLanguage(SystemInformation& system);

}  // namespace zev
