// Files in memory, held against plain bytes: writing, reading and cutting at and across the bounds
// of the blocks that they are kept in.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "simulated/volume.h"

namespace zev::simulated {
namespace {

constexpr std::size_t blockSize = 65536;
constexpr std::size_t longest = 4 * blockSize;

using Bytes = std::vector<std::uint8_t>;

std::shared_ptr<FileBody> makeFile(Volume& volume) {
  Path path;
  parsePath(u"C:\\file", {}, path);
  volume.createFile(path, file_attribute::normal);
  return volume.open(path);
}

class MemoryFile : public testing::Test {
 protected:
  void write(std::size_t offset, const Bytes& bytes) {
    EXPECT_EQ(file_->write(offset, bytes), system_error::success);
    if (offset + bytes.size() > expected_.size()) expected_.resize(offset + bytes.size());
    std::ranges::copy(bytes, expected_.begin() + static_cast<std::ptrdiff_t>(offset));
  }

  void resize(std::size_t size) {
    EXPECT_EQ(file_->resize(size), system_error::success);
    expected_.resize(size);
  }

  /// Whether a stretch reads as it should; what is asked for behind the end does not come.
  bool reads(std::size_t offset, std::size_t count) {
    Bytes found(count, 0xee);
    found.resize(file_->read(offset, found));
    const std::size_t start = std::min(offset, expected_.size());
    const auto from = expected_.begin() + static_cast<std::ptrdiff_t>(start);
    const std::size_t there = std::min(count, expected_.size() - start);
    return std::ranges::equal(found, Bytes(from, from + static_cast<std::ptrdiff_t>(there)));
  }

  bool isAsExpected() { return file_->size() == expected_.size() && reads(0, longest + blockSize); }

  std::unique_ptr<Volume> volume_ = makeMemoryVolume();
  std::shared_ptr<FileBody> file_ = makeFile(*volume_);
  Bytes expected_;
};

TEST_F(MemoryFile, KeepsWhatIsWrittenAcrossBlocks) {
  write(blockSize - 2, {1, 2, 3, 4});
  EXPECT_TRUE(isAsExpected());
  EXPECT_TRUE(reads(blockSize - 1, 2));
}

TEST_F(MemoryFile, TakesZerosOverWhatStoodThere) {
  write(0, Bytes(2 * blockSize, 7));
  write(blockSize - 5, Bytes(10, 0));
  EXPECT_TRUE(isAsExpected());
}

TEST_F(MemoryFile, IsZeroWhereItWasCutAndGrewAgain) {
  write(0, Bytes(2 * blockSize, 7));
  for (const std::size_t cut : {blockSize + 3, blockSize, std::size_t{5}, std::size_t{0}}) {
    resize(cut);
    resize(2 * blockSize);
    EXPECT_TRUE(isAsExpected()) << cut;
  }
}

TEST_F(MemoryFile, IsAsLongAsItsZeros) {
  write(3, Bytes(blockSize, 0));
  EXPECT_TRUE(isAsExpected());
  EXPECT_TRUE(reads(blockSize, 100));
}

/// Lengths and places near the bounds, bytes that are often zeros.
TEST_F(MemoryFile, IsWhatPlainBytesAre) {
  std::mt19937 random(1);
  const auto below = [&](std::size_t bound) { return random() % bound; };
  const auto place = [&] {
    const std::size_t near = below(5) * blockSize + below(5);
    return std::min(longest, below(2) == 0 ? below(longest) : near - std::min(near, below(5)));
  };
  for (int round = 0; round < 300; ++round) {
    const std::size_t at = place();
    if (below(4) == 0) {
      resize(at);
    } else {
      write(at, Bytes(std::min(longest - at, place()), static_cast<std::uint8_t>(below(3))));
    }
    ASSERT_TRUE(isAsExpected()) << round;
    ASSERT_TRUE(reads(place(), place())) << round;
  }
}

}  // namespace
}  // namespace zev::simulated
