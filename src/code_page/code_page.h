#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev {

inline constexpr std::uint32_t utf8CodePage = 65001;

/// Code pages of the system: the single-byte ones of Windows and DOS (437, 850, 874, 1250 to 1258),
/// ISO 8859-1 (28591), ASCII (20127), the double-byte ones of East Asia (932, 936, 949, 950) and
/// UTF-8 (65001).
bool isKnownCodePage(std::uint32_t codePage);

/// Bytes of a text in a code page. Each unit that the page cannot represent becomes "?", and never
/// a character that merely looks alike. An unknown code page throws std::invalid_argument, here and
/// below.
///
/// Windows converts by itself: these are for machines that are simulated on another system, and
/// they are not built there.
std::string toCodePage(TextView text, std::uint32_t codePage);

/// The text of bytes in a code page. Bytes that the system leaves unassigned in its single-byte
/// pages become what the system makes of them: a control or a private character of their own, so
/// that they survive the way there and back. In a double-byte page a lead byte with a byte after
/// it that makes no character of it, or with none, becomes the page's sign for the unknown;
/// characters that users define for themselves are unknown.
Text fromCodePage(std::string_view bytes, std::uint32_t codePage);

/// A text as it comes out of a way through the code page.
Text throughCodePage(TextView text, std::uint32_t codePage);

}  // namespace zev
