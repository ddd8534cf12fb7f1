#pragma once

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace zev::sample {

/// The contents of a file, or of a part of one.
using Bytes = std::vector<std::uint8_t>;

/// Appends `value` in little-endian order.
template <std::unsigned_integral T>
void append(Bytes& out, T value) {
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

inline void append(Bytes& out, std::span<const std::uint8_t> part) {
  const std::size_t end = out.size();
  out.resize(end + part.size());
  std::ranges::copy(part, out.begin() + static_cast<std::ptrdiff_t>(end));
}

inline void append(Bytes& out, std::string_view text) {
  out.reserve(out.size() + text.size());
  for (const char c : text) out.push_back(static_cast<std::uint8_t>(c));
}

/// Writes `value` in little-endian order over the bytes at `offset`, which must exist.
template <std::unsigned_integral T>
void patch(Bytes& out, std::size_t offset, T value) {
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    out.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
  }
}

}  // namespace zev::sample
