// What the sockets of every binding do, on 127.0.0.1 and with ports that the system chooses.

#include <array>
#include <cstring>
#include <optional>

#include "socket/contract.h"

namespace zev::socket_bench {
namespace {

namespace error = winsock::error;
using winsock::fdAccept;
using winsock::fdClose;
using winsock::fdConnect;
using winsock::fdRead;
using winsock::fdWrite;

constexpr std::int32_t everyEvent = fdRead | fdWrite | fdAccept | fdConnect | fdClose;
constexpr std::uint32_t eventMessage = Ear::firstMessage + 1;
constexpr std::uint32_t lookUpMessage = Ear::firstMessage;
constexpr std::uint32_t otherMessage = Ear::firstMessage + 2;
constexpr std::int32_t noSuchSocket = 0x7FFF;
constexpr std::size_t lookUpSize = 1024;
const Text unknownName = u"no-such-host.invalid";

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// A notification, taken apart.
struct Event {
  std::int32_t socket = 0;
  std::int32_t event = 0;
  std::int32_t error = 0;
};

Event eventOf(const WindowMessage& message) {
  const auto words = static_cast<std::uint32_t>(message.lParam);
  return {static_cast<std::int32_t>(message.wParam), static_cast<std::int32_t>(words & 0xFFFF),
          static_cast<std::int32_t>(words >> 16)};
}

/// The service before anybody has started it.
class ServiceContract : public ContractTest {
 protected:
  ~ServiceContract() override {
    while (sockets().WSACleanup() == 0) {
    }
  }
  std::int32_t lastError() { return sockets().WSAGetLastError(); }
  std::int32_t make(std::int32_t type) { return sockets().socket(winsock::internet, type, 0); }
};

class SocketsContract : public ContractTest {
 protected:
  SocketsContract() { EXPECT_EQ(sockets().WSAStartup(winsock::version), 0); }
  ~SocketsContract() override {
    EXPECT_EQ(sockets().WSACleanup(), 0);
    EXPECT_LE(bench().openSockets(), 0);
  }

  // ---- calls

  std::int32_t lastError() { return sockets().WSAGetLastError(); }
  std::int32_t tcp() {
    const std::int32_t made = sockets().socket(winsock::internet, winsock::stream, winsock::tcp);
    EXPECT_NE(made, winsock::noSocket) << lastError();
    return made;
  }
  std::int32_t udp() {
    const std::int32_t made = sockets().socket(winsock::internet, winsock::datagram, winsock::udp);
    EXPECT_NE(made, winsock::noSocket) << lastError();
    return made;
  }
  std::int32_t select(std::int32_t socket, std::int32_t mask = everyEvent) {
    return sockets().WSAAsyncSelect(socket, ear_.window(), eventMessage, mask);
  }
  SocketAddress loopback() {
    SocketAddress address;
    address.address = sockets().inet_addr(u"127.0.0.1");
    return address;
  }
  SocketAddress nameOf(std::int32_t socket) {
    SocketAddress address;
    EXPECT_EQ(sockets().getsockname(socket, address), 0) << lastError();
    return address;
  }
  /// Binds to a port that the system chooses, and gives the address.
  SocketAddress bound(std::int32_t socket) {
    EXPECT_EQ(sockets().bind(socket, loopback()), 0) << lastError();
    return nameOf(socket);
  }
  std::int32_t send(std::int32_t socket, std::string_view text) {
    return sockets().send(socket, bytesOf(text), 0);
  }
  std::int32_t sendTo(std::int32_t socket, std::string_view text, const SocketAddress& receiver) {
    return sockets().sendto(socket, bytesOf(text), 0, receiver);
  }
  /// What one recv of at most so many bytes gives; nothing if it fails.
  std::optional<std::string> receive(std::int32_t socket, std::size_t most = 4096,
                                     std::int32_t flags = 0) {
    std::vector<std::uint8_t> bytes(most);
    const std::int32_t count = sockets().recv(socket, bytes, flags);
    if (count < 0) return std::nullopt;
    return std::string(bytes.begin(), bytes.begin() + count);
  }
  std::int32_t waiting(std::int32_t socket) {
    std::int32_t count = -1;
    EXPECT_EQ(sockets().ioctlsocket(socket, winsock::bytesWaiting, count), 0) << lastError();
    return count;
  }

  // ---- notifications

  Ear& ear() { return ear_; }
  std::vector<Event> events(std::int32_t socket, std::int32_t event) {
    std::vector<Event> found;
    for (const WindowMessage& each : ear_.messages) {
      if (each.message != eventMessage) continue;
      const Event taken = eventOf(each);
      if (taken.socket == socket && taken.event == event) found.push_back(taken);
    }
    return found;
  }
  std::size_t count(std::int32_t socket, std::int32_t event) {
    return events(socket, event).size();
  }
  /// Waits for the n-th notification of an event.
  testing::AssertionResult comes(std::int32_t socket, std::int32_t event, std::size_t number = 1) {
    if (waitUntil([&] { return count(socket, event) >= number; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << "event " << event << " has come " << count(socket, event) << " times";
  }
  /// The error of the last notification of an event.
  std::int32_t errorOf(std::int32_t socket, std::int32_t event) {
    const std::vector<Event> found = events(socket, event);
    return found.empty() ? -1 : found.back().error;
  }
  /// All events of a socket in the order in which they came.
  std::vector<std::int32_t> order(std::int32_t socket) {
    std::vector<std::int32_t> found;
    for (const WindowMessage& each : ear_.messages) {
      const Event taken = eventOf(each);
      if (each.message == eventMessage && taken.socket == socket) found.push_back(taken.event);
    }
    return found;
  }

  // ---- what many cases begin with

  std::int32_t listener(std::int32_t mask = everyEvent) {
    const std::int32_t socket = tcp();
    EXPECT_EQ(select(socket, mask), 0);
    bound(socket);
    EXPECT_EQ(sockets().listen(socket, 5), 0) << lastError();
    return socket;
  }
  /// Begins to connect a selected socket.
  std::int32_t connecting(const SocketAddress& address) {
    const std::int32_t socket = tcp();
    EXPECT_EQ(select(socket), 0);
    EXPECT_EQ(sockets().connect(socket, address), winsock::failed);
    EXPECT_EQ(lastError(), error::wouldBlock);
    return socket;
  }
  /// An address at which nobody listens.
  SocketAddress deaf() {
    const std::int32_t socket = tcp();
    const SocketAddress address = bound(socket);
    EXPECT_EQ(sockets().closesocket(socket), 0);
    return address;
  }
  struct Pair {
    std::int32_t listener = winsock::noSocket;
    std::int32_t client = winsock::noSocket;
    std::int32_t server = winsock::noSocket;
  };
  /// A connection whose ends are both selected, the first notifications of both being over.
  Pair connected() {
    Pair pair;
    pair.listener = listener();
    pair.client = connecting(nameOf(pair.listener));
    EXPECT_TRUE(comes(pair.listener, fdAccept));
    SocketAddress peer;
    pair.server = sockets().accept(pair.listener, peer);
    EXPECT_NE(pair.server, winsock::noSocket) << lastError();
    EXPECT_TRUE(comes(pair.client, fdWrite));
    EXPECT_TRUE(comes(pair.server, fdWrite));
    return pair;
  }
  struct Datagrams {
    std::int32_t one = winsock::noSocket;
    std::int32_t other = winsock::noSocket;
    SocketAddress oneAddress;
    SocketAddress otherAddress;
  };
  /// Two bound sockets of datagrams, selected.
  Datagrams datagrams() {
    Datagrams both{udp(), udp(), {}, {}};
    both.oneAddress = bound(both.one);
    both.otherAddress = bound(both.other);
    EXPECT_EQ(select(both.one), 0);
    EXPECT_EQ(select(both.other), 0);
    return both;
  }

  /// Every call that names a socket, as this one.
  std::vector<std::pair<const char*, std::function<std::int32_t()>>> callsOf(std::int32_t socket) {
    Sockets& all = sockets();
    return {
        {"WSAAsyncSelect", [=, this] { return select(socket); }},
        {"closesocket", [=, &all] { return all.closesocket(socket); }},
        {"connect", [=, this, &all] { return all.connect(socket, loopback()); }},
        {"bind", [=, this, &all] { return all.bind(socket, loopback()); }},
        {"listen", [=, &all] { return all.listen(socket, 5); }},
        {"accept", [=, this, &all] { return all.accept(socket, scratch_); }},
        {"getpeername", [=, this, &all] { return all.getpeername(socket, scratch_); }},
        {"getsockname", [=, this, &all] { return all.getsockname(socket, scratch_); }},
        {"getsockopt",
         [=, this, &all] {
           return all.getsockopt(socket, winsock::socketLevel, winsock::sendBufferSize, number_);
         }},
        {"setsockopt",
         [=, &all] {
           return all.setsockopt(socket, winsock::socketLevel, winsock::sendBufferSize, 8192);
         }},
        {"ioctlsocket",
         [=, this, &all] { return all.ioctlsocket(socket, winsock::bytesWaiting, number_); }},
        {"send", [=, this] { return send(socket, "x"); }},
        {"shutdown", [=, &all] { return all.shutdown(socket, winsock::sendingEnd); }},
        {"sendto", [=, this] { return sendTo(socket, "x", loopback()); }},
        {"recv", [=, this, &all] { return all.recv(socket, bytes_, 0); }},
        {"recvfrom", [=, this, &all] { return all.recvfrom(socket, bytes_, 0, scratch_); }},
    };
  }

 private:
  Ear ear_{windows()};
  SocketAddress scratch_;
  std::int32_t number_ = 0;
  std::array<std::uint8_t, 8> bytes_ = {};
};

// ---- the service

TEST_F(ServiceContract, NothingWorksBeforeTheStart) {
  SocketAddress address;
  std::int32_t number = 0;
  std::array<std::uint8_t, 8> bytes = {};
  std::array<char, lookUpSize> text = {};
  Ear ear(windows());
  Sockets& all = sockets();
  const std::vector<std::pair<const char*, std::function<bool()>>> calls = {
      {"WSACleanup", [&] { return all.WSACleanup() == -1; }},
      {"WSAAsyncSelect",
       [&] { return all.WSAAsyncSelect(1, ear.window(), eventMessage, everyEvent) == -1; }},
      {"WSAAsyncGetHostByName",
       [&] {
         return all.WSAAsyncGetHostByName(ear.window(), lookUpMessage, u"localhost", text.data(),
                                          static_cast<std::int32_t>(lookUpSize)) == 0;
       }},
      {"WSACancelAsyncRequest", [&] { return all.WSACancelAsyncRequest(1) == -1; }},
      {"socket", [&] { return make(winsock::stream) == -1; }},
      {"closesocket", [&] { return all.closesocket(1) == -1; }},
      {"connect", [&] { return all.connect(1, address) == -1; }},
      {"bind", [&] { return all.bind(1, address) == -1; }},
      {"listen", [&] { return all.listen(1, 5) == -1; }},
      {"accept", [&] { return all.accept(1, address) == -1; }},
      {"getpeername", [&] { return all.getpeername(1, address) == -1; }},
      {"getsockname", [&] { return all.getsockname(1, address) == -1; }},
      {"getsockopt",
       [&] {
         return all.getsockopt(1, winsock::socketLevel, winsock::sendBufferSize, number) == -1;
       }},
      {"setsockopt",
       [&] { return all.setsockopt(1, winsock::socketLevel, winsock::sendBufferSize, 1) == -1; }},
      {"ioctlsocket", [&] { return all.ioctlsocket(1, winsock::bytesWaiting, number) == -1; }},
      {"send", [&] { return all.send(1, bytes, 0) == -1; }},
      {"shutdown", [&] { return all.shutdown(1, winsock::sendingEnd) == -1; }},
      {"sendto", [&] { return all.sendto(1, bytes, 0, address) == -1; }},
      {"recv", [&] { return all.recv(1, bytes, 0) == -1; }},
      {"recvfrom", [&] { return all.recvfrom(1, bytes, 0, address) == -1; }},
      {"gethostname", [&] { return all.gethostname(text.data(), 256) == -1; }},
      {"gethostbyname", [&] { return all.gethostbyname(u"localhost") == nullptr; }},
  };
  // inet_addr and inet_ntoa ask nobody; systems differ in whether they work before the start.
  for (const auto& [name, fails] : calls) {
    EXPECT_TRUE(fails()) << name;
    EXPECT_EQ(lastError(), error::notStarted) << name;
  }
}

TEST_F(ServiceContract, EachStartIsTakenBackOnce) {
  EXPECT_EQ(sockets().WSAStartup(winsock::version), 0);
  EXPECT_EQ(sockets().WSAStartup(winsock::version), 0);
  EXPECT_EQ(sockets().WSACleanup(), 0);
  const std::int32_t socket = make(winsock::stream);
  EXPECT_NE(socket, winsock::noSocket);
  EXPECT_EQ(sockets().WSACleanup(), 0);
  EXPECT_EQ(sockets().WSACleanup(), winsock::failed);
  EXPECT_EQ(lastError(), error::notStarted);
}

TEST_F(ServiceContract, TheLastCleanUpClosesWhatIsLeftOpen) {
  ASSERT_EQ(sockets().WSAStartup(winsock::version), 0);
  const std::int32_t stream = make(winsock::stream);
  const std::int32_t datagram = make(winsock::datagram);
  ASSERT_EQ(sockets().WSACleanup(), 0);
  EXPECT_LE(bench().openSockets(), 0);
  EXPECT_EQ(sockets().closesocket(stream), winsock::failed);
  EXPECT_EQ(lastError(), error::notStarted);
  ASSERT_EQ(sockets().WSAStartup(winsock::version), 0);
  for (const std::int32_t each : {stream, datagram}) {
    EXPECT_EQ(sockets().closesocket(each), winsock::failed);
    EXPECT_EQ(lastError(), error::notSocket);
  }
}

TEST_F(ServiceContract, ItCanBeStartedAnewBehindItsEnd) {
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(sockets().WSAStartup(winsock::version), 0);
    EXPECT_NE(make(winsock::stream), winsock::noSocket);
    ASSERT_EQ(sockets().WSACleanup(), 0);
    EXPECT_EQ(make(winsock::stream), winsock::noSocket);
    EXPECT_EQ(lastError(), error::notStarted);
  }
}

// ---- sockets

TEST_F(SocketsContract, EachSocketHasAHandleOfItsOwn) {
  const std::int32_t one = tcp();
  const std::int32_t other = udp();
  EXPECT_GT(one, 0);
  EXPECT_GT(other, 0);
  EXPECT_NE(one, other);
}

TEST_F(SocketsContract, TheProtocolCanBeLeftToTheType) {
  for (const std::int32_t type : {winsock::stream, winsock::datagram}) {
    EXPECT_NE(sockets().socket(winsock::internet, type, 0), winsock::noSocket);
  }
}

TEST_F(SocketsContract, OtherFamiliesAreNotThere) {
  EXPECT_EQ(sockets().socket(77, winsock::stream, 0), winsock::noSocket);
  EXPECT_EQ(lastError(), error::familyNotSupported);
}

TEST_F(SocketsContract, TheBenchCountsSockets) {
  if (bench().openSockets() < 0) GTEST_SKIP() << bench().name() << " cannot count sockets";
  const std::int32_t socket = tcp();
  EXPECT_EQ(bench().openSockets(), 1);
  EXPECT_EQ(sockets().closesocket(socket), 0);
  EXPECT_EQ(bench().openSockets(), 0);
}

TEST_F(SocketsContract, AHandleThatIsNoneFailsEveryCall) {
  for (const auto& [name, call] : callsOf(noSuchSocket)) {
    EXPECT_EQ(call(), winsock::failed) << name;
    EXPECT_EQ(lastError(), error::notSocket) << name;
  }
}

TEST_F(SocketsContract, AHandleThatWasClosedFailsEveryCall) {
  const std::int32_t socket = tcp();
  EXPECT_EQ(sockets().closesocket(socket), 0);
  for (const auto& [name, call] : callsOf(socket)) {
    EXPECT_EQ(call(), winsock::failed) << name;
    EXPECT_EQ(lastError(), error::notSocket) << name;
  }
}

// ---- addresses

TEST_F(SocketsContract, PortZeroLetsTheSystemChoose) {
  const std::int32_t one = tcp();
  const std::int32_t other = tcp();
  const SocketAddress first = bound(one);
  const SocketAddress second = bound(other);
  EXPECT_EQ(first.family, winsock::internet);
  EXPECT_EQ(first.address, loopback().address);
  EXPECT_NE(first.port, 0);
  EXPECT_NE(first.port, second.port);
}

TEST_F(SocketsContract, AnAddressThatSomebodyHasIsInUse) {
  const SocketAddress taken = nameOf(listener());
  EXPECT_EQ(sockets().bind(tcp(), taken), winsock::failed);
  EXPECT_EQ(lastError(), error::addressInUse);
  const SocketAddress datagrams = bound(udp());
  EXPECT_EQ(sockets().bind(udp(), datagrams), winsock::failed);
  EXPECT_EQ(lastError(), error::addressInUse);
}

TEST_F(SocketsContract, APortIsFreeAgainWhenItsSocketIsClosed) {
  const std::int32_t socket = listener();
  const SocketAddress address = nameOf(socket);
  EXPECT_EQ(sockets().closesocket(socket), 0);
  const std::int32_t next = tcp();
  EXPECT_EQ(sockets().bind(next, address), 0) << lastError();
  EXPECT_EQ(sockets().listen(next, 5), 0) << lastError();
}

TEST_F(SocketsContract, AListenersPortIsFreeAgainWhileItsConnectionsLinger) {
  const Pair pair = connected();
  const SocketAddress address = nameOf(pair.listener);
  EXPECT_EQ(sockets().closesocket(pair.server), 0);
  EXPECT_TRUE(comes(pair.client, fdClose));
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  EXPECT_EQ(sockets().closesocket(pair.listener), 0);
  quiet();
  EXPECT_EQ(sockets().bind(tcp(), address), 0) << lastError();
}

TEST_F(SocketsContract, StreamsAndDatagramsHavePortsOfTheirOwn) {
  const SocketAddress address = bound(tcp());
  EXPECT_EQ(sockets().bind(udp(), address), 0) << lastError();
}

TEST_F(SocketsContract, AnAddressOfAnotherMachineIsNotAvailable) {
  SocketAddress elsewhere;
  elsewhere.address = sockets().inet_addr(u"203.0.113.7");
  EXPECT_EQ(sockets().bind(tcp(), elsewhere), winsock::failed);
  EXPECT_EQ(lastError(), error::addressNotAvailable);
}

TEST_F(SocketsContract, ASocketHasOneAddress) {
  const std::int32_t socket = tcp();
  bound(socket);
  EXPECT_EQ(sockets().bind(socket, loopback()), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(SocketsContract, BothEndsKnowBothAddresses) {
  const std::int32_t waits = listener();
  const std::int32_t client = connecting(nameOf(waits));
  ASSERT_TRUE(comes(waits, fdAccept));
  SocketAddress told;
  const std::int32_t server = sockets().accept(waits, told);
  ASSERT_TRUE(comes(client, fdConnect));
  SocketAddress ofClient;
  SocketAddress ofServer;
  EXPECT_EQ(sockets().getpeername(client, ofClient), 0);
  EXPECT_EQ(sockets().getpeername(server, ofServer), 0);
  EXPECT_EQ(ofClient.port, nameOf(waits).port);
  EXPECT_EQ(ofClient.address, loopback().address);
  EXPECT_EQ(ofServer.port, nameOf(client).port);
  EXPECT_EQ(ofServer.address, loopback().address);
  EXPECT_EQ(told.port, ofServer.port);
  EXPECT_EQ(told.address, ofServer.address);
  EXPECT_EQ(nameOf(server).port, nameOf(waits).port);
}

TEST_F(SocketsContract, WhoHasNoPeerHasNoPeersName) {
  SocketAddress address;
  EXPECT_EQ(sockets().getpeername(tcp(), address), winsock::failed);
  EXPECT_EQ(lastError(), error::notConnected);
  EXPECT_EQ(sockets().getpeername(listener(), address), winsock::failed);
  EXPECT_EQ(lastError(), error::notConnected);
}

// ---- options

TEST_F(SocketsContract, BuffersHaveSizes) {
  const std::int32_t socket = tcp();
  for (const std::int32_t option : {winsock::sendBufferSize, winsock::receiveBufferSize}) {
    std::int32_t size = 0;
    EXPECT_EQ(sockets().getsockopt(socket, winsock::socketLevel, option, size), 0);
    EXPECT_GT(size, 0);
    EXPECT_EQ(sockets().setsockopt(socket, winsock::socketLevel, option, 16384), 0);
    EXPECT_EQ(sockets().getsockopt(socket, winsock::socketLevel, option, size), 0);
    EXPECT_GE(size, 16384);  // systems may take more
  }
}

TEST_F(SocketsContract, DatagramsHaveALargestSize) {
  const Datagrams both = datagrams();
  std::int32_t size = 0;
  EXPECT_EQ(sockets().getsockopt(both.one, winsock::socketLevel, winsock::maximumMessage, size), 0);
  EXPECT_GE(size, 512);
  EXPECT_LE(size, 65527);
  EXPECT_EQ(sendTo(both.one, std::string(65536, 'x'), both.otherAddress), winsock::failed);
  EXPECT_EQ(lastError(), error::messageTooLong);
}

TEST_F(SocketsContract, StreamsHaveNoLargestSizeOfAMessage) {
  if (onWine()) GTEST_SKIP() << "Wine tells the one of datagrams";
  std::int32_t size = 0;
  EXPECT_EQ(sockets().getsockopt(tcp(), winsock::socketLevel, winsock::maximumMessage, size),
            winsock::failed);
  EXPECT_EQ(lastError(), error::badProtocolOption);
}

TEST_F(SocketsContract, DatagramsCanBeAllowedToBroadcast) {
  const std::int32_t socket = udp();
  std::int32_t allowed = -1;
  const auto read = [&] {
    return sockets().getsockopt(socket, winsock::socketLevel, winsock::broadcast, allowed);
  };
  EXPECT_EQ(read(), 0);
  EXPECT_EQ(allowed, 0);
  EXPECT_EQ(sockets().setsockopt(socket, winsock::socketLevel, winsock::broadcast, 1), 0);
  EXPECT_EQ(read(), 0);
  EXPECT_NE(allowed, 0);
}

TEST_F(SocketsContract, ABroadcastNeedsToBeAllowed) {
  SocketAddress everybody = bound(udp());
  everybody.address = sockets().inet_addr(u"255.255.255.255");
  EXPECT_EQ(sendTo(udp(), "x", everybody), winsock::failed);
  // A machine with nothing but loopback may find before that the way leads nowhere.
  const std::int32_t reason = lastError();
  EXPECT_TRUE(reason == error::accessDenied || reason == error::networkUnreachable) << reason;
}

// ---- connecting

TEST_F(SocketsContract, ConnectingRunsAndFdConnectTellsItsEnd) {
  const std::int32_t client = connecting(nameOf(listener()));
  EXPECT_EQ(count(client, fdConnect), 0u);
  ASSERT_TRUE(comes(client, fdConnect));
  EXPECT_EQ(errorOf(client, fdConnect), 0);
  quiet();
  EXPECT_EQ(order(client), (std::vector<std::int32_t>{fdConnect, fdWrite}));
}

TEST_F(SocketsContract, ABoundSocketConnectsFromItsAddress) {
  const std::int32_t waits = listener();
  const std::int32_t client = tcp();
  EXPECT_EQ(select(client), 0);
  const SocketAddress own = bound(client);
  EXPECT_EQ(sockets().connect(client, nameOf(waits)), winsock::failed);
  EXPECT_EQ(lastError(), error::wouldBlock);
  ASSERT_TRUE(comes(waits, fdAccept));
  SocketAddress peer;
  EXPECT_NE(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(peer.port, own.port);
}

TEST_F(SocketsContract, AConnectionThatIsRefusedIsAnErrorOfFdConnect) {
  const std::int32_t client = connecting(deaf());
  ASSERT_TRUE(comes(client, fdConnect));
  EXPECT_EQ(errorOf(client, fdConnect), error::refused);
  quiet();
  EXPECT_EQ(order(client), std::vector<std::int32_t>{fdConnect});
}

TEST_F(SocketsContract, ASocketConnectsOnce) {
  const Pair pair = connected();
  EXPECT_EQ(sockets().connect(pair.client, nameOf(pair.listener)), winsock::failed);
  EXPECT_EQ(lastError(), error::alreadyConnected);
}

TEST_F(SocketsContract, AnUnselectedSocketWaits) {
  const std::int32_t waits = tcp();
  const SocketAddress address = bound(waits);
  ASSERT_EQ(sockets().listen(waits, 5), 0);
  const std::int32_t client = tcp();
  ASSERT_EQ(sockets().connect(client, address), 0) << lastError();
  SocketAddress peer;
  const std::int32_t server = sockets().accept(waits, peer);
  ASSERT_NE(server, winsock::noSocket) << lastError();
  EXPECT_EQ(send(client, "abc"), 3);
  EXPECT_EQ(receive(server), "abc");
  EXPECT_EQ(sockets().closesocket(client), 0);
  EXPECT_EQ(receive(server), "");
}

TEST_F(SocketsContract, AnUnselectedSocketIsToldTheRefusal) {
  EXPECT_EQ(sockets().connect(tcp(), deaf()), winsock::failed);
  EXPECT_EQ(lastError(), error::refused);
}

// ---- accepting

TEST_F(SocketsContract, ASelectedListenerDoesNotWait) {
  SocketAddress peer;
  EXPECT_EQ(sockets().accept(listener(), peer), winsock::noSocket);
  EXPECT_EQ(lastError(), error::wouldBlock);
}

TEST_F(SocketsContract, OnlyAListenerAccepts) {
  SocketAddress peer;
  const std::int32_t socket = tcp();
  bound(socket);
  EXPECT_EQ(sockets().accept(socket, peer), winsock::noSocket);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(SocketsContract, DatagramsDoNotListen) {
  const std::int32_t socket = udp();
  bound(socket);
  EXPECT_EQ(sockets().listen(socket, 5), winsock::failed);
  EXPECT_EQ(lastError(), error::operationNotSupported);
}

TEST_F(SocketsContract, FdAcceptComesAgainBehindAcceptOnly) {
  const std::int32_t waits = listener();
  const std::int32_t one = connecting(nameOf(waits));
  ASSERT_TRUE(comes(waits, fdAccept));
  const std::int32_t other = connecting(nameOf(waits));
  ASSERT_TRUE(comes(one, fdConnect));
  ASSERT_TRUE(comes(other, fdConnect));
  quiet();
  EXPECT_EQ(count(waits, fdAccept), 1u);
  SocketAddress peer;
  EXPECT_NE(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(peer.port, nameOf(one).port);
  ASSERT_TRUE(comes(waits, fdAccept, 2));
  EXPECT_NE(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(peer.port, nameOf(other).port);
  quiet();
  EXPECT_EQ(count(waits, fdAccept), 2u);
}

TEST_F(SocketsContract, FdAcceptComesForAConnectionBehindAnEmptyQueue) {
  const Pair pair = connected();
  quiet();
  EXPECT_EQ(count(pair.listener, fdAccept), 1u);
  connecting(nameOf(pair.listener));
  EXPECT_TRUE(comes(pair.listener, fdAccept, 2));
}

TEST_F(SocketsContract, AListenerWithoutRoomForACallerRestsUntilASocketIsClosed) {
  const std::int32_t waits = listener();
  const std::int32_t spare = tcp();
  const std::int32_t one = connecting(nameOf(waits));
  ASSERT_TRUE(comes(waits, fdAccept));
  const std::int32_t other = connecting(nameOf(waits));
  ASSERT_TRUE(comes(other, fdConnect));
  bench().setFull(true);
  SocketAddress peer;
  EXPECT_EQ(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(lastError(), error::tooManyFiles);
  quiet();
  EXPECT_EQ(count(waits, fdAccept), 1u);
  EXPECT_EQ(sockets().closesocket(spare), 0);
  ASSERT_TRUE(comes(waits, fdAccept, 2));
  EXPECT_NE(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(peer.port, nameOf(one).port);
  bench().setFull(false);
  ASSERT_TRUE(comes(waits, fdAccept, 3));
  EXPECT_NE(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(peer.port, nameOf(other).port);
}

TEST_F(SocketsContract, AListenerWithoutRoomThatIsClosedIsForgotten) {
  const std::int32_t waits = listener();
  connecting(nameOf(waits));
  ASSERT_TRUE(comes(waits, fdAccept));
  bench().setFull(true);
  SocketAddress peer;
  EXPECT_EQ(sockets().accept(waits, peer), winsock::noSocket);
  EXPECT_EQ(sockets().closesocket(waits), 0);
  bench().setFull(false);
  quiet();
  EXPECT_EQ(count(waits, fdAccept), 1u);
}

TEST_F(SocketsContract, AnAcceptedSocketInheritsTheSelection) {
  const std::int32_t waits = tcp();
  EXPECT_EQ(sockets().WSAAsyncSelect(waits, ear().window(), otherMessage, fdAccept | fdRead), 0);
  const SocketAddress address = bound(waits);
  ASSERT_EQ(sockets().listen(waits, 5), 0);
  const std::int32_t client = connecting(address);
  ASSERT_TRUE(waitUntil([&] { return ear().count(otherMessage) == 1; }));
  SocketAddress peer;
  const std::int32_t server = sockets().accept(waits, peer);
  EXPECT_EQ(receive(server), std::nullopt);
  EXPECT_EQ(lastError(), error::wouldBlock);
  ASSERT_TRUE(comes(client, fdConnect));
  EXPECT_EQ(send(client, "abc"), 3);
  ASSERT_TRUE(waitUntil([&] { return ear().count(otherMessage) == 2; }));
  const Event event = eventOf(ear().messages.back());
  EXPECT_EQ(event.socket, server);
  EXPECT_EQ(event.event, fdRead);
  EXPECT_EQ(receive(server), "abc");
  EXPECT_EQ(sockets().closesocket(client), 0);
  quiet();  // neither FD_WRITE nor FD_CLOSE is in the mask
  EXPECT_EQ(ear().count(otherMessage), 2u);
}

TEST_F(SocketsContract, WhatCameBeforeAcceptIsTold) {
  const std::int32_t waits = listener();
  const std::int32_t client = connecting(nameOf(waits));
  ASSERT_TRUE(comes(client, fdConnect));
  EXPECT_EQ(send(client, "abc"), 3);
  EXPECT_EQ(sockets().closesocket(client), 0);
  quiet();
  SocketAddress peer;
  const std::int32_t server = sockets().accept(waits, peer);
  ASSERT_NE(server, winsock::noSocket);
  ASSERT_TRUE(comes(server, fdRead));
  EXPECT_EQ(receive(server), "abc");
  EXPECT_TRUE(comes(server, fdClose));
}

// ---- the selection

TEST_F(SocketsContract, ANotificationCarriesSocketEventAndError) {
  const Pair pair = connected();
  ear().messages.clear();
  EXPECT_EQ(send(pair.client, "x"), 1);
  ASSERT_TRUE(comes(pair.server, fdRead));
  ASSERT_EQ(ear().messages.size(), 1u);
  const WindowMessage& message = ear().messages.front();
  EXPECT_EQ(message.window, ear().window());
  EXPECT_EQ(message.message, eventMessage);
  EXPECT_EQ(message.wParam, static_cast<std::uintptr_t>(pair.server));
  EXPECT_EQ(message.lParam, fdRead);
}

TEST_F(SocketsContract, ASelectedSocketDoesNotWait) {
  const Pair pair = connected();
  EXPECT_EQ(receive(pair.client), std::nullopt);
  EXPECT_EQ(lastError(), error::wouldBlock);
}

TEST_F(SocketsContract, OnlyEventsOfTheMaskArePosted) {
  const Pair pair = connected();
  EXPECT_EQ(select(pair.server, fdClose), 0);
  EXPECT_EQ(send(pair.client, "x"), 1);
  quiet();
  EXPECT_EQ(count(pair.server, fdRead), 0u);
  EXPECT_EQ(receive(pair.server), "x");
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  EXPECT_TRUE(comes(pair.server, fdClose));
}

TEST_F(SocketsContract, AMaskOfZeroEndsThePosting) {
  const Pair pair = connected();
  EXPECT_EQ(sockets().WSAAsyncSelect(pair.server, ear().window(), 0, 0), 0);
  ear().messages.clear();
  EXPECT_EQ(send(pair.client, "abc"), 3);
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  quiet();
  EXPECT_TRUE(order(pair.server).empty());
  EXPECT_EQ(receive(pair.server), "abc");
}

TEST_F(SocketsContract, SelectingTellsWhatIsThereAlready) {
  const Pair pair = connected();
  EXPECT_EQ(sockets().WSAAsyncSelect(pair.server, ear().window(), 0, 0), 0);
  EXPECT_EQ(send(pair.client, "abc"), 3);
  quiet();
  ear().messages.clear();
  EXPECT_EQ(select(pair.server, fdRead), 0);
  EXPECT_TRUE(comes(pair.server, fdRead));
}

TEST_F(SocketsContract, AClosedSocketIsHeardOfNoMore) {
  const Pair pair = connected();
  quiet();
  ear().messages.clear();
  EXPECT_EQ(sockets().closesocket(pair.server), 0);
  ASSERT_TRUE(comes(pair.client, fdClose));
  quiet();
  EXPECT_TRUE(order(pair.server).empty());
}

// ---- reading

TEST_F(SocketsContract, FdReadComesAgainBehindRecvOnly) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.client, "abc"), 3);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(send(pair.client, "def"), 3);
  quiet();
  EXPECT_EQ(count(pair.server, fdRead), 1u);
  EXPECT_EQ(receive(pair.server, 2), "ab");
  ASSERT_TRUE(comes(pair.server, fdRead, 2));
  EXPECT_EQ(receive(pair.server), "cdef");
  quiet();
  EXPECT_EQ(count(pair.server, fdRead), 2u);
  EXPECT_EQ(send(pair.client, "g"), 1);
  EXPECT_TRUE(comes(pair.server, fdRead, 3));
}

TEST_F(SocketsContract, FdReadComesAgainBehindALookAtWhatIsThere) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.client, "abc"), 3);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(receive(pair.server, 2, winsock::peek), "ab");
  EXPECT_TRUE(comes(pair.server, fdRead, 2));
  EXPECT_EQ(receive(pair.server), "abc");
}

TEST_F(SocketsContract, BytesComeInOrderAndWhole) {
  const Pair pair = connected();
  std::string sent;
  for (int each = 0; each < 5000; ++each) sent += static_cast<char>(each * 7);
  ASSERT_EQ(send(pair.client, sent), 5000);
  std::string got;
  EXPECT_TRUE(waitUntil([&] {
    while (const auto bytes = receive(pair.server, 777)) got += *bytes;
    return got.size() >= sent.size();
  }));
  EXPECT_EQ(got, sent);
}

TEST_F(SocketsContract, FionreadGivesWhatOneRecvCouldRead) {
  const Pair pair = connected();
  EXPECT_EQ(waiting(pair.server), 0);
  EXPECT_EQ(send(pair.client, "abcdef"), 6);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(waiting(pair.server), 6);
  EXPECT_EQ(receive(pair.server, 4), "abcd");
  EXPECT_EQ(waiting(pair.server), 2);
}

TEST_F(SocketsContract, WhoIsNotConnectedCannotSendOrReceive) {
  const std::int32_t socket = tcp();
  EXPECT_EQ(select(socket), 0);
  EXPECT_EQ(send(socket, "x"), winsock::failed);
  EXPECT_EQ(lastError(), onWine() ? error::connectionReset : error::notConnected);
  EXPECT_EQ(receive(socket), std::nullopt);
  EXPECT_EQ(lastError(), error::notConnected);
}

// ---- writing

TEST_F(SocketsContract, FdWriteComesOnceAtTheBeginning) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.client, "abc"), 3);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(receive(pair.server), "abc");
  quiet();
  EXPECT_EQ(count(pair.client, fdWrite), 1u);
  EXPECT_EQ(count(pair.server, fdWrite), 1u);
}

TEST_F(SocketsContract, FdWriteComesWhenThereIsRoomAgain) {
  const Pair pair = connected();
  const std::string piece(8192, 'x');
  std::size_t sent = 0;
  // Until it is full for good: a system may take in more while it wakes up.
  for (bool room = true; room;) {
    room = false;
    for (std::int32_t taken = 0; (taken = send(pair.client, piece)) > 0; room = true) {
      sent += static_cast<std::size_t>(taken);
      ASSERT_LT(sent, std::size_t{1} << 28);
    }
    ASSERT_EQ(lastError(), error::wouldBlock);
    quiet();
  }
  const std::size_t before = count(pair.client, fdWrite);
  quiet();
  EXPECT_EQ(count(pair.client, fdWrite), before);
  std::size_t got = 0;
  const auto drain = [&] {
    while (const auto bytes = receive(pair.server, 65536)) got += bytes->size();
    return got >= sent;
  };
  EXPECT_TRUE(waitUntil(drain));
  EXPECT_EQ(got, sent);
  EXPECT_TRUE(comes(pair.client, fdWrite, before + 1));
  quiet();
  EXPECT_EQ(count(pair.client, fdWrite), before + 1);
  EXPECT_EQ(send(pair.client, "end"), 3);
}

// ---- the end of a connection

TEST_F(SocketsContract, FdCloseComesOnceBehindAllData) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.server, "abc"), 3);
  EXPECT_EQ(sockets().closesocket(pair.server), 0);
  ASSERT_TRUE(comes(pair.client, fdRead));
  quiet();
  EXPECT_EQ(count(pair.client, fdClose), 0u);
  EXPECT_EQ(receive(pair.client, 1), "a");
  quiet();
  EXPECT_EQ(count(pair.client, fdClose), 0u);
  EXPECT_EQ(receive(pair.client), "bc");
  ASSERT_TRUE(comes(pair.client, fdClose));
  EXPECT_EQ(errorOf(pair.client, fdClose), 0);
  EXPECT_EQ(receive(pair.client), "");
  quiet();
  EXPECT_EQ(count(pair.client, fdClose), 1u);
}

TEST_F(SocketsContract, FdCloseComesWithoutDataToo) {
  const Pair pair = connected();
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  ASSERT_TRUE(comes(pair.server, fdClose));
  EXPECT_EQ(errorOf(pair.server, fdClose), 0);
  EXPECT_EQ(count(pair.server, fdRead), 0u);
  EXPECT_EQ(receive(pair.server), "");
}

TEST_F(SocketsContract, WhatWasSentBeforeTheEndArrives) {
  const Pair pair = connected();
  const std::string sent(6000, 'z');
  EXPECT_EQ(send(pair.client, sent), 6000);
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  std::string got;
  EXPECT_TRUE(waitUntil([&] {
    for (auto bytes = receive(pair.server); bytes && !bytes->empty();
         bytes = receive(pair.server)) {
      got += *bytes;
    }
    return got.size() >= sent.size();
  }));
  EXPECT_EQ(got, sent);
  EXPECT_TRUE(comes(pair.server, fdClose));
}

TEST_F(SocketsContract, AResetIsAnErrorOfFdClose) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.client, "nobody reads this"), 17);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(sockets().closesocket(pair.server), 0);  // with bytes unread: a reset
  ASSERT_TRUE(comes(pair.client, fdClose));
  // Under Wine the reset comes without a number.
  EXPECT_EQ(errorOf(pair.client, fdClose), onWine() ? 0 : error::connectionReset);
  quiet();
  EXPECT_EQ(count(pair.client, fdClose), 1u);
}

TEST_F(SocketsContract, OneDirectionEndsByItself) {
  const Pair pair = connected();
  EXPECT_EQ(send(pair.server, "answer"), 6);
  EXPECT_EQ(sockets().shutdown(pair.server, winsock::sendingEnd), 0);
  EXPECT_EQ(send(pair.server, "x"), winsock::failed);
  EXPECT_EQ(lastError(), error::shutDown);
  ASSERT_TRUE(comes(pair.client, fdRead));
  EXPECT_EQ(receive(pair.client), "answer");
  ASSERT_TRUE(comes(pair.client, fdClose));
  EXPECT_EQ(errorOf(pair.client, fdClose), 0);
  EXPECT_EQ(receive(pair.client), "");

  EXPECT_EQ(send(pair.client, "late"), 4);
  ASSERT_TRUE(comes(pair.server, fdRead));
  EXPECT_EQ(count(pair.server, fdClose), 0u);
  EXPECT_EQ(receive(pair.server), "late");
  EXPECT_EQ(sockets().closesocket(pair.client), 0);
  ASSERT_TRUE(comes(pair.server, fdClose));
  EXPECT_EQ(errorOf(pair.server, fdClose), 0);
}

TEST_F(SocketsContract, OnlySendingOfAConnectionEndsByItself) {
  const std::int32_t socket = tcp();
  EXPECT_EQ(sockets().shutdown(socket, winsock::sendingEnd), winsock::failed);
  EXPECT_EQ(lastError(), error::notConnected);
  const Pair pair = connected();
  EXPECT_EQ(sockets().shutdown(pair.client, 7), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
  EXPECT_EQ(send(pair.client, "abc"), 3);
}

// ---- datagrams

TEST_F(SocketsContract, ADatagramArrivesWholeWithItsSender) {
  const Datagrams both = datagrams();
  EXPECT_EQ(sendTo(both.one, "hello", both.otherAddress), 5);
  ASSERT_TRUE(comes(both.other, fdRead));
  EXPECT_EQ(waiting(both.other), 5);
  std::array<std::uint8_t, 16> bytes = {};
  SocketAddress sender;
  ASSERT_EQ(sockets().recvfrom(both.other, bytes, 0, sender), 5);
  EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 5), "hello");
  EXPECT_EQ(sender.family, winsock::internet);
  EXPECT_EQ(sender.port, both.oneAddress.port);
  EXPECT_EQ(sender.address, loopback().address);
}

TEST_F(SocketsContract, ASocketThatSendsGetsAnAddress) {
  const Datagrams both = datagrams();
  const std::int32_t sends = udp();
  EXPECT_EQ(select(sends), 0);
  EXPECT_EQ(sendTo(sends, "x", both.oneAddress), 1);
  EXPECT_NE(nameOf(sends).port, 0);
  EXPECT_TRUE(comes(both.one, fdRead));
}

TEST_F(SocketsContract, ASelectedSocketOfDatagramsDoesNotWait) {
  const Datagrams both = datagrams();
  EXPECT_EQ(receive(both.one), std::nullopt);
  EXPECT_EQ(lastError(), error::wouldBlock);
}

TEST_F(SocketsContract, FdWriteComesOnceForASocketThatNeedsNoConnection) {
  const Datagrams both = datagrams();
  ASSERT_TRUE(comes(both.one, fdWrite));
  EXPECT_EQ(sendTo(both.one, "x", both.otherAddress), 1);
  quiet();
  EXPECT_EQ(count(both.one, fdWrite), 1u);
}

TEST_F(SocketsContract, FdReadComesAgainForTheNextDatagram) {
  const Datagrams both = datagrams();
  EXPECT_EQ(sendTo(both.one, "first", both.otherAddress), 5);
  ASSERT_TRUE(comes(both.other, fdRead));
  EXPECT_EQ(sendTo(both.one, "second", both.otherAddress), 6);
  quiet();
  EXPECT_EQ(count(both.other, fdRead), 1u);
  EXPECT_EQ(receive(both.other), "first");
  ASSERT_TRUE(comes(both.other, fdRead, 2));
  EXPECT_EQ(receive(both.other), "second");
  quiet();
  EXPECT_EQ(count(both.other, fdRead), 2u);
}

TEST_F(SocketsContract, TheRestOfADatagramIsLost) {
  const Datagrams both = datagrams();
  EXPECT_EQ(sendTo(both.one, "abcdef", both.otherAddress), 6);
  EXPECT_EQ(sendTo(both.one, "next", both.otherAddress), 4);
  ASSERT_TRUE(comes(both.other, fdRead));
  quiet();
  std::array<std::uint8_t, 3> bytes = {};
  EXPECT_EQ(sockets().recv(both.other, bytes, 0), winsock::failed);
  EXPECT_EQ(lastError(), error::messageTooLong);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "abc");
  EXPECT_EQ(receive(both.other), "next");
}

TEST_F(SocketsContract, TheSenderOfACutDatagramIsTold) {
  const Datagrams both = datagrams();
  EXPECT_EQ(sendTo(both.one, "abcdef", both.otherAddress), 6);
  ASSERT_TRUE(comes(both.other, fdRead));
  std::array<std::uint8_t, 1> bytes = {};
  SocketAddress sender;
  EXPECT_EQ(sockets().recvfrom(both.other, bytes, 0, sender), winsock::failed);
  EXPECT_EQ(lastError(), error::messageTooLong);
  EXPECT_EQ(sender.port, both.oneAddress.port);
}

TEST_F(SocketsContract, ALookAtADatagramLeavesItThere) {
  const Datagrams both = datagrams();
  EXPECT_EQ(sendTo(both.one, "abc", both.otherAddress), 3);
  ASSERT_TRUE(comes(both.other, fdRead));
  EXPECT_EQ(receive(both.other, 16, winsock::peek), "abc");
  EXPECT_EQ(receive(both.other, 16), "abc");
}

TEST_F(SocketsContract, FionreadGivesTheSizeOfTheDatagramThatWaits) {
  const Datagrams both = datagrams();
  EXPECT_EQ(waiting(both.other), 0);
  EXPECT_EQ(sendTo(both.one, "abcde", both.otherAddress), 5);
  EXPECT_EQ(sendTo(both.one, "abcdefg", both.otherAddress), 7);
  ASSERT_TRUE(comes(both.other, fdRead));
  quiet();
  EXPECT_EQ(waiting(both.other), 5);
  EXPECT_EQ(receive(both.other), "abcde");
  EXPECT_EQ(waiting(both.other), 7);
}

TEST_F(SocketsContract, ALongDatagramArrivesWhole) {
  const Datagrams both = datagrams();
  const std::string sent(20000, 'd');
  EXPECT_EQ(sendTo(both.one, sent, both.otherAddress), 20000);
  ASSERT_TRUE(comes(both.other, fdRead));
  EXPECT_EQ(receive(both.other, 65536), sent);
}

// ---- looking names up

class LookUpContract : public SocketsContract {
 protected:
  /// Where a look-up writes, aligned as blocks of memory are.
  struct Buffer {
    alignas(16) std::array<char, lookUpSize> bytes = {};
    const HostRecord& record() const { return *reinterpret_cast<const HostRecord*>(bytes.data()); }
    bool holds(const void* address) const {
      const auto* const place = static_cast<const char*>(address);
      return place >= bytes.data() && place < bytes.data() + bytes.size();
    }
  };

  std::int32_t begin(TextView name, Buffer& buffer) {
    const std::int32_t handle =
        sockets().WSAAsyncGetHostByName(ear().window(), lookUpMessage, name, buffer.bytes.data(),
                                        static_cast<std::int32_t>(lookUpSize));
    EXPECT_NE(handle, 0) << lastError();
    return handle;
  }
  const WindowMessage* answer(std::int32_t handle) {
    for (const WindowMessage& each : ear().messages) {
      if (each.message == lookUpMessage && each.wParam == static_cast<std::uintptr_t>(handle)) {
        return &each;
      }
    }
    return nullptr;
  }
  /// The error of the answer; waits for it.
  std::int32_t errorOfAnswer(std::int32_t handle) {
    if (!waitUntil([&] { return answer(handle) != nullptr; })) return -1;
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(answer(handle)->lParam) >> 16);
  }
  static std::int32_t firstAddress(const HostRecord& record) {
    std::int32_t address = 0;
    std::memcpy(&address, record.addresses[0], sizeof(address));
    return address;
  }
};

TEST_F(LookUpContract, ALookUpFillsTheBufferWithAllOfTheRecord) {
  Buffer buffer;
  ASSERT_EQ(errorOfAnswer(begin(u"localhost", buffer)), 0);
  const HostRecord& record = buffer.record();
  EXPECT_EQ(record.addressType, winsock::internet);
  EXPECT_EQ(record.addressLength, 4);
  ASSERT_TRUE(buffer.holds(record.name));
  ASSERT_TRUE(buffer.holds(record.aliases));
  ASSERT_TRUE(buffer.holds(record.addresses));
  ASSERT_TRUE(buffer.holds(record.addresses[0]));
  EXPECT_NE(*record.name, '\0');
  EXPECT_EQ(firstAddress(record), loopback().address);
  std::size_t addresses = 0;
  while (record.addresses[addresses] != nullptr && addresses < 10) ++addresses;
  EXPECT_GE(addresses, 1u);
  EXPECT_LT(addresses, 10u);
}

TEST_F(LookUpContract, TheListOfAddressesLiesBehindThreeFields) {
  const HostRecord record;
  const auto offset =
      reinterpret_cast<const char*>(&record.addresses) - reinterpret_cast<const char*>(&record);
  EXPECT_EQ(offset, sizeof(void*) == 4 ? 12 : 24);
}

TEST_F(LookUpContract, ANameWithoutAnAddressIsAnError) {
  Buffer buffer;
  EXPECT_EQ(errorOfAnswer(begin(unknownName, buffer)), error::hostNotFound);
}

TEST_F(LookUpContract, LookUpsRunSideBySide) {
  Buffer one;
  Buffer other;
  const std::int32_t first = begin(u"localhost", one);
  const std::int32_t second = begin(unknownName, other);
  EXPECT_NE(first, second);
  EXPECT_EQ(errorOfAnswer(second), error::hostNotFound);
  EXPECT_EQ(errorOfAnswer(first), 0);
  EXPECT_EQ(firstAddress(one.record()), loopback().address);
}

TEST_F(LookUpContract, ALookUpAnswersOnce) {
  Buffer buffer;
  EXPECT_EQ(errorOfAnswer(begin(u"localhost", buffer)), 0);
  quiet();
  EXPECT_EQ(ear().count(lookUpMessage), 1u);
}

TEST_F(LookUpContract, ACancelledLookUpDoesNotAnswer) {
  if (onWine()) GTEST_SKIP() << "Wine takes every handle and stops no look-up";
  Buffer buffer;
  EXPECT_EQ(sockets().WSACancelAsyncRequest(begin(u"localhost", buffer)), 0) << lastError();
  quiet();
  EXPECT_EQ(ear().count(lookUpMessage), 0u);
}

TEST_F(LookUpContract, WhatIsNoLookUpCannotBeCancelled) {
  if (onWine()) GTEST_SKIP() << "Wine takes every handle and stops no look-up";
  for (const std::int32_t handle : {0, 0x7654}) {
    EXPECT_EQ(sockets().WSACancelAsyncRequest(handle), winsock::failed) << handle;
    EXPECT_EQ(lastError(), error::invalidArgument) << handle;
  }
}

TEST_F(LookUpContract, AWrongHandleDoesNotStopALookUp) {
  Buffer buffer;
  const std::int32_t handle = begin(u"localhost", buffer);
  EXPECT_EQ(sockets().WSACancelAsyncRequest(0), onWine() ? 0 : winsock::failed);
  EXPECT_EQ(errorOfAnswer(handle), 0);
}

TEST_F(LookUpContract, ABlockingLookUpGivesTheRecord) {
  const HostRecord* const record = sockets().gethostbyname(u"localhost");
  ASSERT_NE(record, nullptr) << lastError();
  EXPECT_EQ(record->addressType, winsock::internet);
  EXPECT_EQ(record->addressLength, 4);
  ASSERT_NE(record->addresses[0], nullptr);
  EXPECT_EQ(firstAddress(*record), loopback().address);
}

TEST_F(LookUpContract, ABlockingLookUpOfAnUnknownNameFails) {
  EXPECT_EQ(sockets().gethostbyname(unknownName), nullptr);
  EXPECT_EQ(lastError(), error::hostNotFound);
}

TEST_F(LookUpContract, ADottedAddressIsFoundAsItStands) {
  const HostRecord* const record = sockets().gethostbyname(u"127.0.0.1");
  ASSERT_NE(record, nullptr) << lastError();
  EXPECT_EQ(firstAddress(*record), loopback().address);
}

TEST_F(LookUpContract, TheMachinesNameHasAnAddressOfTheMachine) {
  std::array<char, 256> name = {};
  ASSERT_EQ(sockets().gethostname(name.data(), 256), 0) << lastError();
  EXPECT_GT(std::strlen(name.data()), 0u);
  const HostRecord* const record = sockets().gethostbyname(kernel().fromAnsi(name.data()));
  ASSERT_NE(record, nullptr) << lastError();
  SocketAddress own;
  own.address = firstAddress(*record);
  EXPECT_EQ(sockets().bind(tcp(), own), 0) << lastError();
}

TEST_F(LookUpContract, TheMachinesNameStaysWithinItsBuffer) {
  std::array<char, 4> name = {'a', 'b', 'c', 'd'};
  sockets().gethostname(name.data(), 2);  // too small for a name of more than a letter
  EXPECT_EQ(name[2], 'c');
  EXPECT_EQ(name[3], 'd');
}

// ---- addresses as texts

TEST_F(SocketsContract, ADottedTextSpellsItsFourBytes) {
  struct Row {
    TextView text;
    std::array<std::uint8_t, 4> bytes;
  };
  const std::vector<Row> rows = {
      {u"127.0.0.1", {127, 0, 0, 1}},
      {u"1.2.3.4", {1, 2, 3, 4}},
      {u"1.0.0.0", {1, 0, 0, 0}},
      {u"0.0.0.0", {0, 0, 0, 0}},
      {u"255.255.255.254", {255, 255, 255, 254}},
      {u"255.255.255.255", {255, 255, 255, 255}},
  };
  for (const Row& row : rows) {
    std::int32_t expected = 0;
    std::memcpy(&expected, row.bytes.data(), row.bytes.size());
    EXPECT_EQ(sockets().inet_addr(row.text), expected) << kernel().toAnsi(row.text);
  }
}

TEST_F(SocketsContract, AnyOtherTextIsNoAddress) {
  const std::vector<TextView> texts = {u"localhost", u"1.2.3.4.5", u"1.2.3.256", u"a.b.c.d",
                                       u"1.2.3.x",   u"-1",        u"1..2.3"};
  for (const TextView text : texts) {
    EXPECT_EQ(sockets().inet_addr(text), -1) << kernel().toAnsi(text);
  }
}

TEST_F(SocketsContract, AnAddressHasADottedText) {
  for (const TextView text : {u"127.0.0.1", u"1.2.3.4", u"0.0.0.0", u"255.255.255.255"}) {
    const char* const dotted = sockets().inet_ntoa(sockets().inet_addr(text));
    ASSERT_NE(dotted, nullptr);
    EXPECT_EQ(kernel().fromAnsi(dotted), text);
  }
}

}  // namespace
}  // namespace zev::socket_bench
