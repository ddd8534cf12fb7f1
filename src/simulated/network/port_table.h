#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "simulated/network/stream_end.h"

namespace zev::simulated {

/// A datagram that has arrived, whole.
struct Datagram {
  Endpoint sender;
  std::string bytes;
};

/// Who has a port: a socket of the machine or somebody far away.
class PortOwner {
 public:
  virtual ~PortOwner() = default;
  /// Whether a connection is let in: 0, or the error number that whoever asks for it is to get;
  /// 10060 answers nothing at all.
  virtual std::int32_t admits() { return winsock::error::refused; }
  /// A connection that was let in; the other side may have sent something already.
  virtual void arrived(std::shared_ptr<StreamEnd>) {}
  /// A datagram for the port.
  virtual void arrived(const Datagram&) {}
};

/// The ports of one kind that are taken on one machine, or on all machines far away.
class PortTable {
 public:
  static constexpr std::uint16_t firstChosen = 1025;  ///< of the ports that the system chooses

  /// Takes a port for its owner, borrowed until it is given back. Port 0 is replaced by the next
  /// one that nobody has. 0, or 10048 if somebody has it on that address or either is on all
  /// addresses.
  std::int32_t take(Endpoint& endpoint, PortOwner& owner);
  /// Frees the port of exactly that address; nothing happens if nobody has it.
  void giveBack(const Endpoint& endpoint);
  /// Who has the port of exactly that address; null if nobody has.
  PortOwner* owner(const Endpoint& endpoint) const;
  /// Everybody who has that port on any address.
  std::vector<PortOwner*> ownersOf(std::uint16_t port) const;

 private:
  bool isTaken(const Endpoint& endpoint) const;
  std::uint16_t choose(HostAddress address);

  std::map<std::uint16_t, std::map<HostAddress, PortOwner*>> owners_;  ///< by port
  std::uint16_t nextChosen_ = firstChosen;
};

}  // namespace zev::simulated
