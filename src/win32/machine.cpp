#include "win32/machine.h"

#include "win32/windows_api.h"

namespace zev::win32 {

/// A drive without a medium is an error of the call that asks, and no box of the system's.
Machine::Machine() { ::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX); }

Platform Machine::platform(Application& application, Dialogs& dialogs) {
  return {application, dialogs,  files_,          holds_,     registry_,     lz_,
          system_,     drives_,  windows_,        processes_, shellFolders_, shortcuts_,
          dde_,        sockets_, messageWindows_, kernel_};
}

}  // namespace zev::win32
