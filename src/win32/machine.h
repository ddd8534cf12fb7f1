#pragma once

#include "lz/lz_files.h"
#include "platform/platform.h"
#include "platform/runtime_files.h"
#include "win32/dde.h"
#include "win32/file_system.h"
#include "win32/kernel.h"
#include "win32/message_windows.h"
#include "win32/processes.h"
#include "win32/registry_api.h"
#include "win32/shell.h"
#include "win32/sockets.h"
#include "win32/system_information.h"

namespace zev::win32 {

/// The machine that the program runs on: all its services but forms and dialogs. One a process,
/// made on the thread of the forms, since it sets for the process where libraries are searched for
/// and that a drive without a medium brings no box.
class Machine {
 public:
  Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  /// The services, with forms and dialogs that are made elsewhere. Those two and this machine
  /// outlive every use of the result.
  Platform platform(Application& application, Dialogs& dialogs);

  /// The services that others stand on: sockets for whoever has no forms, files below the
  /// statements.
  FileSystem& fileSystem() { return fileSystem_; }
  Sockets& sockets() { return sockets_; }
  MessageWindows& messageWindows() { return messageWindows_; }
  Kernel& kernel() { return kernel_; }

 private:
  Win32FileSystem fileSystem_;
  RuntimeFiles files_{fileSystem_};
  Holds holds_{fileSystem_};
  lz::LzFiles lz_{fileSystem_};
  Win32Registry registry_;
  Win32System system_;
  Win32Drives drives_;
  Win32Windows windows_;
  Win32Processes processes_;
  Win32ShellFolders shellFolders_;
  Win32Shortcuts shortcuts_;
  Win32Dde dde_;
  Win32MessageWindows messageWindows_;
  Win32Sockets sockets_;
  Win32Kernel kernel_;
};

/// Takes the folder of the program and the current folder out of the search for libraries, and
/// loads the themed controls from the system's own folder. To be called before anything else.
void harden();

}  // namespace zev::win32
