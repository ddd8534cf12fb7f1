#include "posix/peer.h"

#include <arpa/inet.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

namespace zev::posix {
namespace {

ssize_t check(ssize_t result) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), "peer");
  return result;
}

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

const sockaddr* general(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

}  // namespace

Peer Peer::open(int type) {
  Peer peer{Descriptor(::socket(AF_INET, type | SOCK_CLOEXEC, 0))};
  const timeval patience{20, 0};
  for (const int option : {SO_RCVTIMEO, SO_SNDTIMEO}) {
    check(::setsockopt(peer.descriptor(), SOL_SOCKET, option, &patience, sizeof patience));
  }
  return peer;
}

void Peer::bindAnywhere() const {
  const sockaddr_in address = loopback(0);
  check(::bind(descriptor(), general(address), sizeof address));
}

Peer Peer::connectedTo(std::uint16_t port) {
  Peer peer = open(SOCK_STREAM);
  const sockaddr_in address = loopback(port);
  check(::connect(peer.descriptor(), general(address), sizeof address));
  return peer;
}

Peer Peer::listening() {
  Peer peer = open(SOCK_STREAM);
  peer.bindAnywhere();
  check(::listen(peer.descriptor(), SOMAXCONN));
  return peer;
}

Peer Peer::forDatagrams() {
  Peer peer = open(SOCK_DGRAM);
  peer.bindAnywhere();
  return peer;
}

Peer Peer::accept() const {
  Peer peer{Descriptor(::accept4(descriptor(), nullptr, nullptr, SOCK_CLOEXEC))};
  check(peer.descriptor());
  return peer;
}

std::uint16_t Peer::port() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  check(::getsockname(descriptor(), reinterpret_cast<sockaddr*>(&address), &size));
  return ntohs(address.sin_port);
}

void Peer::send(std::string_view bytes, int flags) const {
  while (!bytes.empty()) {
    const ssize_t sent =
        check(::send(descriptor(), bytes.data(), bytes.size(), flags | MSG_NOSIGNAL));
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

void Peer::sendTo(std::uint16_t port, std::string_view bytes) const {
  const sockaddr_in to = loopback(port);
  check(::sendto(descriptor(), bytes.data(), bytes.size(), 0, general(to), sizeof to));
}

std::string Peer::receive(std::size_t count) const {
  std::string bytes(count, '\0');
  std::size_t have = 0;
  while (have < count) {
    const ssize_t read = check(::recv(descriptor(), bytes.data() + have, count - have, 0));
    if (read == 0) break;
    have += static_cast<std::size_t>(read);
  }
  bytes.resize(have);
  return bytes;
}

std::string Peer::receiveDatagram() const {
  std::string bytes(65536, '\0');
  bytes.resize(
      static_cast<std::size_t>(check(::recv(descriptor(), bytes.data(), bytes.size(), 0))));
  return bytes;
}

void Peer::awaitArrival() const {
  for (int left = 1; left != 0;) {
    check(::ioctl(descriptor(), SIOCOUTQ, &left));
    if (left != 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void Peer::halfClose() const { check(::shutdown(descriptor(), SHUT_WR)); }

void Peer::reset() {
  const linger atOnce{1, 0};
  check(::setsockopt(descriptor(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce));
  descriptor_.close();
}

}  // namespace zev::posix
