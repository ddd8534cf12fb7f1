#include "json/value.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace zev::json {
namespace {

TEST(Value, KeepsMembersInTheOrderInWhichTheyCame) {
  Value value{{"b", 1}, {"a", true}};
  value["c"] = "t";
  value["b"] = nullptr;
  EXPECT_EQ(value.dump(), R"({"b":null,"a":true,"c":"t"})");
  EXPECT_EQ(value.size(), 3u);
  EXPECT_TRUE(value.contains("b"));
  EXPECT_FALSE(value.contains("d"));
}

TEST(Value, BecomesWhatIsFirstAddedToIt) {
  Value members;
  members["a"] = 1;
  Value list;
  list.push_back(1);
  EXPECT_EQ(members.dump(), R"({"a":1})");
  EXPECT_EQ(list.dump(), "[1]");
  EXPECT_EQ(Value::members().dump(), "{}");
  EXPECT_EQ(Value::list().dump(), "[]");
  EXPECT_TRUE(Value().empty());
}

TEST(Value, IsEqualToTheNumberOfAnyType) {
  constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  EXPECT_EQ(Value(5u), Value(std::int64_t{5}));
  EXPECT_EQ(Value(5u), 5);
  EXPECT_NE(Value(-1), most);
  EXPECT_EQ(Value(most), most);
  EXPECT_EQ(Value(most).dump(), "18446744073709551615");
  EXPECT_EQ(Value(5), Value(5.0));
  EXPECT_EQ(Value(1.8446744073709552e19), Value(most));
  EXPECT_NE(Value(5.5), Value(5));
  EXPECT_EQ(Value::list({1, 2.0}), Value::list({1.0, 2}));
  EXPECT_NE(Value(1), true);
  EXPECT_NE(Value(1.0), true);
  EXPECT_NE(Value(1), "1");
}

TEST(Value, ComparesMembersByOrderAsWell) {
  EXPECT_EQ((Value{{"a", 1}, {"b", "x"}}), (Value{{"a", 1}, {"b", "x"}}));
  EXPECT_NE((Value{{"a", 1}, {"b", "x"}}), (Value{{"b", "x"}, {"a", 1}}));
  EXPECT_NE(Value::list({1, 2}), Value::list({1}));
}

TEST(Value, TakesOverTheMembersOfAnother) {
  Value value{{"a", 1}, {"b", 2}};
  value.update({{"b", "x"}, {"c", nullptr}});
  EXPECT_EQ(value.dump(), R"({"a":1,"b":"x","c":null})");
}

TEST(Value, SaysWhatItIs) {
  EXPECT_TRUE(Value(false).isFlag());
  EXPECT_TRUE(Value(0.0).isFraction() && !Value(0.0).isNumber());
  EXPECT_TRUE(Value(-1).isNumber() && !Value(-1).isBeyondSign());
  EXPECT_TRUE(Value(std::uint64_t{1} << 63).isBeyondSign());
  EXPECT_TRUE(Value::list().isStructured() && Value::members().isStructured());
  EXPECT_FALSE(Value("[]").isStructured());
}

TEST(Value, RefusesToBeWhatItIsNot) {
  const Value value{{"a", 1}};
  EXPECT_THROW(value.text(), std::logic_error);
  EXPECT_THROW(value.at("b"), std::logic_error);
  EXPECT_THROW(value.at(0), std::logic_error);
  EXPECT_THROW(value["a"]["b"], std::logic_error);
  EXPECT_THROW(Value("1").get<int>(), std::logic_error);
  EXPECT_THROW(Value::list({1}).at(1), std::logic_error);
  EXPECT_THROW(Value(1).push_back(2), std::logic_error);
  EXPECT_TRUE(value["b"].isNull());
}

TEST(Value, IsWrittenAsJson) {
  const Value value{{"text", "a\"\\\n\x01é"}, {"list", Value::list({1, false, 0.5})}};
  EXPECT_EQ(value.dump(), R"({"text":"a\"\\\n\u0001é","list":[1,false,0.5]})");
  EXPECT_EQ(Value::list({1}).dump(2), "[\n  1\n]");
  EXPECT_EQ(value.dump(1),
            "{\n \"text\": \"a\\\"\\\\\\n\\u0001é\",\n \"list\": [\n  1,\n  false,\n  0.5\n ]\n}");
  EXPECT_EQ(Value::list({1.0, -1e20, Value::members()}).dump(1), "[\n 1.0,\n -1e+20,\n {}\n]");
  EXPECT_EQ(Value("\xC3").dump(), "\"\xEF\xBF\xBD\"") << "what is no UTF-8";
}

}  // namespace
}  // namespace zev::json
