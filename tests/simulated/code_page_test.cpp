#include "runtime/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <stdexcept>

namespace zev {
namespace {

constexpr std::uint32_t singleByte[] = {437,  850,  874,  1250, 1251, 1252, 1253,
                                        1254, 1255, 1256, 1257, 1258, 28591};

std::string everyByte() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  return bytes;
}

/// What the host's own conversion makes of one byte; 0 if it has nothing for it.
char16_t hostUnit(iconv_t conversion, char byte) {
  char16_t unit = 0;
  char* from = &byte;
  char* to = reinterpret_cast<char*>(&unit);
  std::size_t left = 1;
  std::size_t room = sizeof unit;
  iconv(conversion, nullptr, nullptr, nullptr, nullptr);
  const bool converted = iconv(conversion, &from, &left, &to, &room) != std::size_t(-1);
  if (converted) iconv(conversion, nullptr, nullptr, &to, &room);
  return converted && room == 0 ? unit : u'\0';
}

TEST(CodePage, EveryByteSurvivesTheWayThereAndBack) {
  for (const std::uint32_t page : singleByte) {
    EXPECT_EQ(toCodePage(fromCodePage(everyByte(), page), page), everyByte()) << page;
  }
}

TEST(CodePage, AgreesWithTheHostsTablesOnWhatTheyAssign) {
  for (const std::uint32_t page : singleByte) {
    const std::string name = page == 28591 ? "ISO-8859-1" : "CP" + std::to_string(page);
    const iconv_t conversion = iconv_open("UTF-16LE", name.c_str());
    ASSERT_NE(conversion, reinterpret_cast<iconv_t>(-1)) << name;
    int compared = 0;
    for (const char byte : everyByte().substr(1)) {
      const char16_t unit = hostUnit(conversion, byte);
      if (unit == 0) continue;
      EXPECT_EQ(fromCodePage({&byte, 1}, page), Text(1, unit)) << name << " " << int(byte);
      ++compared;
    }
    EXPECT_GT(compared, 200) << name;
    iconv_close(conversion);
  }
}

TEST(CodePage, UnassignedBytesOfTheWesternPageAreControls) {
  EXPECT_EQ(fromCodePage("\x81\x8D\x8F\x90\x9D", 1252), u"\u0081\u008D\u008F\u0090\u009D");
}

TEST(CodePage, WhatItCannotRepresentBecomesAQuestionMark) {
  EXPECT_EQ(toCodePage(u"a\u20AC\u4E2D\u015F", 1252), "a\x80??");
  EXPECT_EQ(toCodePage(u"\u015F\u0131", 1254), "\xFE\xFD");
  EXPECT_EQ(toCodePage(u"\u00FC", 20127), "?");
  EXPECT_EQ(toCodePage(u"\U0001F600", 1252), "??");
  EXPECT_EQ(throughCodePage(u"\u00FC\u015F", 1252), u"\u00FC?");
}

TEST(CodePage, Utf8IsACodePageToo) {
  EXPECT_EQ(toCodePage(u"\u00FC", 65001), "\xC3\xBC");
  EXPECT_EQ(fromCodePage("\xC3\xBC", 65001), u"\u00FC");
}

TEST(CodePage, UnknownOnesAreRefused) {
  for (const std::uint32_t page : singleByte) EXPECT_TRUE(isKnownCodePage(page));
  EXPECT_TRUE(isKnownCodePage(65001));
  EXPECT_TRUE(isKnownCodePage(20127));
  EXPECT_FALSE(isKnownCodePage(932));
  EXPECT_THROW(toCodePage(u"a", 932), std::invalid_argument);
  EXPECT_THROW(fromCodePage("a", 0), std::invalid_argument);
}

}  // namespace
}  // namespace zev
