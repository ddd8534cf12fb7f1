#include "runtime/number.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/raised.h"

namespace zev {
namespace {

using test::overflow;
using test::raisedBy;
using test::typeMismatch;

constexpr std::int32_t largest = 2147483647;
constexpr std::int32_t smallest = -2147483647 - 1;

TEST(CheckedArithmetic, ReachesTheEndsOfTheRange) {
  EXPECT_EQ(add(largest - 1, 1), largest);
  EXPECT_EQ(add(smallest, largest), -1);
  EXPECT_EQ(subtract(smallest + 1, 1), smallest);
  EXPECT_EQ(subtract(-1, smallest), largest);
  EXPECT_EQ(multiply(46340, 46340), 2147395600);
  EXPECT_EQ(multiply(-8, 100), -800);
  EXPECT_EQ(multiply(smallest, 1), smallest);
}

TEST(CheckedArithmetic, OverflowsBehindThem) {
  EXPECT_EQ(raisedBy([] { add(largest, 1); }), overflow);
  EXPECT_EQ(raisedBy([] { add(smallest, -1); }), overflow);
  EXPECT_EQ(raisedBy([] { subtract(smallest, 1); }), overflow);
  EXPECT_EQ(raisedBy([] { subtract(0, smallest); }), overflow);
  EXPECT_EQ(raisedBy([] { multiply(46341, 46341); }), overflow);
  EXPECT_EQ(raisedBy([] { multiply(smallest, -1); }), overflow);
  EXPECT_EQ(raisedBy([] { multiply(21474837, -100); }), overflow);
}

TEST(ToLong, RoundsHalvesToTheEvenNumber) {
  struct Rounded {
    double number;
    std::int32_t whole;
  };
  constexpr Rounded rows[] = {
      {0.5, 0},
      {1.5, 2},
      {2.5, 2},
      {3.5, 4},
      {-0.5, 0},
      {-1.5, -2},
      {-2.5, -2},
      {2.4999, 2},
      {2.5001, 3},
      {-2.5001, -3},
      {0.0, 0},
      {1 / 60.0 * 100, 2},
      {45.0, 45},
      {2147483647.4, largest},
      {-2147483648.5, smallest},
  };
  for (const Rounded& each : rows) EXPECT_EQ(toLong(each.number), each.whole) << each.number;
}

TEST(ToLong, OverflowsOutOfTheRange) {
  using Limits = std::numeric_limits<double>;
  for (const double number : {2147483647.5, -2147483648.6, 1e300, -1e300, Limits::infinity(),
                              -Limits::infinity(), Limits::quiet_NaN()}) {
    EXPECT_EQ(raisedBy([&] { toLong(number); }), overflow) << number;
  }
}

TEST(ToLongOfText, ReadsEveryFormOfANumber) {
  struct Spelled {
    TextView text;
    std::int32_t number;
  };
  constexpr Spelled rows[] = {
      {u"0", 0},
      {u"17", 17},
      {u"-99", -99},
      {u"+21", 21},
      {u"007", 7},
      {u"  12  ", 12},
      {u"\t12\r\n", 12},
      {u"2.5", 2},
      {u"3.5", 4},
      {u"-2.5", -2},
      {u".5", 0},
      {u".6", 1},
      {u"1.", 1},
      {u"1e3", 1000},
      {u"1E+3", 1000},
      {u"15e-1", 2},
      {u"2147483647", largest},
      {u"-2147483648", smallest},
      {u"2147483647.4", largest},
      {u"&H1F", 31},
      {u"&h1f", 31},
      {u"&H7FFF", 32767},
      {u"&H8000", -32768},
      {u"&HFFFF", -1},
      {u"&H10000", 65536},
      {u"&HFFFFFFFF", -1},
      {u"&H80000000", smallest},
      {u"&O17", 15},
      {u"&o17", 15},
  };
  for (const Spelled& each : rows) EXPECT_EQ(toLong(each.text), each.number) << toUtf8(each.text);
}

TEST(ToLongOfText, RefusesWhatIsNoNumber) {
  constexpr TextView rows[] = {
      u"",    u"   ", u"x",    u"12x",  u"1 2",    u"1,5x",    u"--5",     u"5-",
      u"-",   u"+",   u"+-5",  u"-+5",  u".",      u"-.",      u"e5",      u"1e",
      u"inf", u"nan", u"-inf", u"0x10", u"&",      u"&H",      u"&HG",     u"&H-1",
      u"&O8", u"&O",  u"&X12", u"&H 1", u"\u0661", u"\u00A05", u"1\u20AC",
  };
  for (const TextView each : rows) {
    EXPECT_EQ(raisedBy([&] { toLong(each); }), typeMismatch) << toUtf8(each);
  }
  EXPECT_EQ(raisedBy([] { toLong(TextView(u"1\0", 2)); }), typeMismatch);
}

TEST(ToLongOfText, OverflowsOutOfTheRange) {
  constexpr TextView rows[] = {
      u"2147483648", u"-2147483649",          u"2147483647.5", u"1e400",
      u"-1e400",     u"99999999999999999999", u"&H100000000",  u"&H10000000000000000"};
  for (const TextView each : rows) {
    EXPECT_EQ(raisedBy([&] { toLong(each); }), overflow) << toUtf8(each);
  }
}

TEST(ToLongOfText, TakesAVanishingNumberForZero) {
  EXPECT_EQ(toLong(u"1e-300"), 0);
  EXPECT_EQ(toLong(u"1e-400"), 0);
}

}  // namespace
}  // namespace zev
