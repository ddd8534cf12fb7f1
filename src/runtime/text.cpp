#include "runtime/text.h"

#include <algorithm>
#include <charconv>

#include "runtime/error.h"

namespace zev {
namespace {

constexpr char16_t blank = u' ';
constexpr char32_t replacement = 0xFFFD;

std::size_t checkedCount(std::int32_t count) {
  if (count < 0) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  return static_cast<std::size_t>(count);
}

/// A stretch of letters whose cases differ by a constant, or alternate in pairs.
struct CaseRange {
  char16_t firstUpper;
  char16_t lastUpper;
  int toLower;     ///< what is added to an upper-case letter
  bool alternate;  ///< every second unit only, beginning with the first
};

// clang-format off
constexpr CaseRange caseRanges[] = {
    {u'A', u'Z', 32, false},              // Latin
    {u'\u00C0', u'\u00D6', 32, false},    // Latin-1
    {u'\u00D8', u'\u00DE', 32, false},
    {u'\u0100', u'\u012E', 1, true},      // Latin Extended-A
    {u'\u0132', u'\u0136', 1, true},
    {u'\u0139', u'\u0147', 1, true},
    {u'\u014A', u'\u0176', 1, true},
    {u'\u0178', u'\u0178', -121, false},
    {u'\u0179', u'\u017D', 1, true},
    {u'\u0386', u'\u0386', 38, false},    // Greek
    {u'\u0388', u'\u038A', 37, false},
    {u'\u038C', u'\u038C', 64, false},
    {u'\u038E', u'\u038F', 63, false},
    {u'\u0391', u'\u03A1', 32, false},
    {u'\u03A3', u'\u03AB', 32, false},
    {u'\u0400', u'\u040F', 80, false},    // Cyrillic
    {u'\u0410', u'\u042F', 32, false},
};
// clang-format on

bool covers(const CaseRange& range, int upper) {
  if (upper < range.firstUpper || upper > range.lastUpper) return false;
  return !range.alternate || (upper - range.firstUpper) % 2 == 0;
}

char16_t lowerUnit(char16_t unit) {
  if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
  for (const CaseRange& range : caseRanges) {
    if (covers(range, unit)) return static_cast<char16_t>(unit + range.toLower);
  }
  return unit;
}

char16_t upperUnit(char16_t unit) {
  if (unit < 0x80) return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
  for (const CaseRange& range : caseRanges) {
    if (covers(range, unit - range.toLower)) return static_cast<char16_t>(unit - range.toLower);
  }
  return unit;
}

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

/// Takes the code point at `place` and moves past it.
char32_t takeCodePoint(TextView text, std::size_t& place) {
  const char32_t unit = text[place++];
  if (isHighSurrogate(unit) && place < text.size() && isLowSurrogate(text[place])) {
    return 0x10000 + ((unit - 0xD800) << 10) + (char32_t{text[place++]} - 0xDC00);
  }
  return isHighSurrogate(unit) || isLowSurrogate(unit) ? replacement : unit;
}

void appendUtf8(std::string& out, char32_t code) {
  const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((code >> shift) & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    tail(6), tail(0);
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    tail(12), tail(6), tail(0);
  }
}

void appendUtf16(Text& out, char32_t code) {
  if (code < 0x10000) {
    out += static_cast<char16_t>(code);
    return;
  }
  out += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
  out += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
}

/// The number of continuation bytes after a lead byte, or -1 for none that may lead.
int continuationBytes(unsigned char lead) {
  if (lead < 0x80) return 0;
  if (lead >= 0xC2 && lead < 0xE0) return 1;
  if (lead >= 0xE0 && lead < 0xF0) return 2;
  if (lead >= 0xF0 && lead < 0xF5) return 3;
  return -1;
}

bool isScalar(char32_t code, int continuation) {
  constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
  return code >= smallest[continuation] && code <= 0x10FFFF && !isHighSurrogate(code) &&
         !isLowSurrogate(code);
}

/// Takes one scalar value from UTF-8 and moves past it; one bad byte gives one replacement.
char32_t takeScalar(std::string_view text, std::size_t& place) {
  const auto lead = static_cast<unsigned char>(text[place++]);
  const int count = continuationBytes(lead);
  if (count <= 0) return count == 0 ? lead : replacement;
  char32_t code = lead & (0x3Fu >> count);
  std::size_t end = place;
  for (int taken = 0; taken < count; ++taken, ++end) {
    if (end >= text.size() || (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80) {
      return replacement;
    }
    code = (code << 6) | (static_cast<unsigned char>(text[end]) & 0x3Fu);
  }
  if (!isScalar(code, count)) return replacement;
  place = end;
  return code;
}

}  // namespace

TextView ltrim(TextView text) {
  return text.substr(std::min(text.find_first_not_of(blank), text.size()));
}

TextView rtrim(TextView text) { return text.substr(0, text.find_last_not_of(blank) + 1); }

TextView trim(TextView text) { return rtrim(ltrim(text)); }

TextView left(TextView text, std::int32_t count) { return text.substr(0, checkedCount(count)); }

TextView right(TextView text, std::int32_t count) {
  return text.substr(text.size() - std::min(text.size(), checkedCount(count)));
}

TextView mid(TextView text, std::int32_t position) {
  if (position < 1) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  return text.substr(std::min(text.size(), static_cast<std::size_t>(position - 1)));
}

std::int32_t len(TextView text) { return static_cast<std::int32_t>(text.size()); }

std::int32_t inStr(TextView text, TextView wanted) {
  if (text.empty()) return 0;
  const std::size_t place = text.find(wanted);
  return place == TextView::npos ? 0 : static_cast<std::int32_t>(place + 1);
}

std::int32_t inStrText(TextView text, TextView wanted) {
  return inStr(lowerCase(text), lowerCase(wanted));
}

TextView beforeNul(TextView text) { return text.substr(0, text.find(u'\0')); }

TextView withoutTrailing(TextView text, char16_t character) {
  if (!text.empty() && text.back() == character) text.remove_suffix(1);
  return text;
}

Text blanks(std::size_t count) { return Text(count, blank); }

Text lowerCase(TextView text) {
  Text folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), lowerUnit);
  return folded;
}

Text upperCase(TextView text) {
  Text folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), upperUnit);
  return folded;
}

bool equalText(TextView first, TextView second) {
  return std::equal(first.begin(), first.end(), second.begin(), second.end(),
                    [](char16_t a, char16_t b) { return lowerUnit(a) == lowerUnit(b); });
}

Text decimal(std::int64_t number) { return fromUtf8(std::to_string(number)); }

Text hexadecimal(std::uint32_t number) {
  char digits[8];
  const auto end = std::to_chars(std::begin(digits), std::end(digits), number, 16).ptr;
  return upperCase(fromUtf8({digits, static_cast<std::size_t>(end - digits)}));
}

std::string toUtf8(TextView text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t place = 0; place < text.size();) appendUtf8(out, takeCodePoint(text, place));
  return out;
}

Text fromUtf8(std::string_view text) {
  Text out;
  out.reserve(text.size());
  for (std::size_t place = 0; place < text.size();) appendUtf16(out, takeScalar(text, place));
  return out;
}

}  // namespace zev
