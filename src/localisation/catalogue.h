#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "runtime/text.h"

namespace zev {

/// One phrase: the English text, which is its key, and its translations. An empty translation is a
/// gap: the phrase stays in English.
struct PhraseRow {
  TextView English;
  TextView Turkish;
  TextView German;
  TextView French;
  TextView Spanish;
};

/// Rows of the catalogue that the program addresses by position; the first row is 1.
namespace phrase_row {
inline constexpr std::size_t languageWord = 2;
inline constexpr std::size_t agreement = 9;
inline constexpr std::size_t count = 191;
}  // namespace phrase_row

/// The English key of row 1 to 191. The agreement is put together from its paragraphs.
Text phraseKey(std::size_t row);

/// The translation that row 1 to 191 has for a language number: empty for English and for numbers
/// without a language, but for 5, 6 and 7, where every row has the Turkish of the language row.
Text phraseTranslation(std::size_t row, std::int32_t languageNumber);

/// The maker's addresses. Each is part of a phrase of the catalogue, key and translations alike.
inline constexpr TextView downloadAddress = u"http://www.tavorns.example/zev/";
inline constexpr TextView supportAddress = u"support@tavorns.example";

/// The phrases that end in an address.
inline constexpr TextView downloadRequestPhrase =
    u"Installation file is not complete. Please redownload the file from "
    u"http://www.tavorns.example/zev/";
inline constexpr TextView mailRequestPhrase =
    u"Please email this error message to support@tavorns.example";

static_assert(downloadRequestPhrase.ends_with(downloadAddress));
static_assert(mailRequestPhrase.ends_with(supportAddress));

/// The paragraphs of the end-user agreement in a language; none for a number without one.
std::span<const TextView> agreementParagraphs(std::int32_t languageNumber);

/// The whole agreement: its paragraphs with a line end between two of them.
Text agreementText(std::int32_t languageNumber);

}  // namespace zev
