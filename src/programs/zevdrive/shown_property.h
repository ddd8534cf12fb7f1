#pragma once

#include <optional>
#include <string_view>

#include "programs/zevdrive/program_windows.h"

namespace zev::drive {

/// A property of a control as its window shows it, in the property's own type; none if the control
/// has no window, or nothing of the property shows.
std::optional<scenario::Json> shownProperty(const ProgramWindows& windows, const Form& form,
                                            const Control& control, std::string_view property);

}  // namespace zev::drive
