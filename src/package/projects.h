#pragma once

#include "state/program.h"

namespace zev {

/// The folder of the user's projects: "ZEV Projects" in the documents folder, or "Projects" in the
/// install directory of a machine without one. It need not exist.
Text projectsFolder(Program& program);

/// Writes the path of the sample video into the sample project, which refers to it by its absolute
/// path: 512 blank-padded bytes at offset 25.
void patchSampleProject(Program& program, TextView projectsFolder);

}  // namespace zev
