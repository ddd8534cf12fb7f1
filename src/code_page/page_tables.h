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

/// First and last of a range of lead bytes.
struct ByteRange {
  unsigned char first;
  unsigned char last;
};

/// A page of East Asia: bytes below 0x80 are ASCII, a lead byte and the byte after it one
/// character.
struct DoubleBytePage {
  std::uint32_t number;
  const char* name;  ///< that the C library knows it by
  char16_t unknown;  ///< what two bytes without a character become
  ByteRange leads[2];
};

inline constexpr ByteRange noRange = {1, 0};

// clang-format off
inline constexpr DoubleBytePage doubleBytePages[] = {
    {932, "CP932", u'\u30FB', {{0x81, 0x9F}, {0xE0, 0xFC}}},  // Japanese
    {936, "CP936", u'?',      {{0x81, 0xFE}, noRange}},       // Chinese, simplified
    {949, "CP949", u'?',      {{0x81, 0xFE}, noRange}},       // Korean
    {950, "CP950", u'?',      {{0x81, 0xFE}, noRange}},       // Chinese, traditional
};
// clang-format on

/// The double-byte page of that number; null for every other number.
inline const DoubleBytePage* doubleBytePage(std::uint32_t codePage) {
  for (const DoubleBytePage& page : doubleBytePages) {
    if (page.number == codePage) return &page;
  }
  return nullptr;
}

/// Conversions by the tables of the C library, read once a process; they throw std::runtime_error
/// if it does not have the page. `page` is one of `doubleBytePages`.
std::string toDoubleByte(TextView text, const DoubleBytePage& page);
Text fromDoubleByte(std::string_view bytes, const DoubleBytePage& page);

}  // namespace zev
