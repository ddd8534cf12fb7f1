#include "code_page/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <iterator>
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

TEST(CodePage, UnassignedBytesOfTheWesternPageAreControls) {
  EXPECT_EQ(fromCodePage("\x81\x8D\x8F\x90\x9D", 1252), u"\u0081\u008D\u008F\u0090\u009D");
}

TEST(CodePage, PassesUtf8) {
  EXPECT_EQ(toCodePage(u"\u0130\u20AC", 65001), "\xC4\xB0\xE2\x82\xAC");
  EXPECT_EQ(fromCodePage("\xC4\xB0\xE2\x82\xAC", 65001), u"\u0130\u20AC");
}

// ---- double-byte pages

constexpr std::uint32_t doubleByte[] = {932, 936, 949, 950};

struct Sample {
  std::uint32_t page;
  TextView text;
  std::string_view bytes;
};

/// Second bytes that are a backslash elsewhere, one-byte letters, corners of each page.
constexpr Sample samples[] = {
    {932, u"C:\\\u8868\u30BD\u80FD", "C:\\\x95\\\x83\\\x94\\"},
    {932, u"\u7530\u4E2D \uFF71\uFF9D", "\x93\x63\x92\x86 \xB1\xDD"},
    {932, u"\uFF5E\u2460\u9AD9\u3042", "\x81\x60\x87\x40\xFB\xFC\x82\xA0"},
    {936, u"\u4E2D\u6587 \u20AC", "\xD6\xD0\xCE\xC4 \x80"},
    {949, u"\uD55C\uAD6D \uB620", "\xC7\xD1\xB1\xB9 \x8C\x63"},
    {950, u"\u8A31\u529F\u84CB", "\xB3\\\xA5\\\xBB\\"},
};

TEST(CodePage, HasTheCharactersOfEastAsia) {
  for (const Sample& sample : samples) {
    EXPECT_EQ(toCodePage(sample.text, sample.page), sample.bytes) << sample.page;
    EXPECT_EQ(fromCodePage(sample.bytes, sample.page), sample.text) << sample.page;
  }
}

TEST(CodePage, BringsEveryUnitOfADoubleBytePageThereAndBackOrLosesIt) {
  for (const std::uint32_t page : doubleByte) {
    int kept = 0;
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
      const Text text(1, static_cast<char16_t>(unit));
      const std::string bytes = toCodePage(text, page);
      if (bytes == "?" && unit != '?') continue;
      ASSERT_EQ(fromCodePage(bytes, page), text) << page << " " << unit;
      ++kept;
    }
    EXPECT_GT(kept, 7000) << page;
  }
}

TEST(CodePage, TakesNothingForItsLooksInADoubleBytePage) {
  EXPECT_EQ(toCodePage(u"C:\u00A5x\u203E\u301C", 932), "C:?x??");
  EXPECT_EQ(toCodePage(u"\u00E9\U0001F600", 932), "???");
}

TEST(CodePage, KnowsNoCharacterOfHalfAPair) {
  EXPECT_EQ(fromCodePage("a\x83", 932), u"a\u30FB");
  EXPECT_EQ(fromCodePage(std::string_view("a\x83\0b", 4), 932), Text(u"a\u30FB\0b", 4));
  EXPECT_EQ(fromCodePage("a\x83 b", 932), u"a\u30FBb");
  EXPECT_EQ(fromCodePage("a\x83", 936), u"a?");
  EXPECT_EQ(fromCodePage("a\x83", 949), u"a?");
  EXPECT_EQ(fromCodePage("a\x83", 950), u"a?");
}

TEST(CodePage, KeepsANulInADoubleBytePage) {
  EXPECT_EQ(toCodePage(TextView(u"\u3042\0b", 3), 932), std::string("\x82\xA0\0b", 4));
  EXPECT_EQ(fromCodePage(std::string_view("\x82\xA0\0b", 4), 932), Text(u"\u3042\0b", 3));
}

// ---- numbers

TEST(CodePage, RefusesANumberThatItDoesNotKnow) {
  EXPECT_FALSE(isKnownCodePage(1361));
  EXPECT_THROW(toCodePage(u"a", 1361), std::invalid_argument);
  EXPECT_THROW(fromCodePage("a", 0), std::invalid_argument);
}

TEST(CodePage, ConvertsByEveryNumberThatItKnows) {
  int known = 0;
  for (std::uint32_t number = 0; number < 0x10000; ++number) {
    if (!isKnownCodePage(number)) continue;
    EXPECT_EQ(throughCodePage(u"ZEV 6", number), u"ZEV 6") << number;
    ++known;
  }
  EXPECT_EQ(known, std::ssize(pages) + std::ssize(doubleByte) + 1);
}

}  // namespace
}  // namespace zev
