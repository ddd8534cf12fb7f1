#include "lz/output_window.h"

#include <cstring>

namespace zev::lz {

OutputWindow::OutputWindow(ByteSink& sink)
    : sink_(sink), bytes_(std::make_unique_for_overwrite<std::uint8_t[]>(kEnd + kOutputSlack)) {
  std::memset(bytes_.get() + kBegin - kRingSize, kRingFill, kRingSize);
}

bool OutputWindow::flush() {
  if (at_ != flushed_ && !sink_.write({bytes_.get() + flushed_, at_ - flushed_})) return false;
  const std::size_t front = kRingSize + (at_ & kRingMask);
  std::memmove(bytes_.get() + front - kRingSize, bytes_.get() + at_ - kRingSize, kRingSize);
  at_ = flushed_ = front;
  return true;
}

}  // namespace zev::lz
