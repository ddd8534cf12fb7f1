#pragma once

#include <netinet/in.h>

#include "platform/sockets.h"

namespace zev::posix {

/// Addresses as the system has them and as they cross the calls. Both hold port and address in
/// network order.
sockaddr_in toSystem(const SocketAddress& address);
SocketAddress fromSystem(const sockaddr_in& address);

/// Whether a stream or a datagram can go there: neither port 0 nor the address 0.
bool isDestination(const SocketAddress& address);

/// Whether two sockets with these local addresses would hold the same port of the same interface.
bool overlap(const SocketAddress& first, const SocketAddress& second);

}  // namespace zev::posix
