#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulated/network/look_ups.h"
#include "simulated/network/port_table.h"
#include "simulated/network/remote_peers.h"
#include "simulated/network/timeline.h"

namespace zev::simulated {

enum class Transport { Stream, Datagram };

/// How the network and the machine are. Times in milliseconds, sizes in bytes. Can be changed at
/// any time; what exists already keeps what it has.
struct NetworkSettings {
  std::string machineName = "BOBPC";
  /// At least one. The first is the sender of whatever goes out of a socket that has no address.
  std::vector<HostAddress> machineAddresses = {addressOf("192.168.1.20")};

  std::uint64_t latency = 10;         ///< of one way to another machine
  std::uint64_t ownLatency = 0;       ///< of one way within the machine
  std::uint64_t lookUpTime = 20;      ///< of a name, also of the machine's own
  std::uint64_t connectTime = 21000;  ///< until nobody's silence is taken for an answer
  std::uint64_t patience = 60000;     ///< until a connection whose other end is silent breaks

  std::size_t sendBuffer = 8192;       ///< of a new socket
  std::size_t receiveBuffer = 8192;    ///< of a new socket
  std::size_t maximumMessage = 65507;  ///< of a datagram
  std::size_t maximumSockets = 4096;   ///< of one process; one more fails with 10024

  std::int32_t startUpError = 0;  ///< what WSAStartup gives from now on
  std::int32_t cleanUpError = 0;  ///< what WSACleanup fails with from now on
};

/// A network around one machine: names, scripted peers far away, and a clock. Nothing happens and
/// no time passes but by a call; the same calls have the same effects, one for one. Everything that
/// is made of it borrows it; peers belong to it and last as long.
class SimulatedNetwork {
 public:
  SimulatedNetwork() = default;
  SimulatedNetwork(const SimulatedNetwork&) = delete;
  SimulatedNetwork& operator=(const SimulatedNetwork&) = delete;

  NetworkSettings settings;

  // ---- the clock

  std::uint64_t now() const { return timeline_.now(); }
  /// Moves the clock; what falls due on the way happens.
  void advance(std::uint64_t milliseconds) { timeline_.advance(milliseconds); }
  /// Moves the clock to the next thing that happens. If that is later than the moment `limit`, or
  /// nothing is going to happen, moves it there (not for Timeline::never) and gives false.
  bool advanceToNext(std::uint64_t limit = Timeline::never) {
    return timeline_.advanceToNext(limit);
  }
  /// Does something when the clock has moved that far.
  void after(std::uint64_t milliseconds, std::function<void()> action) {
    timeline_.after(milliseconds, std::move(action));
  }

  // ---- names and machines

  /// A machine with a name: from now on it is found, and refuses what none of its servers takes.
  void addHost(std::string_view name, const std::vector<std::string>& addresses);
  /// From now on looking the name up fails with that number (11002, say).
  void failName(std::string_view name, std::int32_t error) { names_.fail(name, error); }
  void removeName(std::string_view name) { names_.remove(name); }
  /// From now on connecting to that address fails with that number (10065, say) after one way there
  /// and back.
  void failAddress(std::string_view address, std::int32_t error);

  // ---- peers

  /// The server for streams on that port, made at the first call; see StreamServer. The address may
  /// be one of the machine's own. Throws std::logic_error if a socket has that port.
  StreamServer& server(std::string_view address, std::uint16_t port);
  /// Somebody at that address connects to a port, which is one of the machine's, say.
  RemoteStream& connectFrom(std::string_view from, std::string_view to, std::uint16_t port);
  /// Who sends and gets datagrams on that port, made at the first call.
  DatagramPeer& datagramPeer(std::string_view address, std::uint16_t port);

  // ---- what sockets and peers are made of

  /// Whether the address is one of the machine's own.
  bool isOwn(HostAddress address) const;
  /// The machine's address as the receiver at `to` sees it.
  HostAddress senderFor(HostAddress to) const;
  /// What a look-up finds, the machine's own name, "localhost" and the empty name included.
  Found find(std::string_view name) const;

  /// Takes a port for its owner; see PortTable.
  std::int32_t takePort(Transport transport, Endpoint& endpoint, PortOwner& owner);
  void giveBackPort(Transport transport, const Endpoint& endpoint);

  /// What comes of connecting: an error number, or the near end of the connection.
  using Connected = std::function<void(std::int32_t error, std::shared_ptr<StreamEnd> end)>;
  /// Connects and tells what came of it; at once if that takes no time. The near end can take that
  /// many bytes before anybody reads.
  void connect(const Endpoint& from, const Endpoint& to, std::size_t receiveBuffer,
               Connected connected);
  /// Sends a datagram, which vanishes if nobody has that port.
  void send(const Endpoint& from, const Endpoint& to, std::string bytes);

 private:
  struct Ports {
    PortTable own;
    PortTable far;
  };

  std::uint64_t latency(HostAddress from, HostAddress to) const;
  void travel(std::uint64_t milliseconds, std::function<void()> action);
  PortOwner* owner(Transport transport, const Endpoint& endpoint);
  Ports& ports(Transport transport) { return ports_[transport == Transport::Stream ? 0 : 1]; }
  struct Request {
    Endpoint from;
    Endpoint to;
    std::size_t receiveBuffer = 0;
    std::uint64_t oneWay = 0;  ///< milliseconds
    Connected connected;
  };
  void knock(const Request& request);
  std::int32_t answerOf(PortOwner* owner, const Endpoint& to) const;
  void deliver(const Endpoint& to, const Datagram& datagram);

  Timeline timeline_;
  NameTable names_;
  std::map<HostAddress, std::int32_t> failing_;
  std::array<Ports, 2> ports_;
  std::map<Endpoint, std::unique_ptr<StreamServer>> servers_;
  std::map<Endpoint, std::unique_ptr<DatagramPeer>> datagramPeers_;
  std::vector<std::unique_ptr<RemoteStream>> clients_;
};

}  // namespace zev::simulated
