#include "socket/byte_queue.h"

#include <algorithm>
#include <new>
#include <utility>

namespace zev {
namespace {

/// Memory that an empty queue may keep for the next bytes.
constexpr std::size_t worthKeeping = std::size_t{1} << 20;

/// How many times as much memory as there was is asked for, once it is large. What is never written
/// to costs nothing but addresses, of which small processes are short; what is copied is written
/// twice.
constexpr std::size_t generous = sizeof(void*) > 4 ? 16 : 2;
constexpr std::size_t modest = 2;
constexpr std::size_t longest = INT32_MAX;

/// False without memory for that many bytes.
bool reserves(std::vector<std::uint8_t>& memory, std::size_t bytes) {
  try {
    memory.reserve(bytes);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

}  // namespace

// ---- memory

void SpareMemory::keepAtMost(std::size_t bytes) {
  most_ = bytes;
  if (spare_.size() > most_) spare_ = std::vector<std::uint8_t>();
}

/// The larger of the two is kept; what is too large for keeping stays with the giver.
void SpareMemory::give(std::vector<std::uint8_t>& memory) {
  if (memory.size() <= spare_.size() || memory.size() > most_) return;
  spare_ = std::exchange(memory, {});
}

/// Takes the spare memory only if it is enough and the caller's own is not.
void SpareMemory::take(std::vector<std::uint8_t>& memory, std::size_t bytes) {
  if (memory.capacity() >= bytes || spare_.capacity() < bytes) return;
  memory = std::exchange(spare_, {});
}

/// Once more than half is gone the rest moves to the front: each byte moves at most once for every
/// byte that was dropped. Memory doubles at least, for the same reason.
void ByteQueue::reserve(std::size_t more) {
  if (begin_ > end_ / 2) moveTo(bytes_);
  const std::size_t needed = end_ + more;
  if (needed > bytes_.capacity()) grow(needed);
}

void ByteQueue::grow(std::size_t needed) {
  std::vector<std::uint8_t> memory = memoryFor(needed);
  moveTo(memory);
  std::swap(memory, bytes_);
  if (spare_ != nullptr && memory.capacity() > worthKeeping) spare_->give(memory);
}

/// Spare memory first; else as much more as can be had, down to what is needed. Throws
/// std::bad_alloc if not even that is there.
std::vector<std::uint8_t> ByteQueue::memoryFor(std::size_t needed) {
  const bool large = needed > worthKeeping;
  std::vector<std::uint8_t> memory;
  if (large && spare_ != nullptr) spare_->take(memory, needed);
  if (memory.capacity() >= needed) return memory;
  const auto times = [&](std::size_t factor) {
    return std::max(needed, std::min(factor * bytes_.capacity(), longest));
  };
  if (large && reserves(memory, times(generous))) return memory;
  if (!reserves(memory, times(modest))) memory.reserve(needed);
  return memory;
}

/// Moves what waits to the front of that memory, or of its own.
void ByteQueue::moveTo(std::vector<std::uint8_t>& memory) {
  const auto first = bytes_.begin() + static_cast<std::ptrdiff_t>(begin_);
  const auto last = bytes_.begin() + static_cast<std::ptrdiff_t>(end_);
  const std::size_t count = end_ - begin_;
  if (memory.size() < count) {
    memory.assign(first, last);
  } else {
    std::copy(first, last, memory.begin());
  }
  begin_ = 0;
  end_ = count;
}

// ---- bytes

std::span<const std::uint8_t> ByteQueue::front(std::size_t count) const {
  if (!shared_.empty()) return shared_.first(std::min(count, shared_.size()));
  return std::span(bytes_).subspan(begin_, std::min(count, size()));
}

/// What was shared becomes the queue's own bytes, in front of the new ones: the owner is needed no
/// longer.
void ByteQueue::append(std::span<const std::uint8_t> bytes) {
  const auto former = shared_;
  reserve(former.size() + bytes.size());
  bytes_.resize(end_);
  bytes_.insert(bytes_.end(), former.begin(), former.end());
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  end_ = bytes_.size();
  shared_ = {};
  owner_.reset();
}

void ByteQueue::share(std::shared_ptr<const void> owner, std::span<const std::uint8_t> bytes) {
  if (!empty()) return append(bytes);
  owner_ = std::move(owner);
  shared_ = bytes;
}

std::span<std::uint8_t> ByteQueue::room(std::size_t more) {
  if (!shared_.empty()) append({});
  reserve(more);
  if (bytes_.size() - end_ < more) bytes_.resize(end_ + more);
  return std::span(bytes_).subspan(end_, more);
}

/// The memory itself goes over, unless most of it would lie idle.
void ByteQueue::adopt(std::vector<std::uint8_t>& bytes, std::size_t count) {
  if (!empty() || count < bytes.size() / 2) return append(std::span(bytes).first(count));
  bytes.resize(count);
  bytes_ = std::exchange(bytes, {});
  begin_ = 0;
  end_ = count;
}

/// An empty queue keeps small memory for the next bytes and gives large memory away.
void ByteQueue::drop(std::size_t count) {
  if (!shared_.empty()) {
    shared_ = shared_.subspan(std::min(count, shared_.size()));
    if (shared_.empty()) owner_.reset();
    return;
  }
  begin_ += std::min(count, size());
  if (!empty()) return;
  if (bytes_.capacity() > worthKeeping) return clear();
  begin_ = end_ = 0;
}

/// All that waits is handed over with its memory if it stands at the front; else it is copied.
std::vector<std::uint8_t> ByteQueue::take(std::size_t count) {
  if (shared_.empty() && begin_ == 0 && count >= end_) {
    bytes_.resize(std::exchange(end_, 0));
    return std::exchange(bytes_, {});
  }
  const auto first = front(count);
  std::vector<std::uint8_t> taken(first.begin(), first.end());
  drop(count);
  return taken;
}

void ByteQueue::clear() {
  shared_ = {};
  owner_.reset();
  if (spare_ != nullptr && bytes_.capacity() > worthKeeping) spare_->give(bytes_);
  bytes_ = std::vector<std::uint8_t>();  // `{}` would keep the memory
  begin_ = end_ = 0;
}

}  // namespace zev
