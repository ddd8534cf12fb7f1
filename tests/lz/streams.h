#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "lz/byte_stream.h"

namespace zev::lz {

using Bytes = std::vector<std::uint8_t>;

/// Gives its bytes in reads of at most `step`; after `failAfter` of them each read fails.
class SteppingSource final : public ByteSource {
 public:
  explicit SteppingSource(std::span<const std::uint8_t> bytes, std::size_t step,
                          std::size_t failAfter = std::numeric_limits<std::size_t>::max())
      : bytes_(bytes), step_(step), failAfter_(failAfter) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    if (at_ >= failAfter_) return -1;
    const std::size_t end = std::min(bytes_.size(), failAfter_);
    const std::size_t count = std::min({into.size(), step_, end - at_});
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), count, into.begin());
    at_ += count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t step_;
  std::size_t failAfter_;
  std::size_t at_ = 0;
};

/// `front`, and then one byte value for ever.
class EndlessSource final : public ByteSource {
 public:
  EndlessSource(Bytes front, std::uint8_t value) : front_(std::move(front)), value_(value) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    const std::size_t count = std::min(into.size(), front_.size() - at_);
    std::copy_n(front_.begin() + static_cast<std::ptrdiff_t>(at_), count, into.begin());
    at_ += count;
    std::fill(into.begin() + static_cast<std::ptrdiff_t>(count), into.end(), value_);
    return static_cast<std::ptrdiff_t>(into.size());
  }

 private:
  Bytes front_;
  std::uint8_t value_;
  std::size_t at_ = 0;
};

/// So many zeros.
class LongSource final : public ByteSource {
 public:
  explicit LongSource(std::uint64_t size) : left_(size) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), left_));
    std::fill_n(into.begin(), count, std::uint8_t{0});
    left_ -= count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  std::uint64_t left_;
};

/// Counts what it is given and fails on the first byte past `capacity`, as a full disk does.
class CountingSink final : public ByteSink {
 public:
  explicit CountingSink(std::uint64_t capacity = std::numeric_limits<std::uint64_t>::max())
      : capacity_(capacity) {}

  bool write(std::span<const std::uint8_t> from) override {
    if (from.size() > capacity_ - count_) return false;
    count_ += from.size();
    return true;
  }

  std::uint64_t count() const { return count_; }

 private:
  std::uint64_t capacity_;
  std::uint64_t count_ = 0;
};

/// Keeps what it is given.
class WrittenSink final : public ByteSink {
 public:
  /// Borrows the bytes, to which it appends.
  explicit WrittenSink(Bytes& bytes) : bytes_(bytes) {}

  bool write(std::span<const std::uint8_t> from) override {
    bytes_.insert(bytes_.end(), from.begin(), from.end());
    return true;
  }

 private:
  Bytes& bytes_;
};

}  // namespace zev::lz
