#include "simulated/network/simulated_network.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace zev::simulated {
namespace {

constexpr std::string_view ownLoopbackName = "localhost";
constexpr std::string_view ownLoopbackAddress = "127.0.0.1";

}  // namespace

// ---- names and machines

void SimulatedNetwork::addHost(std::string_view name, const std::vector<std::string>& addresses) {
  std::vector<HostAddress> all;
  for (const std::string& each : addresses) all.push_back(addressOf(each));
  names_.add(name, std::move(all));
}

void SimulatedNetwork::failAddress(std::string_view address, std::int32_t error) {
  failing_[addressOf(address)] = error;
}

bool SimulatedNetwork::isOwn(HostAddress address) const {
  const std::vector<HostAddress>& own = settings.machineAddresses;
  return isLoopback(address) || std::find(own.begin(), own.end(), address) != own.end();
}

HostAddress SimulatedNetwork::senderFor(HostAddress to) const {
  return isOwn(to) ? to : settings.machineAddresses.front();
}

/// Names that were added count first, so that even the machine's own can be led elsewhere.
Found SimulatedNetwork::find(std::string_view name) const {
  const std::string_view wanted = name.empty() ? std::string_view(settings.machineName) : name;
  if (names_.has(wanted)) return names_.find(wanted);
  if (sameName(wanted, settings.machineName)) {
    return {std::string(wanted), settings.machineAddresses, 0};
  }
  if (sameName(wanted, ownLoopbackName)) {
    return {std::string(wanted), {addressOf(ownLoopbackAddress)}, 0};
  }
  return names_.find(wanted);
}

// ---- ports

/// All machines far away share one table, in which their addresses tell them apart.
std::int32_t SimulatedNetwork::takePort(Transport transport, Endpoint& endpoint, PortOwner& owner) {
  const bool own = endpoint.address == anyAddress || isOwn(endpoint.address);
  return own ? ports(transport).own.take(endpoint, owner)
             : ports(transport).far.take(endpoint, owner);
}

void SimulatedNetwork::giveBackPort(Transport transport, const Endpoint& endpoint) {
  ports(transport).own.giveBack(endpoint);
  ports(transport).far.giveBack(endpoint);
}

/// Who gets what is sent to a port; null if nobody does.
PortOwner* SimulatedNetwork::owner(Transport transport, const Endpoint& endpoint) {
  if (!isOwn(endpoint.address)) return ports(transport).far.owner(endpoint);
  PortOwner* const exactly = ports(transport).own.owner(endpoint);
  return exactly != nullptr ? exactly : ports(transport).own.owner({anyAddress, endpoint.port});
}

// ---- travelling

std::uint64_t SimulatedNetwork::latency(HostAddress from, HostAddress to) const {
  return isOwn(from) && isOwn(to) ? settings.ownLatency : settings.latency;
}

/// Does something that much later; at once if that is no time.
void SimulatedNetwork::travel(std::uint64_t milliseconds, std::function<void()> action) {
  if (milliseconds == 0) return action();
  timeline_.after(milliseconds, std::move(action));
}

/// The request takes one way; what comes of it is decided when it has arrived, in knock().
void SimulatedNetwork::connect(const Endpoint& from, const Endpoint& to, std::size_t receiveBuffer,
                               Connected connected) {
  const std::uint64_t oneWay = latency(from.address, to.address);
  const Request request{from, to, receiveBuffer, oneWay, std::move(connected)};
  travel(oneWay, [this, request] { knock(request); });
}

/// What somebody who asks for a connection is told: 0, or an error number; 10060 for nothing.
std::int32_t SimulatedNetwork::answerOf(PortOwner* owner, const Endpoint& to) const {
  const auto failing = failing_.find(to.address);
  if (failing != failing_.end()) return failing->second;
  if (owner != nullptr) return owner->admits();
  const bool isThere = isOwn(to.address) || names_.knows(to.address);
  return isThere ? winsock::error::refused : winsock::error::timedOut;
}

/// The answer takes the way back. That there is none shows when the network's time for connecting
/// is over, counted from the beginning.
void SimulatedNetwork::knock(const Request& request) {
  const auto& [from, to, receiveBuffer, oneWay, connected] = request;
  PortOwner* const owner = this->owner(Transport::Stream, to);
  const std::int32_t error = answerOf(owner, to);
  if (error != 0) {
    const bool silent = error == winsock::error::timedOut;
    const std::uint64_t silence = std::max(settings.connectTime, oneWay) - oneWay;
    return travel(silent ? silence : oneWay, [error, told = connected] { told(error, nullptr); });
  }
  auto [near, far] = Connection::make(timeline_, {oneWay, settings.patience}, from, to);
  near->setReceiveBuffer(receiveBuffer);
  // Whoever began learns of it before anything that the other end sends.
  travel(oneWay, [near = near, told = connected] { told(0, near); });
  owner->arrived(std::move(far));
}

void SimulatedNetwork::send(const Endpoint& from, const Endpoint& to, std::string bytes) {
  travel(latency(from.address, to.address),
         [this, to, datagram = Datagram{from, std::move(bytes)}] { deliver(to, datagram); });
}

/// A broadcast reaches everybody with that port, those on the sender's own machine too.
void SimulatedNetwork::deliver(const Endpoint& to, const Datagram& datagram) {
  if (to.address == broadcastAddress) {
    Ports& all = ports(Transport::Datagram);
    for (PortOwner* each : all.own.ownersOf(to.port)) each->arrived(datagram);
    for (PortOwner* each : all.far.ownersOf(to.port)) each->arrived(datagram);
  } else if (PortOwner* const owner = this->owner(Transport::Datagram, to)) {
    owner->arrived(datagram);
  }
}

// ---- peers

/// A server that cannot have its port is not kept: the next call tries again.
StreamServer& SimulatedNetwork::server(std::string_view address, std::uint16_t port) {
  Endpoint endpoint{addressOf(address), port};
  std::unique_ptr<StreamServer>& server = servers_[endpoint];
  if (server != nullptr) return *server;
  auto made = std::make_unique<StreamServer>();
  if (takePort(Transport::Stream, endpoint, *made) != 0) {
    throw std::logic_error("somebody else has the port " + std::to_string(port));
  }
  server = std::move(made);
  return *server;
}

/// Every client gets a port of its own, so that several from one address can be told apart.
RemoteStream& SimulatedNetwork::connectFrom(std::string_view from, std::string_view to,
                                            std::uint16_t port) {
  constexpr std::uint16_t firstOfClients = 2001;
  const auto count = static_cast<std::uint16_t>(clients_.size());
  const Endpoint local{addressOf(from), static_cast<std::uint16_t>(firstOfClients + count)};
  RemoteStream& client = *clients_.emplace_back(std::make_unique<RemoteStream>());
  connect(local, {addressOf(to), port}, RemoteStream::bufferSize,
          [&client](std::int32_t error, auto end) {
            error == 0 ? client.began(std::move(end)) : client.failed(error);
          });
  return client;
}

DatagramPeer& SimulatedNetwork::datagramPeer(std::string_view address, std::uint16_t port) {
  Endpoint endpoint{addressOf(address), port};
  std::unique_ptr<DatagramPeer>& peer = datagramPeers_[endpoint];
  if (peer != nullptr) return *peer;
  auto made = std::make_unique<DatagramPeer>(*this, endpoint);
  if (takePort(Transport::Datagram, endpoint, *made) != 0) {
    throw std::logic_error("somebody else has the port " + std::to_string(port));
  }
  peer = std::move(made);
  return *peer;
}

}  // namespace zev::simulated
