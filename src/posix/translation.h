#pragma once

#include <netinet/in.h>

#include <cstdint>

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

/// The Winsock number of an errno of the socket calls. What has no counterpart is 10107, "a system
/// call that should never fail has failed".
std::int32_t winsockError(int error);

/// The Winsock number of a result of getaddrinfo other than 0. For EAI_SYSTEM it is that of
/// `error`, the errno of the moment.
std::int32_t lookUpError(int result, int error);

}  // namespace zev::posix
