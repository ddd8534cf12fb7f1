#include "win32/ansi.h"

#include <gtest/gtest.h>

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// The tests know what stands in the page of Western Europe.
class Ansi : public testing::Test {
 protected:
  void SetUp() override {
    if (GetACP() != 1252) GTEST_SKIP() << "the system's code page is " << GetACP();
  }
};

TEST_F(Ansi, CarriesWhatThePageHas) {
  EXPECT_EQ(toAnsi(u"Fran\u00E7ais \u20AC"),
            "Fran\xE7"
            "ais \x80");
  EXPECT_EQ(fromAnsi("Fran\xE7"
                     "ais \x80"),
            u"Fran\u00E7ais \u20AC");
}

TEST_F(Ansi, LosesTheRestAndTakesNothingThatLooksAlike) {
  EXPECT_EQ(toAnsi(u"\u0131\u4E2D\uFF3C\u0101"), "????");
  EXPECT_EQ(toAnsi(u"\U0001F600"), "??");
}

TEST_F(Ansi, KeepsBytesThatHaveNoCharacter) {
  EXPECT_EQ(toAnsi(fromAnsi("\x81\x8D\x9D")), "\x81\x8D\x9D");
}

TEST(AnsiArgument, EndsBeforeTheFirstNul) {
  EXPECT_EQ(ansiArgument(Text(u"ab\0cd", 5)), "ab");
  EXPECT_EQ(ansiArgument(u""), "");
}

TEST(AnsiAnswer, IsWrittenOverTheBeginningWithItsNul) {
  Text buffer = blanks(5);
  writeAnswer(buffer, "ab");
  EXPECT_EQ(buffer, Text(u"ab\0  ", 5));
  writeAnswer(buffer, "123456789");
  EXPECT_EQ(buffer, u"12345");
}

}  // namespace
}  // namespace zev::win32
