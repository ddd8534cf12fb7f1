#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zev {

/// Text of the program: UTF-16, its lengths and positions count 16-bit units.
using Text = std::u16string;
using TextView = std::u16string_view;

/// One line end of a message or a text file.
inline constexpr TextView lineEnd = u"\r\n";

/// Takes blanks (U+0020) off the left, the right, or both ends. No other character counts: a tab, a
/// NUL or a no-break space stays.
TextView ltrim(TextView text);
TextView rtrim(TextView text);
TextView trim(TextView text);

/// The first or last `count` units; the whole text if it is shorter. A negative count is error 5.
TextView left(TextView text, std::int32_t count);
TextView right(TextView text, std::int32_t count);

/// Units from the 1-based position on; empty past the end. A position below 1 is error 5.
TextView mid(TextView text, std::int32_t position);

/// Length in 16-bit units.
std::int32_t len(TextView text);

/// 1-based position of the first `wanted` in `text`, or 0. An empty `wanted` is found at 1 in a
/// text that is not empty.
std::int32_t inStr(TextView text, TextView wanted);

/// The same without regard to case.
std::int32_t inStrText(TextView text, TextView wanted);

/// What stands before the first NUL; the whole text if there is none.
TextView beforeNul(TextView text);

/// The text without one such character at its end, if it ends in one.
TextView withoutTrailing(TextView text, char16_t character);

/// A text of `count` blanks, as a call's buffer.
Text blanks(std::size_t count);

/// Folds case of the Latin, Greek and Cyrillic letters; everything else stays. The dotted and the
/// dotless i of Turkish fold to themselves, as they do outside a Turkish system.
Text lowerCase(TextView text);
Text upperCase(TextView text);

/// Equality without regard to case.
bool equalText(TextView first, TextView second);

/// The decimal text of a whole number, with a leading "-" below zero and no leading blank.
Text decimal(std::int64_t number);

/// Upper-case hexadecimal text without leading zeros.
Text hexadecimal(std::uint32_t number);

/// Conversions at the edge of the program: tools, tests and diagnostics speak UTF-8. What is no
/// valid sequence becomes U+FFFD.
std::string toUtf8(TextView text);
Text fromUtf8(std::string_view text);

/// Joins pieces to one text.
template <typename... Pieces>
Text join(const Pieces&... pieces) {
  Text whole;
  whole.reserve((TextView(pieces).size() + ... + 0));
  (whole.append(TextView(pieces)), ...);
  return whole;
}

/// A fixed-length text of N units: all NUL until it is first set; a setting cuts a longer text and
/// pads a shorter one with blanks. Readers trim it.
template <std::size_t N>
class FixedText {
 public:
  FixedText& operator=(TextView text) {
    const std::size_t kept = std::min(N, text.size());
    std::copy_n(text.begin(), kept, units_.begin());
    std::fill(units_.begin() + static_cast<std::ptrdiff_t>(kept), units_.end(), u' ');
    return *this;
  }

  /// All N units, as long as this object lives and is not set anew.
  TextView view() const { return {units_.data(), N}; }

  /// The text without blanks at its ends: what every reader of the text works on. A text that was
  /// never set gives its N NULs.
  Text trimmed() const { return Text(trim(view())); }

  /// True until the first setting.
  bool neverSet() const { return units_.front() == u'\0'; }

 private:
  std::array<char16_t, N> units_{};
};

}  // namespace zev
