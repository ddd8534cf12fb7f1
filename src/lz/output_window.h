#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "lz/byte_stream.h"
#include "lz/group_expander.h"
#include "lz/lzss_format.h"

namespace zev::lz {

/// The ring of the format, laid out straight: expanded bytes line up behind the last 4096 before
/// them (blanks at first), so that no copy ever wraps. Full pieces go to the sink, and the last
/// 4096 bytes move to the front. Where the sink lies in memory that is done only until there are
/// 4096 bytes in it: those that follow are made in their place.
class OutputWindow {
 public:
  /// Borrows the sink. Throws std::bad_alloc.
  explicit OutputWindow(ByteSink& sink);

  /// Where the next byte goes, and its position in the ring, as 1 to kRingSize. The kRingSize bytes
  /// before it can be read.
  std::uint8_t* data() { return next_; }
  std::size_t at() const { return ((position_ + made() - 1) & kRingMask) + 1; }

  /// How many bytes fit before the next flush; kOutputSlack more may be overwritten.
  std::size_t room() const { return static_cast<std::size_t>(end_ - next_); }

  /// Counts bytes as expanded that were written at `data`, at most `room()` of them.
  void advance(std::size_t count) { next_ += count; }

  /// Gives the sink what it has not had yet and makes room. False if the sink fails.
  bool flush();
  /// The same at the end, when no more room is wanted.
  bool finish();

 private:
  std::size_t made() const { return static_cast<std::size_t>(next_ - begin_); }
  bool give();
  bool makeRoomInMemory();
  void beginAt(std::uint8_t* place, std::size_t size);

  ByteSink& sink_;
  std::vector<std::uint8_t>* memory_;  ///< the sink's own; null if it has none
  std::unique_ptr<std::uint8_t[]> bytes_;
  bool inMemory_ = false;          ///< the bytes are made in `memory_`
  std::uint8_t* begin_ = nullptr;  ///< of what the sink has not had yet
  std::uint8_t* next_ = nullptr;
  std::uint8_t* end_ = nullptr;
  std::size_t position_ = kRingStart;  ///< of `begin_` in the ring
};

}  // namespace zev::lz
