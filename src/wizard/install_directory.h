#pragma once

#include "state/program.h"
#include "system/registry.h"

namespace zev {

/// The directory that is proposed on a machine without the product: under "Program Files" on the
/// drive of the Windows directory.
Text defaultDirectory(const Globals& globals);

/// Proposes a directory in `gInstallDir`: that of the last install, as far as the machine has one
/// on record, else the default.
void proposeInstallDirectory(Program& program, Registry& registry);

}  // namespace zev
