#pragma once

#include <cstdint>
#include <functional>

#include "runtime/error.h"

namespace zev::test {

/// Numbers of run-time errors.
inline constexpr std::int32_t overflow = 6;
inline constexpr std::int32_t typeMismatch = 13;

/// The number of the run-time error that an action raises; 0 if it raises none.
inline std::int32_t raisedBy(const std::function<void()>& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return error.number();
  }
  return 0;
}

}  // namespace zev::test
