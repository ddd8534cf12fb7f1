#include "plain_streams.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace zev::benchmarks {
namespace {

using posix::Descriptor;

constexpr std::size_t batch = 512;
constexpr std::size_t peerChunk = std::size_t{256} << 10;
/// Nothing that lasts so long without a byte will ever end.
constexpr int patience = 60'000;

template <typename Result>
Result check(Result result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
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

std::size_t optionOf(const Descriptor& stream, int option) {
  int value = 0;
  socklen_t size = sizeof value;
  check(::getsockopt(stream.get(), SOL_SOCKET, option, &value, &size), "getsockopt");
  return static_cast<std::size_t>(value);
}

/// All streams of a trial in one epoll set, by their numbers.
class Set {
 public:
  Set(const std::vector<Descriptor>& streams, std::uint32_t events)
      : epoll_(check(::epoll_create1(EPOLL_CLOEXEC), "epoll_create1")) {
    for (std::size_t i = 0; i < streams.size(); ++i) {
      epoll_event event{};
      event.events = events;
      event.data.u64 = i;
      check(::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, streams[i].get(), &event), "epoll_ctl");
    }
  }
  /// Calls `act` with the number of each stream that is ready.
  template <typename Act>
  void wait(const Act& act) {
    const int count = check(::epoll_wait(epoll_.get(), ready_.data(), batch, patience), "epoll");
    if (count == 0) throw std::runtime_error("a stream stands still");
    for (std::size_t i = 0; static_cast<int>(i) < count; ++i) act(ready_[i].data.u64);
  }

 private:
  Descriptor epoll_;
  std::array<epoll_event, batch> ready_{};
};

void receiveAll(const std::vector<Descriptor>& streams, const Load& load,
                std::vector<std::uint8_t>& buffer, std::size_t chunk) {
  if (buffer.size() < chunk) buffer.resize(chunk);
  Set set(streams, EPOLLIN | EPOLLET);
  for (std::size_t left = load.total(); left != 0;) {
    set.wait([&](std::size_t i) {
      for (std::size_t got = chunk; got == chunk;) {
        const ssize_t count = ::recv(streams[i].get(), buffer.data(), chunk, 0);
        if (count < 0 && errno == EAGAIN) return;
        if (count == 0) throw std::runtime_error("a stream has ended early");
        got = static_cast<std::size_t>(check(count, "recv"));
        if (got > left) throw std::runtime_error("more bytes than were sent");
        left -= got;
      }
    });
  }
}

void sendAll(const std::vector<Descriptor>& streams, const Load& load,
             std::vector<std::uint8_t>& buffer, std::size_t chunk) {
  if (buffer.size() < chunk) buffer.resize(chunk);
  std::vector<std::size_t> left(streams.size(), load.bytesEach);
  Set set(streams, EPOLLOUT | EPOLLET);
  for (std::size_t busy = streams.size(); busy != 0;) {
    set.wait([&](std::size_t i) {
      while (left[i] != 0) {
        const ssize_t count =
            ::send(streams[i].get(), buffer.data(), std::min(left[i], chunk), MSG_NOSIGNAL);
        if (count < 0 && errno == EAGAIN) return;
        left[i] -= static_cast<std::size_t>(check(count, "send"));
        if (left[i] == 0) --busy;
      }
    });
  }
}

}  // namespace

// ---- the measured end

PlainStreams::PlainStreams()
    : listener_(check(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket")) {
  const sockaddr_in anywhere = loopback(0);
  check(::bind(listener_.get(), general(anywhere), sizeof anywhere), "bind");
  check(::listen(listener_.get(), SOMAXCONN), "listen");
}

std::uint16_t PlainStreams::port() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  check(::getsockname(listener_.get(), reinterpret_cast<sockaddr*>(&address), &size),
        "getsockname");
  return ntohs(address.sin_port);
}

void PlainStreams::accept(std::size_t streams) {
  while (streams_.size() < streams) {
    streams_.emplace_back(check(
        ::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK), "accept"));
  }
  receiveChunk_ = optionOf(streams_.front(), SO_RCVBUF);
  sendChunk_ = optionOf(streams_.front(), SO_SNDBUF);
}

void PlainStreams::receive(const Load& load) { receiveAll(streams_, load, buffer_, receiveChunk_); }

void PlainStreams::send(const Load& load) { sendAll(streams_, load, buffer_, sendChunk_); }

// ---- the other end

StreamPeer::StreamPeer(std::uint16_t port, std::size_t streams) {
  const sockaddr_in address = loopback(port);
  while (streams_.size() < streams) {
    Descriptor stream(check(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0), "socket"));
    check(::connect(stream.get(), general(address), sizeof address), "connect");
    check(::fcntl(stream.get(), F_SETFL, O_NONBLOCK), "fcntl");
    streams_.push_back(std::move(stream));
  }
}

/// Ends the connections without ceremony, so that nothing of them stays in the system.
StreamPeer::~StreamPeer() {
  if (thread_.joinable()) thread_.join();
  const linger atOnce{1, 0};
  for (const Descriptor& each : streams_) {
    ::setsockopt(each.get(), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  }
}

void StreamPeer::beginToSend(const Load& load) {
  thread_ = std::thread([this, load] { sendAll(streams_, load, buffer_, peerChunk); });
}

void StreamPeer::beginToReceive(const Load& load) {
  thread_ = std::thread([this, load] { receiveAll(streams_, load, buffer_, peerChunk); });
}

}  // namespace zev::benchmarks
