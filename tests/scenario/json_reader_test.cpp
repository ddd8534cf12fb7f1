#include "scenario/json_reader.h"

#include <gtest/gtest.h>

#include "scenario/toy_play.h"

namespace zev::scenario {
namespace {

struct Thing {
  bool flag = false;
  std::int32_t number = 0;
  Nullable<Text> name;
};

constexpr KeyRow<Thing> thingKeys[] = {
    {"flag", into<&Thing::flag>},
    {"number", into<&Thing::number>},
    {"name", into<&Thing::name>},
};

Thing readThing(std::string_view text) {
  const Json document = parseJson(text);
  Thing thing;
  readObject(JsonReader(document), thingKeys, thing);
  return thing;
}

std::string thingError(std::string_view text) {
  return errorOf([&] { readThing(text); });
}

TEST(JsonReader, ReadsMembersByTheirTypes) {
  const Thing thing = readThing(R"({"flag": true, "number": -7, "name": "Işık"})");
  EXPECT_TRUE(thing.flag);
  EXPECT_EQ(thing.number, -7);
  EXPECT_EQ(thing.name, std::optional<Text>(u"Işık"));
}

TEST(JsonReader, TellsAbsentFromNull) {
  EXPECT_FALSE(readThing("{}").name.has_value());
  ASSERT_TRUE(readThing(R"({"name": null})").name.has_value());
  EXPECT_FALSE(readThing(R"({"name": null})").name->has_value());
}

TEST(JsonReader, NamesTheUnknownKeyAndTheKnownOnes) {
  EXPECT_EQ(thingError(R"({"flags": true})"),
            "$.flags: unknown key \"flags\"; the keys are flag, number, name");
}

TEST(JsonReader, NamesTheTypeThatIsThereAndTheOneThatIsWanted) {
  EXPECT_EQ(thingError(R"({"flag": 1})"), "$.flag: a whole number where true or false is wanted");
  EXPECT_EQ(thingError(R"({"number": "1"})"), "$.number: a text where a whole number is wanted");
  EXPECT_EQ(thingError(R"({"number": 1.5})"),
            "$.number: a fraction where a whole number is wanted");
  EXPECT_EQ(thingError(R"({"name": []})"), "$.name: a list where a text is wanted");
  EXPECT_EQ(thingError("[]"), "$: a list where an object is wanted");
}

TEST(JsonReader, RefusesANumberOutOfTheRangeOfItsMember) {
  EXPECT_EQ(thingError(R"({"number": 2147483648})"),
            "$.number: 2147483648 is not within -2147483648 to 2147483647");
  EXPECT_EQ(thingError(R"({"number": 18446744073709551615})"),
            "$.number: 18446744073709551615 is not within -2147483648 to 2147483647");
}

TEST(JsonReader, QuotesKeysInAPathThatAreNoIdentifiers) {
  const Json document = parseJson(R"({"a b": {"c": [1, {"d\\e": 2}]}})");
  const JsonReader inner = JsonReader(document).member("a b").member("c").element(1).member("d\\e");
  EXPECT_EQ(inner.path(), R"($["a b"].c[1]["d\\e"])");
}

TEST(JsonReader, TellsTheLineAndColumnOfASyntaxError) {
  const std::string error = errorOf([] { parseJson("{\n  \"a\": 1,,\n}"); });
  EXPECT_TRUE(error.starts_with("line 2, column 10: syntax error")) << error;
}

TEST(JsonReader, RefusesAKeyThatStandsTwiceInOneObject) {
  EXPECT_EQ(errorOf([] { parseJson(R"({"a": {"b": 1, "c": 2, "b": 3}})"); }),
            "$.a: the key \"b\" stands twice in one object");
  EXPECT_EQ(errorOf([] { parseJson(R"([1, {}, [2, {"x y": {"b": 1, "c": [1], "b": 3}}]])"); }),
            "$[2][1][\"x y\"]: the key \"b\" stands twice in one object");
  EXPECT_EQ(errorOf([] { parseJson(R"({"a": {"c": {}}, "b": [], "a": 3})"); }),
            "$: the key \"a\" stands twice in one object");
  EXPECT_NO_THROW(parseJson(R"({"a": {"b": 1}, "c": {"b": 2}})"));
}

std::vector<std::uint8_t> base64(const std::string& text) {
  const Json value = text;
  return JsonReader(value).base64();
}

std::vector<std::uint8_t> hex(const std::string& text) {
  const Json value = text;
  return JsonReader(value).hex();
}

TEST(JsonReader, DecodesBase64WithAndWithoutPadding) {
  using Bytes = std::vector<std::uint8_t>;
  EXPECT_EQ(base64(""), Bytes{});
  EXPECT_EQ(base64("TVo="), (Bytes{'M', 'Z'}));
  EXPECT_EQ(base64("TQ=="), (Bytes{'M'}));
  EXPECT_EQ(base64("+/+/"), (Bytes{0xFB, 0xFF, 0xBF}));
  EXPECT_EQ(errorOf([] { base64("TVo"); }), "$: base 64 comes in groups of four characters");
  EXPECT_EQ(errorOf([] { base64("T*o="); }), "$: a character that is no digit of base 64");
  for (const char* tooPadded : {"T===", "====", "TVo=TVo="}) {
    EXPECT_EQ(errorOf([&] { base64(tooPadded); }), "$: a character that is no digit of base 64")
        << tooPadded;
  }
}

TEST(JsonReader, DecodesHexadecimalInBothCases) {
  EXPECT_EQ(hex("00fFA5"), (std::vector<std::uint8_t>{0x00, 0xFF, 0xA5}));
  EXPECT_EQ(errorOf([] { hex("123"); }), "$: an odd number of hexadecimal digits");
  EXPECT_EQ(errorOf([] { hex("1g"); }), "$: a character that is no hexadecimal digit");
}

}  // namespace
}  // namespace zev::scenario
