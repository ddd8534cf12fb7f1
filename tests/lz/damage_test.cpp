// Files that were damaged: whatever stands in them, expanding ends, stays within its memory (which
// the sanitizers watch), and comes to the same as the slow way.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "lz/encoder.h"
#include "lz/reference.h"
#include "lz/samples.h"

namespace zev::lz {
namespace {

Bytes smallFile() { return compress(mixture(600, 21), 'x'); }

void expectSame(const Bytes& file, const char* damage, std::size_t place, unsigned by = 0) {
  const Expanded expected = expandByRing(file);
  ASSERT_EQ(expandBySteps(file), expected) << damage << place << " by " << by;
  ASSERT_EQ(expandInMemory(file), expected) << damage << place << " by " << by << ", in memory";
}

// Shorter than the whole, a file is copied, or its data ends too early.
TEST(LzDamage, CutAtEveryLength) {
  const Bytes whole = smallFile();
  for (std::size_t length = 0; length < whole.size(); ++length) {
    const Bytes file(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
    expectSame(file, "cut at ", length);
    const std::int32_t expected = length < 8 ? static_cast<std::int32_t>(length) : -3;
    EXPECT_EQ(expandBySteps(file).result, expected) << "cut at " << length;
  }
}

TEST(LzDamage, EveryByteInEveryOtherValue) {
  Bytes file = smallFile();
  for (std::size_t at = 0; at < file.size(); ++at) {
    for (unsigned flip = 1; flip < 256; ++flip) {
      file[at] ^= static_cast<std::uint8_t>(flip);
      expectSame(file, "flipped byte ", at, flip);
      file[at] ^= static_cast<std::uint8_t>(flip);
    }
  }
}

// Damages a file in a few places by what tends to hurt: flips, extreme values, insertions,
// removals.
void damage(Bytes& file, std::mt19937& random) {
  for (std::size_t count = 1 + random() % 4; count > 0 && !file.empty(); --count) {
    const std::size_t at = random() % file.size();
    const auto place = file.begin() + static_cast<std::ptrdiff_t>(at);
    switch (random() % 5) {
      case 0:
        file[at] ^= static_cast<std::uint8_t>(1U << random() % 8);
        break;
      case 1:
        file[at] = random() % 2 == 0 ? 0x00 : 0xFF;
        break;
      case 2:
        file[at] = static_cast<std::uint8_t>(random());
        break;
      case 3:
        file.insert(place, static_cast<std::uint8_t>(random()));
        break;
      case 4:
        file.erase(place);
        break;
    }
  }
}

TEST(LzDamage, ManyRandomKinds) {
  constexpr int kFiles = 1500;
  constexpr int kDamagesOfEach = 4;  // expanding is what is tried, and packing is dearer
  std::mt19937 random(1996);
  for (int i = 0; i < kFiles; ++i) {
    const std::size_t length = i % 100 == 0 ? 40000 + random() % 100000 : random() % 3000;
    const Bytes whole = compress(mixture(length, static_cast<std::uint32_t>(i)), 'x');
    for (int times = 0; times < kDamagesOfEach; ++times) {
      Bytes file = whole;
      damage(file, random);
      ASSERT_EQ(expandBySteps(file, 1 + random() % 50000), expandByRing(file)) << "file " << i;
    }
  }
}

TEST(LzDamage, NoiseBehindAHeader) {
  constexpr int kFiles = 2000;
  std::mt19937 random(1997);
  const Bytes front = compress({}, 'x');
  for (int i = 0; i < kFiles; ++i) {
    Bytes file = front;
    file[10] = static_cast<std::uint8_t>(random());
    file[11] = static_cast<std::uint8_t>(random());
    file[12] = static_cast<std::uint8_t>(random() % 2);
    const auto noise = static_cast<std::ptrdiff_t>(file.size());
    file.resize(file.size() + random() % 20000);
    std::generate(file.begin() + noise, file.end(),
                  [&] { return static_cast<std::uint8_t>(random()); });
    expectSame(file, "file ", static_cast<std::size_t>(i));
  }
}

}  // namespace
}  // namespace zev::lz
