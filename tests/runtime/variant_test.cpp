#include "runtime/variant.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/raised.h"

namespace zev {
namespace {

using test::overflow;
using test::raisedBy;
using test::typeMismatch;

constexpr std::int32_t invalidUseOfNull = 94;

using Bytes = std::vector<std::uint8_t>;
using Longs = std::vector<std::int32_t>;

/// One value of each type, with what the conversions make of it.
struct Row {
  const char* name;
  Variant value;
  std::int32_t type;
  bool numeric;
  std::int32_t doubleError;
  double number;
  std::int32_t textError;
  Text text;
};

std::vector<Row> rows() {
  return {
      {"Empty", Variant(), 0, true, 0, 0, 0, u""},
      {"Null", Variant::Null{}, 1, false, invalidUseOfNull, 0, invalidUseOfNull, u""},
      {"Integer", std::int16_t{-7}, 2, true, 0, -7, 0, u"-7"},
      {"Long", std::int32_t{70000}, 3, true, 0, 70000, 0, u"70000"},
      {"Single", 1.5f, 4, true, 0, 1.5, 0, u"1.5"},
      {"Double", -2.25, 5, true, 0, -2.25, 0, u"-2.25"},
      {"Currency", Currency{12345}, 6, true, 0, 1.2345, 0, u"1.2345"},
      {"Date", Date{2.5}, 7, false, 0, 2.5, typeMismatch, u""},
      {"String", Text(u"12"), 8, true, 0, 12, 0, u"12"},
      {"Object", Variant::Object{}, 9, false, typeMismatch, 0, typeMismatch, u""},
      {"Missing", Variant::missing(), 10, false, typeMismatch, 0, typeMismatch, u""},
      {"Boolean", true, 11, true, 0, -1, 0, u"True"},
      {"Byte", std::uint8_t{200}, 17, true, 0, 200, 0, u"200"},
      {"LongArray", Longs{1, 2}, 8195, false, typeMismatch, 0, typeMismatch, u""},
      {"ByteArray", Bytes{49, 50}, 8209, false, typeMismatch, 0, typeMismatch, u""},
  };
}

TEST(Variant, HasTheNumberOfItsType) {
  for (const Row& row : rows()) {
    EXPECT_EQ(static_cast<std::int32_t>(row.value.type()), row.type) << row.name;
  }
}

TEST(Variant, TellsWhetherItIsANumber) {
  for (const Row& row : rows()) EXPECT_EQ(isNumeric(row.value), row.numeric) << row.name;
}

TEST(Variant, ConvertsToANumber) {
  for (const Row& row : rows()) {
    EXPECT_EQ(raisedBy([&] { toDouble(row.value); }), row.doubleError) << row.name;
    EXPECT_EQ(raisedBy([&] { toLong(row.value); }), row.doubleError) << row.name;
    if (row.doubleError == 0) {
      EXPECT_DOUBLE_EQ(toDouble(row.value), row.number) << row.name;
    }
  }
}

TEST(Variant, ConvertsToAText) {
  for (const Row& row : rows()) {
    EXPECT_EQ(raisedBy([&] { toText(row.value); }), row.textError) << row.name;
    if (row.textError == 0) {
      EXPECT_EQ(toText(row.value), row.text) << row.name;
    }
  }
}

TEST(Variant, IsMissingOnlyIfLeftOut) {
  for (const Row& row : rows()) {
    EXPECT_EQ(row.value.isMissing(), std::string(row.name) == "Missing") << row.name;
  }
}

TEST(Variant, EqualsOneOfTheSameTypeAndValueAlone) {
  const std::vector<Row> all = rows();
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j < all.size(); ++j) {
      EXPECT_EQ(all[i].value == all[j].value, i == j) << all[i].name << ' ' << all[j].name;
    }
  }
  EXPECT_FALSE(Variant(std::int32_t{1}) == Variant(std::int16_t{1}));
  EXPECT_FALSE(Variant(std::int32_t{1}) == Variant(std::int32_t{2}));
}

TEST(Variant, GivesTheValueOfItsOwnTypeAlone) {
  const Variant value = std::int32_t{5};
  ASSERT_NE(value.get<std::int32_t>(), nullptr);
  EXPECT_EQ(*value.get<std::int32_t>(), 5);
  EXPECT_EQ(value.get<std::int16_t>(), nullptr);
  EXPECT_EQ(value.get<Text>(), nullptr);
}

TEST(Variant, LetsItsValueBeTakenOut) {
  Variant value = Bytes{1, 2, 3};
  EXPECT_EQ(value.take<Bytes>(), (Bytes{1, 2, 3}));
  EXPECT_EQ(value.type(), VariantType::ByteArray);
  EXPECT_TRUE(value.get<Bytes>()->empty());
  EXPECT_THROW(value.take<Text>(), std::bad_variant_access);
}

TEST(Variant, IsMadeOfTextsOfEveryKind) {
  EXPECT_EQ(Variant(u"abc"), Variant(Text(u"abc")));
  EXPECT_EQ(Variant(TextView(u"abc")), Variant(Text(u"abc")));
}

TEST(Variant, TakesTextsThatSpellNumbersForNumbers) {
  for (const TextView text :
       {u"0", u"-1", u" 12 ", u"1.5", u"1E3", u"&H10", u"&O7", u"+4", u".5", u"1e308"}) {
    EXPECT_TRUE(isNumeric(Variant(text))) << toUtf8(text);
  }
  for (const TextView text : {u"", u" ", u"abc", u"12a", u"1 2", u"&H", u"-", u"."}) {
    EXPECT_FALSE(isNumeric(Variant(text))) << toUtf8(text);
    EXPECT_EQ(raisedBy([&] { toDouble(Variant(text)); }), typeMismatch) << toUtf8(text);
  }
  for (const TextView text : {u"1e999", u"-1e999", u"&HFFFFFFFFF"}) {
    EXPECT_FALSE(isNumeric(Variant(text))) << "beyond every number type: " << toUtf8(text);
  }
  EXPECT_EQ(toDouble(Variant(u"-12.5")), -12.5);
  EXPECT_EQ(toDouble(Variant(u"&H10")), 16);
}

TEST(Variant, RoundsToALongLikeTheLanguage) {
  EXPECT_EQ(toLong(Variant(0.5)), 0);
  EXPECT_EQ(toLong(Variant(1.5)), 2);
  EXPECT_EQ(toLong(Variant(2.5f)), 2);
  EXPECT_EQ(toLong(Variant(Currency{25000})), 2);
  EXPECT_EQ(toLong(Variant(Currency{35000})), 4);
  EXPECT_EQ(toLong(Variant(u"80.5")), 80);
  EXPECT_EQ(toLong(Variant(false)), 0);
  EXPECT_EQ(toLong(Variant(2147483647.0)), 2147483647);
}

TEST(Variant, OverflowsOutOfTheRangeOfALong) {
  EXPECT_EQ(raisedBy([] { toLong(Variant(2147483648.0)); }), overflow);
  EXPECT_EQ(raisedBy([] { toLong(Variant(-2147483650.0)); }), overflow);
  EXPECT_EQ(raisedBy([] { toLong(Variant(u"2147483648")); }), overflow);
  EXPECT_EQ(raisedBy([] { toLong(Variant(1e30f)); }), overflow);
  EXPECT_EQ(raisedBy([] { toLong(Variant(std::numeric_limits<double>::quiet_NaN())); }), overflow);
}

TEST(Variant, WritesNumbersAsTheLanguageDoes) {
  struct Written {
    Variant value;
    TextView text;
  };
  const Written table[] = {
      {0.0, u"0"},
      {1.0, u"1"},
      {0.1, u"0.1"},
      {1.0 / 3, u"0.333333333333333"},
      {2.0 / 3, u"0.666666666666667"},
      {100000.0, u"100000"},
      {123456789012345.0, u"123456789012345"},
      {1e15, u"1E+15"},
      {1.5e300, u"1.5E+300"},
      {0.1f, u"0.1"},
      {1.0f / 3, u"0.3333333"},
      {16777216.0f, u"1.677722E+07"},
      {Currency{-5000}, u"-0.5"},
      {Currency{10000}, u"1"},
      {std::int16_t{-32768}, u"-32768"},
      {std::int32_t{-2147483647 - 1}, u"-2147483648"},
      {false, u"False"},
      {Text(u" as it is "), u" as it is "},
  };
  for (const Written& row : table) EXPECT_EQ(toText(row.value), row.text) << toUtf8(row.text);
}

TEST(Variant, CopiesOfBytesShareThemUntilOneTakesItsOwn) {
  const Variant first = Bytes{1, 2, 3};
  Variant second = first;
  EXPECT_EQ(second.get<Bytes>(), first.get<Bytes>());
  Bytes taken = second.take<Bytes>();
  taken[0] = 9;
  EXPECT_EQ(*first.get<Bytes>(), (Bytes{1, 2, 3}));
  EXPECT_EQ(*second.get<Bytes>(), Bytes());
  EXPECT_NE(second, first);
  second = Bytes{1, 2, 3};
  EXPECT_EQ(second, first);
}

TEST(Variant, GivesUpBytesOfItsOwnWithoutACopy) {
  Variant variant = Bytes(100, 7);
  const void* const memory = variant.get<Bytes>()->data();
  EXPECT_EQ(static_cast<const void*>(variant.take<Bytes>().data()), memory);
}

TEST(Variant, SharesBytesWithWhoeverKeepsThem) {
  Variant variant = Bytes{4, 5};
  const auto shared = variant.shareBytes();
  variant = u"other";
  EXPECT_EQ(*shared, (Bytes{4, 5}));
  EXPECT_EQ(variant.shareBytes(), nullptr);
  EXPECT_EQ(*Variant(Bytes()).shareBytes(), Bytes());
}

TEST(Variant, KeepsItsTypeWhenItsBytesWereMovedAway) {
  Variant variant = Bytes{4, 5};
  const Variant other = std::move(variant);
  ASSERT_NE(variant.get<Bytes>(), nullptr);
  EXPECT_EQ(*variant.get<Bytes>(), Bytes());
  EXPECT_EQ(*other.get<Bytes>(), (Bytes{4, 5}));
}

}  // namespace
}  // namespace zev
