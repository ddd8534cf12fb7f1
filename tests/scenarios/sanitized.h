#pragma once

namespace zev {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZEV_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define ZEV_SANITIZED 1
#endif
#endif

/// Whether this build runs under a sanitizer, which makes a run many times slower: tests that play
/// thousands of them then take a part, and say so.
#ifdef ZEV_SANITIZED
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

}  // namespace zev
