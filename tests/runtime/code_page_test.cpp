#include "runtime/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <stdexcept>

namespace zev {
namespace {

/// What the C library makes of one byte in a code page; 0 for a byte that it leaves unassigned.
char16_t unitByLibrary(const char* name, unsigned char byte) {
  const iconv_t converter = iconv_open("UTF-16LE", name);
  char in = static_cast<char>(byte);
  char out[4] = {};
  char* from = &in;
  char* to = out;
  std::size_t inLeft = 1;
  std::size_t outLeft = sizeof out;
  const std::size_t result = iconv(converter, &from, &inLeft, &to, &outLeft);
  iconv_close(converter);
  if (result == static_cast<std::size_t>(-1)) return 0;
  return static_cast<char16_t>(static_cast<unsigned char>(out[0]) |
                               (static_cast<unsigned char>(out[1]) << 8));
}

struct Page {
  std::uint32_t number;
  const char* name;
};

constexpr Page pages[] = {
    {437, "CP437"},   {850, "CP850"},   {874, "CP874"},   {1250, "CP1250"},      {1251, "CP1251"},
    {1252, "CP1252"}, {1253, "CP1253"}, {1254, "CP1254"}, {1256, "CP1256"},      {1257, "CP1257"},
    {1255, "CP1255"}, {1258, "CP1258"}, {20127, "ASCII"}, {28591, "ISO-8859-1"},
};

TEST(CodePage, AgreesWithTheCLibraryOnEveryAssignedByte) {
  for (const Page& page : pages) {
    int compared = 0;
    for (int byte = 1; byte < 256; ++byte) {
      const char16_t expected = unitByLibrary(page.name, static_cast<unsigned char>(byte));
      if (expected == 0) continue;
      const std::string bytes(1, static_cast<char>(byte));
      EXPECT_EQ(fromCodePage(bytes, page.number), Text(1, expected)) << page.number << " " << byte;
      EXPECT_EQ(toCodePage(Text(1, expected), page.number), bytes) << page.number << " " << byte;
      ++compared;
    }
    EXPECT_GT(compared, 60) << page.number;
  }
}

TEST(CodePage, BringsEveryByteThereAndBack) {
  for (const Page& page : pages) {
    if (page.number == 20127) continue;
    for (int byte = 0; byte < 256; ++byte) {
      const std::string bytes(1, static_cast<char>(byte));
      EXPECT_EQ(toCodePage(fromCodePage(bytes, page.number), page.number), bytes)
          << page.number << " " << byte;
    }
  }
}

TEST(CodePage, HasTheVietnameseLettersAndMarks) {
  EXPECT_EQ(fromCodePage("\xCC\xD2\xDE\xEC\xF2\xFE\xD0\xD5", 1258),
            u"\u0300\u0309\u0303\u0301\u0323\u20AB\u0110\u01A0");
}

TEST(CodePage, LosesWhatItCannotRepresent) {
  EXPECT_EQ(toCodePage(u"\u0130ptal", 1252), "?ptal");
  EXPECT_EQ(toCodePage(u"\u0130ptal", 1254), "\xDDptal");
  EXPECT_EQ(toCodePage(u"\u00E9\u20AC", 20127), "??");
  EXPECT_EQ(toCodePage(u"a\U0001F600", 1252), "a??");
  EXPECT_EQ(throughCodePage(u"Bel\u011Feler \u0130", 1252), u"Bel?eler ?");
  EXPECT_EQ(fromCodePage("\xE9", 20127), u"?");
}

TEST(CodePage, PassesUtf8) {
  EXPECT_EQ(toCodePage(u"\u0130\u20AC", 65001), "\xC4\xB0\xE2\x82\xAC");
  EXPECT_EQ(fromCodePage("\xC4\xB0\xE2\x82\xAC", 65001), u"\u0130\u20AC");
}

TEST(CodePage, RefusesANumberThatItDoesNotKnow) {
  EXPECT_FALSE(isKnownCodePage(932));
  EXPECT_THROW(toCodePage(u"a", 932), std::invalid_argument);
  EXPECT_THROW(fromCodePage("a", 932), std::invalid_argument);
  for (const Page& page : pages) EXPECT_TRUE(isKnownCodePage(page.number)) << page.number;
  EXPECT_TRUE(isKnownCodePage(65001));
}

}  // namespace
}  // namespace zev
