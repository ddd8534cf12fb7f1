#include "simulated/network/address.h"

#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

namespace zev::simulated {
namespace {

using Bytes = std::array<std::uint8_t, 4>;

constexpr std::size_t mostParts = 4;
constexpr std::uint8_t loopbackNet = 127;

Bytes bytesOf(HostAddress address) {
  Bytes bytes{};
  std::memcpy(bytes.data(), &address, bytes.size());
  return bytes;
}

/// The address whose bytes a number has, its highest one first.
HostAddress fromNumber(std::uint32_t number) {
  Bytes bytes{};
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    bytes[index] = static_cast<std::uint8_t>(number >> (8 * (bytes.size() - 1 - index)));
  }
  HostAddress address = 0;
  std::memcpy(&address, bytes.data(), bytes.size());
  return address;
}

std::optional<std::uint32_t> parsePart(std::string_view part) {
  int base = 10;
  if (part.starts_with("0x") || part.starts_with("0X")) {
    part.remove_prefix(2);
    base = 16;
  } else if (part.size() > 1 && part.front() == '0') {
    part.remove_prefix(1);
    base = 8;
  }
  std::uint32_t value = 0;
  const char* end = part.data() + part.size();
  const auto [stopped, error] = std::from_chars(part.data(), end, value, base);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return value;
}

/// Parts between the dots; none if one is no number.
std::vector<std::uint32_t> parseParts(std::string_view text) {
  std::vector<std::uint32_t> parts;
  for (;;) {
    const std::size_t dot = text.find('.');
    const auto part = parsePart(text.substr(0, dot));
    if (!part) return {};
    parts.push_back(*part);
    if (dot == std::string_view::npos) return parts;
    text.remove_prefix(dot + 1);
  }
}

/// A port with its bytes the other way round: between a number and network order.
std::uint16_t networkOrder(std::uint16_t port) {
  const std::array<std::uint8_t, 2> bytes = {static_cast<std::uint8_t>(port >> 8),
                                             static_cast<std::uint8_t>(port)};
  std::uint16_t order = 0;
  std::memcpy(&order, bytes.data(), bytes.size());
  return order;
}

}  // namespace

std::optional<HostAddress> parseAddress(std::string_view text) {
  const std::vector<std::uint32_t> parts = parseParts(text);
  if (parts.empty() || parts.size() > mostParts) return std::nullopt;
  std::uint32_t number = 0;
  for (std::size_t index = 0; index + 1 < parts.size(); ++index) {
    if (parts[index] > 255) return std::nullopt;
    number |= parts[index] << (24 - 8 * index);
  }
  const std::size_t bitsTaken = 8 * (parts.size() - 1);
  if (parts.back() > std::numeric_limits<std::uint32_t>::max() >> bitsTaken) return std::nullopt;
  return fromNumber(number | parts.back());
}

HostAddress addressOf(std::string_view text) {
  const auto address = parseAddress(text);
  if (!address) throw std::invalid_argument("no address: " + std::string(text));
  return *address;
}

std::string dotted(HostAddress address) {
  const Bytes bytes = bytesOf(address);
  std::string text;
  for (const std::uint8_t each : bytes) {
    if (!text.empty()) text += '.';
    text += std::to_string(each);
  }
  return text;
}

bool isLoopback(HostAddress address) { return bytesOf(address)[0] == loopbackNet; }

Endpoint toEndpoint(const SocketAddress& address) {
  return {address.address, networkOrder(address.port)};
}

SocketAddress toSocketAddress(const Endpoint& endpoint) {
  SocketAddress address;
  address.port = networkOrder(endpoint.port);
  address.address = endpoint.address;
  return address;
}

}  // namespace zev::simulated
