#pragma once

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "programs/zevsim/played_program.h"

namespace zev::simulator {

/// The streams of a program, and whether its output goes to a terminal.
struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  bool terminal = false;
};

/// Exit statuses of zevsim.
namespace exit_status {
inline constexpr int held = 0;      ///< all expectations held
inline constexpr int failed = 1;    ///< at least one did not
inline constexpr int unusable = 2;  ///< the scenario or the command line cannot be used
inline constexpr int broken = 3;    ///< zevsim itself failed
}  // namespace exit_status

/// All of zevsim but the program that it plays: reads the arguments after the program's name,
/// plays a scenario or the prompt, and gives the exit status.
int zevsimMain(const std::vector<std::string>& arguments, const ProgramFactory& factory,
               const Console& console);

}  // namespace zev::simulator
