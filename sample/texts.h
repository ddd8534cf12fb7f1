#pragma once

#include <string>
#include <string_view>

#include "sample/bytes.h"

namespace zev::sample {

/// The application manifest of the main program: asks for the current look of the controls and for
/// no rights beyond the user's. `buildId` goes into a comment and is of letters and digits.
std::string makeApplicationManifest(std::string_view buildId);

/// The sample project.
///
///     offset  size  contents
///          0    25  "ZEV Reel Desk Project 6" CR LF
///         25   512  path of the video, single-byte text padded with blanks; blank as delivered,
///                   since only the setup knows where the video lies
///        537     2  CR LF
///        539     -  settings and time line as sections of name=value lines
///
/// `thumbnail` is the value of the line that holds the first frame's picture, letters and digits.
std::string makeProject(std::string_view thumbnail);

}  // namespace zev::sample
