#pragma once

#include <cstdint>

// The languages by their numbers.
namespace zev {

inline constexpr std::int32_t english = 0;
inline constexpr std::int32_t turkish = 1;
inline constexpr std::int32_t german = 2;
inline constexpr std::int32_t french = 3;
inline constexpr std::int32_t spanish = 4;

}  // namespace zev
