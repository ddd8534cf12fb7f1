#pragma once

#include "state/globals.h"
#include "system/registry.h"

namespace zev {

/// Enters the product in the system's list of programs that can be removed. The path of the
/// uninstall program stands there without quotation marks.
void enterUninstall(Registry& registry, const Globals& globals);

}  // namespace zev
