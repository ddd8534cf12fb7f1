#pragma once

#include "runtime/text.h"

namespace zev {

/// The product's own folder, which every directory that it is laid into ends in.
inline constexpr TextView productFolder = u"ZEV Screen Recorder 6";

/// Behind a drive the folder of programs, and in it the product's: where it is laid if nobody wants
/// anything else.
inline constexpr TextView programFiles = u"\\Program Files";
inline Text defaultFolder() { return join(programFiles, u"\\", productFolder); }

}  // namespace zev
