#include "lz/szdd_header.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "support/table.h"

namespace zev::lz {
namespace {

using test::Row;
using test::Table;

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

// ---- held against its table

std::size_t sizeOf(const Row& row, const char* column) {
  return static_cast<std::size_t>(row.number(column));
}

/// The bytes of a row that says them: hexadecimal, with blanks between.
std::vector<std::uint8_t> bytesOf(const Row& row) {
  std::vector<std::uint8_t> bytes;
  const std::string& cell = row.word("bytes");
  EXPECT_EQ(cell.size() % 3, 2u) << row.where();
  for (std::size_t place = 0; place < cell.size(); place += 3) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoi(cell.substr(place, 2), nullptr, 16)));
  }
  return bytes;
}

/// What stands in the place of each row in a header of this name byte and length.
std::vector<std::uint8_t> wantedAt(const Row& row, char nameByte, std::uint32_t length) {
  if (!row.isNone("bytes")) return bytesOf(row);
  if (row.is("what", "replaced character")) return {static_cast<std::uint8_t>(nameByte)};
  EXPECT_EQ(row.word("what"), "expanded length, little-endian, unsigned") << row.where();
  std::vector<std::uint8_t> bytes;
  for (int shift = 0; shift < 32; shift += 8) {
    bytes.push_back(static_cast<std::uint8_t>(length >> shift));
  }
  return bytes;
}

TEST(SzddHeader, IsWrittenAsItsTableSays) {
  const auto bytes = formatHeader({.nameByte = 'v', .expandedLength = 0x92345678U});
  std::size_t end = 0;
  for (const Row& row : Table::read("szdd_header.tsv")) {
    const auto wanted = wantedAt(row, 'v', 0x92345678U);
    EXPECT_EQ(sizeOf(row, "offset"), end) << row.where();
    EXPECT_EQ(sizeOf(row, "size"), wanted.size()) << row.where();
    ASSERT_LE(end + wanted.size(), bytes.size()) << row.where();
    EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), bytes.begin() + static_cast<int>(end)))
        << row.where();
    end += sizeOf(row, "size");
  }
  EXPECT_EQ(end, kHeaderSize);
}

/// Each byte of a row belongs to what it names, and to nothing else.
TEST(SzddHeader, IsReadAsItsTableSays) {
  const SzddHeader whole = parseHeader(kHeader);
  for (const Row& row : Table::read("szdd_header.tsv")) {
    for (std::size_t each = 0; each < sizeOf(row, "size"); ++each) {
      auto changed = kHeader;
      changed.at(sizeOf(row, "offset") + each) ^= 0x80;
      const SzddHeader header = parseHeader(changed);
      EXPECT_EQ(!hasMagic(changed), row.is("what", "magic")) << row.where();
      EXPECT_EQ(header.mode != whole.mode, row.is("what", "mode")) << row.where();
      EXPECT_EQ(header.nameByte != whole.nameByte, row.is("what", "replaced character"))
          << row.where();
      EXPECT_EQ(header.expandedLength != whole.expandedLength,
                row.is("what", "expanded length, little-endian, unsigned"))
          << row.where();
    }
  }
}

}  // namespace
}  // namespace zev::lz
