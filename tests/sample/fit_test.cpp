#include "sample/fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "sample/noise.h"

namespace zev::sample {
namespace {

Bytes textWithRoom(std::size_t room, unsigned take) {
  Bytes out;
  append(out, "A head that packs well, well, well, well, well. ");
  append(out, filler(room, take));
  return out;
}

TEST(Fit, HitsEverySizeOfAStretch) {
  for (std::size_t size = 300; size < 500; ++size) {
    const Bytes plain = fitToPackedSize(textWithRoom, 'x', size);
    ASSERT_EQ(packedSize(plain, 'x'), size);
  }
}

TEST(Fit, RefusesASizeBelowThatWithoutRoom) {
  EXPECT_THROW(fitToPackedSize(textWithRoom, 'x', 20), std::length_error);
}

TEST(Fit, RefusesAFileThatDoesNotGrow) {
  const auto fixed = [](std::size_t, unsigned) { return Bytes(10, 'a'); };
  EXPECT_THROW(fitToPackedSize(fixed, 'x', 400), std::length_error);
}

TEST(Filler, HasTheAskedLengthAndAlphabet) {
  for (const std::size_t length : {0u, 1u, 15u, 16u, 200u, 5000u}) {
    const Bytes bytes = filler(length, 8, kPlainLetters);
    EXPECT_EQ(bytes.size(), length);
    EXPECT_TRUE(std::ranges::all_of(bytes, [](std::uint8_t byte) {
      return kPlainLetters.find(static_cast<char>(byte)) != std::string_view::npos;
    }));
  }
}

TEST(Filler, PacksShorterWithEachRepeat) {
  EXPECT_LT(packedSize(filler(2000, 20), 'x'), packedSize(filler(2000, 10), 'x'));
  EXPECT_LT(packedSize(filler(2000, 10), 'x'), packedSize(filler(2000, 0), 'x'));
}

TEST(Noise, IsTheSameForTheSameSeedAndAnotherForAnother) {
  Noise one("a"), same("a"), other("b"), variant("a", 1);
  const auto first = one.below(1u << 31);
  EXPECT_EQ(first, same.below(1u << 31));
  EXPECT_NE(first, other.below(1u << 31));
  EXPECT_NE(first, variant.below(1u << 31));
}

}  // namespace
}  // namespace zev::sample
