#include "lz/encoder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <stdexcept>

#include "lz/lzss_format.h"
#include "lz/szdd_header.h"

namespace zev::lz {

// ---- finding matches

namespace {

// A match never starts among the bytes that it overwrites itself, so that a reader which reads the
// whole of it first and one which goes byte by byte see the same.
constexpr std::size_t kFarthest = kRingSize - kLongestMatch;

}  // namespace

MatchFinder::MatchFinder(std::span<const std::uint8_t> plain)
    : plain_(plain), latest_(std::size_t{1} << kHashBits) {}

Match MatchFinder::advance(std::size_t position, std::size_t end) {
  if (plain_.size() - position < kShortestMatch) return {};
  std::uint32_t& latest = latest_[hashAt(position)];
  const std::size_t limit = std::min(end - position, kLongestMatch);
  const Match found = limit < kShortestMatch ? Match{} : search(position, latest, limit);
  previous_[position & kRingMask] = latest;
  latest = static_cast<std::uint32_t>(position) + 1;
  return found;
}

std::size_t MatchFinder::hashAt(std::size_t position) const {
  const std::uint32_t three = plain_[position] | std::uint32_t{plain_[position + 1]} << 8 |
                              std::uint32_t{plain_[position + 2]} << 16;
  return three * 2654435761U >> (32 - kHashBits);
}

Match MatchFinder::search(std::size_t position, std::size_t candidate, std::size_t limit) const {
  std::size_t longest = kShortestMatch - 1;
  std::size_t distance = 0;
  for (std::size_t tries = 0; tries < kLongestSearch && longest < limit; ++tries) {
    if (candidate == 0 || position - (candidate - 1) > kFarthest) break;
    const std::size_t earlier = candidate - 1;
    candidate = previous_[earlier & kRingMask];
    if (plain_[earlier + longest] != plain_[position + longest]) continue;
    const std::size_t length = commonLength(earlier, position, limit);
    if (length <= longest) continue;
    longest = length;
    distance = position - earlier;
  }
  if (distance == 0) return {};
  return {static_cast<std::uint16_t>(distance), static_cast<std::uint16_t>(longest)};
}

std::size_t MatchFinder::commonLength(std::size_t a, std::size_t b, std::size_t limit) const {
  const std::uint8_t* const bytes = plain_.data();
  std::size_t length = 0;
  while (length < limit && bytes[a + length] == bytes[b + length]) ++length;
  return length;
}

}  // namespace zev::lz

// Packs bytes for LZSS in three steps, block by block:
//
//   1. MatchFinder gives each position its longest match, nearest first.
//   2. chooseCheapest() goes through the block from its end and decides at each position whether a
//      literal or a match, and of which length, makes the rest of the block shortest.
//   3. TokenWriter goes through it from its start and writes what was chosen.
//
// Step 2 makes the result optimal for the matches found; taking the longest match wherever there is
// one often comes out longer.

namespace zev::lz {

// ---- choosing and writing tokens

namespace {

// Blocks bound the working memory. Matches end with their block, but reach back over its start.
constexpr std::size_t kBlockSize = std::size_t{1} << 18;

// Costs in bits: the flag, and the one byte or two after it.
constexpr std::uint32_t kLiteralCost = 9;
constexpr std::uint32_t kMatchCost = 17;

// Appends tokens to the output. A flag byte stands before the eight tokens that it describes, so it
// is written as 0 with the first of them and gets its bits as they come.
class TokenWriter {
 public:
  explicit TokenWriter(std::vector<std::uint8_t>& out) : out_(out) {}

  void literal(std::uint8_t value) {
    const std::uint8_t flag = nextFlag();
    out_[flagsAt_] = static_cast<std::uint8_t>(out_[flagsAt_] | flag);
    out_.push_back(value);
  }

  void match(std::size_t position, Match match) {
    nextFlag();
    const std::size_t source = (kRingStart + position - match.distance) & kRingMask;
    const std::size_t count = match.length - kShortestMatch;
    out_.push_back(static_cast<std::uint8_t>(source));
    out_.push_back(static_cast<std::uint8_t>((source >> 4 & 0xF0) | count));
  }

 private:
  // The bit of the next token; begins a new flag byte after every eight.
  std::uint8_t nextFlag() {
    if (tokens_ % kTokensPerFlagByte == 0) {
      flagsAt_ = out_.size();
      out_.push_back(0);
    }
    return static_cast<std::uint8_t>(1U << (tokens_++ % kTokensPerFlagByte));
  }

  std::vector<std::uint8_t>& out_;
  std::size_t flagsAt_ = 0;
  std::size_t tokens_ = 0;
};

// Goes through a block from its last position to its first: shortens each match to the length after
// which the rest of the block costs least, or drops it (length 0) for a literal. Every distance
// costs the same, so the longest match of a position serves for all shorter ones too. Equal costs
// keep the literal, or the longer match.
void chooseCheapest(std::span<Match> matches) {
  constexpr std::size_t kCosts = 32;  // a power of two past the longest match
  static_assert(kCosts > kLongestMatch);
  std::array<std::uint32_t, kCosts> costs{};  // of the rest from a position, by position modulo
  for (std::size_t i = matches.size(); i-- > 0;) {
    std::uint32_t cheapest = costs[(i + 1) % kCosts] + kLiteralCost;
    std::size_t chosen = 0;
    for (std::size_t length = matches[i].length; length >= kShortestMatch; --length) {
      const std::uint32_t cost = costs[(i + length) % kCosts] + kMatchCost;
      if (cost >= cheapest) continue;
      cheapest = cost;
      chosen = length;
    }
    matches[i].length = static_cast<std::uint16_t>(chosen);
    costs[i % kCosts] = cheapest;
  }
}

}  // namespace

void encode(std::span<const std::uint8_t> plain, std::vector<std::uint8_t>& out) {
  MatchFinder finder(plain);
  TokenWriter writer(out);
  std::vector<Match> matches;
  for (std::size_t begin = 0; begin < plain.size(); begin += kBlockSize) {
    const std::size_t end = std::min(plain.size(), begin + kBlockSize);
    matches.resize(end - begin);
    for (std::size_t i = begin; i < end; ++i) matches[i - begin] = finder.advance(i, end);
    chooseCheapest(matches);
    for (std::size_t i = begin; i < end;) {
      const Match match = matches[i - begin];
      if (match.length == 0) {
        writer.literal(plain[i++]);
      } else {
        writer.match(i, match);
        i += match.length;
      }
    }
  }
}

// ---- the whole file

std::vector<std::uint8_t> compress(std::span<const std::uint8_t> plain, std::uint8_t nameByte) {
  if (plain.size() > std::numeric_limits<std::int32_t>::max()) {
    throw std::length_error("file too long to be packed");
  }
  const SzddHeader header{kModeLzss, nameByte, static_cast<std::uint32_t>(plain.size())};
  const auto headerBytes = formatHeader(header);
  std::vector<std::uint8_t> packed(headerBytes.begin(), headerBytes.end());
  packed.reserve(kHeaderSize + plain.size() / 2);
  encode(plain, packed);
  return packed;
}

}  // namespace zev::lz
