#include "json/parser.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zev::json {
namespace {

constexpr const char* documents[] = {
    "null",
    "[]",
    "{}",
    R"([true,false,-1,0,18446744073709551615,-9223372036854775808])",
    R"([0.5,1.0,-1e+20,1e-07,123456.75,0.1])",
    R"({"b":{"a":[{}],"c":[[]]},"a":"\u0000\u001f"})",
    R"({"b":[null,true,-1,18446744073709551615,0.5,"x"],"a":{},"c":[]})",
    R"(["\"\\/\b\f\n\r\t\u007f\u00e9\u20ac\ud83d\ude00"])",
};

/// Values are written by themselves: as the library that reads them would.
TEST(Parser, ReadsWhatIsWrittenAsTheLibraryWritesIt) {
  for (const char* text : documents) {
    const auto library = nlohmann::ordered_json::parse(text);
    EXPECT_EQ(parse(text).dump(), library.dump());
    EXPECT_EQ(parse(text).dump(2), library.dump(2));
    EXPECT_EQ(parse(parse(text).dump()), parse(text));
  }
}

TEST(Parser, TellsWhereItStopped) {
  try {
    parse("{\"a\": 1,,}");
    FAIL();
  } catch (const ParseError& error) {
    EXPECT_EQ(error.offset(), 8u);
    EXPECT_EQ(std::string(error.what()).find("syntax error"), 0u) << error.what();
  }
}

TEST(Parser, RefusesANumberThatNoTypeHolds) {
  try {
    parse("[1, 1e999]");
    FAIL();
  } catch (const ParseError& error) {
    EXPECT_EQ(error.offset(), 4u);
    EXPECT_EQ(std::string(error.what()), "the number 1e999 is beyond every type");
  }
}

TEST(Parser, RefusesAKeyThatStandsTwice) {
  try {
    parse(R"([1, {"a": [{"b b": {"c": 1, "c": 2}}]}])");
    FAIL();
  } catch (const TwiceError& error) {
    EXPECT_EQ(error.path(), R"($[1].a[0]["b b"])");
    EXPECT_EQ(std::string(error.what()), "the key \"c\" stands twice in one object");
  }
}

}  // namespace
}  // namespace zev::json
