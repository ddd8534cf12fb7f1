#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "simulated/transcript.h"

namespace zev {

/// The stretches of the program's life in which a failing call means something of its own.
enum class Phase {
  Load,       ///< the start, up to the first page at rest
  Check,      ///< of the destination
  Opening,    ///< of the package
  Prepare,    ///< in front of a member: the system directory, the projects, the patch
  Extract,    ///< a member is copied out
  Expand,     ///< a member is expanded; the redistributable is run here, too
  MainOut,    ///< the main program is copied out
  MainIn,     ///< the main program is expanded
  Settings,   ///< user folders, settings, uninstall entry
  FileType,   ///< with the AVI keys behind it
  Language,   ///< the setting behind all others
  CleanUp,    ///< of the temporary folder
  Shortcuts,  ///< of all kinds
  Users,      ///< the other profiles
  Finish,     ///< the buttons are handed back
  Unload,     ///< Finish was pressed
};

const char* nameOf(Phase phase);

/// One call of a platform operation in a run without failures.
struct Call {
  std::string operation;
  std::size_t nth = 0;  ///< as a fault counts, from 1
  Phase phase = Phase::Load;
  int row = 0;         ///< of the manifest, in the phases of a member
  std::string path;    ///< of the file that it is about, open or about to be opened, or first text
  int number = 0;      ///< its last number: a mask, a style
  bool empty = false;  ///< its result was an empty text
  std::size_t repeat = 1;  ///< which call of the operation for this path, in this stretch
  std::size_t link = 0;    ///< which shortcut is being made, from 1
  std::size_t place = 0;   ///< of its event in the transcript
  std::size_t begin = 0;   ///< of what happens behind the call before it
  std::string value;       ///< the setting that it has a part in: "C:\\folder\\name", "key|name"
  bool read = false;       ///< and that is read with its help
};

/// Finds the calls in the transcript, with its calls, of a run whose fourth click pressed Install;
/// a fifth one is Finish.
std::vector<Call> traceCalls(const std::vector<simulated::Event>& events);

}  // namespace zev
