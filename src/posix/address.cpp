#include "posix/address.h"

#include <sys/socket.h>

namespace zev::posix {

sockaddr_in toSystem(const SocketAddress& address) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = address.port;
  result.sin_addr.s_addr = static_cast<in_addr_t>(address.address);
  return result;
}

SocketAddress fromSystem(const sockaddr_in& address) {
  SocketAddress result;
  result.port = address.sin_port;
  result.address = static_cast<std::int32_t>(address.sin_addr.s_addr);
  return result;
}

bool isDestination(const SocketAddress& address) {
  return address.port != 0 && address.address != 0;
}

bool overlap(const SocketAddress& first, const SocketAddress& second) {
  const bool anyInterface = first.address == 0 || second.address == 0;
  return first.port == second.port && (anyInterface || first.address == second.address);
}

}  // namespace zev::posix
