#include "lz/group_expander.h"

#include <array>
#include <cstring>

#include "lz/lzss_format.h"

namespace zev::lz {
namespace {

// What stands behind a flag byte, read in advance: runs of literals, each but the last with a match
// behind.
struct Group {
  // A nibble for each match, the first one lowest: kMatchMark and the number of literals before it.
  std::uint32_t matches = 0;
  // Bytes that the flag byte and its tokens take.
  std::uint32_t size = 0;
};

// Bytes from the flag byte on that are loaded for a group: literals are loaded eight at a time.
constexpr std::size_t kGroupLoads = kGroupInput + 8;

constexpr std::uint32_t kMatchMark = 8;
constexpr std::uint32_t kLiteralsMask = 7;
constexpr unsigned kMatchBits = 4;

constexpr Group readFlags(std::size_t flags) {
  Group group{0, 1 + kTokensPerFlagByte};
  std::uint32_t literals = 0;
  unsigned shift = 0;
  for (std::size_t token = 0; token < kTokensPerFlagByte; ++token) {
    if ((flags >> token & 1) != 0) {
      ++literals;
      continue;
    }
    group.matches |= (literals | kMatchMark) << shift;
    group.size += kMatchBytes - 1;
    shift += kMatchBits;
    literals = 0;
  }
  return group;
}

constexpr std::array<Group, 256> kGroups = [] {
  std::array<Group, 256> groups{};
  for (std::size_t flags = 0; flags < groups.size(); ++flags) groups[flags] = readFlags(flags);
  return groups;
}();

// Of a fixed size, a copy is a load and a store. Copies here go past what they are meant to fill:
// the bytes behind are filled later, or lie in the slack.
template <typename Word>
void copyWide(std::uint8_t* to, const std::uint8_t* from) {
  Word word;
  std::memcpy(&word, from, sizeof(word));
  std::memcpy(to, &word, sizeof(word));
}

// Compilers make one of the two words, but where memory is watched, and a copy of no word is a
// call.
void copyTwoWords(std::uint8_t* to, const std::uint8_t* from) {
  std::uint64_t first;
  std::uint64_t second;
  std::memcpy(&first, from, sizeof(first));
  std::memcpy(&second, from + sizeof(first), sizeof(second));
  std::memcpy(to, &first, sizeof(first));
  std::memcpy(to + sizeof(first), &second, sizeof(second));
}

// A match at a distance below its length: it repeats bytes of its own.
void repeat(std::uint8_t* out, std::size_t distance, std::size_t length) {
  if (distance == 1) {
    std::memset(out, out[-1], kLongestMatch);
    return;
  }
  const std::uint8_t* const from = out - distance;
  for (std::size_t i = 0; i < length; ++i) out[i] = from[i];
}

}  // namespace

GroupProgress expandGroups(std::span<const std::uint8_t> input, std::uint8_t* out, std::size_t room,
                           std::size_t at) {
  if (input.size() < kGroupLoads || room < kGroupOutput) return {};
  const std::uint8_t* in = input.data();
  const std::uint8_t* const inputStop = in + (input.size() - kGroupLoads);
  const std::uint8_t* const outputStop = out + (room - kGroupOutput);
  const std::uint8_t* const outputBegin = out;
  // From here to `out` it is as far as the position of the byte before `out`.
  const std::uint8_t* const origin = out - (at - 1);

  // The next group is read in advance while this one is copied.
  Group group = kGroups[*in];
  while (in <= inputStop && out <= outputStop) {
    const std::uint8_t* const next = in + group.size;
    std::uint32_t matches = group.matches;
    group = kGroups[*next];
    ++in;
    for (; matches != 0; matches >>= kMatchBits) {
      const std::size_t literals = matches & kLiteralsMask;
      copyWide<std::uint64_t>(out, in);
      out += literals;
      const MatchToken match{in[literals], in[literals + 1]};
      in += literals + kMatchBytes;
      const std::size_t distance = match.distance(static_cast<std::size_t>(out - origin));
      const std::uint8_t* const from = out - distance;
      if (distance >= match.length()) {
        copyTwoWords(out, from);
        copyWide<std::uint16_t>(out + 16, from + 16);
      } else {
        repeat(out, distance, match.length());
      }
      out += match.length();
    }
    copyWide<std::uint64_t>(out, in);
    out += next - in;
    in = next;
  }
  return {static_cast<std::size_t>(in - input.data()), static_cast<std::size_t>(out - outputBegin)};
}

}  // namespace zev::lz
