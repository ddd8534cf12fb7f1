#pragma once

#include <cstddef>
#include <cstdint>

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

}  // namespace zev
