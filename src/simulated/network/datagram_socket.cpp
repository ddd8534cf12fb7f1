#include "simulated/network/datagram_socket.h"

#include <algorithm>

namespace zev::simulated {

namespace error = winsock::error;

std::int32_t DatagramSocket::peerName(Endpoint& endpoint) const {
  if (peer_.port == 0) return error::notConnected;
  endpoint = peer_;
  return 0;
}

std::int32_t DatagramSocket::connect(const Endpoint& to) {
  if (to.port == 0) return error::addressNotAvailable;
  if (const std::int32_t unbound = bindFor(to)) return unbound;
  peer_ = to;
  return 0;
}

std::int32_t DatagramSocket::send(std::string_view bytes, std::size_t& taken) {
  return peer_.port == 0 ? error::notConnected : sendTo(bytes, peer_, taken);
}

std::int32_t DatagramSocket::sendTo(std::string_view bytes, const Endpoint& to,
                                    std::size_t& taken) {
  if (to.port == 0 || to.address == anyAddress) return error::addressNotAvailable;
  if (to.address == broadcastAddress && !broadcasts()) return error::accessDenied;
  std::int32_t maximum = 0;
  getOption(winsock::maximumMessage, maximum);
  if (bytes.size() > static_cast<std::size_t>(maximum)) return error::messageTooLong;
  if (const std::int32_t unbound = bindFor(to)) return unbound;
  Endpoint from = local();
  if (from.address == anyAddress) from.address = network().senderFor(to.address);
  taken = bytes.size();
  network().send(from, to, std::string(bytes));
  return 0;
}

std::int32_t DatagramSocket::receive(std::span<std::uint8_t> into, bool peek, Endpoint& sender,
                                     std::size_t& count) {
  if (!isBound()) return error::invalidArgument;
  arm(winsock::fdRead);
  if (queue_.empty()) return error::wouldBlock;
  const Datagram datagram = queue_.front();
  if (!peek) {
    queued_ -= datagram.bytes.size();
    queue_.pop_front();
  }
  sender = datagram.sender;
  count = std::min(into.size(), datagram.bytes.size());
  std::copy_n(datagram.bytes.begin(), count, into.begin());
  examine();
  return count < datagram.bytes.size() ? error::messageTooLong : 0;
}

std::size_t DatagramSocket::waiting() const {
  return queue_.empty() ? 0 : queue_.front().bytes.size();
}

void DatagramSocket::arrived(const Datagram& datagram) {
  if (peer_.port != 0 && datagram.sender != peer_) return;
  if (!queue_.empty() && queued_ + datagram.bytes.size() > receiveBuffer()) return;
  queued_ += datagram.bytes.size();
  queue_.push_back(datagram);
  examine();
}

void DatagramSocket::examine() {
  post(winsock::fdWrite);  // there is always room
  if (!queue_.empty()) post(winsock::fdRead);
}

}  // namespace zev::simulated
