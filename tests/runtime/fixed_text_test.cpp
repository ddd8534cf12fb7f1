#include "runtime/text.h"

#include <gtest/gtest.h>

namespace zev {
namespace {

TEST(FixedText, IsAllNulUntilItIsSet) {
  const FixedText<4> text;
  EXPECT_EQ(text.view(), TextView(u"\0\0\0\0", 4));
  EXPECT_EQ(text.trimmed(), Text(4, u'\0'));
  EXPECT_TRUE(text.neverSet());
}

TEST(FixedText, PadsAShorterTextWithBlanks) {
  FixedText<6> text;
  text = u"C:\\a";
  EXPECT_EQ(text.view(), u"C:\\a  ");
  EXPECT_EQ(text.trimmed(), u"C:\\a");
  EXPECT_FALSE(text.neverSet());
}

TEST(FixedText, CutsALongerText) {
  FixedText<4> text;
  text = u"C:\\abc";
  EXPECT_EQ(text.view(), u"C:\\a");
  text = u"full";
  EXPECT_EQ(text.view(), u"full");
}

TEST(FixedText, KeepsNothingOfTheFormerText) {
  FixedText<4> text;
  text = u"full";
  text = u"a";
  EXPECT_EQ(text.view(), u"a   ");
}

TEST(FixedText, IsBlankAndNoLongerNulOnceItIsSetToNothing) {
  FixedText<4> text;
  text = u"";
  EXPECT_EQ(text.view(), u"    ");
  EXPECT_EQ(text.trimmed(), u"");
  EXPECT_FALSE(text.neverSet());
}

TEST(FixedText, TrimsBlanksAtBothEnds) {
  FixedText<8> text;
  text = u"  a b";
  EXPECT_EQ(text.trimmed(), u"a b");
}

}  // namespace
}  // namespace zev
