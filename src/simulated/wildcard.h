#pragma once

#include "runtime/text.h"

namespace zev::simulated {

/// Whether a pattern names entries by wildcards.
bool hasWildcards(TextView pattern);

/// Whether a name matches the last component of a search as the system matches it: letter case
/// aside;
/// "*" is any run of characters, "?" one character or, before a dot and at the end, none; "*.*" is
/// every name; a dot before a wildcard also matches the end of a name without one; a pattern that
/// ends in "*." matches names without an extension.
bool matchesPattern(TextView name, TextView pattern);

}  // namespace zev::simulated
