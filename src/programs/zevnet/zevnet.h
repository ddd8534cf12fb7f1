#pragma once

#include "programs/zevnet/terminal.h"
#include "programs/zevnet/wishes.h"
#include "socket/event_socket_module.h"

namespace zev::netcat {

/// Carries out what was asked for, until it is over. The exit status: 0, 1 if an error was told, or
/// 128 and the number of the signal that has ended it.
int run(const Wishes& wishes, modEventSocket& module, Terminal& terminal);

}  // namespace zev::netcat
