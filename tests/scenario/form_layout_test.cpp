#include "programs/zevsim/form_pieces.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "programs/zevsim/text_block.h"

namespace zev::scenario {
namespace {

using testing::ElementsAre;

/// A piece of one line that is filled with a letter.
simulator::Piece bar(char16_t letter, int row, int column, int width, int least) {
  simulator::Piece piece{column, row, width, least, 1, 1, {}};
  piece.lines = [letter](int across, int) {
    return std::vector{simulator::repeated(across, letter)};
  };
  return piece;
}

/// A piece of a height.
simulator::Piece block(char16_t letter, int row, int height, int lowest) {
  simulator::Piece piece{0, row, 1, 1, height, lowest, {}};
  piece.lines = [letter](int, int down) {
    return std::vector<Text>(static_cast<std::size_t>(down), Text{letter});
  };
  return piece;
}

TEST(FormLayout, KeepsPlacesThatThereIsRoomFor) {
  EXPECT_THAT(simulator::layOut(
                  {bar(u'b', 2, 6, 2, 1), bar(u'a', 2, 1, 3, 1), bar(u'c', 4, 0, 1, 1)}, 10, 9),
              ElementsAre(u"", u"", u" aaa  bb", u"", u"c"));
}

TEST(FormLayout, LetsNoPieceLieOverAnother) {
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 0, 4, 4), bar(u'b', 0, 3, 3, 3)}, 10, 9),
              ElementsAre(u"aaaa bbb"));
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 0, 2, 4), bar(u'b', 0, 3, 3, 3)}, 10, 9),
              ElementsAre(u"aaaa bbb"));
}

TEST(FormLayout, SqueezesAndMovesWhatWouldLeaveTheWidth) {
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 0, 4, 2), bar(u'b', 0, 5, 9, 3)}, 10, 9),
              ElementsAre(u"aaaa bbbbb"));
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 2, 4, 2), bar(u'b', 0, 8, 9, 5)}, 10, 9),
              ElementsAre(u"  aa bbbbb"));
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 7, 4, 4), bar(u'b', 0, 8, 5, 5)}, 10, 9),
              ElementsAre(u"aaaa bbbbb"));
}

TEST(FormLayout, PutsBelowOneAnotherWhatCannotStandSideBySide) {
  EXPECT_THAT(simulator::layOut(
                  {bar(u'a', 0, 0, 5, 5), bar(u'b', 0, 5, 5, 5), bar(u'c', 2, 0, 1, 1)}, 10, 9),
              ElementsAre(u"aaaaa", u"     bbbbb", u"c"));
  EXPECT_THAT(simulator::layOut({bar(u'a', 0, 0, 20, 20)}, 10, 9), ElementsAre(u"aaaaaaaaaa"));
}

TEST(FormLayout, PushesDownWhatIsBelowAHighPiece) {
  EXPECT_THAT(simulator::layOut(
                  {block(u'a', 0, 3, 3), bar(u'b', 1, 0, 1, 1), bar(u'c', 5, 0, 1, 1)}, 10, 9),
              ElementsAre(u"a", u"a", u"a", u"b", u"", u"c"));
}

TEST(FormLayout, TakesBlankLinesFirstWhereMostAre) {
  const std::vector<simulator::Piece> pieces{bar(u'a', 1, 0, 1, 1), bar(u'b', 5, 0, 1, 1),
                                             bar(u'c', 8, 0, 1, 1)};
  EXPECT_EQ(layOut(pieces, 10, 9).size(), 9u);
  EXPECT_THAT(layOut(pieces, 10, 7), ElementsAre(u"", u"a", u"", u"b", u"", u"", u"c"));
  EXPECT_THAT(layOut(pieces, 10, 3), ElementsAre(u"a", u"b", u"c"));
  EXPECT_THAT(layOut(pieces, 10, 2), ElementsAre(u"a", u"b", u"c"));
}

TEST(FormLayout, LowersThenWhatHasAHeight) {
  const std::vector<simulator::Piece> pieces{block(u'a', 0, 5, 2), block(u'b', 7, 3, 2)};
  EXPECT_EQ(layOut(pieces, 10, 10).size(), 10u);
  EXPECT_THAT(layOut(pieces, 10, 6), ElementsAre(u"a", u"a", u"a", u"b", u"b", u"b"));
  EXPECT_THAT(layOut(pieces, 10, 3), ElementsAre(u"a", u"a", u"b", u"b"));
}

TEST(FormLayout, MeasuresInColumns) {
  simulator::Piece first = bar(u' ', 0, 0, 4, 4);
  first.lines = [](int, int) { return std::vector<Text>{u"\u6F22\u6F22"}; };
  EXPECT_THAT(simulator::layOut({first, bar(u'b', 0, 5, 1, 1)}, 10, 9),
              ElementsAre(u"\u6F22\u6F22 b"));
}

}  // namespace
}  // namespace zev::scenario
