#pragma once

#include <string>
#include <vector>

#include "runtime/text.h"

namespace zev::simulator {

// Texts as blocks on a terminal, measured in its columns: a wide character takes two, a mark that
// combines with the one before it none.

/// Columns that a text takes.
int columnsOf(TextView text);

/// The beginning of a text that takes at most `columns` columns.
TextView cutTo(TextView text, int columns);
/// The same, filled with blanks.
Text fitted(TextView text, int columns);
/// The beginning of a text before "...", or its end after that, if it takes more columns.
Text beginningOf(TextView text, int columns);
Text endOf(TextView text, int columns);
/// Blanks in front, so that it stands in the middle.
Text centred(TextView text, int columns);
Text repeated(int count, char16_t unit);

/// A text in which what a terminal would obey instead of showing it is a question mark.
Text printable(TextView text);

/// Breaks a text at its line ends and at blanks, so that no line takes more columns; all of it
/// printable.
std::vector<Text> wrapped(TextView text, int columns);
/// The same of words that stay whole, two blanks between them.
std::vector<Text> wrappedWords(const std::vector<Text>& words, int columns);

/// Lines in a frame with a title in its upper edge, `inside` columns wide within.
std::string framed(TextView title, const std::vector<Text>& lines, int inside);
/// What a frame takes beside what is in it.
inline constexpr int frameColumns = 4;
inline constexpr int frameLines = 2;

}  // namespace zev::simulator
