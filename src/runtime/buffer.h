#pragma once

#include <cstdint>
#include <new>
#include <vector>

#include "runtime/error.h"

namespace zev {

/// An array of so many bytes, all 0. Error 9 for less than one, error 7 for more than can be had.
inline std::vector<std::uint8_t> byteArray(std::int32_t size) {
  if (size < 1) throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
  try {
    return std::vector<std::uint8_t>(static_cast<std::size_t>(size));
  } catch (const std::bad_alloc&) {
    throw RuntimeError(ErrorNumber::OutOfMemory);
  }
}

}  // namespace zev
