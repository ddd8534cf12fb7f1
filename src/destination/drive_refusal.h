#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "platform/dialogs.h"
#include "runtime/text.h"

namespace zev {

/// Who refuses a drive. The folder browser has fewer words for it.
enum class Refuser { DestinationCheck, FolderBrowser };

/// Shows the box by which a drive of the type, an answer of GetDriveTypeA, is refused; none for a
/// type that has no box there. `root` is the drive's root with its backslash.
///
/// The check's texts and titles are translated. The browser's stand in English in every language,
/// but for the text about a network drive.
void showDriveRefusal(Dialogs& dialogs, Phrases& phrases, Refuser refuser, std::uint32_t driveType,
                      TextView root);

/// True if the check refuses drives of the type.
bool refusedByCheck(std::uint32_t driveType);

}  // namespace zev
