#include "programs/zevsim/text_block.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zev::scenario {
namespace {

using testing::ElementsAre;

// U+6F22 and U+1F600 take two columns, U+0327 combines with the letter before it.
constexpr TextView wide = u"\u6F22";
constexpr TextView beyond = u"\U0001F600";
constexpr TextView combined = u"c\u0327";

TEST(TextBlock, MeasuresInColumns) {
  EXPECT_EQ(simulator::columnsOf(u""), 0);
  EXPECT_EQ(simulator::columnsOf(u"a\u00E9"), 2);
  EXPECT_EQ(simulator::columnsOf(wide), 2);
  EXPECT_EQ(simulator::columnsOf(beyond), 2);
  EXPECT_EQ(simulator::columnsOf(u"\U00010000\U0010FFFF"), 4);
  EXPECT_EQ(simulator::columnsOf(combined), 1);
  EXPECT_EQ(simulator::columnsOf(u"\uFF21\uAC00\u3042\u1100"), 8);
}

TEST(TextBlock, CutsBetweenCharacters) {
  EXPECT_EQ(simulator::cutTo(u"abc", 2), u"ab");
  EXPECT_EQ(simulator::cutTo(u"abc", 3), u"abc");
  EXPECT_EQ(simulator::cutTo(u"abc", 0), u"");
  EXPECT_EQ(simulator::cutTo(u"abc", -1), u"");
  EXPECT_EQ(simulator::cutTo(join(u"a", wide, u"b"), 2), u"a");
  EXPECT_EQ(simulator::cutTo(join(beyond, beyond), 3), beyond);
  EXPECT_EQ(simulator::cutTo(join(combined, u"d"), 1), combined);
}

TEST(TextBlock, FillsWithBlanks) {
  EXPECT_EQ(simulator::fitted(u"ab", 4), u"ab  ");
  EXPECT_EQ(simulator::fitted(u"abc", 2), u"ab");
  EXPECT_EQ(simulator::fitted(join(wide, wide), 3), join(wide, u" "));
  EXPECT_EQ(simulator::centred(u"ab", 6), u"  ab");
  EXPECT_EQ(simulator::centred(u"ab", 5), u" ab");
  EXPECT_EQ(simulator::centred(u"abc", 2), u"abc");
}

TEST(TextBlock, TellsByDotsWhatIsCut) {
  EXPECT_EQ(simulator::beginningOf(u"abcdef", 6), u"abcdef");
  EXPECT_EQ(simulator::beginningOf(u"abcdefg", 6), u"abc...");
  EXPECT_EQ(simulator::endOf(u"abcdef", 6), u"abcdef");
  EXPECT_EQ(simulator::endOf(u"abcdefg", 6), u"...efg");
  EXPECT_EQ(simulator::endOf(u"abcdefg", 2), u"..");
}

TEST(TextBlock, BreaksLinesAtBlanksAndLineEnds) {
  EXPECT_THAT(simulator::wrapped(u"one two three", 7), ElementsAre(u"one two", u"three"));
  EXPECT_THAT(simulator::wrapped(u"one two three", 6), ElementsAre(u"one", u"two", u"three"));
  EXPECT_THAT(simulator::wrapped(u"abcdefgh", 3), ElementsAre(u"abc", u"def", u"gh"));
  EXPECT_THAT(simulator::wrapped(u"a\r\nb\rc\nd", 9), ElementsAre(u"a", u"b", u"c", u"d"));
  EXPECT_THAT(simulator::wrapped(u"a\r\n\r\nb\r\n", 9), ElementsAre(u"a", u"", u"b", u""));
  EXPECT_THAT(simulator::wrapped(u"", 9), ElementsAre(u""));
  EXPECT_THAT(simulator::wrapped(join(wide, wide), 3), ElementsAre(wide, wide));
  EXPECT_THAT(simulator::wrapped(join(wide, u"b"), 0), ElementsAre(wide, u"b"));
}

TEST(TextBlock, ShowsWhatATerminalWouldObey) {
  EXPECT_EQ(simulator::printable(u"a\x1B[2Jb\tc\x7F\u009B"), u"a?[2Jb c??");
  EXPECT_THAT(simulator::wrapped(u"\x1B]0;x\a\nb", 20), ElementsAre(u"?]0;x?", u"b"));
  EXPECT_THAT(simulator::wrappedWords({u"\x1B"}, 20), ElementsAre(u"?"));
  EXPECT_EQ(simulator::framed(u"\x1B", {u"a"}, 5), "+- ? ---+\n| a     |\n+-------+\n");
}

TEST(TextBlock, KeepsWordsWhole) {
  EXPECT_THAT(simulator::wrappedWords({u"a b", u"c d", u"e f"}, 8),
              ElementsAre(u"a b  c d", u"e f"));
  EXPECT_THAT(simulator::wrappedWords({u"abcdef", u"g"}, 4), ElementsAre(u"abcd", u"g"));
  EXPECT_THAT(simulator::wrappedWords({}, 8), ElementsAre());
}

TEST(TextBlock, DrawsAFrame) {
  EXPECT_EQ(simulator::framed(u"T", {u"one", u"", join(wide, u"!")}, 6),
            "+- T ----+\n| one    |\n|        |\n| \xE6\xBC\xA2!    |\n+--------+\n");
  EXPECT_EQ(simulator::framed(u"", {u"one"}, 3), "+-----+\n| one |\n+-----+\n");
  EXPECT_EQ(simulator::framed(u"abcdef", {u"one two"}, 5), "+- abc -+\n| one t |\n+-------+\n");
}

}  // namespace
}  // namespace zev::scenario
