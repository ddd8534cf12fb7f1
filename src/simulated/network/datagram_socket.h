#pragma once

#include <deque>

#include "simulated/network/local_socket.h"

namespace zev::simulated {

/// A socket of datagrams. Those that find its receive buffer full are lost.
class DatagramSocket final : public LocalSocket {
 public:
  DatagramSocket(SimulatedNetwork& network, MessageQueue& queue, std::int32_t handle)
      : LocalSocket(network, queue, Transport::Datagram, handle) {}

  std::int32_t peerName(Endpoint& endpoint) const override;
  /// Names the one receiver of `send` and the one sender who is heard.
  std::int32_t connect(const Endpoint& to) override;
  std::int32_t send(std::string_view bytes, std::size_t& taken) override;
  std::int32_t sendTo(std::string_view bytes, const Endpoint& to, std::size_t& taken) override;
  std::int32_t receive(std::span<std::uint8_t> into, bool peek, Endpoint& sender,
                       std::size_t& count) override;
  std::size_t waiting() const override;

  void arrived(const Datagram& datagram) override;
  using PortOwner::arrived;

 private:
  void examine() override;

  std::deque<Datagram> queue_;
  std::size_t queued_ = 0;  ///< bytes
  Endpoint peer_;           ///< port 0: anybody
};

}  // namespace zev::simulated
