#pragma once

#include <memory>
#include <string>
#include <vector>

#include "programs/zevsim/played_program.h"

namespace zev::scenario {

/// A small program for the tests of the language: a wizard of two pages with a run, a dialog with
/// an input box, and ways to end.
///
/// Form1: page 1 has `Text1` and the list `Combo1`, page 2 the option buttons and the progress.
/// `Command2` goes on: to page 2, then through a run of eight passes. `Command3` unloads the form,
/// which asks first unless the run is over. `Command4` opens Form2, `Command5` asks for a name,
/// `Command6` ends on the spot, `Command7` raises error 75, `Command1` is disabled. Form2 has
/// `Drive1`, `Dir1` and an OK.
std::unique_ptr<simulator::PlayedProgram> makeToyProgram(Platform& platform);

}  // namespace zev::scenario
