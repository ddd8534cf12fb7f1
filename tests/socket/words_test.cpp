#include "socket/wire_format.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/raised.h"

namespace zev {
namespace {

using test::raisedBy;

constexpr std::int32_t overflow = 6;
constexpr std::int32_t largest = 2147483647;
constexpr std::int32_t smallest = -2147483647 - 1;

TEST(Words, AreTheHalvesAsUnsignedNumbers) {
  struct Halves {
    std::int32_t value, high, low;
  };
  constexpr Halves rows[] = {
      {0, 0, 0},
      {1, 0, 1},
      {0x7FFF, 0, 32767},
      {0x8000, 0, 32768},
      {0xFFFF, 0, 65535},
      {0x10000, 1, 0},
      {10061 << 16 | 16, 10061, 16},
      {largest, 32767, 65535},
      {smallest, 32768, 0},
      {-1, 65535, 65535},
      {-65536, 65535, 0},
      {-65535, 65535, 1},
      {-2, 65535, 65534},
      {smallest + 0x8000, 32768, 32768},
  };
  for (const Halves& row : rows) {
    EXPECT_EQ(HiWord(row.value), row.high) << row.value;
    EXPECT_EQ(LoWord(row.value), row.low) << row.value;
  }
}

TEST(Words, UpperHalfOfEveryNegativeValueHasItsHighestBit) {
  for (std::int64_t value = smallest; value < 0; value += 65521) {
    const std::int32_t high = HiWord(static_cast<std::int32_t>(value));
    ASSERT_GE(high, 32768) << value;
    ASSERT_LE(high, 65535) << value;
  }
}

TEST(UnsignedToInteger, KeepsTheBits) {
  EXPECT_EQ(UnsignedToInteger(0), 0);
  EXPECT_EQ(UnsignedToInteger(1), 1);
  EXPECT_EQ(UnsignedToInteger(32767), 32767);
  EXPECT_EQ(UnsignedToInteger(32768), -32768);
  EXPECT_EQ(UnsignedToInteger(65535), -1);
}

TEST(UnsignedToInteger, OverflowsOutOfTheRange) {
  for (const std::int32_t value : {-1, -32768, smallest, 65536, 65537, largest}) {
    EXPECT_EQ(raisedBy([&] { UnsignedToInteger(value); }), overflow) << value;
  }
}

TEST(IntegerToUnsigned, KeepsTheBits) {
  EXPECT_EQ(IntegerToUnsigned(0), 0);
  EXPECT_EQ(IntegerToUnsigned(32767), 32767);
  EXPECT_EQ(IntegerToUnsigned(-32768), 32768);
  EXPECT_EQ(IntegerToUnsigned(-1), 65535);
}

TEST(IntegerToUnsigned, TakesEveryPortThereAndBack) {
  for (std::int32_t port = 0; port <= 65535; ++port) {
    ASSERT_EQ(IntegerToUnsigned(UnsignedToInteger(port)), port);
  }
}

TEST(NetworkOrder, HasTheHighByteFirst) {
  const std::uint16_t ordered = htons(0x1234);
  std::uint8_t bytes[2];
  std::memcpy(bytes, &ordered, 2);
  EXPECT_EQ(bytes[0], 0x12);
  EXPECT_EQ(bytes[1], 0x34);
}

TEST(NetworkOrder, TakesEveryPortThereAndBack) {
  for (std::int32_t port = 0; port <= 65535; ++port) {
    ASSERT_EQ(ntohs(htons(UnsignedToInteger(port))), UnsignedToInteger(port));
  }
}

}  // namespace
}  // namespace zev
