#include "lz/compressor.h"
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

TEST_F(SampleProductTest, MakesTheSameBytesAgain) {
  for (std::size_t i = 0; i < kRows; ++i) {
    EXPECT_TRUE(product().make(i).bytes == file(i).bytes) << file(i).installedName;
  }
}

}  // namespace
}  // namespace zev
