#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "simulated/simulated_machine.h"

namespace zev {

/// All that a machine keeps, by name: files with their content, folders, registry keys and
/// values, shortcuts with their properties. The installer's own file is left out.
using Snapshot = std::map<std::string, std::string>;

/// Of files that are longer than `most` bytes their length and beginning stand for the whole.
Snapshot snapshotOf(const simulated::SimulatedMachine& machine, std::uint64_t most = ~0ull);

/// The same without a folder and all that lies in it.
Snapshot withoutFolder(Snapshot snapshot, const std::string& folder);

/// In what a snapshot differs from another one: "- C:\file" is gone, "+ C:\file" has come, "~
/// C:\file" is another one.
std::vector<std::string> differences(const Snapshot& found, const Snapshot& expected);

}  // namespace zev
