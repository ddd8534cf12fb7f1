#pragma once

#include <filesystem>

#include "simulated/machine_state.h"
#include "simulated/registry_tree.h"

namespace zev::simulated {

/// The hives as a text that registry editors import: every key with a value or without subkeys gets
/// a section of its own, in order.
Text registryEditorText(const RegistryTree& registry);

/// Writes that text as editors write it: UTF-16, low byte first, with a byte order mark. Throws
/// std::runtime_error if the file cannot be written.
void exportRegistry(const RegistryTree& registry, const std::filesystem::path& file);

/// The state of a machine by members, equal for equal states:
///
///   drives      letter: {type, free}
///   files       path: {directory: true} or {size, sha256} and text where it is short and plain
///   ASCII
///               on lines; attributes: names, where an entry has hidden, readonly or system
///   registry    hive: key: value name: {type, value}; keys of HKEY_CLASSES_ROOT stand under
///               HKEY_LOCAL_MACHINE\Software\Classes
///   shortcuts   path: properties
Value stateReport(const MachineState& machine);

}  // namespace zev::simulated
