#include "socket/byte_queue.h"

#include <algorithm>
#include <utility>

namespace zev {
namespace {

/// Memory that an empty queue may keep for the next bytes.
constexpr std::size_t worthKeeping = std::size_t{1} << 20;

}  // namespace

void SpareMemory::give(std::vector<std::uint8_t>& memory) {
  if (memory.capacity() <= spare_.capacity() || memory.capacity() > most) return;
  memory.clear();
  spare_ = std::exchange(memory, {});
}

void SpareMemory::take(std::vector<std::uint8_t>& memory, std::size_t bytes) {
  if (memory.capacity() >= bytes || spare_.capacity() < bytes) return;
  memory = std::exchange(spare_, {});
}

std::span<const std::uint8_t> ByteQueue::front(std::size_t count) const {
  if (!borrowed_.empty()) return borrowed_.first(std::min(count, borrowed_.size()));
  return std::span(bytes_).subspan(taken_, std::min(count, size()));
}

void ByteQueue::append(std::span<const std::uint8_t> bytes) {
  keep();
  reserve(bytes.size());
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
}

/// Once more than half is gone the rest moves to the front: each byte moves at most once for every
/// byte that was dropped. Memory doubles at least, for the same reason.
void ByteQueue::reserve(std::size_t more) {
  if (taken_ > bytes_.size() / 2) {
    bytes_.erase(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(taken_));
    taken_ = 0;
  }
  const std::size_t needed = bytes_.size() + more;
  const bool large = needed > worthKeeping;
  if (large && bytes_.empty() && spare_ != nullptr) spare_->take(bytes_, needed);
  if (needed > bytes_.capacity()) bytes_.reserve(std::max(needed, 2 * bytes_.capacity()));
}

void ByteQueue::borrow(std::span<const std::uint8_t> bytes) {
  if (empty()) {
    borrowed_ = bytes;
  } else {
    append(bytes);
  }
}

void ByteQueue::keep() {
  const auto rest = std::exchange(borrowed_, {});
  if (rest.empty()) return;
  reserve(rest.size());
  bytes_.insert(bytes_.end(), rest.begin(), rest.end());
}

/// The memory itself goes over, unless most of it would lie idle.
void ByteQueue::adopt(std::vector<std::uint8_t>& bytes, std::size_t count) {
  if (!empty() || count < bytes.size() / 2) return append(std::span(bytes).first(count));
  bytes.resize(count);
  bytes_ = std::exchange(bytes, {});
}

void ByteQueue::drop(std::size_t count) {
  if (!borrowed_.empty()) {
    borrowed_ = borrowed_.subspan(std::min(count, borrowed_.size()));
    return;
  }
  taken_ += std::min(count, size());
  if (!empty()) return;
  if (bytes_.capacity() > worthKeeping) return clear();
  bytes_.clear();
  taken_ = 0;
}

std::vector<std::uint8_t> ByteQueue::take(std::size_t count) {
  keep();
  if (taken_ == 0 && count >= bytes_.size()) return std::exchange(bytes_, {});
  const auto first = front(count);
  std::vector<std::uint8_t> taken(first.begin(), first.end());
  drop(count);
  return taken;
}

void ByteQueue::clear() {
  borrowed_ = {};
  if (spare_ != nullptr && bytes_.capacity() > worthKeeping) spare_->give(bytes_);
  bytes_ = {};
  taken_ = 0;
}

}  // namespace zev
