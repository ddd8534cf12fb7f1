// Each target with its corpus, and with so many inputs made of it from a fixed seed.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/target.h"

namespace zev::fuzz {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t seed = 20261122;
constexpr std::size_t often = 30;

Bytes readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<Bytes> corpusOf(const Target& target) {
  std::vector<fs::path> paths;
  for (const auto& each : fs::directory_iterator(fs::path(ZEV_CORPUS) / target.name)) {
    paths.push_back(each.path());
  }
  std::sort(paths.begin(), paths.end());
  std::vector<Bytes> corpus;
  std::ranges::transform(paths, std::back_inserter(corpus), readFile);
  return corpus;
}

/// Inputs of the corpus with a few of their bytes changed, left out, doubled or mixed with another
/// one's, and sometimes bytes that come from nowhere.
class Maker {
 public:
  explicit Maker(const Target& target) : target_(target), corpus_(corpusOf(target)) {}

  Bytes next() {
    if (corpus_.empty() || below(8) == 0) return noise(below(target_.longest + 1));
    Bytes bytes = corpus_[below(corpus_.size())];
    for (std::size_t left = 1 + below(6); left > 0; --left) change(bytes);
    if (bytes.size() > target_.longest) bytes.resize(target_.longest);
    return bytes;
  }
  const std::vector<Bytes>& corpus() const { return corpus_; }

 private:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  std::uint8_t byte() { return static_cast<std::uint8_t>(random_()); }

  Bytes noise(std::size_t count) {
    Bytes bytes(count);
    std::ranges::generate(bytes, [&] { return byte(); });
    return bytes;
  }

  void change(Bytes& bytes) {
    const auto place = static_cast<std::ptrdiff_t>(below(bytes.size() + 1));
    const auto count = static_cast<std::ptrdiff_t>(below(16));
    const auto end = std::min(place + count, static_cast<std::ptrdiff_t>(bytes.size()));
    switch (below(5)) {
      case 0:
        if (place < end) bytes[static_cast<std::size_t>(place)] = byte();
        break;
      case 1:
        if (place < end) bytes[static_cast<std::size_t>(place)] ^= std::uint8_t(1u << below(8));
        break;
      case 2:
        bytes.erase(bytes.begin() + place, bytes.begin() + end);
        break;
      case 3: {
        const Bytes again(bytes.begin() + place, bytes.begin() + end);
        bytes.insert(bytes.begin() + place, again.begin(), again.end());
        break;
      }
      default: {
        const Bytes& other = corpus_[below(corpus_.size())];
        bytes.erase(bytes.begin() + place, bytes.end());
        const auto from = std::min<std::size_t>(static_cast<std::size_t>(place), other.size());
        bytes.insert(bytes.end(), other.begin() + static_cast<std::ptrdiff_t>(from), other.end());
      }
    }
  }

  const Target& target_;
  std::vector<Bytes> corpus_;
  std::mt19937 random_{seed};
};

std::string inHex(const Bytes& bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t each : bytes) {
    text += digits[each >> 4];
    text += digits[each & 15];
  }
  return text;
}

void tryOne(const Target& target, const Bytes& bytes) {
  try {
    target.run(bytes);
  } catch (const std::exception& broken) {
    ADD_FAILURE() << target.name << ": " << broken.what() << ": " << inHex(bytes);
  }
}

void tryMany(const Target& target, std::size_t runs) {
  Maker maker(target);
  ASSERT_FALSE(maker.corpus().empty());
  for (const Bytes& each : maker.corpus()) tryOne(target, each);
  for (std::size_t run = 0; run < runs && !testing::Test::HasFailure(); ++run) {
    tryOne(target, maker.next());
  }
}

class Fuzz : public testing::TestWithParam<Target> {};
TEST_P(Fuzz, StandsAnyInput) { tryMany(GetParam(), GetParam().runs); }

class FuzzInAll : public testing::TestWithParam<Target> {};
TEST_P(FuzzInAll, StandsAnyInput) { tryMany(GetParam(), GetParam().runs * often); }

std::string nameOf(const testing::TestParamInfo<Target>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Target, Fuzz, testing::ValuesIn(targets().begin(), targets().end()),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(Target, FuzzInAll, testing::ValuesIn(targets().begin(), targets().end()),
                         nameOf);

}  // namespace
}  // namespace zev::fuzz
