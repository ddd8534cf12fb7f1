#pragma once

// All that a program needs of the sockets, on every system.

#include "platform/dialogs.h"
#include "socket/event_socket.h"

#if defined(_WIN32)
#include "win32/socket_machine.h"
#else
#include "posix/machine.h"
#endif

namespace zev {

/// The system that the program runs on, and the loop that dispatches.
#if defined(_WIN32)
using SocketMachine = win32::SocketMachine;
#else
using SocketMachine = posix::Machine;
#endif

/// Dialogs of a program that has none: message boxes come only if a handler of `Error` asks for
/// them, and are answered at once.
struct NoBoxes final : Dialogs {
  BoxAnswer MsgBox(TextView, std::int32_t, TextView) override { return BoxAnswer::OK; }
  Text InputBox(TextView, TextView, TextView) override { return {}; }
  Text defaultTitle() override { return {}; }
};

}  // namespace zev
