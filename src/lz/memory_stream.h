#pragma once

#include <span>
#include <vector>

#include "lz/byte_stream.h"

namespace zev::lz {

/// Bytes in memory that outlive the source.
class MemorySource final : public ByteSource {
 public:
  explicit MemorySource(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override;

 private:
  std::span<const std::uint8_t> rest_;
};

/// Appends to a vector of the caller's, which outlives the sink. Memory that runs out is a failed
/// write.
class MemorySink final : public ByteSink {
 public:
  explicit MemorySink(std::vector<std::uint8_t>& bytes) : bytes_(bytes) {}

  bool write(std::span<const std::uint8_t> from) override;

 private:
  std::vector<std::uint8_t>& bytes_;
};

}  // namespace zev::lz
