#include "lz/reference.h"

#include <algorithm>
#include <iterator>

#include "lz/expand.h"
#include "lz/memory_stream.h"

namespace zev::lz {
namespace {

constexpr Bytes::value_type kReferenceMagic[] = {0x53, 0x5A, 0x44, 0x44, 0x88, 0xF0, 0x27, 0x33};

class Ring {
 public:
  void put(std::uint8_t value, Bytes& out) {
    cells_[at_] = value;
    at_ = (at_ + 1) % cells_.size();
    out.push_back(value);
  }
  std::uint8_t get(std::size_t position) const { return cells_[position % cells_.size()]; }

 private:
  Bytes cells_ = Bytes(4096, ' ');
  std::size_t at_ = 4096 - 16;
};

Expanded expandData(std::span<const std::uint8_t> data, std::uint32_t length) {
  Ring ring;
  Expanded expanded;
  std::size_t at = 0;
  unsigned flags = 1;  // a 1 alone says that the next flag byte is due
  while (expanded.bytes.size() < length) {
    if (flags == 1) {
      if (at == data.size()) break;
      flags = 0x100U | data[at++];
    }
    const bool literal = (flags & 1) != 0;
    flags >>= 1;
    if (data.size() - at < (literal ? 1U : 2U)) break;
    if (literal) {
      ring.put(data[at++], expanded.bytes);
      continue;
    }
    const std::size_t position = data[at] + 256U * (data[at + 1] / 16U);
    const std::size_t count = data[at + 1] % 16U + 3U;
    at += 2;
    for (std::size_t i = 0; i < count && expanded.bytes.size() < length; ++i) {
      ring.put(ring.get(position + i), expanded.bytes);
    }
  }
  const bool whole = expanded.bytes.size() == length;
  expanded.result = whole ? static_cast<std::int32_t>(length) : -3;
  return expanded;
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
