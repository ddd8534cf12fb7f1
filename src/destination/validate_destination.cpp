#include "destination/validate_destination.h"

#include "runtime/error.h"
#include "system/attributes.h"

namespace zev {
namespace {

/// Makes a folder behind its missing parents.
void makeTree(Files& files, TextView folder) {
  if (folder.size() < 3 || exists(files, folder, dir_mask::directories)) return;
  const std::size_t parent = folder.rfind(u'\\');
  if (parent != TextView::npos) makeTree(files, folder.substr(0, parent));
  files.MkDir(folder);
}

}  // namespace

void ValidateDestination(Program& program, std::int16_t& ok) {
  const Text directory = program.globals.gInstallDir.trimmed();
  Files& files = program.platform.files;
  ignoringErrors([&] { makeTree(files, directory); });
  ok = !directory.empty() && exists(files, directory, dir_mask::directories) ? -1 : 0;
}

}  // namespace zev
