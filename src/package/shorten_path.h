#pragma once

#include "runtime/application.h"
#include "runtime/controls.h"

namespace zev {

/// A path cut to fit a label's width: as much of its folder as there is room for, "...\" and its
/// name; the name alone if that is as wide as the label. A path without a backslash stays as it is.
/// Error 5 for a folder of fewer than three characters where something has to go.
Text ShortenPathForLabel(FormEngine& engine, TextView path, const Form& form, const Label& label);

}  // namespace zev
