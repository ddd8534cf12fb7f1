#include "scenario/matcher.h"

#include <gtest/gtest.h>

#include "scenario/toy_play.h"

namespace zev::scenario {
namespace {

bool matched(std::string_view expected, std::string_view found) {
  return matches(parseJson(expected), parseJson(found));
}

std::string checkError(std::string_view expected) {
  const Json value = parseJson(expected);
  return errorOf([&] { checkMatcher(JsonReader(value)); });
}

/// Of a number that is not within -2 to 7.
std::string numberError(std::string_view expected) {
  const Json value = parseJson(expected);
  return errorOf([&] { checkNumbers(JsonReader(value), -2, 7); });
}

TEST(Matcher, TakesAPlainValueExactly) {
  EXPECT_TRUE(matched("1", "1"));
  EXPECT_FALSE(matched("1", "2"));
  EXPECT_FALSE(matched("1", "true"));
  EXPECT_FALSE(matched("\"a\"", "\"A\""));
  EXPECT_TRUE(matched("null", "null"));
  EXPECT_FALSE(matched("null", "\"\""));
}

TEST(Matcher, TakesAListElementByElement) {
  EXPECT_TRUE(matched(R"(["a", {"contains": "b"}])", R"(["a", "abc"])"));
  EXPECT_FALSE(matched(R"(["a"])", R"(["a", "b"])"));
  EXPECT_FALSE(matched(R"(["b", "a"])", R"(["a", "b"])"));
}

TEST(Matcher, TakesAnObjectByTheKeysThatItHas) {
  EXPECT_TRUE(matched(R"({"title": "T"})", R"({"text": "x", "title": "T"})"));
  EXPECT_FALSE(matched(R"({"title": "T", "style": 1})", R"({"title": "T"})"));
  EXPECT_FALSE(matched(R"({"title": "T"})", "null"));
}

TEST(Matcher, FindsAPieceOfATextOrAnElementOfAList) {
  EXPECT_TRUE(matched(R"({"contains": "ell"})", R"("hello")"));
  EXPECT_FALSE(matched(R"({"contains": "elo"})", R"("hello")"));
  EXPECT_FALSE(matched(R"({"contains": "a"})", "null"));
  EXPECT_FALSE(matched(R"({"contains": 1})", R"("1")"));
  EXPECT_TRUE(matched(R"({"contains": "b"})", R"(["a", "b"])"));
  EXPECT_FALSE(matched(R"({"contains": "b"})", R"(["a", "bc"])"));
  EXPECT_TRUE(matched(R"({"contains": ["c", "a"]})", R"(["a", "b", "c"])"));
  EXPECT_FALSE(matched(R"({"contains": ["c", "d"]})", R"(["a", "b", "c"])"));
  EXPECT_TRUE(matched(R"({"contains": {"style": 48}})", R"([{"style": 0}, {"style": 48}])"));
}

TEST(Matcher, SearchesARegularExpression) {
  EXPECT_TRUE(matched(R"({"matches": "^\\d+ MB$"})", R"("512 MB")"));
  EXPECT_TRUE(matched(R"({"matches": "12"})", R"("512 MB")"));
  EXPECT_FALSE(matched(R"({"matches": "^12"})", R"("512 MB")"));
  EXPECT_FALSE(matched(R"({"matches": "1"})", "1"));
}

TEST(Matcher, SearchesALongTextInTimeAndSpaceThatItIsWorth) {
  const std::string text = '"' + std::string(1'000'000, 'a') + "b\"";
  EXPECT_TRUE(matched(R"({"matches": "^(a|c)*b$"})", text));
  EXPECT_FALSE(matched(R"({"matches": "^(a|aa)+$"})", text));
  EXPECT_TRUE(matched(R"({"matches": "(a?){20}b"})", text));
}

TEST(Matcher, CountsLettersOfAText) {
  EXPECT_TRUE(matched(R"({"matches": "^.{3}$"})", R"("für")"));
}

TEST(Matcher, NegatesAValueOrACondition) {
  EXPECT_TRUE(matched(R"({"not": 1})", "2"));
  EXPECT_FALSE(matched(R"({"not": 1})", "1"));
  EXPECT_TRUE(matched(R"({"not": null})", R"("")"));
  EXPECT_FALSE(matched(R"({"not": {"contains": "b"}})", R"("abc")"));
}

TEST(Matcher, HoldsOnlyIfAllConditionsHold) {
  EXPECT_TRUE(matched(R"({"contains": "a", "not": {"contains": "z"}})", R"("abc")"));
  EXPECT_FALSE(matched(R"({"contains": "a", "not": {"contains": "b"}})", R"("abc")"));
}

TEST(Matcher, IsCheckedBeforeItIsUsed) {
  EXPECT_EQ(checkError(R"({"contains": "a", "exactly": 1})"),
            "$.exactly: unknown key \"exactly\"; the keys are contains, matches, not");
  EXPECT_TRUE(
      checkError(R"([{"matches": "("}])").starts_with("$[0].matches: no regular expression"));
  EXPECT_TRUE(checkError(R"x({"matches": "(?=a)"})x").starts_with("$.matches: no regular expr"));
  EXPECT_EQ(checkError(R"({"matches": ")" + std::string(1000, 'a') + R"("})"), "");
  EXPECT_EQ(checkError(R"({"matches": ")" + std::string(1001, 'a') + R"("})"),
            "$.matches: a regular expression of more than 1000 bytes");
  EXPECT_EQ(checkError(R"({"matches": 1})"), "$.matches: a whole number where a text is wanted");
  EXPECT_TRUE(checkError(R"({"not": {"matches": "["}})").starts_with("$.not.matches: "));
  EXPECT_EQ(checkError(R"({"text": "a", "title": {"contains": "b"}})"), "");
}

TEST(Matcher, HoldsNumbersToTheirRangeWhereverTheyStand) {
  for (const char* within : {"-2", "7", "[-2, 7]", R"({"not": 7})", R"([{"a": [3]}])"}) {
    EXPECT_EQ(numberError(within), "") << within;
  }
  EXPECT_EQ(numberError("8"), "$: 8 is not within -2 to 7");
  EXPECT_EQ(numberError("[1, -3]"), "$[1]: -3 is not within -2 to 7");
  EXPECT_EQ(numberError(R"({"not": 8})"), "$.not: 8 is not within -2 to 7");
  EXPECT_EQ(numberError(R"([{"a": [8]}])"), "$[0].a[0]: 8 is not within -2 to 7");
}

}  // namespace
}  // namespace zev::scenario
