#pragma once

#include <memory>

#include "programs/zevsim/played_program.h"

namespace zev {

/// The setup program as scenarios play it: the wizard with its forms and globals.
std::unique_ptr<scenario::PlayedProgram> makeSetupProgram(Platform& platform);

}  // namespace zev
