#pragma once

#include <string>

#include "posix/host_record.h"

namespace zev::posix {

/// Asks the system for a host's addresses, as long as that takes. A dotted address is its own
/// answer. The machine's own name, which an empty one means too, answers with the addresses of its
/// interfaces if the system knows none for it that reaches further than the machine itself.
Host lookUp(const std::string& name);

/// The machine's name.
std::string ownName();

}  // namespace zev::posix
