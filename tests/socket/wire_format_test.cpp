#include "socket/wire_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/table.h"

namespace zev {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes fromHexadecimal(const std::string& digits) {
  Bytes bytes;
  for (std::size_t place = 0; place + 1 < digits.size(); place += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(digits.substr(place, 2), nullptr, 16)));
  }
  return bytes;
}

TEST(WireFormat, EachTypeHasTheSizeOfTheTable) {
  for (const test::Row& row : test::Table::read("socket/wire_types.tsv")) {
    const auto type = static_cast<VariantType>(row.number("number"));
    if (row.isNone("bytes")) {
      EXPECT_EQ(wireSize(type), std::nullopt) << row.where();
    } else {
      EXPECT_EQ(wireSize(type), row.number("bytes")) << row.where();
    }
  }
}

struct Sample {
  Variant value;
  const char* bytes;
};

const Sample samples[] = {
    {std::int16_t{0x1234}, "3412"},
    {std::int16_t{-2}, "FEFF"},
    {std::numeric_limits<std::int16_t>::min(), "0080"},
    {std::int32_t{0x12345678}, "78563412"},
    {std::int32_t{-1}, "FFFFFFFF"},
    {std::numeric_limits<std::int32_t>::min(), "00000080"},
    {1.0F, "0000803F"},
    {-2.5F, "000020C0"},
    {1.0, "000000000000F03F"},
    {-0.1, "9A9999999999B9BF"},
    {Currency{12345}, "3930000000000000"},
    {Currency{-1}, "FFFFFFFFFFFFFFFF"},
    {Date{36526.5}, "00000000D0D5E140"},
    {true, "FFFF"},
    {false, "0000"},
    {std::uint8_t{0}, "00"},
    {std::uint8_t{255}, "FF"},
};

TEST(WireFormat, NumbersGoLowByteFirst) {
  for (const Sample& each : samples) EXPECT_EQ(toWire(each.value), fromHexadecimal(each.bytes));
}

TEST(WireFormat, NumbersComeBackWithTheirTypes) {
  for (const Sample& each : samples) {
    EXPECT_EQ(fromWire(each.value.type(), fromHexadecimal(each.bytes)), each.value) << each.bytes;
  }
}

TEST(WireFormat, AnyBitOfABooleanIsTrue) {
  EXPECT_EQ(fromWire(VariantType::Boolean, Bytes{1, 0}), Variant(true));
  EXPECT_EQ(fromWire(VariantType::Boolean, Bytes{0, 1}), Variant(true));
  EXPECT_EQ(fromWire(VariantType::Boolean, Bytes{0, 0}), Variant(false));
}

TEST(WireFormat, WhatIsNoNumberKeepsItsBits) {
  const Bytes bits = {1, 0, 0, 0, 0, 0, 0xF8, 0x7F};
  const Variant value = fromWire(VariantType::Double, bits);
  EXPECT_TRUE(std::isnan(*value.get<double>()));
  EXPECT_EQ(toWire(value), bits);
}

}  // namespace
}  // namespace zev
