#pragma once

// The system that zevnet runs on.

#if defined(_WIN32)
#include "programs/zevnet/win32_terminal.h"
#else
#include "programs/zevnet/posix_terminal.h"
#endif

namespace zev::netcat {

#if defined(_WIN32)
using ThisMachine = win32::SocketMachine;
using ThisTerminal = Win32Terminal;
#else
using ThisMachine = posix::Machine;
using ThisTerminal = PosixTerminal;
#endif

}  // namespace zev::netcat
