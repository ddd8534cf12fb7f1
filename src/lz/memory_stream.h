#pragma once

#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "lz/byte_stream.h"

namespace zev::lz {

/// Bytes in memory that outlive the source.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override;
  std::optional<std::span<const std::uint8_t>> takeRest() override {
    return std::exchange(rest_, rest_.last(0));
  }

 private:
  std::span<const std::uint8_t> rest_;
};

/// Appends to a vector of the caller's, which outlives the sink. Memory that runs out is a failed
/// write.
class MemorySink final : public ByteSink {
 public:
  explicit MemorySink(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

  bool write(std::span<const std::uint8_t> from) override;
  std::vector<std::uint8_t>* memory() override { return &bytes_; }

 private:
  std::vector<std::uint8_t>& bytes_;
};

}  // namespace zev::lz
