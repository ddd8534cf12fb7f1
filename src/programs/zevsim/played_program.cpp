#include "programs/zevsim/played_program.h"

#include "runtime/controls.h"

namespace zev::scenario {

void PlayedProgram::choose(Control& list, const Text& entry) {
  if (auto* drives = dynamic_cast<DriveListBox*>(&list)) {
    drives->setDrive(entry);
  } else if (auto* folders = dynamic_cast<DirListBox*>(&list)) {
    folders->setPath(entry);
  }
}

}  // namespace zev::scenario
