#pragma once

#include <optional>
#include <string_view>

#include "sample/fit.h"

namespace zev::sample {

/// The fit that a search has found for a file of the product; none for an unknown name. It is held
/// against a search by the tests; one that no longer fits costs time and changes nothing.
std::optional<Fit> knownFit(std::string_view installedName);

}  // namespace zev::sample
