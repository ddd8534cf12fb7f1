#include "lz/decoder.h"

#include <algorithm>
#include <cstddef>

#include "lz/group_expander.h"
#include "lz/input_buffer.h"
#include "lz/lzss_format.h"
#include "lz/output_window.h"

// Expands LZSS data in two ways that give the same bytes:
//
//   - expandFast() takes whole groups (a flag byte with its eight tokens) without looking at bounds
//     between them. It only runs as long as the largest possible group surely fits.
//   - expandGroup() takes one group byte by byte and looks at every bound. It is for what remains:
//     the last groups of a buffer, the end of the length, the end of the data.
//
// Each pass of run() expands what it can the fast way and then, if there is room, one group the
// careful way, so that it cannot stand still. Both write straight into the OutputWindow, whose last
// 4096 bytes are the ring that matches copy from.

namespace zev::lz {
namespace {

class Decoder {
 public:
  Decoder(ByteSource& source, ByteSink& sink, std::uint64_t length)
      : input_(source), window_(sink), left_(length) {}

  DecodeResult run() {
    DecodeResult result = DecodeResult::complete;
    while (left_ > 0 && result == DecodeResult::complete) {
      if (window_.room() < kGroupOutput && !window_.flush()) return DecodeResult::sinkFailed;
      expandFast();
      if (left_ > 0 && window_.room() >= kGroupOutput) result = expandGroup();
    }
    return window_.finish() ? result : DecodeResult::sinkFailed;
  }

 private:
  // All groups that surely fit into what is left of the input at hand, of room and of length.
  void expandFast() {
    const std::size_t room = upToLeft(window_.room());
    const GroupProgress done = expandGroups(input_.rest(), window_.data(), room, window_.at());
    input_.skip(done.taken);
    advance(done.given);
  }

  // One group of any kind, byte by byte; less of it if the length is reached, or the input ends or
  // fails.
  DecodeResult expandGroup() {
    const int flags = input_.next();
    if (flags < 0) return lackOf(flags);
    for (std::size_t token = 0; token < kTokensPerFlagByte && left_ > 0; ++token) {
      const bool literal = (flags >> token & 1) != 0;
      const DecodeResult result = literal ? expandLiteral() : expandMatch();
      if (result != DecodeResult::complete) return result;
    }
    return DecodeResult::complete;
  }

  DecodeResult expandLiteral() {
    const int byte = input_.next();
    if (byte < 0) return lackOf(byte);
    *window_.data() = static_cast<std::uint8_t>(byte);
    advance(1);
    return DecodeResult::complete;
  }

  // Copies byte by byte, since a match may begin among the bytes that it writes itself: so a short
  // stretch repeats.
  DecodeResult expandMatch() {
    const int low = input_.next();
    if (low < 0) return lackOf(low);
    const int high = input_.next();
    if (high < 0) return lackOf(high);
    const MatchToken match{static_cast<std::size_t>(low), static_cast<std::size_t>(high)};
    const std::size_t length = upToLeft(match.length());
    std::uint8_t* const to = window_.data();
    const std::uint8_t* const from = to - match.distance(window_.at() - 1);
    for (std::size_t i = 0; i < length; ++i) to[i] = from[i];
    advance(length);
    return DecodeResult::complete;
  }

  static DecodeResult lackOf(int byte) {
    return byte == InputBuffer::kEnd ? DecodeResult::dataEnds : DecodeResult::sourceFailed;
  }

  std::size_t upToLeft(std::size_t count) const {
    return static_cast<std::size_t>(std::min<std::uint64_t>(count, left_));
  }

  void advance(std::size_t count) {
    window_.advance(count);
    left_ -= count;
  }

  InputBuffer input_;
  OutputWindow window_;
  std::uint64_t left_;
};

}  // namespace

DecodeResult decode(ByteSource& source, ByteSink& sink, std::uint64_t length) {
  return Decoder(source, sink, length).run();
}

}  // namespace zev::lz
