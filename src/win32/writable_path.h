#pragma once

#include "runtime/text.h"

namespace zev::win32 {

/// A path that the system gave, in a form that the calls of its code page find again: itself, or,
/// if the page cannot write it, its short form. Where there is none, or the page cannot write that
/// either, the path itself.
Text writablePath(const Text& path);

/// A path of the system of at most that many units, its NUL included: longer ones there are not.
inline constexpr std::size_t longestPath = 32768;

}  // namespace zev::win32
