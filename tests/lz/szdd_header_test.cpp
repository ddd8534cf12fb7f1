#include "lz/szdd_header.h"

#include <gtest/gtest.h>

#include <vector>

namespace zev::lz {
namespace {

constexpr std::array<std::uint8_t, kHeaderSize> kHeader{0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27,
                                                        0x33, 0x41, 0x76, 0x78, 0x56, 0x34, 0x92};

TEST(SzddHeader, ReadsModeNameAndLittleEndianLength) {
  const SzddHeader header = parseHeader(kHeader);
  EXPECT_EQ(header.mode, 'A');
  EXPECT_EQ(header.nameByte, 'v');
  EXPECT_EQ(header.expandedLength, 0x92345678U);
}

TEST(SzddHeader, WritesWhatItReads) { EXPECT_EQ(formatHeader(parseHeader(kHeader)), kHeader); }

TEST(SzddHeader, KnowsItsMagicOnlyWhenWhole) {
  EXPECT_TRUE(hasMagic(kHeader));
  EXPECT_TRUE(hasMagic(std::span(kHeader).first(8)));
  for (std::size_t size = 0; size < 8; ++size)
    EXPECT_FALSE(hasMagic(std::span(kHeader).first(size)));
}

TEST(SzddHeader, KnowsAWrongByteAnywhereInTheMagic) {
  for (std::size_t i = 0; i < 8; ++i) {
    auto damaged = kHeader;
    damaged[i] ^= 1;
    EXPECT_FALSE(hasMagic(damaged)) << i;
  }
}

}  // namespace
}  // namespace zev::lz
