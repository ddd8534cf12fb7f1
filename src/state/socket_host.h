#pragma once

#include "state/program.h"

namespace zev {

/// What the form does as the host of its sockets. Nothing of the component happens unless messages
/// are dispatched, so that whoever waits has to let events run.

/// Brings an element of the array in, lets events run and pauses for 300 milliseconds.
void loadSocket(Program& program, std::int32_t index);

/// Uses an element again: closes what it has, then connects to a port (1 to 65535) of a host.
void connectSocket(Socket& socket, const Text& host, std::int32_t port);

/// Lets events run until an element of the array is connected, at most so many milliseconds. True
/// if it is.
bool waitUntilConnected(Program& program, std::int32_t index, std::uint32_t milliseconds);

}  // namespace zev
