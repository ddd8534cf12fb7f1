#include "lz/output_window.h"

#include <cstring>
#include <new>
#include <stdexcept>

namespace zev::lz {
namespace {

// Small enough to stay in the caches beside the input.
constexpr std::size_t kOutputPiece = std::size_t{36} << 10;
// Before the sink's own memory can be the ring.
constexpr std::size_t kFirstOutputPiece = kRingSize + kGroupOutput;

}  // namespace

OutputWindow::OutputWindow(ByteSink& sink) : sink_(sink), memory_(sink.memory()) {
  const std::size_t piece = memory_ == nullptr ? kOutputPiece : kFirstOutputPiece;
  bytes_ = std::make_unique_for_overwrite<std::uint8_t[]>(kRingSize + piece + kOutputSlack);
  std::memset(bytes_.get(), kRingFill, kRingSize);
  beginAt(bytes_.get() + kRingSize, piece);
}

void OutputWindow::beginAt(std::uint8_t* place, std::size_t size) {
  begin_ = next_ = place;
  end_ = place + size;
}

/// Hands over what was made; false if the sink fails.
bool OutputWindow::give() {
  const std::size_t count = made();
  position_ = (position_ + count) & kRingMask;
  if (inMemory_) {
    memory_->resize(static_cast<std::size_t>(next_ - memory_->data()));
    return true;
  }
  return count == 0 || sink_.write({begin_, count});
}

bool OutputWindow::makeRoomInMemory() {
  const std::size_t size = memory_->size();
  try {
    memory_->resize(size + kOutputPiece + kOutputSlack);
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  inMemory_ = true;
  beginAt(memory_->data() + size, kOutputPiece);
  return true;
}

bool OutputWindow::flush() {
  if (!give()) return false;
  if (memory_ != nullptr) return makeRoomInMemory();
  std::memmove(bytes_.get(), next_ - kRingSize, kRingSize);
  beginAt(bytes_.get() + kRingSize, kOutputPiece);
  return true;
}

bool OutputWindow::finish() { return give(); }

}  // namespace zev::lz
