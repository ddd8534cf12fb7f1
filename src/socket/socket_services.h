#pragma once

#include "platform/dialogs.h"
#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"

namespace zev {

/// What the component needs of a machine; borrowed, outliving every use.
struct SocketServices {
  Sockets& sockets;
  MessageWindows& windows;
  Kernel& kernel;
  Dialogs& dialogs;
};

}  // namespace zev
