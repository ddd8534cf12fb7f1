#include "system/uninstall_entry.h"

#include "system/installed_files.h"

namespace zev {
namespace {

constexpr TextView entryKey =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ZEVScreenRecorder6";

}  // namespace

void enterUninstall(Registry& registry, const Globals& globals) {
  const auto set = [&](TextView name, TextView text) {
    registry.SetRegString(HKEY_LOCAL_MACHINE, entryKey, name, text, ForceRegistry);
  };
  registry.CreateRegKey(HKEY_LOCAL_MACHINE, entryKey, ForceRegistry);
  set(u"DisplayName", u"ZEV Screen Recorder 6");
  set(u"UninstallString", installedFile(globals, uninstallProgram));
}

}  // namespace zev
