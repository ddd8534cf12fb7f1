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
    const Fitted made = fitToPackedSize(textWithRoom, 'x', size);
    ASSERT_EQ(packedSize(made.plain, 'x'), size);
    ASSERT_EQ(made.plain, textWithRoom(made.fit.room, made.fit.take));
  }
}

TEST(Fit, RefusesASizeBelowThatWithoutRoom) {
  EXPECT_THROW(fitToPackedSize(textWithRoom, 'x', 20), std::length_error);
}

TEST(Fit, RefusesAFileThatDoesNotGrow) {
  const auto fixed = [](std::size_t, unsigned) { return Bytes(10, 'a'); };
  EXPECT_THROW(fitToPackedSize(fixed, 'x', 400), std::length_error);
}

/// A file's recipe that counts how often it is followed.
struct CountedBuild {
  int builds = 0;
  Bytes operator()(std::size_t room, unsigned take) { return ++builds, textWithRoom(room, take); }
};

TEST(Fit, IsFoundAtOnceByARightGuess) {
  const Fit right = fitToPackedSize(textWithRoom, 'x', 400).fit;
  CountedBuild build;
  const Fitted made = fitToPackedSize(std::ref(build), 'x', 400, right);
  EXPECT_EQ(build.builds, 1);
  EXPECT_EQ(made.fit, right);
  EXPECT_EQ(made.plain, textWithRoom(right.room, right.take));
}

TEST(Fit, IsTheSameBehindAWrongGuess) {
  const Fitted plain = fitToPackedSize(textWithRoom, 'x', 400);
  const Fitted made = fitToPackedSize(textWithRoom, 'x', 400, Fit{plain.fit.room + 40, 3});
  EXPECT_EQ(made.fit, plain.fit);
  EXPECT_EQ(made.plain, plain.plain);
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
