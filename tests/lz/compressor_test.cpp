#include "lz/encoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "lz/lzss_format.h"
#include "lz/reference.h"
#include "lz/samples.h"
#include "lz/szdd_header.h"

namespace zev::lz {
namespace {

SzddHeader headerOf(const Bytes& packed) {
  return parseHeader(std::span(packed).first<kHeaderSize>());
}

// Calls `onMatch(token, place)` for each match of a packed file, and returns the number of bytes
// behind the last token.
template <typename OnMatch>
std::size_t walkMatches(const Bytes& packed, OnMatch onMatch) {
  const std::uint32_t length = headerOf(packed).expandedLength;
  std::size_t place = 0;
  std::size_t at = kHeaderSize;
  for (unsigned flags = 1; place < length; flags >>= 1) {
    if (flags == 1) flags = 0x100U | packed.at(at++);
    if ((flags & 1) != 0) {
      ++place;
      ++at;
      continue;
    }
    const MatchToken token{packed.at(at), packed.at(at + 1)};
    onMatch(token, place);
    place += token.length();
    at += kMatchBytes;
  }
  EXPECT_EQ(place, length) << "the last match ends with the file";
  return packed.size() - at;
}

TEST(LzCompressor, WritesTheHeader) {
  const SzddHeader header = headerOf(compress(Bytes(70000, 'x'), 'v'));
  EXPECT_EQ(header.mode, kModeLzss);
  EXPECT_EQ(header.nameByte, 'v');
  EXPECT_EQ(header.expandedLength, 70000U);
}

TEST(LzCompressor, MakesAHeaderAloneOfNothing) { EXPECT_EQ(compress({}, 0).size(), kHeaderSize); }

TEST(LzCompressor, MakesWhatExpandsToTheSame) {
  for (const Sample& sample : samples()) {
    const Bytes packed = compress(sample.bytes, 'x');
    const auto length = static_cast<std::int32_t>(sample.bytes.size());
    EXPECT_EQ(expandByRing(packed), (Expanded{length, sample.bytes})) << sample.name;
    EXPECT_EQ(expandBySteps(packed), (Expanded{length, sample.bytes})) << sample.name;
  }
}

TEST(LzCompressor, RefersOnlyToBytesOfTheFileThatAMatchDoesNotOverwrite) {
  for (const Sample& sample : samples()) {
    walkMatches(compress(sample.bytes, 'x'), [&](MatchToken token, std::size_t place) {
      const std::size_t distance = token.distance(kRingStart + place - 1);
      EXPECT_LE(distance, place) << sample.name;
      EXPECT_LE(distance, kRingSize - kLongestMatch) << sample.name;
    });
  }
}

TEST(LzCompressor, LeavesNothingBehindTheLastToken) {
  for (const Sample& sample : samples()) {
    EXPECT_EQ(walkMatches(compress(sample.bytes, 'x'), [](MatchToken, std::size_t) {}), 0U)
        << sample.name;
  }
}

TEST(LzCompressor, MakesTheSameOfTheSame) {
  const Bytes plain = mixture(600000, 5);
  EXPECT_EQ(compress(plain, 'x'), compress(plain, 'x'));
}

TEST(LzCompressor, AddsOneByteInEightToWhatDoesNotPack) {
  std::mt19937 random(1);
  Bytes plain(8000);
  for (std::uint8_t& value : plain) value = static_cast<std::uint8_t>(random());
  EXPECT_LE(compress(plain, 'x').size(), kHeaderSize + plain.size() / 8 * 9);
}

TEST(LzCompressor, PacksARunIntoMatchesOfFullLength) {
  // A literal and 8 * 125 matches, 17 bytes for each 8 of them.
  EXPECT_LE(compress(Bytes(1 + 18 * 8 * 125, 'a'), 'x').size(), kHeaderSize + 17 * 125 + 2);
}

// At the second "abcd" the longest match would leave "ef" to literals.
TEST(LzCompressor, GivesUpALongerMatchForACheaperWhole) {
  const std::string text = "abcd.def.abcdef";
  std::vector<std::size_t> places;
  walkMatches(compress(Bytes(text.begin(), text.end()), 'x'),
              [&](MatchToken, std::size_t place) { places.push_back(place); });
  EXPECT_EQ(places, (std::vector<std::size_t>{text.rfind("abc"), text.rfind("def")}));
}

TEST(LzCompressor, SpendsTheFewestBitsThereAre) {
  for (std::uint32_t seed = 0; seed < 20; ++seed) {
    const Bytes plain = mixture(6000, seed);
    std::size_t literals = plain.size();
    std::size_t matches = 0;
    walkMatches(compress(plain, 'x'), [&](MatchToken token, std::size_t) {
      ++matches;
      literals -= token.length();
    });
    EXPECT_EQ(9 * literals + 17 * matches, fewestBits(plain)) << "seed " << seed;
  }
}

}  // namespace
}  // namespace zev::lz
