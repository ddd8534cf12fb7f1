#pragma once

#include <cstdint>
#include <optional>

#include "runtime/text.h"
#include "state/program.h"

namespace zev {

/// Kinds of GetKnownFolder.
namespace known_folder {
inline constexpr std::uint8_t documents = 1;
inline constexpr std::uint8_t localAppData = 2;
}  // namespace known_folder

/// Path of a special folder of the shell by its number; empty on any failure.
Text GetSpecialFolder(Program& program, std::int32_t csidl);

/// Path of a folder of the user by its kind; empty on any failure and for an unknown kind. Machines
/// of another class than `profileClass` answer with the documents folder, whatever the kind.
Text GetKnownFolder(Program& program, std::uint8_t kind);

/// A copy of a NUL-terminated text of the system; empty for a null pointer.
Text WideToString(ShellFolders& shell, const char16_t* pointer);

/// The system directory as the system writes it into a buffer of `size` blanks, uncut.
Text systemDirectoryBuffer(Program& program, std::size_t size);

/// Drive of the system directory, as a letter and a colon.
Text systemDrive(Program& program);

/// The logon name; nothing on failure.
std::optional<Text> userName(Program& program);

}  // namespace zev
