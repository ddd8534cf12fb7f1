#pragma once

#include "state/program.h"

namespace zev {

/// The folder of the user's projects: "ZEV Projects" in the documents folder, or "Projects" in the
/// install directory of a machine without one. It need not exist.
Text projectsFolder(Program& program);

/// Where a project holds the path of its video, padded with blanks, in bytes.
inline constexpr std::size_t videoPathOffset = 25;
inline constexpr std::size_t videoPathSize = 512;
/// What follows the install directory in the path of the sample video.
inline constexpr TextView sampleVideo = u"\\SampleAVI.avi";

/// Writes the path of the sample video into the sample project, which refers to it by its absolute
/// path.
void patchSampleProject(Program& program, TextView projectsFolder);

}  // namespace zev
