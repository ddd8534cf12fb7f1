#include "programs/zevsim/value_json.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace zev::simulator {
namespace {

nlohmann::ordered_json parsed(const char* text) { return nlohmann::ordered_json::parse(text); }

TEST(ValueJson, ComesBack) {
  const auto json = parsed(R"({"b":[null,true,-1,18446744073709551615,0.5,"x"],"a":{},"c":[]})");
  EXPECT_EQ(toJson(fromJson(json)), json);
}

/// The machine writes its values itself: as the library writes them.
TEST(ValueJson, IsWrittenAsTheLibraryWritesIt) {
  for (const char* text :
       {"null", "[]", "{}", R"([true,false,-1,0,18446744073709551615,-9223372036854775808])",
        R"([0.5,1.0,-1e+20,1e-07,123456.75,0.1])",
        R"({"b":{"a":[{}],"c":[[]]},"a":"\u0000\u001f"})",
        R"(["\"\\/\b\f\n\r\t\u007f\u00e9\u20ac\ud83d\ude00"])"}) {
    const auto json = parsed(text);
    EXPECT_EQ(fromJson(json).dump(), json.dump());
    EXPECT_EQ(fromJson(json).dump(2), json.dump(2));
  }
}

}  // namespace
}  // namespace zev::simulator
