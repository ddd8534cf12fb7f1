#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "posix/descriptors.h"

namespace zev::posix {

/// The other end of a connection, a plain blocking socket of the system on loopback. What fails
/// throws std::system_error.
class Peer {
 public:
  /// Connects to a port of this machine.
  static Peer connectedTo(std::uint16_t port);
  /// A listener on a port of the system's choice.
  static Peer listening();
  /// A datagram socket on a port of the system's choice.
  static Peer forDatagrams();

  Peer accept() const;
  /// The own port, in the machine's order.
  std::uint16_t port() const;

  void send(std::string_view bytes, int flags = 0) const;
  void sendTo(std::uint16_t port, std::string_view bytes) const;
  /// Reads until so many bytes are there or the other end closes.
  std::string receive(std::size_t count) const;
  /// One datagram.
  std::string receiveDatagram() const;

  /// Waits until the other end has all that was sent.
  void awaitArrival() const;
  void halfClose() const;
  void close() { descriptor_.close(); }
  /// Ends the connection without ceremony.
  void reset();
  int descriptor() const { return descriptor_.get(); }

 private:
  explicit Peer(Descriptor descriptor) : descriptor_(std::move(descriptor)) {}

  static Peer open(int type);
  void bindAnywhere() const;

  Descriptor descriptor_;
};

}  // namespace zev::posix
