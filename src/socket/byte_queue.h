#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zev {

/// Memory that one queue has done with and another one, or the same, needs next: what was handed
/// out by the system and cleared once is not handed out and cleared again.
class SpareMemory {
 public:
  /// The most that lies idle, in bytes.
  static constexpr std::size_t most = std::size_t{64} << 20;

  /// Keeps memory if it is more than there is already, but not too much. The vector is empty then.
  void give(std::vector<std::uint8_t>& memory);
  /// Memory for so many bytes for an empty vector, if there is any.
  void take(std::vector<std::uint8_t>& memory, std::size_t bytes);

 private:
  std::vector<std::uint8_t> spare_;
};

/// Bytes that wait, in one piece of memory: appended at the end, taken from the front. Each byte is
/// moved a bounded number of times however many wait.
class ByteQueue {
 public:
  ByteQueue() = default;
  /// Borrows where large memory comes from and goes to, which outlives the queue.
  explicit ByteQueue(SpareMemory& spare) : spare_(&spare) {}

  std::size_t size() const { return borrowed_.size() + bytes_.size() - taken_; }
  bool empty() const { return size() == 0; }
  /// The first `count` bytes, at most all; valid until the queue changes.
  std::span<const std::uint8_t> front(std::size_t count) const;
  /// std::bad_alloc without memory for them, here and below; nothing has changed then.
  void append(std::span<const std::uint8_t> bytes);
  /// Makes room for so many more bytes.
  void reserve(std::size_t more);
  /// The same for an empty queue without a copy: the bytes stay the caller's, who has to leave them
  /// alone until `keep`.
  void borrow(std::span<const std::uint8_t> bytes);
  /// Makes what is still borrowed the queue's own; without memory for it, it is gone.
  void keep();
  /// Appends the first `count` bytes of a vector, which is as good as moved away.
  void adopt(std::vector<std::uint8_t>& bytes, std::size_t count);
  /// Drops the first `count` bytes, at most all.
  void drop(std::size_t count);
  /// Takes the first `count` bytes out, at most all.
  std::vector<std::uint8_t> take(std::size_t count);
  /// Drops everything and gives the memory back.
  void clear();

 private:
  std::span<const std::uint8_t> borrowed_;  ///< if any, there are no others
  std::vector<std::uint8_t> bytes_;
  std::size_t taken_ = 0;  ///< bytes at the front that are gone
  SpareMemory* spare_ = nullptr;
};

}  // namespace zev
