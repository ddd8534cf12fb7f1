#include "runtime/text.h"

#include <gtest/gtest.h>

#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;

constexpr std::int32_t invalidCall = 5;

TEST(Trim, TakesBlanksOffTheEnds) {
  EXPECT_EQ(ltrim(u"  a b  "), u"a b  ");
  EXPECT_EQ(rtrim(u"  a b  "), u"  a b");
  EXPECT_EQ(trim(u"  a b  "), u"a b");
  EXPECT_EQ(trim(u"   "), u"");
  EXPECT_EQ(trim(u""), u"");
}

TEST(Trim, LeavesEveryOtherCharacter) {
  for (const char16_t unit : {u'\0', u'\t', u'\r', u'\n', u'\u00A0', u'\u3000'}) {
    const Text text = {unit, u'a', unit};
    EXPECT_EQ(trim(text), text) << static_cast<int>(unit);
    EXPECT_EQ(trim(join(u" ", text, u" ")), text) << static_cast<int>(unit);
  }
}

TEST(Left, TakesTheFirstUnits) {
  EXPECT_EQ(left(u"setup", 3), u"set");
  EXPECT_EQ(left(u"setup", 0), u"");
  EXPECT_EQ(left(u"setup", 5), u"setup");
  EXPECT_EQ(left(u"setup", 99), u"setup");
  EXPECT_EQ(raisedBy([] { left(u"setup", -1); }), invalidCall);
}

TEST(Right, TakesTheLastUnits) {
  EXPECT_EQ(right(u"setup", 2), u"up");
  EXPECT_EQ(right(u"setup", 0), u"");
  EXPECT_EQ(right(u"setup", 5), u"setup");
  EXPECT_EQ(right(u"setup", 99), u"setup");
  EXPECT_EQ(raisedBy([] { right(u"setup", -1); }), invalidCall);
}

TEST(Mid, CountsFromOne) {
  EXPECT_EQ(mid(u"setup", 1), u"setup");
  EXPECT_EQ(mid(u"setup", 4), u"up");
  EXPECT_EQ(mid(u"setup", 6), u"");
  EXPECT_EQ(mid(u"setup", 99), u"");
  EXPECT_EQ(raisedBy([] { mid(u"setup", 0); }), invalidCall);
  EXPECT_EQ(raisedBy([] { mid(u"setup", -1); }), invalidCall);
}

TEST(Len, CountsUnits) {
  EXPECT_EQ(len(u""), 0);
  EXPECT_EQ(len(u"\U0001F600a"), 3);
}

TEST(InStr, GivesTheFirstPlaceFromOne) {
  EXPECT_EQ(inStr(u"C:\\a\\b", u"\\"), 3);
  EXPECT_EQ(inStr(u"abc", u"abc"), 1);
  EXPECT_EQ(inStr(u"abc", u"C"), 0);
  EXPECT_EQ(inStr(u"abc", u"abcd"), 0);
  EXPECT_EQ(inStr(u"abc", u""), 1);
  EXPECT_EQ(inStr(u"", u"a"), 0);
  EXPECT_EQ(inStr(u"", u""), 0);
}

TEST(InStrText, DoesNotLookAtCase) {
  EXPECT_EQ(inStrText(u"x Zev", u"ZEV"), 3);
  EXPECT_EQ(inStrText(u"\u00C4RGER", u"\u00E4r"), 1);
  EXPECT_EQ(inStrText(u"abc", u"d"), 0);
}

TEST(BeforeNul, CutsAtTheFirstNul) {
  EXPECT_EQ(beforeNul(TextView(u"ab\0c\0", 5)), u"ab");
  EXPECT_EQ(beforeNul(TextView(u"\0ab", 3)), u"");
  EXPECT_EQ(beforeNul(u"ab"), u"ab");
}

TEST(WithoutTrailing, TakesOneCharacterOff) {
  EXPECT_EQ(withoutTrailing(u"C:\\a\\\\", u'\\'), u"C:\\a\\");
  EXPECT_EQ(withoutTrailing(u"C:\\a", u'\\'), u"C:\\a");
  EXPECT_EQ(withoutTrailing(u"\\", u'\\'), u"");
  EXPECT_EQ(withoutTrailing(u"", u'\\'), u"");
}

TEST(Blanks, AreAsManyAsAsked) {
  EXPECT_EQ(blanks(3), u"   ");
  EXPECT_EQ(blanks(0), u"");
}

TEST(Join, PutsPiecesTogether) { EXPECT_EQ(join(u"a", Text(u" "), TextView(u"b")), u"a b"); }

struct Letters {
  const char* alphabet;
  TextView upper;
  TextView lower;
};

constexpr Letters foldedLetters[] = {
    {"English", u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"abcdefghijklmnopqrstuvwxyz"},
    {"German", u"ÄÖÜ", u"äöü"},
    {"Turkish", u"ÇĞÖŞÜ", u"çğöşü"},
    {"French", u"ÀÂÆÇÉÈÊËÎÏÔŒÙÛÜŸ", u"àâæçéèêëîïôœùûüÿ"},
    {"Spanish", u"ÁÉÍÑÓÚÜ", u"áéíñóúü"},
    {"Nordic", u"ÅØÐÞÝÃÕÌÒ", u"åøðþýãõìò"},
    {"Polish", u"ĄĆĘŁŃŚŹŻ", u"ąćęłńśźż"},
    {"Czech", u"ČĎĚŇŘŠŤŮŽ", u"čďěňřšťůž"},
    {"Baltic and others", u"ĀĒĪŌŪĢĶĻŅĮŲĖĂŐŰĹĽŊŦĐĦĲĴŴŶ", u"āēīōūģķļņįųėăőűĺľŋŧđħĳĵŵŷ"},
    {"Greek", u"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩΆΈΉΊΌΎΏΪΫ", u"αβγδεζηθικλμνξοπρστυφχψωάέήίόύώϊϋ"},
    {"Cyrillic", u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯЁЂЃЄЅІЇЈЉЊЋЌЎЏЀЍ",
     u"абвгдежзийклмнопрстуфхцчшщъыьэюяёђѓєѕіїјљњћќўџѐѝ"},
};

TEST(Case, FoldsTheLettersOfEveryAlphabetBothWays) {
  for (const Letters& each : foldedLetters) {
    EXPECT_EQ(toUtf8(lowerCase(each.upper)), toUtf8(each.lower)) << each.alphabet;
    EXPECT_EQ(toUtf8(upperCase(each.lower)), toUtf8(each.upper)) << each.alphabet;
    EXPECT_EQ(lowerCase(each.lower), each.lower) << each.alphabet;
    EXPECT_EQ(upperCase(each.upper), each.upper) << each.alphabet;
    EXPECT_TRUE(equalText(each.upper, each.lower)) << each.alphabet;
  }
}

TEST(Case, LeavesTheTurkishDottedAndDotlessIAlone) {
  EXPECT_EQ(lowerCase(u"\u0130I"), u"\u0130i");
  EXPECT_EQ(upperCase(u"\u0131i"), u"\u0131I");
  EXPECT_FALSE(equalText(u"\u0130", u"i"));
  EXPECT_FALSE(equalText(u"\u0131", u"I"));
}

TEST(Case, LeavesWhatHasNoOtherCase) {
  constexpr TextView same = u"019@[`{ß×÷ĸŉ€ς\u05D0\u4E00\U0001F600";
  EXPECT_EQ(toUtf8(lowerCase(same)), toUtf8(same));
  EXPECT_EQ(toUtf8(upperCase(u"019@[`{ß×÷ĸŉ€ς")), toUtf8(u"019@[`{ß×÷ĸŉ€ς"));
}

TEST(EqualText, ComparesWholeTexts) {
  EXPECT_TRUE(equalText(u"Frame1(2)", u"FRAME1(2)"));
  EXPECT_FALSE(equalText(u"Frame1", u"Frame1(2)"));
  EXPECT_FALSE(equalText(u"a ", u"a"));
  EXPECT_TRUE(equalText(u"", u""));
}

TEST(Decimal, HasASignOnlyBelowZero) {
  EXPECT_EQ(decimal(0), u"0");
  EXPECT_EQ(decimal(15246584), u"15246584");
  EXPECT_EQ(decimal(-2147483648LL), u"-2147483648");
}

TEST(Hexadecimal, IsUpperCaseWithoutLeadingZeros) {
  EXPECT_EQ(hexadecimal(0), u"0");
  EXPECT_EQ(hexadecimal(9), u"9");
  EXPECT_EQ(hexadecimal(0x1F), u"1F");
  EXPECT_EQ(hexadecimal(0x00ABCDEF), u"ABCDEF");
  EXPECT_EQ(hexadecimal(0xFFFFFFFF), u"FFFFFFFF");
}

TEST(Utf8, GoesThereAndBack) {
  constexpr TextView text = u"a\u007F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF";
  const std::string bytes =
      "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
      "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  EXPECT_EQ(toUtf8(text), bytes);
  EXPECT_EQ(fromUtf8(bytes), text);
}

TEST(Utf8, KeepsNul) {
  EXPECT_EQ(toUtf8(TextView(u"a\0b", 3)), std::string("a\0b", 3));
  EXPECT_EQ(fromUtf8(std::string_view("a\0b", 3)), TextView(u"a\0b", 3));
}

TEST(Utf8, ReplacesHalvesOfSurrogatePairs) {
  const auto units = [](std::initializer_list<char16_t> list) { return toUtf8(Text(list)); };
  constexpr const char* mark = "\xEF\xBF\xBD";
  EXPECT_EQ(units({0xD800}), mark);
  EXPECT_EQ(units({0xDFFF}), mark);
  EXPECT_EQ(units({0xD800, u'a'}), std::string(mark) + "a");
  EXPECT_EQ(units({0xDC00, 0xD800}), std::string(mark) + mark);
  EXPECT_EQ(units({0xD83D, 0xD83D, 0xDE00}), std::string(mark) + "\xF0\x9F\x98\x80");
}

TEST(Utf8, ReplacesEachBadByteAndGoesOn) {
  struct Malformed {
    const char* bytes;
    std::size_t marks;  ///< replacement characters in front of the "z" that ends every row
  };
  constexpr Malformed rows[] = {
      {"\x80z", 1},  // a continuation without a lead
      {"\xBF\x80z", 2},
      {"\xC3z", 1},  // cut short
      {"\xE2\x82z", 2},
      {"\xF0\x9F\x98z", 3},
      {"\xC0\x80z", 2},  // longer than need be
      {"\xC1\xBFz", 2},
      {"\xE0\x9F\xBFz", 3},
      {"\xF0\x8F\xBF\xBFz", 4},
      {"\xED\xA0\x80z", 3},  // a half of a surrogate pair
      {"\xED\xBF\xBFz", 3},
      {"\xF4\x90\x80\x80z", 4},  // beyond the last code point
      {"\xF5\x80\x80\x80z", 4},
      {"\xFE\xFFz", 2},
  };
  for (const Malformed& each : rows) {
    EXPECT_EQ(fromUtf8(each.bytes), Text(each.marks, u'\uFFFD') + u"z")
        << testing::PrintToString(each.bytes);
  }
  EXPECT_EQ(fromUtf8("\xE2\x82"), u"\uFFFD\uFFFD");  // at the very end
}

}  // namespace
}  // namespace zev
