#pragma once

#include <cstddef>

namespace zev {

/// How much of what is dear is done: one program of tests does all of it, in `./test all`; the one
/// that always runs spreads its share over the whole.
#ifdef ZEV_DEAR
inline constexpr bool dear = true;
#else
inline constexpr bool dear = false;
#endif

/// One of how many is done.
constexpr std::size_t thinned(std::size_t one) { return dear ? 1 : one; }

}  // namespace zev
