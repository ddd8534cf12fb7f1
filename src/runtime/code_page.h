#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev {

/// Code pages of the system: the single-byte ones of Windows and DOS (437, 850, 874, 1250 to 1258),
/// ISO 8859-1 (28591), ASCII (20127) and UTF-8 (65001).
bool isKnownCodePage(std::uint32_t codePage);

/// Bytes of a text in a code page. Each unit that the page cannot represent becomes "?". An unknown
/// code page throws std::invalid_argument, here and below.
std::string toCodePage(TextView text, std::uint32_t codePage);

/// The text of bytes in a code page. Bytes that the system leaves unassigned in its single-byte
/// pages become what the system makes of them: a control or a private character of their own, so
/// that they survive the way there and back.
Text fromCodePage(std::string_view bytes, std::uint32_t codePage);

/// A text as it comes out of a way through the code page.
Text throughCodePage(TextView text, std::uint32_t codePage);

}  // namespace zev
