#include "simulated/machine_state.h"

#include <algorithm>

namespace zev::simulated {

Text MachineState::givenPath(const Text& path) {
  if (throughAnsi(path) == path) return path;
  const std::optional<Text> brief = disks.shortPath(path);
  return brief && throughAnsi(*brief) == *brief ? *brief : path;
}

Path MachineState::currentFolder() const {
  Path program;
  parsePath(settings.installer, Path{}, program);
  return program.parent();
}

const ProgramSettings* MachineState::program(TextView path) const {
  for (const auto& [name, program] : settings.programs) {
    if (equalText(name, path)) return &program;
  }
  return nullptr;
}

std::uint32_t writeAnswer(Text& buffer, const std::string& answer, std::uint32_t codePage) {
  const std::size_t room = std::min(answer.size() + 1, buffer.size());
  const std::string kept = (answer + '\0').substr(0, room);
  buffer.replace(0, room, fromCodePage(kept, codePage));
  return static_cast<std::uint32_t>(fromCodePage(answer, codePage).size());
}

}  // namespace zev::simulated
