// What the simulated sockets do beyond what every binding does.

#include "simulated/network/simulated_sockets.h"

#include "simulated/network/process.h"

namespace zev::simulated {
namespace {

namespace error = winsock::error;

using SimulatedSocketsTest = NetworkTest;

// ---- the service

TEST_F(SimulatedSocketsTest, StartAndEndFailAsTheSettingsSay) {
  network.settings.startUpError = 10091;
  EXPECT_EQ(sockets.WSAStartup(winsock::version), 10091);
  EXPECT_EQ(sockets.starts(), 1);
  network.settings.cleanUpError = error::networkDown;
  EXPECT_EQ(sockets.WSACleanup(), winsock::failed);
  EXPECT_EQ(lastError(), error::networkDown);
  EXPECT_EQ(sockets.starts(), 1);
}

TEST_F(SimulatedSocketsTest, AVersionBelowOneIsNotThere) {
  EXPECT_EQ(sockets.WSAStartup(0), 10092);
  EXPECT_EQ(sockets.starts(), 1);
}

TEST_F(SimulatedSocketsTest, TextsOfAddressesNeedTheServiceToo) {
  ASSERT_EQ(sockets.WSACleanup(), 0);
  EXPECT_EQ(sockets.inet_addr(u"1.2.3.4"), -1);
  EXPECT_EQ(lastError(), error::notStarted);
  EXPECT_EQ(sockets.inet_ntoa(0), nullptr);
}

TEST_F(SimulatedSocketsTest, TheLastCleanUpEndsConnections) {
  StreamServer& server = network.server("10.0.0.1", 7000);
  connected("10.0.0.1", 7000);
  ASSERT_EQ(sockets.WSACleanup(), 0);
  pass(10);
  EXPECT_TRUE(server.connection(0).peerClosed());
  EXPECT_EQ(sockets.openSockets(), 0u);
}

TEST_F(SimulatedSocketsTest, AProcessHasSoManySockets) {
  network.settings.maximumSockets = 2;
  EXPECT_NE(tcp(), winsock::noSocket);
  EXPECT_NE(udp(), winsock::noSocket);
  EXPECT_EQ(tcp(), winsock::noSocket);
  EXPECT_EQ(lastError(), error::tooManyFiles);
}

TEST_F(SimulatedSocketsTest, HandlesAreNotUsedAgain) {
  const std::int32_t first = tcp();
  EXPECT_EQ(sockets.closesocket(first), 0);
  EXPECT_NE(tcp(), first);
}

TEST_F(SimulatedSocketsTest, AnotherProcessHasSocketsOfItsOwn) {
  MessageQueue otherQueue;
  SimulatedSockets other(network, otherQueue);
  ASSERT_EQ(other.WSAStartup(winsock::version), 0);
  const std::int32_t listener = listening(80);
  const std::int32_t client = other.socket(winsock::internet, winsock::stream, 0);
  EXPECT_EQ(other.connect(client, at("127.0.0.1", 80)), 0);
  SocketAddress peer;
  EXPECT_NE(sockets.accept(listener, peer), winsock::noSocket);
  const std::int32_t second = other.socket(winsock::internet, winsock::stream, 0);
  EXPECT_EQ(other.bind(second, at("127.0.0.1", 80)), winsock::failed);
  EXPECT_EQ(other.WSAGetLastError(), error::addressInUse);
}

// ---- addresses

TEST_F(SimulatedSocketsTest, ChosenPortsGoUpFrom1025) {
  for (const int expected : {1025, 1026, 1027}) {
    const std::int32_t socket = tcp();
    ASSERT_EQ(sockets.bind(socket, at("192.168.1.20", 0)), 0);
    EXPECT_EQ(portOf(socket), expected);
    ASSERT_EQ(sockets.closesocket(socket), 0);
  }
}

TEST_F(SimulatedSocketsTest, ChosenPortsLeaveOutTheTakenOnes) {
  const std::int32_t taken = tcp();
  ASSERT_EQ(sockets.bind(taken, at("0.0.0.0", 1025)), 0);
  const std::int32_t socket = tcp();
  ASSERT_EQ(sockets.bind(socket, at("192.168.1.20", 0)), 0);
  EXPECT_EQ(portOf(socket), 1026);
}

TEST_F(SimulatedSocketsTest, AllAddressesTogetherAreInUseIfOneIs) {
  ASSERT_EQ(sockets.bind(tcp(), at("192.168.1.20", 80)), 0);
  EXPECT_EQ(sockets.bind(tcp(), at("127.0.0.1", 80)), 0);
  EXPECT_EQ(sockets.bind(tcp(), at("0.0.0.0", 80)), winsock::failed);
  EXPECT_EQ(lastError(), error::addressInUse);
}

TEST_F(SimulatedSocketsTest, ASocketThatConnectsGetsAnAddress) {
  network.server("10.0.0.1", 7000);
  const std::int32_t socket = tcp();
  EXPECT_EQ(sockets.connect(socket, at("10.0.0.1", 7000)), 0);
  SocketAddress own;
  ASSERT_EQ(sockets.getsockname(socket, own), 0);
  EXPECT_EQ(toEndpoint(own), (Endpoint{addressOf("192.168.1.20"), 1025}));
}

TEST_F(SimulatedSocketsTest, ASocketWithoutAnAddressHasNoName) {
  SocketAddress address;
  EXPECT_EQ(sockets.getsockname(tcp(), address), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(SimulatedSocketsTest, NobodyConnectsToNowhere) {
  for (const SocketAddress& address :
       {at("10.0.0.1", 0), at("0.0.0.0", 80), at("255.255.255.255", 80)}) {
    EXPECT_EQ(sockets.connect(tcp(), address), winsock::failed);
    EXPECT_EQ(lastError(), error::addressNotAvailable);
  }
}

TEST_F(SimulatedSocketsTest, AListenerNeedsAnAddress) {
  EXPECT_EQ(sockets.listen(tcp(), 5), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(SimulatedSocketsTest, SocketsAreOfTheKindsThatThereAre) {
  struct Row {
    std::int32_t family;
    std::int32_t type;
    std::int32_t protocol;
    std::int32_t error;
  };
  for (const Row& row :
       {Row{23, 1, 6, 10047}, Row{2, 3, 0, 10044}, Row{2, 1, 17, 10043}, Row{2, 2, 6, 10043}}) {
    EXPECT_EQ(sockets.socket(row.family, row.type, row.protocol), winsock::noSocket);
    EXPECT_EQ(lastError(), row.error);
  }
}

// ---- waiting

TEST_F(SimulatedSocketsTest, AnUnselectedSocketMovesTheClock) {
  network.server("10.0.0.1", 7000).onConnection([&](RemoteStream& stream) {
    network.after(500, [&stream] { stream.send("x"); });
  });
  const std::int32_t socket = tcp();
  ASSERT_EQ(sockets.connect(socket, at("10.0.0.1", 7000)), 0);
  EXPECT_EQ(network.now(), 20u);
  EXPECT_EQ(receive(socket), "x");
  EXPECT_EQ(network.now(), 520u);
}

TEST_F(SimulatedSocketsTest, AnUnselectedSocketIsToldWhyItDoesNotConnect) {
  EXPECT_EQ(sockets.connect(tcp(), at("10.0.0.200", 7000)), winsock::failed);
  EXPECT_EQ(lastError(), error::timedOut);
  EXPECT_EQ(network.now(), network.settings.connectTime);
}

TEST_F(SimulatedSocketsTest, WhoWouldWaitForEverIsInterrupted) {
  const std::int32_t socket = udp();
  ASSERT_EQ(sockets.bind(socket, at("127.0.0.1", 80)), 0);
  EXPECT_EQ(receive(socket), std::nullopt);
  EXPECT_EQ(lastError(), 10004);
}

TEST_F(SimulatedSocketsTest, AConnectingSocketIsBusy) {
  network.server("10.0.0.1", 7000);
  const std::int32_t socket = connecting("10.0.0.1", 7000);
  EXPECT_EQ(sockets.connect(socket, at("10.0.0.1", 7000)), winsock::failed);
  EXPECT_EQ(lastError(), 10037);
  EXPECT_EQ(send(socket, "x"), winsock::failed);
  EXPECT_EQ(lastError(), error::notConnected);
}

// ---- the selection

TEST_F(SimulatedSocketsTest, SelectingNeedsAWindow) {
  const std::int32_t socket = tcp();
  EXPECT_EQ(sockets.WSAAsyncSelect(socket, 0x999, eventMessage, everyEvent), winsock::failed);
  EXPECT_EQ(lastError(), error::invalidArgument);
}

TEST_F(SimulatedSocketsTest, SelectingAnewTellsAgainWhatIsTheCase) {
  network.server("10.0.0.1", 7000);
  const std::int32_t socket = connected("10.0.0.1", 7000);
  network.server("10.0.0.1", 7000).connection(0).send("x");
  pass(10);
  EXPECT_EQ(events(), Events{"read"});
  EXPECT_EQ(select(socket), 0);
  EXPECT_EQ(events(), (Events{"read", "write", "read"}));
}

TEST_F(SimulatedSocketsTest, NotificationsOfAClosedSocketStayInTheQueue) {
  network.server("10.0.0.1", 7000);
  const std::int32_t socket = connecting("10.0.0.1", 7000);
  network.advance(20);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  EXPECT_EQ(events(), (Events{"connect", "write"}));
}

TEST_F(SimulatedSocketsTest, FlagsThatAreNotThereFail) {
  const std::int32_t socket = udp();
  ASSERT_EQ(sockets.bind(socket, at("127.0.0.1", 80)), 0);
  std::array<std::uint8_t, 4> bytes = {};
  EXPECT_EQ(sockets.recv(socket, bytes, 1), winsock::failed);
  EXPECT_EQ(lastError(), error::operationNotSupported);
  EXPECT_EQ(sockets.sendto(socket, bytes, 4, at("127.0.0.1", 80)), winsock::failed);
  EXPECT_EQ(lastError(), error::operationNotSupported);
}

// ---- buffers

TEST_F(SimulatedSocketsTest, BuffersHaveTheSizesOfTheSettings) {
  network.settings.sendBuffer = 100;
  network.settings.receiveBuffer = 50;
  const std::int32_t listener = listening(80);
  const std::int32_t client = connecting("127.0.0.1", 80);
  SocketAddress peer;
  ASSERT_NE(sockets.accept(listener, peer), winsock::noSocket);
  EXPECT_EQ(send(client, std::string(1000, 'x')), 100);
  EXPECT_EQ(send(client, std::string(1000, 'x')), 50);  // what the receiver's buffer has taken
  EXPECT_EQ(send(client, "x"), winsock::failed);
  EXPECT_EQ(lastError(), error::wouldBlock);
}

TEST_F(SimulatedSocketsTest, OptionsChangeTheSizesOfAConnection) {
  network.server("10.0.0.1", 7000);
  const std::int32_t socket = connected("10.0.0.1", 7000);
  ASSERT_EQ(sockets.setsockopt(socket, winsock::socketLevel, winsock::sendBufferSize, 20), 0);
  EXPECT_EQ(send(socket, std::string(100, 'x')), 20);
}

TEST_F(SimulatedSocketsTest, DatagramsThatFindNoRoomAreLost) {
  network.settings.receiveBuffer = 10;
  const std::int32_t socket = udp();
  ASSERT_EQ(select(socket), 0);
  ASSERT_EQ(sockets.bind(socket, at("127.0.0.1", 80)), 0);
  for (const char* text : {"12345", "67890", "x"}) {
    EXPECT_GT(sendTo(socket, text, at("127.0.0.1", 80)), 0);
  }
  EXPECT_EQ(receive(socket), "12345");
  EXPECT_EQ(receive(socket), "67890");
  EXPECT_EQ(receive(socket), std::nullopt);
}

TEST_F(SimulatedSocketsTest, ADatagramHasALargestSize) {
  network.settings.maximumMessage = 100;
  const std::int32_t socket = udp();
  EXPECT_EQ(sendTo(socket, std::string(100, 'x'), at("127.0.0.1", 80)), 100);
  EXPECT_EQ(sendTo(socket, std::string(101, 'x'), at("127.0.0.1", 80)), winsock::failed);
  EXPECT_EQ(lastError(), error::messageTooLong);
}

TEST_F(SimulatedSocketsTest, AConnectedSocketOfDatagramsHearsOnlyItsPeer) {
  DatagramPeer& peer = network.datagramPeer("10.0.0.1", 7000);
  DatagramPeer& stranger = network.datagramPeer("10.0.0.2", 7000);
  const std::int32_t socket = udp();
  ASSERT_EQ(sockets.connect(socket, at("10.0.0.1", 7000)), 0);
  EXPECT_EQ(send(socket, "x"), 1);
  pass(10);
  ASSERT_EQ(peer.received().size(), 1u);
  stranger.send(peer.received()[0].sender, "stranger");
  peer.send(peer.received()[0].sender, "peer");
  EXPECT_EQ(receive(socket), "peer");
}

}  // namespace
}  // namespace zev::simulated
