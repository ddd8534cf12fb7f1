#include "programs/zevsim/text_block.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zev::simulator {
namespace {

constexpr TextView dots = u"...";

/// A stretch of characters that take another number of columns than one.
struct WidthRange {
  char16_t first;
  char16_t last;
  int columns;
};

/// Of a character beyond the first plane the one half is wide and the other nothing.
// clang-format off
constexpr WidthRange widthRanges[] = {
    {u'\u0300', u'\u036F', 0},  // combining marks
    {u'\u1100', u'\u115F', 2},  // Hangul
    {u'\u200B', u'\u200F', 0},  // nothing to be seen
    {u'\u2E80', u'\uA4CF', 2},  // Chinese, Japanese
    {u'\uAC00', u'\uD7A3', 2},  // Hangul
    {0xD800,    0xDBFF,    2},
    {0xDC00,    0xDFFF,    0},
    {u'\uF900', u'\uFAFF', 2},  // Chinese
    {u'\uFE00', u'\uFE0F', 0},  // variants
    {u'\uFE30', u'\uFE6F', 2},
    {u'\uFF00', u'\uFF60', 2},  // full width
    {u'\uFFE0', u'\uFFE6', 2},
};
// clang-format on

int columnsOf(char16_t unit) {
  const auto* found = std::find_if(
      std::begin(widthRanges), std::end(widthRanges),
      [&](const WidthRange& range) { return unit >= range.first && unit <= range.last; });
  return found == std::end(widthRanges) ? 1 : found->columns;
}

bool isControl(char16_t unit) { return unit < u' ' || (unit >= 0x7F && unit < 0xA0); }

/// Takes the next line of at most `columns` columns off a text without line ends.
TextView takeLine(TextView& text, int columns) {
  const TextView most = cutTo(text, columns);
  if (most.size() == text.size()) return std::exchange(text, TextView());
  const std::size_t blank = text.rfind(u' ', most.size());
  const bool breaks = blank != TextView::npos && blank != 0;
  const TextView line = breaks ? text.substr(0, blank) : most;
  text = ltrim(text.substr(line.size()));
  return line;
}

}  // namespace

int columnsOf(TextView text) {
  int columns = 0;
  for (const char16_t unit : text) columns += columnsOf(unit);
  return columns;
}

TextView cutTo(TextView text, int columns) {
  std::size_t end = 0;
  while (end < text.size() && columns >= columnsOf(text[end])) columns -= columnsOf(text[end++]);
  return text.substr(0, end);
}

Text fitted(TextView text, int columns) {
  const Text cut(cutTo(text, columns));
  return cut + repeated(columns - columnsOf(cut), u' ');
}

Text beginningOf(TextView text, int columns) {
  if (columnsOf(text) <= columns) return Text(text);
  return join(cutTo(text, columns - len(dots)), dots);
}

Text endOf(TextView text, int columns) {
  if (columnsOf(text) <= columns) return Text(text);
  TextView end = text;
  while (!end.empty() && columnsOf(end) + len(dots) > columns) end.remove_prefix(1);
  return join(cutTo(dots, columns), end);
}

Text centred(TextView text, int columns) {
  return join(repeated((columns - columnsOf(text)) / 2, u' '), text);
}

Text repeated(int count, char16_t unit) {
  return Text(static_cast<std::size_t>(std::max(count, 0)), unit);
}

Text printable(TextView text) {
  Text shown(text);
  std::replace(shown.begin(), shown.end(), u'\t', u' ');
  std::replace_if(shown.begin(), shown.end(), isControl, u'?');
  return shown;
}

std::vector<Text> wrapped(TextView text, int columns) {
  const int most = std::max(columns, 2);  // a wide character is the least
  std::vector<Text> lines;
  while (true) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n"), text.size());
    const Text paragraph = printable(text.substr(0, end));
    TextView rest = paragraph;
    do lines.emplace_back(takeLine(rest, most));
    while (!rest.empty());
    if (end == text.size()) return lines;
    text.remove_prefix(end + (text.substr(end).starts_with(lineEnd) ? 2 : 1));
  }
}

std::vector<Text> wrappedWords(const std::vector<Text>& words, int columns) {
  std::vector<Text> lines;
  for (const Text& word : words) {
    const Text whole = printable(word);
    const bool fits = !lines.empty() && columnsOf(lines.back()) + 2 + columnsOf(whole) <= columns;
    if (fits) {
      lines.back() += join(u"  ", whole);
    } else {
      lines.emplace_back(cutTo(whole, columns));
    }
  }
  return lines;
}

std::string framed(TextView title, const std::vector<Text>& lines, int inside) {
  const Text shown = printable(cutTo(title, inside - 2));
  Text block = join(u"+- ", shown, u" ", repeated(inside - 2 - columnsOf(shown), u'-'), u"-+\n");
  if (shown.empty()) block = join(u"+", repeated(inside + 2, u'-'), u"+\n");
  for (const Text& line : lines) block += join(u"| ", fitted(line, inside), u" |\n");
  return toUtf8(join(block, u"+", repeated(inside + 2, u'-'), u"+\n"));
}

}  // namespace zev::simulator
