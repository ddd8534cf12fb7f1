#include <iostream>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/zevsim_main.h"

namespace {

bool outputIsTerminal() {
#if defined(_WIN32)
  return _isatty(1) != 0;
#else
  return isatty(STDOUT_FILENO) != 0;
#endif
}

}  // namespace

int main(int argumentCount, char** arguments) {
  return zev::scenario::zevsimMain({arguments + 1, arguments + argumentCount},
                                   zev::makeSetupProgram,
                                   {std::cin, std::cout, std::cerr, outputIsTerminal()});
}
