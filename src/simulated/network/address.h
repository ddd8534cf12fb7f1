#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/sockets.h"

namespace zev::simulated {

/// An address of the internet family as it crosses the calls: four bytes in network order, read as
/// they lie in memory.
using HostAddress = std::int32_t;

inline constexpr HostAddress anyAddress = 0;
inline constexpr HostAddress broadcastAddress = -1;

/// One port of one host. The port is a plain number.
struct Endpoint {
  HostAddress address = anyAddress;
  std::uint16_t port = 0;

  auto operator<=>(const Endpoint&) const = default;
};

/// The address that a text of one to four numbers spells: decimal, octal after "0", hexadecimal
/// after "0x"; the last number fills all bytes that are left.
std::optional<HostAddress> parseAddress(std::string_view text);
/// The same of a text that is known to be an address; throws std::invalid_argument for any other.
HostAddress addressOf(std::string_view text);
/// The four bytes in decimal, joined by ".".
std::string dotted(HostAddress address);

/// Whether the address never leaves the machine: 127.x.x.x.
bool isLoopback(HostAddress address);

Endpoint toEndpoint(const SocketAddress& address);
SocketAddress toSocketAddress(const Endpoint& endpoint);

}  // namespace zev::simulated
