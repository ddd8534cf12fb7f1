#include "package/package_end.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "lz/szdd_header.h"
#include "package/manifest.h"
#include "support/made_image.h"

namespace zev {
namespace {

using test::Bytes;
using test::madeImage;
using test::MadeImage;
using test::nameCertificates;
using test::signedFile;

constexpr std::size_t firstMember = 194;

std::uint64_t endOf(const Bytes& file) {
  return packageEnd(file.size(), [&](std::uint64_t offset, std::span<std::uint8_t> into) {
    if (offset + into.size() > file.size()) return false;
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
    return true;
  });
}

/// An image and behind it so many bytes, which end in a packed first member.
Bytes packedBehind(const Bytes& image, std::size_t size) {
  Bytes file = image;
  file.resize(image.size() + size, 0x11);
  std::copy(lz::kMagic.begin(), lz::kMagic.end(),
            file.end() - static_cast<std::ptrdiff_t>(firstMember));
  return file;
}

/// An image with all members behind it, which are zeros without a header.
Bytes zerosBehind(const Bytes& image) {
  Bytes file = image;
  file.resize(image.size() + packageSize);
  return file;
}

TEST(PackageEnd, IsTheEndOfAFileThatIsNotSigned) {
  EXPECT_EQ(endOf({}), 0u);
  EXPECT_EQ(endOf(Bytes(63, 'M')), 63u);
  EXPECT_EQ(endOf(Bytes(20000)), 20000u);
  EXPECT_EQ(endOf(madeImage()), 3583u);
  EXPECT_EQ(endOf(packedBehind(madeImage(), 5000)), 8583u);
}

TEST(PackageEnd, IsWhereTheMembersOfASignedFileEnd) {
  for (const bool wide : {false, true}) {
    for (std::size_t more = 0; more < 8; ++more) {
      const Bytes file = packedBehind(madeImage({.wide = wide}), 5000 + more);
      const Bytes withTable = signedFile(file);
      ASSERT_GE(withTable.size(), file.size() + 1472);
      EXPECT_EQ(endOf(withTable), file.size()) << wide << more;
    }
  }
}

TEST(PackageEnd, CountsTheBytesThatAlignTheTableByTheSizeOfAllMembersIfTheFirstIsNotPacked) {
  for (std::size_t more = 0; more < 8; ++more) {
    const Bytes file = zerosBehind(madeImage({.size = 3576 + more}));
    EXPECT_EQ(endOf(signedFile(file)), file.size()) << more;
  }
}

TEST(PackageEnd, LeavesZerosThatAlignNoTable) {
  Bytes file = packedBehind(madeImage({.size = 3584}), 5000);
  std::fill(file.end() - 7, file.end(), std::uint8_t{0});
  EXPECT_EQ(endOf(signedFile(file)), file.size());
  const Bytes unknown(file.begin(), file.end() - 8);  // no member ends here
  EXPECT_EQ(endOf(signedFile(unknown)), unknown.size());
}

TEST(PackageEnd, TakesNoOtherByteForOneThatAligns) {
  Bytes file = signedFile(packedBehind(madeImage(), 5000));
  file[8583] = 1;
  EXPECT_EQ(endOf(file), 8584u);
}

TEST(PackageEnd, TakesNothingOffInFrontOfATableThatIsNotAligned) {
  Bytes file = packedBehind(madeImage(), 5000);
  file.resize(file.size() + 3);
  const std::size_t table = file.size();
  ASSERT_NE(table % 8, 0u);
  nameCertificates(file, table, 100);
  file.resize(table + 100, 0xC5);
  EXPECT_EQ(endOf(file), table);
}

TEST(PackageEnd, TakesNothingOffIfNothingTellsWhatAlignsTheTable) {
  Bytes file = zerosBehind(madeImage({.size = 3584}));
  file.resize(file.size() + 16);
  EXPECT_EQ(endOf(signedFile(file)), file.size());
}

TEST(PackageEnd, LiesInFrontOfATableOfAnySize) {
  const Bytes file = packedBehind(madeImage(), 5000);
  for (const std::size_t size : {1u, 8u, 1471u, 100000u}) {
    EXPECT_EQ(endOf(signedFile(file, size)), file.size()) << size;
  }
}

/// What a table says of itself in a file of 10,000 bytes whose image has 3583.
class BadTable : public testing::TestWithParam<std::tuple<const char*, std::size_t, std::size_t>> {
};

TEST_P(BadTable, IsNone) {
  const auto [why, offset, size] = GetParam();
  Bytes file = packedBehind(madeImage(), 10000 - 3583);
  nameCertificates(file, offset, size);
  EXPECT_EQ(endOf(file), 10000u) << why;
}

INSTANTIATE_TEST_SUITE_P(
    PackageEnd, BadTable,
    testing::Values(std::tuple{"beyond the file", 10000, 8}, std::tuple{"beyond", 0xFFFFFFF8, 8},
                    std::tuple{"longer than the file", 8000, 2008},
                    std::tuple{"its end is the file's in 32 bits", 0xFFFFFFF8, 10008},
                    std::tuple{"not at the end", 8000, 1999}, std::tuple{"not at the end", 8000, 8},
                    std::tuple{"over the image", 3576, 6424}, std::tuple{"all of it", 0, 10000},
                    std::tuple{"over the header", 64, 9936}, std::tuple{"empty", 10000, 0},
                    std::tuple{"of no place and no size", 0, 0}));

TEST(PackageEnd, KnowsNoTableOfAHeaderThatHasNoDirectoryForIt) {
  for (const std::uint32_t directories : {0u, 4u}) {
    const Bytes image = madeImage({.directories = directories});
    const Bytes file = signedFile(packedBehind(image, 5000));
    EXPECT_EQ(endOf(file), file.size()) << directories;
  }
  const Bytes five = packedBehind(madeImage({.directories = 5}), 5000);
  EXPECT_EQ(endOf(signedFile(five)), five.size());
}

TEST(PackageEnd, KnowsNoTableOfWhatIsNoImage) {
  const Bytes right = signedFile(packedBehind(madeImage(), 5000));
  // The signatures of both headers, and what kind of optional header there is.
  for (const std::size_t offset : {0u, 1u, 64u, 65u, 66u, 67u, 89u}) {
    Bytes file = right;
    file[offset] ^= 0x40;
    EXPECT_EQ(endOf(file), file.size()) << offset;
  }
}

TEST(PackageEnd, KnowsNoTableOfAHeaderThatLeavesTheFile) {
  const Bytes right = signedFile(packedBehind(madeImage(), 5000));
  for (const std::size_t offset : {63u, 71u, 85u}) {
    Bytes file = right;
    file[offset] = 0xFF;  // where the header is, how many sections, how long the optional header
    EXPECT_EQ(endOf(file), file.size()) << offset;
  }
}

/// The symbols of an image that was not stripped, and their names.
TEST(PackageEnd, TakesSymbolsForAPartOfTheImage) {
  const MadeImage plan{.size = 4000};
  Bytes image = madeImage(plan);
  const std::size_t symbols = image.size();
  image.resize(symbols + 3 * 18);
  image.insert(image.end(), {21, 0, 0, 0});
  image.resize(image.size() + 17);
  image[64 + 12] = static_cast<std::uint8_t>(symbols);
  image[64 + 13] = static_cast<std::uint8_t>(symbols >> 8);
  image[64 + 16] = 3;
  const Bytes file = zerosBehind(image);
  ASSERT_EQ(file.size() % 8, 3u);
  EXPECT_EQ(endOf(signedFile(file)), file.size());
}

}  // namespace
}  // namespace zev
