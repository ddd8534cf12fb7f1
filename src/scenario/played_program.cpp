#include "scenario/played_program.h"

namespace zev::scenario {

void PlayedProgram::choose(Control& list, const Text& entry) {
  list.property(list.kind() == ControlKind::DriveListBox ? "Drive" : "Path").write(entry);
}

}  // namespace zev::scenario
