#pragma once

#include "simulated/machine_state.h"

namespace zev::simulated {

/// The state of a machine as one JSON object, equal for equal states:
///
///   drives      letter: {type, free}
///   files       path: {directory: true} or {size, sha256} and text where it is short and plain
///   ASCII
///               on lines; attributes: names, where an entry has hidden, readonly or system
///   registry    hive: key: value name: {type, value}; keys of HKEY_CLASSES_ROOT stand under
///               HKEY_LOCAL_MACHINE\Software\Classes
///   shortcuts   path: properties
nlohmann::ordered_json stateReport(const MachineState& machine);

}  // namespace zev::simulated
