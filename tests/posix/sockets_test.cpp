#include <sys/resource.h>
#include <sys/socket.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "posix/on_the_machine.h"
#include "posix/peer.h"

namespace zev::posix {
namespace {

class SocketsOfPosix : public OnTheMachine {
 protected:
  /// The error number of a call that fails; 0 of one that does not.
  std::int32_t errorOf(std::int32_t result) { return result == ws::failed ? lastError() : 0; }
};

// ---- the service

TEST_F(SocketsOfPosix, DoNothingBeforeTheStart) {
  EXPECT_EQ(sockets().WSACleanup(), 0);
  SocketAddress address = loopback(1);
  std::int32_t value = 0;
  char name[100] = {};
  std::uint8_t byte[1] = {};
  const auto fails = [&](auto result, auto failure) {
    EXPECT_EQ(result, failure);
    EXPECT_EQ(lastError(), ws::error::notStarted);
    sockets().WSAStartup(0);  // changes nothing
  };
  fails(sockets().WSACleanup(), ws::failed);
  fails(sockets().socket(2, 1, 6), ws::failed);
  fails(sockets().closesocket(1), ws::failed);
  fails(sockets().connect(1, address), ws::failed);
  fails(sockets().bind(1, address), ws::failed);
  fails(sockets().listen(1, 5), ws::failed);
  fails(sockets().accept(1, address), ws::failed);
  fails(sockets().getpeername(1, address), ws::failed);
  fails(sockets().getsockname(1, address), ws::failed);
  fails(sockets().getsockopt(1, ws::socketLevel, ws::broadcast, value), ws::failed);
  fails(sockets().setsockopt(1, ws::socketLevel, ws::broadcast, 1), ws::failed);
  fails(sockets().ioctlsocket(1, ws::bytesWaiting, value), ws::failed);
  fails(sockets().send(1, byte, 0), ws::failed);
  fails(sockets().sendto(1, byte, 0, address), ws::failed);
  fails(sockets().recv(1, byte, 0), ws::failed);
  fails(sockets().recvfrom(1, byte, 0, address), ws::failed);
  fails(sockets().WSAAsyncSelect(1, window, 1, 1), ws::failed);
  fails(sockets().WSAAsyncGetHostByName(window, 1, u"localhost", name, 100), 0);
  fails(sockets().WSACancelAsyncRequest(1), ws::failed);
  fails(sockets().gethostname(name, 100), ws::failed);
  fails(sockets().gethostbyname(u"localhost"), nullptr);
  fails(sockets().inet_addr(u"127.0.0.1"), ws::failed);
  fails(sockets().inet_ntoa(1), nullptr);
}

/// A listener that has no room for one more connection: who connects waits until there is.
class FullListener {
 public:
  FullListener() { EXPECT_EQ(::listen(listener.descriptor(), 0), 0); }

  Peer listener = Peer::listening();

 private:
  const Peer first_ = Peer::connectedTo(listener.port());
};

/// Interrupts this thread in a moment, and a moment later does something else.
class Interruption {
 public:
  explicit Interruption(std::function<void()> then) {
    struct sigaction action {};
    action.sa_handler = [](int) {};
    ::sigaction(SIGUSR1, &action, &before_);
    later_ = std::thread([interrupted = ::pthread_self(), then = std::move(then)] {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      ::pthread_kill(interrupted, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
      then();
    });
  }
  ~Interruption() {
    later_.join();
    ::sigaction(SIGUSR1, &before_, nullptr);
  }

 private:
  struct sigaction before_ {};
  std::thread later_;
};

TEST_F(SocketsOfPosix, ConnectToTheEndThroughASignal) {
  FullListener full;
  const std::uint16_t port = full.listener.port();
  const std::int32_t socket = newSocket();
  const Interruption interruption([&] { full.listener.accept(); });
  EXPECT_EQ(sockets().connect(socket, loopback(port)), 0);
  SocketAddress peer;
  EXPECT_EQ(sockets().getpeername(socket, peer), 0);
}

TEST_F(SocketsOfPosix, AreRefusedThroughASignal) {
  FullListener full;
  const std::uint16_t port = full.listener.port();
  const std::int32_t socket = newSocket();
  const Interruption interruption([&] { full.listener.close(); });
  EXPECT_EQ(errorOf(sockets().connect(socket, loopback(port))), 10061);
}

TEST_F(SocketsOfPosix, LastUntilTheLastStartIsTakenBack) {
  EXPECT_EQ(sockets().WSAStartup(0x202), 0);
  newSocket();
  newSocket(ws::datagram);
  EXPECT_EQ(sockets().openSockets(), 2u);
  EXPECT_EQ(sockets().WSACleanup(), 0);
  EXPECT_EQ(sockets().openSockets(), 2u);
  EXPECT_EQ(sockets().WSACleanup(), 0);
  EXPECT_EQ(sockets().openSockets(), 0u);
  EXPECT_EQ(errorOf(sockets().WSACleanup()), ws::error::notStarted);
  EXPECT_EQ(sockets().WSAStartup(ws::version), 0);
  EXPECT_EQ(errorOf(sockets().closesocket(1)), ws::error::notSocket);
  EXPECT_EQ(sockets().WSAStartup(0x100), 10092);  // version 0.1
}

TEST_F(SocketsOfPosix, KnowTwoKinds) {
  EXPECT_GT(sockets().socket(ws::internet, ws::stream, ws::tcp), 0);
  EXPECT_GT(sockets().socket(ws::internet, ws::datagram, ws::udp), 0);
  EXPECT_EQ(errorOf(sockets().socket(23, ws::stream, ws::tcp)), ws::error::familyNotSupported);
  EXPECT_EQ(errorOf(sockets().socket(ws::internet, 3, 0)), 10044);
  EXPECT_EQ(errorOf(sockets().socket(ws::internet, ws::stream, ws::udp)),
            ws::error::protocolNotSupported);
}

// ---- addresses

TEST_F(SocketsOfPosix, BindAPortOnce) {
  const std::int32_t first = newSocket();
  EXPECT_EQ(sockets().bind(first, loopback(0)), 0);
  const std::uint16_t port = portOf(first);
  const std::int32_t second = newSocket();
  EXPECT_EQ(errorOf(sockets().bind(second, loopback(port))), ws::error::addressInUse);
  EXPECT_EQ(sockets().listen(first, 5), 0);
  EXPECT_EQ(errorOf(sockets().bind(second, loopback(port))), ws::error::addressInUse);
  SocketAddress anywhere = loopback(port);
  anywhere.address = 0;
  EXPECT_EQ(errorOf(sockets().bind(second, anywhere)), ws::error::addressInUse);
  EXPECT_EQ(sockets().closesocket(first), 0);
  EXPECT_EQ(sockets().bind(second, loopback(port)), 0);
  EXPECT_EQ(errorOf(sockets().bind(second, loopback(0))), ws::error::invalidArgument);
}

TEST_F(SocketsOfPosix, BindNoPortOfAnotherProgram) {
  const Peer other = Peer::listening();
  const std::int32_t socket = newSocket();
  EXPECT_EQ(errorOf(sockets().bind(socket, loopback(other.port()))), ws::error::addressInUse);
  EXPECT_EQ(errorOf(sockets().bind(socket, loopback(other.port()))), ws::error::addressInUse);
}

TEST_F(SocketsOfPosix, BindAPortThatConnectionsOfThePastHold) {
  const std::int32_t listener = newListener();
  const std::uint16_t port = portOf(listener);
  const Peer peer = Peer::connectedTo(port);
  ASSERT_TRUE(pumpUntil([&] { return wasTold(listener, ws::fdAccept); }));
  SocketAddress from;
  const std::int32_t accepted = sockets().accept(listener, from);
  EXPECT_EQ(sockets().closesocket(listener), 0);

  const std::int32_t again = newSocket();  // while the connection still lives
  EXPECT_EQ(sockets().bind(again, loopback(port)), 0);
  EXPECT_EQ(sockets().listen(again, 5), 0);
  EXPECT_EQ(sockets().closesocket(again), 0);
  EXPECT_EQ(sockets().closesocket(accepted), 0);  // which waits for a while, having closed first
  peer.halfClose();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  const std::int32_t third = newSocket();
  EXPECT_EQ(sockets().bind(third, loopback(port)), 0);
  EXPECT_EQ(sockets().listen(third, 5), 0);
}

TEST_F(SocketsOfPosix, RefuseAddressesThatLeadNowhere) {
  const std::int32_t socket = newSocket();
  SocketAddress address = loopback(0);
  EXPECT_EQ(errorOf(sockets().connect(socket, address)), ws::error::addressNotAvailable);
  address = loopback(80);
  address.address = 0;
  EXPECT_EQ(errorOf(sockets().connect(socket, address)), ws::error::addressNotAvailable);
  address.address = static_cast<std::int32_t>(::inet_addr("192.0.2.1"));
  EXPECT_EQ(errorOf(sockets().bind(socket, address)), ws::error::addressNotAvailable);
  address.family = 23;
  EXPECT_EQ(errorOf(sockets().connect(socket, address)), ws::error::familyNotSupported);
  EXPECT_EQ(errorOf(sockets().bind(socket, address)), ws::error::familyNotSupported);
}

TEST_F(SocketsOfPosix, TellNamesOnceTheyHaveThem) {
  const std::int32_t socket = newSocket();
  SocketAddress address;
  EXPECT_EQ(errorOf(sockets().getsockname(socket, address)), ws::error::invalidArgument);
  EXPECT_EQ(errorOf(sockets().getpeername(socket, address)), ws::error::notConnected);
  EXPECT_EQ(errorOf(sockets().listen(socket, 5)), ws::error::invalidArgument);
  const Peer listener = Peer::listening();
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), 0);
  EXPECT_EQ(sockets().getpeername(socket, address), 0);
  EXPECT_EQ(ntohs(address.port), listener.port());
  EXPECT_EQ(address.family, ws::internet);
  EXPECT_EQ(sockets().getsockname(socket, address), 0);
  EXPECT_NE(address.port, 0);
  EXPECT_EQ(errorOf(sockets().listen(socket, 5)), ws::error::alreadyConnected);
  EXPECT_EQ(errorOf(sockets().accept(socket, address)), ws::error::invalidArgument);
}

// ---- options

TEST_F(SocketsOfPosix, HaveSizes) {
  const std::int32_t stream = newSocket();
  const std::int32_t datagram = newSocket(ws::datagram);
  std::int32_t value = 0;
  EXPECT_EQ(sockets().getsockopt(datagram, ws::socketLevel, ws::maximumMessage, value), 0);
  EXPECT_EQ(value, 65507);
  EXPECT_EQ(errorOf(sockets().getsockopt(stream, ws::socketLevel, ws::maximumMessage, value)),
            ws::error::badProtocolOption);
  for (const std::int32_t option : {ws::sendBufferSize, ws::receiveBufferSize}) {
    EXPECT_EQ(sockets().getsockopt(stream, ws::socketLevel, option, value), 0);
    EXPECT_GT(value, 1000);
    EXPECT_EQ(sockets().setsockopt(stream, ws::socketLevel, option, 20'000), 0);
    EXPECT_EQ(sockets().getsockopt(stream, ws::socketLevel, option, value), 0);
    EXPECT_GE(value, 20'000);
  }
  EXPECT_EQ(errorOf(sockets().getsockopt(stream, ws::socketLevel, 1, value)),
            ws::error::badProtocolOption);
  EXPECT_EQ(errorOf(sockets().setsockopt(stream, 6, 1, 1)), ws::error::invalidArgument);
}

TEST_F(SocketsOfPosix, SendToAllOnlyWithLeave) {
  const std::int32_t receiver = newSocket(ws::datagram);
  SocketAddress anywhere = loopback(0);
  anywhere.address = 0;
  EXPECT_EQ(sockets().bind(receiver, anywhere), 0);
  const std::int32_t socket = newSocket(ws::datagram);
  SocketAddress all = loopback(portOf(receiver));
  all.address = static_cast<std::int32_t>(::inet_addr("127.255.255.255"));
  EXPECT_EQ(errorOf(sockets().sendto(socket, bytesOf("x"), 0, all)), ws::error::accessDenied);
  EXPECT_EQ(sockets().setsockopt(socket, ws::socketLevel, ws::broadcast, 1), 0);
  std::int32_t value = 0;
  EXPECT_EQ(sockets().getsockopt(socket, ws::socketLevel, ws::broadcast, value), 0);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(sockets().sendto(socket, bytesOf("all"), 0, all), 3);
  EXPECT_EQ(receive(receiver, 10), "all");
}

// ---- data

TEST_F(SocketsOfPosix, TellHowMuchWaits) {
  std::unique_ptr<Peer> peer;
  const std::int32_t stream = newConnection(peer);
  std::int32_t waiting = -1;
  EXPECT_EQ(sockets().ioctlsocket(stream, ws::bytesWaiting, waiting), 0);
  EXPECT_EQ(waiting, 0);
  peer->send("abc");
  peer->send("de");
  peer->close();
  settle();
  EXPECT_EQ(sockets().ioctlsocket(stream, ws::bytesWaiting, waiting), 0);
  EXPECT_EQ(waiting, 5);
  EXPECT_EQ(errorOf(sockets().ioctlsocket(stream, 1, waiting)), ws::error::invalidArgument);

  const std::int32_t datagram = newDatagramSocket();
  const Peer sender = Peer::forDatagrams();
  sender.sendTo(portOf(datagram), "");
  sender.sendTo(portOf(datagram), "abc");
  EXPECT_EQ(sockets().ioctlsocket(datagram, ws::bytesWaiting, waiting), 0);
  EXPECT_EQ(waiting, 0);
  EXPECT_EQ(receive(datagram, 10), "");
  EXPECT_EQ(sockets().ioctlsocket(datagram, ws::bytesWaiting, waiting), 0);
  EXPECT_EQ(waiting, 3);
}

TEST_F(SocketsOfPosix, LoseTheRestOfADatagram) {
  const std::int32_t socket = newDatagramSocket();
  const Peer sender = Peer::forDatagrams();
  sender.sendTo(portOf(socket), "abcdef");
  sender.sendTo(portOf(socket), "next");
  std::vector<std::uint8_t> bytes(3);
  SocketAddress from;
  EXPECT_EQ(errorOf(sockets().recvfrom(socket, bytes, 0, from)), ws::error::messageTooLong);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "abc");
  EXPECT_EQ(ntohs(from.port), sender.port());
  EXPECT_EQ(receive(socket, 1), "[10040]");
  EXPECT_EQ(receive(socket, 1), "[10035]");
}

TEST_F(SocketsOfPosix, SendDatagramsToAnybody) {
  const std::int32_t socket = newSocket(ws::datagram);
  EXPECT_EQ(receive(socket, 1), "[10022]");  // nothing can come to a socket without a name
  const Peer peer = Peer::forDatagrams();
  EXPECT_EQ(sockets().sendto(socket, bytesOf("hello"), 0, loopback(peer.port())), 5);
  EXPECT_EQ(peer.receiveDatagram(), "hello");
  peer.sendTo(portOf(socket), "back");
  EXPECT_EQ(receive(socket, 10), "back");
  EXPECT_EQ(errorOf(send(socket, "x")), ws::error::notConnected);
  const std::string large(65'508, 'x');
  EXPECT_EQ(errorOf(sockets().sendto(socket, bytesOf(large), 0, loopback(peer.port()))),
            ws::error::messageTooLong);
  EXPECT_EQ(errorOf(sockets().sendto(socket, bytesOf("x"), 0, loopback(0))),
            ws::error::addressNotAvailable);
}

TEST_F(SocketsOfPosix, WaitUntilTheyAreSelected) {
  const Peer listener = Peer::listening();
  const std::int32_t socket = newSocket();
  EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), 0);
  const Peer peer = listener.accept();
  std::thread later([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    peer.send("late");
  });
  EXPECT_EQ(receive(socket, 10), "late");
  later.join();
  const std::uint16_t closed = Peer::listening().port();
  EXPECT_EQ(errorOf(sockets().connect(newSocket(), loopback(closed))), ws::error::refused);
}

TEST_F(SocketsOfPosix, RefuseFlagsThatTheyDoNotKnow) {
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  EXPECT_EQ(receive(socket, 1, 0x100), "[10045]");
  EXPECT_EQ(errorOf(sockets().send(socket, bytesOf("x"), 0x40)), ws::error::operationNotSupported);
}

TEST_F(SocketsOfPosix, EndAtTheLimitOfOpenFiles) {
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  const rlimit low{300, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &low);
  int opened = 0;
  while (sockets().socket(ws::internet, ws::stream, ws::tcp) > 0) ++opened;
  EXPECT_EQ(lastError(), ws::error::tooManyFiles);
  EXPECT_GT(opened, 200);
  EXPECT_LT(opened, 300);
  ::setrlimit(RLIMIT_NOFILE, &before);
}

// ---- texts

TEST_F(SocketsOfPosix, ReadAndWriteDottedAddresses) {
  const auto network = [](std::uint32_t value) { return static_cast<std::int32_t>(htonl(value)); };
  EXPECT_EQ(sockets().inet_addr(u"127.0.0.1"), network(0x7F000001));
  EXPECT_EQ(sockets().inet_addr(u"1.0.0.0"), 1);
  EXPECT_EQ(sockets().inet_addr(u"127.1"), network(0x7F000001));
  EXPECT_EQ(sockets().inet_addr(u"10.1.2"), network(0x0A010002));
  EXPECT_EQ(sockets().inet_addr(u"0x7f000001"), network(0x7F000001));
  for (const TextView text : {u"255.255.255.255", u"", u"localhost", u"1.2.3.4.5", u"256.1.1.1"}) {
    EXPECT_EQ(sockets().inet_addr(text), -1) << toUtf8(text);
  }
  EXPECT_STREQ(sockets().inet_ntoa(network(0xC0A80114)), "192.168.1.20");
  EXPECT_STREQ(sockets().inet_ntoa(-1), "255.255.255.255");
}

TEST_F(SocketsOfPosix, KnowTheMachine) {
  char name[256] = {};
  EXPECT_EQ(sockets().gethostname(name, sizeof name), 0);
  EXPECT_STREQ(name, "localhost");
  EXPECT_EQ(errorOf(sockets().gethostname(name, 9)), ws::error::badAddress);
  EXPECT_EQ(sockets().gethostname(name, 10), 0);
  for (const TextView own : {u"localhost", u"", u"127.0.0.1"}) {
    const HostRecord* const host = sockets().gethostbyname(own);
    ASSERT_NE(host, nullptr) << toUtf8(own);
    EXPECT_EQ(host->addressType, ws::internet);
    EXPECT_EQ(host->addressLength, 4);
    EXPECT_EQ(host->aliases[0], nullptr);
    EXPECT_EQ(std::string(host->addresses[0], 4), std::string("\x7F\0\0\1", 4));
    EXPECT_EQ(host->addresses[1], nullptr);
    EXPECT_STREQ(host->name, own.starts_with(u"1") ? "127.0.0.1" : "localhost");
  }
  EXPECT_EQ(sockets().gethostbyname(u"nowhere.example"), nullptr);
  EXPECT_EQ(lastError(), ws::error::hostNotFound);
}

}  // namespace
}  // namespace zev::posix
