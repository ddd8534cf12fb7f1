#include "lz/expand.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <new>
#include <span>
#include <vector>

#include "lz/decoder.h"
#include "lz/szdd_header.h"

namespace zev::lz {
namespace {

constexpr std::uint32_t kMostBytes = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kCopyPiece = std::size_t{32} << 10;

// The front of a file: as many bytes as there are, up to a whole header.
struct Front {
  std::array<std::uint8_t, kHeaderSize> bytes{};
  std::size_t size = 0;

  // False if a read fails.
  bool read(ByteSource& source) {
    while (size < bytes.size()) {
      const std::ptrdiff_t count = source.read(std::span(bytes).subspan(size));
      if (count < 0) return false;
      if (count == 0) break;
      size += static_cast<std::size_t>(count);
    }
    return true;
  }

  std::span<const std::uint8_t> present() const { return std::span(bytes).first(size); }
};

std::int32_t copyPlain(std::span<const std::uint8_t> front, ByteSource& source, ByteSink& sink) {
  std::vector<std::uint8_t> piece(kCopyPiece);
  std::uint32_t total = 0;
  for (std::span<const std::uint8_t> next = front; !next.empty();) {
    if (next.size() > kMostBytes - total) return lz_error::badValue;
    if (!sink.write(next)) return lz_error::writeFailure;
    total += static_cast<std::uint32_t>(next.size());
    const std::ptrdiff_t count = source.read(piece);
    if (count < 0) return lz_error::badSourceHandle;
    next = std::span(piece).first(static_cast<std::size_t>(count));
  }
  return static_cast<std::int32_t>(total);
}

// A length beyond what a result can report fails only when the data gets there: such a header is
// most often damaged, and then the early end of the data is the better reason to report.
std::int32_t decodeLength(std::uint32_t length, ByteSource& source, ByteSink& sink) {
  switch (decode(source, sink, std::min(length, kMostBytes))) {
    case DecodeResult::complete:
      break;
    case DecodeResult::dataEnds:
      return lz_error::badSourceData;
    case DecodeResult::sourceFailed:
      return lz_error::badSourceHandle;
    case DecodeResult::sinkFailed:
      return lz_error::writeFailure;
  }
  return length > kMostBytes ? lz_error::badValue : static_cast<std::int32_t>(length);
}

std::int32_t expandFile(ByteSource& source, ByteSink& sink) {
  Front front;
  if (!front.read(source)) return lz_error::badSourceHandle;
  if (!hasMagic(front.present())) return copyPlain(front.present(), source, sink);
  if (front.size < kHeaderSize) return lz_error::badSourceData;
  const SzddHeader header = parseHeader(front.bytes);
  if (header.mode != kModeLzss) return lz_error::unknownMode;
  return decodeLength(header.expandedLength, source, sink);
}

}  // namespace

std::int32_t expand(ByteSource& source, ByteSink& sink) {
  try {
    return expandFile(source, sink);
  } catch (const std::bad_alloc&) {
    return lz_error::outOfMemory;
  }
}

}  // namespace zev::lz
