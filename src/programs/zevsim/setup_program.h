#pragma once

#include <memory>

#include "programs/zevsim/played_program.h"

namespace zev::simulator {

/// The setup program as scenarios play it: the wizard with its forms and globals.
std::unique_ptr<PlayedProgram> makeSetupProgram(Platform& platform);

}  // namespace zev::simulator
