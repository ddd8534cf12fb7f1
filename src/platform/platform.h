#pragma once

#include "platform/dialogs.h"
#include "platform/files.h"
#include "platform/holds.h"
#include "platform/kernel.h"
#include "platform/lz_services.h"
#include "platform/message_windows.h"
#include "platform/processes.h"
#include "platform/registry_api.h"
#include "platform/shell.h"
#include "platform/sockets.h"
#include "platform/system_information.h"
#include "runtime/application.h"

namespace zev {

/// All services of one machine, borrowed from the binding that made them and outliving every use.
struct Platform {
  Application& application;  ///< forms, events and the message loop
  Dialogs& dialogs;
  Files& files;
  Holds& holds;
  RegistryApi& registry;
  LzServices& lz;
  SystemInformation& system;
  Drives& drives;
  Windows& windows;
  Processes& processes;
  ShellFolders& shellFolders;
  Shortcuts& shortcuts;
  Dde& dde;
  Sockets& sockets;
  MessageWindows& messageWindows;
  Kernel& kernel;
};

}  // namespace zev
