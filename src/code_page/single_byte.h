#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev {

/// What stands for a unit that a page cannot represent.
inline constexpr char defaultCharacter = '?';

/// What the bytes from 0x80 on stand for in a page of one byte a character; those below are ASCII
/// in every page.
using UpperHalf = std::array<char16_t, 128>;

/// The table of a single-byte page; null for every other number.
const UpperHalf* singleByteTable(std::uint32_t codePage);

std::string toSingleByte(TextView text, const UpperHalf& table);
Text fromSingleByte(std::string_view bytes, const UpperHalf& table);

}  // namespace zev
