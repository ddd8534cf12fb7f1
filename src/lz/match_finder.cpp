#include "lz/match_finder.h"

#include <algorithm>

namespace zev::lz {
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
