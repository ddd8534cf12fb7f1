#pragma once

#include "state/globals.h"

namespace zev {

/// The program that takes the product off the machine again.
inline constexpr TextView uninstallProgram = u"Uninstall Screen Recorder 6.exe";

/// Path of a file in the install directory.
inline Text installedFile(const Globals& globals, TextView name) {
  return join(globals.gInstallDir.trimmed(), u"\\", name);
}

/// Path of the product's main program there.
inline Text mainProgram(const Globals& globals) {
  return installedFile(globals, join(trim(globals.gProductExe), u".exe"));
}

}  // namespace zev
