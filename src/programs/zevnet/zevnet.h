#pragma once

#include "programs/zevnet/terminal.h"
#include "programs/zevnet/wishes.h"
#include "socket/event_socket_module.h"

namespace zev::netcat {

/// Carries out what was asked for, until it is over. The exit status: 0, or 1 if an error was told.
int run(const Wishes& wishes, modEventSocket& module, Terminal& terminal);

}  // namespace zev::netcat
