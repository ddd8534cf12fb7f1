#include "simulated/network/port_table.h"

#include <limits>

namespace zev::simulated {

PortOwner* PortTable::owner(const Endpoint& endpoint) const {
  const auto port = owners_.find(endpoint.port);
  if (port == owners_.end()) return nullptr;
  const auto found = port->second.find(endpoint.address);
  return found == port->second.end() ? nullptr : found->second;
}

std::vector<PortOwner*> PortTable::ownersOf(std::uint16_t port) const {
  std::vector<PortOwner*> found;
  const auto owners = owners_.find(port);
  if (owners == owners_.end()) return found;
  for (const auto& [address, owner] : owners->second) found.push_back(owner);
  return found;
}

void PortTable::giveBack(const Endpoint& endpoint) {
  const auto port = owners_.find(endpoint.port);
  if (port == owners_.end()) return;
  port->second.erase(endpoint.address);
  if (port->second.empty()) owners_.erase(port);
}

bool PortTable::isTaken(const Endpoint& endpoint) const {
  const auto port = owners_.find(endpoint.port);
  if (port == owners_.end()) return false;
  return endpoint.address == anyAddress || port->second.count(anyAddress) == 1 ||
         port->second.count(endpoint.address) == 1;
}

/// The next port that is free, upwards and from the start again; 0 if none is.
std::uint16_t PortTable::choose(HostAddress address) {
  constexpr std::uint16_t last = std::numeric_limits<std::uint16_t>::max();
  for (int tries = last - firstChosen + 1; tries > 0; --tries) {
    const std::uint16_t port = nextChosen_;
    nextChosen_ = port == last ? firstChosen : static_cast<std::uint16_t>(port + 1);
    if (!isTaken({address, port})) return port;
  }
  return 0;
}

std::int32_t PortTable::take(Endpoint& endpoint, PortOwner& owner) {
  if (endpoint.port == 0) {
    endpoint.port = choose(endpoint.address);
    if (endpoint.port == 0) return winsock::error::noBuffers;
  } else if (isTaken(endpoint)) {
    return winsock::error::addressInUse;
  }
  owners_[endpoint.port][endpoint.address] = &owner;
  return 0;
}

}  // namespace zev::simulated
