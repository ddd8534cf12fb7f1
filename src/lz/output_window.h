#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "lz/byte_stream.h"
#include "lz/group_expander.h"
#include "lz/lzss_format.h"

namespace zev::lz {

/// The ring of the format, laid out straight: expanded bytes line up behind the last 4096 before
/// them (blanks at first), so that no copy ever wraps. An index into it, modulo the ring's size, is
/// the position in the ring. Full pieces go to the sink, and the last 4096 bytes move to the front.
class OutputWindow {
 public:
  /// Borrows the sink. Throws std::bad_alloc.
  explicit OutputWindow(ByteSink& sink);

  /// The index of the next byte, and its address for a writer that goes by pointer. 4096 bytes
  /// before it can be read.
  std::size_t at() const { return at_; }
  std::uint8_t* data() { return bytes_.get() + at_; }

  /// How many bytes fit before the next flush; kOutputSlack more may be overwritten.
  std::size_t room() const { return kEnd - at_; }

  /// Counts bytes as expanded that were written at `data`, at most `room()` of them.
  void advance(std::size_t count) { at_ += count; }

  /// Gives the sink what it has not had yet and makes room. False if the sink fails.
  bool flush();

 private:
  static constexpr std::size_t kBegin = kRingSize + kRingStart;
  // Small enough to stay in the caches beside the input.
  static constexpr std::size_t kEnd = 2 * kRingSize + (std::size_t{32} << 10);

  ByteSink& sink_;
  std::unique_ptr<std::uint8_t[]> bytes_;
  std::size_t at_ = kBegin;
  std::size_t flushed_ = kBegin;
};

}  // namespace zev::lz
