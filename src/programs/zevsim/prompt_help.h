#pragma once

#include <string>

namespace zev::scenario {

/// What can be typed at the prompt, in lines of a width.
std::string promptHelp(int columns);

}  // namespace zev::scenario
