#include <unistd.h>

#include <iostream>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/zevsim_main.h"

int main(int argumentCount, char** arguments) {
  return zev::simulator::zevsimMain({arguments + 1, arguments + argumentCount},
                                    zev::simulator::makeSetupProgram,
                                    {std::cin, std::cout, std::cerr, isatty(STDOUT_FILENO) != 0});
}
