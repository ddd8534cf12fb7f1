#pragma once

#include "localisation/phrases.h"
#include "state/program.h"
#include "system/run_report.h"

namespace zev {

/// Proves the running user's folders writable and makes them ready, on machines of `profileClass`:
/// a root that cannot be written to is given up and its globals are emptied. Leaves `UserF.dat`
/// with the root in the install directory. Boxes tell of failures and nothing stops, but for
/// run-time errors around `UserF.dat`, which reach the caller. The report gets the steps 127 to
/// 131.
void readyUserFolders(Program& program, Phrases& phrases, RunReport& report);

}  // namespace zev
