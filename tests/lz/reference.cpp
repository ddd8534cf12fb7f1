#include "lz/reference.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "lz/expand.h"
#include "lz/lzss_format.h"
#include "lz/memory_stream.h"

namespace zev::lz {
namespace {

constexpr Bytes::value_type kReferenceMagic[] = {0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27, 0x33};

// Two bytes give 18 at most.
constexpr std::size_t kMostOfAByte = 9;

// Arrays and no containers, whose calls would cost more than the work does: each byte passes here.
Expanded expandData(std::span<const std::uint8_t> bytes, std::uint32_t length) {
  const std::uint8_t* const data = bytes.data();
  const std::size_t size = bytes.size();
  Bytes made(std::min<std::size_t>(length, size * kMostOfAByte));
  std::uint8_t* const out = made.data();
  std::size_t count = 0;
  std::uint8_t ring[4096];
  std::fill(std::begin(ring), std::end(ring), std::uint8_t{' '});
  std::size_t last = 4096 - 16;
  std::size_t at = 0;
  unsigned flags = 1;  // a 1 alone says that the next flag byte is due
  while (count < length) {
    if (flags == 1) {
      if (at == size) break;
      flags = 0x100U | data[at++];
    }
    const bool literal = (flags & 1) != 0;
    flags >>= 1;
    if (size - at < (literal ? 1U : 2U)) break;
    if (literal) {
      out[count++] = ring[last++ % 4096] = data[at++];
      continue;
    }
    std::size_t from = data[at] + 256U * (data[at + 1] / 16U);
    std::size_t left = data[at + 1] % 16U + 3U;
    at += 2;
    for (; left > 0 && count < length; --left) {
      out[count++] = ring[last++ % 4096] = ring[from++ % 4096];
    }
  }
  made.resize(count);
  return {count == length ? static_cast<std::int32_t>(length) : -3, std::move(made)};
}

// The longest stretch at `place` that begins earlier, within reach of any match.
std::size_t longestMatch(std::span<const std::uint8_t> plain, std::size_t place) {
  const std::size_t reach = std::min(place, kRingSize - kLongestMatch);
  const std::size_t limit = std::min(plain.size() - place, kLongestMatch);
  const std::uint8_t* const at = plain.data() + place;
  std::size_t longest = 0;
  for (std::size_t distance = 1; distance <= reach && longest < limit; ++distance) {
    const std::uint8_t* const earlier = at - distance;
    if (at[longest] != earlier[longest]) continue;  // not longer than the longest yet
    std::size_t length = 0;
    while (length < limit && at[length] == earlier[length]) ++length;
    longest = std::max(longest, length);
  }
  return longest;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const Expanded& expanded) {
  constexpr std::size_t kShown = 32;
  out << expanded.result << " and " << expanded.bytes.size() << " bytes:" << std::hex;
  for (std::size_t i = 0; i < expanded.bytes.size() && i < kShown; ++i) {
    out << ' ' << unsigned{expanded.bytes[i]};
  }
  return out << std::dec;
}

Expanded expandByRing(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < 8 ||
      !std::equal(std::begin(kReferenceMagic), std::end(kReferenceMagic), bytes.begin())) {
    return {static_cast<std::int32_t>(bytes.size()), Bytes(bytes.begin(), bytes.end())};
  }
  if (bytes.size() < 14) return {-3, {}};
  if (bytes[8] != 'A') return {-8, {}};
  const std::uint32_t length =
      bytes[10] + 0x100U * bytes[11] + 0x10000U * bytes[12] + 0x1000000U * bytes[13];
  return expandData(bytes.subspan(14), length);
}

std::size_t fewestBits(std::span<const std::uint8_t> plain) {
  std::vector<std::size_t> bits(plain.size() + 1, 9 * plain.size());
  bits[0] = 0;
  for (std::size_t place = 0; place < plain.size(); ++place) {
    bits[place + 1] = std::min(bits[place + 1], bits[place] + 9);
    const std::size_t longest = longestMatch(plain, place);
    for (std::size_t length = kShortestMatch; length <= longest; ++length) {
      bits[place + length] = std::min(bits[place + length], bits[place] + 17);
    }
  }
  return bits.back();
}

Expanded expandBySteps(std::span<const std::uint8_t> bytes, std::size_t step) {
  Expanded expanded;
  SteppingSource source(bytes, step);
  WrittenSink sink(expanded.bytes);
  expanded.result = expand(source, sink);
  return expanded;
}

Expanded expandInMemory(std::span<const std::uint8_t> bytes) {
  const Bytes alone(bytes.begin(), bytes.end());
  Expanded expanded;
  MemorySource source(alone);
  MemorySink sink(expanded.bytes);
  expanded.result = expand(source, sink);
  return expanded;
}

}  // namespace zev::lz
