#pragma once

#include <cstdint>

#include "platform/files.h"
#include "runtime/text.h"

namespace zev {

/// Takes the hidden attribute off a path, with run-time errors ignored. -1 if it is still hidden, 0
/// otherwise, and 0 for a blank path or one where nothing is.
std::int32_t ClearHiddenAttribute(Files& files, TextView path);

/// The same for the read-only attribute.
std::int32_t ClearReadOnlyAttribute(Files& files, TextView path);

/// True if `Dir` with the mask answers for the path, trimmed.
bool exists(Files& files, TextView path, std::int32_t mask);

/// The same for a folder. A path of nothing but blanks is none, and `Dir` is not asked.
bool folderExists(Files& files, TextView path);

}  // namespace zev
