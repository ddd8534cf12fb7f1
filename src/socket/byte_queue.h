#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace zev {

/// Memory that one queue has done with and another one, or the same, needs next: what was handed
/// out by the system and cleared once is not handed out and cleared again.
class SpareMemory {
 public:
  /// The most that lies idle without other wishes, in bytes.
  static constexpr std::size_t usual = std::size_t{64} << 20;

  /// From now on at most that many bytes lie idle.
  void keepAtMost(std::size_t bytes);
  /// Keeps memory if it is more than there is already, but not too much. The vector is empty then.
  void give(std::vector<std::uint8_t>& memory);
  /// Memory for `bytes`, if there is any, in place of what the vector has. Whatever that memory
  /// holds is left over from before.
  void take(std::vector<std::uint8_t>& memory, std::size_t bytes);

 private:
  std::vector<std::uint8_t> spare_;  ///< whose size is how far it was ever written
  std::size_t most_ = usual;
};

/// Bytes that wait: appended at the end, taken from the front. They lie in one piece of memory, the
/// queue's own or one that is shared with whoever gave it. Each byte is moved a bounded number of
/// times however many wait.
class ByteQueue {
 public:
  ByteQueue() = default;
  /// Borrows where large memory comes from and goes to, which outlives the queue.
  explicit ByteQueue(SpareMemory& spare) : spare_(&spare) {}

  std::size_t size() const { return shared_.size() + end_ - begin_; }
  bool empty() const { return size() == 0; }
  /// The first `count` bytes, at most all; valid until the queue changes.
  std::span<const std::uint8_t> front(std::size_t count) const;
  /// std::bad_alloc without memory for them, here and below; nothing has changed then.
  void append(std::span<const std::uint8_t> bytes);
  /// The same for an empty queue without a copy: the bytes are as they are while the queue has the
  /// owner.
  void share(std::shared_ptr<const void> owner, std::span<const std::uint8_t> bytes);
  /// Makes room for that many more bytes.
  void reserve(std::size_t more);
  /// Room for that many bytes after what waits, to be filled before the queue is touched again.
  std::span<std::uint8_t> room(std::size_t more);
  /// So many bytes of that room are there now.
  void filled(std::size_t count) { end_ += count; }
  /// Appends the first `count` bytes of a vector, which is as good as moved away.
  void adopt(std::vector<std::uint8_t>& bytes, std::size_t count);
  /// Drops the first `count` bytes, at most all.
  void drop(std::size_t count);
  /// Takes the first `count` bytes out, at most all.
  std::vector<std::uint8_t> take(std::size_t count);
  /// Drops everything and gives the memory back.
  void clear();

 private:
  void grow(std::size_t needed);
  std::vector<std::uint8_t> memoryFor(std::size_t needed);
  void moveTo(std::vector<std::uint8_t>& memory);

  std::shared_ptr<const void> owner_;     ///< of `shared_`
  std::span<const std::uint8_t> shared_;  ///< if any, there are no others
  std::vector<std::uint8_t> bytes_;       ///< whose size is how far it was ever written
  std::size_t begin_ = 0;                 ///< in `bytes_`
  std::size_t end_ = 0;
  SpareMemory* spare_ = nullptr;
};

}  // namespace zev
