#pragma once

#include "runtime/text.h"

namespace zev {

/// Whether a file or folder can have the name: none of the characters that the system forbids, no
/// name of a device, 255 characters at most.
bool validName(TextView name);

}  // namespace zev
