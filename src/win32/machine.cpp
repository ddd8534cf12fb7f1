#include "win32/machine.h"

#include "win32/windows_api.h"

namespace zev::win32 {

/// Asking a drive without a medium fails with an error instead of a box of the system's.
Machine::Machine() { ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); }

Platform Machine::platform(Application& application, Dialogs& dialogs) {
  return {application, dialogs,  files_,          holds_,     registry_,     lz_,
          system_,     drives_,  windows_,        processes_, shellFolders_, shortcuts_,
          dde_,        sockets_, messageWindows_, kernel_};
}

}  // namespace zev::win32
