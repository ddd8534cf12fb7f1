#include "lz/memory_stream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>

namespace zev::lz {

std::ptrdiff_t MemorySource::read(std::span<std::uint8_t> into) {
  const std::size_t count = std::min(into.size(), rest_.size());
  if (count != 0) std::memcpy(into.data(), rest_.data(), count);
  rest_ = rest_.subspan(count);
  return static_cast<std::ptrdiff_t>(count);
}

/// No memory for more is a failure of the sink like any other: what was written before stays.
bool MemorySink::write(std::span<const std::uint8_t> from) {
  try {
    bytes_.insert(bytes_.end(), from.begin(), from.end());
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
}

}  // namespace zev::lz
