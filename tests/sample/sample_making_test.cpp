#include "lz/encoder.h"
#include "sample/known_fits.h"
#include "sample/made_product.h"

namespace zev {
namespace {

constexpr std::size_t kRows = 56;
constexpr std::size_t kPackedTotal = 15246584;

TEST_F(SampleProductTest, PacksEveryRowToItsExactSize) {
  ASSERT_EQ(product().count(), kRows);
  std::size_t total = 0;
  std::size_t expanded = 0;
  for (std::size_t i = 0; i < kRows; ++i) {
    const std::size_t size = lz::compress(file(i).bytes, product().nameByte(i)).size();
    EXPECT_EQ(size, product().row(i).packedSize) << file(i).installedName;
    EXPECT_EQ(file(i).installedName, product().row(i).installedName);
    EXPECT_EQ(file(i).packedName, product().row(i).packedName);
    total += size;
    expanded += file(i).bytes.size();
  }
  EXPECT_EQ(total, kPackedTotal);
  EXPECT_GE(expanded, 25'000'000u);
  EXPECT_LE(expanded, 35'000'000u);
}

/// Without the known fits, which are those that are then found.
TEST_F(SampleProductTest, MakesTheSameBytesAgain) {
  const SampleProduct searching(manifestRows(), SampleProduct::Guessing::No);
  for (std::size_t i = 0; i < kRows; ++i) {
    const SampleFile made = searching.make(i);
    EXPECT_TRUE(made.bytes == file(i).bytes) << made.installedName;
    EXPECT_EQ(sample::knownFit(made.installedName), made.fit)
        << "{\"" << made.installedName << "\", {" << made.fit.room << ", " << made.fit.take
        << "}},";
  }
}

}  // namespace
}  // namespace zev
