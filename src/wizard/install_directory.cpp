#include "wizard/install_directory.h"

#include "state/product_folder.h"
#include "system/attributes.h"
#include "system/product_settings.h"

namespace zev {
namespace {

bool folderExists(Program& program, TextView folder) {
  const TextView trimmed = trim(folder);
  return !trimmed.empty() && exists(program.platform.files, trimmed, dir_mask::directories);
}

Text recordedDirectory(const Globals& globals, Registry& registry) {
  return registry.GetRegString(HKEY_LOCAL_MACHINE, settingsKey, setting::Dizin,
                               defaultDirectory(globals), normalChoice);
}

/// The directory on record counts if the product's key is listed, and if it still exists.
void proposeByRegistry(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  const KeyList keys = registry.EnumRegKeys(HKEY_LOCAL_MACHINE, makerKey);
  if (std::holds_alternative<std::int32_t>(keys)) {
    const std::int32_t code = std::get<std::int32_t>(keys);
    if (code == -1 || code == -2) globals.gInstallDir = defaultDirectory(globals);
    return;
  }
  if (!lists(keys, productKey)) return;
  globals.gInstallDir = recordedDirectory(globals, registry);
  if (!folderExists(program, globals.gInstallDir.trimmed())) {
    globals.gInstallDir = defaultDirectory(globals);
  }
}

/// The directory on record can only be read where the folder of the value files exists.
void proposeByProfile(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  const bool readable =
      folderExists(program, globals.gUserData) || folderExists(program, globals.gUserDataAlt);
  globals.gInstallDir = readable ? recordedDirectory(globals, registry) : defaultDirectory(globals);
}

}  // namespace

Text defaultDirectory(const Globals& globals) {
  return join(left(trim(globals.gWinDir), 2), defaultFolder());
}

void proposeInstallDirectory(Program& program, Registry& registry) {
  Globals& globals = program.globals;
  if (globals.gOSClass == profileClass) {
    proposeByProfile(program, registry);
  } else {
    proposeByRegistry(program, registry);
  }
  if (globals.gInstallDir.neverSet() || globals.gInstallDir.trimmed().empty()) {
    globals.gInstallDir = defaultDirectory(globals);
  }
}

}  // namespace zev
