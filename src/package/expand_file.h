#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "platform/dialogs.h"
#include "platform/lz_services.h"
#include "runtime/text.h"

namespace zev {

/// Expands a compressed file into a new one. Both paths are trimmed. The number of bytes written;
/// 0, which callers take for success, from an empty source; -1 to -16 if a file could not be
/// opened; -100 and its multiples if the expansion failed. With `showErrors`, at most one box tells
/// of a failure.
std::int32_t ExpandFile(LzServices& lz, Dialogs& dialogs, Phrases& phrases, TextView source,
                        TextView destination, bool showErrors);

/// The code of a file that somebody else has open.
inline constexpr std::int32_t fileInUse = -12;

/// The code of an open: 0 for a handle that is not negative, else -1 to -16 for the reason.
std::int32_t MapOpenError(std::int32_t handle, std::int16_t nErrCode);

/// Shows the box for a code from -1 to -16; nothing for any other.
void ShowExpandError(Dialogs& dialogs, std::int32_t code, TextView path);

}  // namespace zev
