// What scripted peers do to the sockets of a process.

#include "simulated/network/remote_peers.h"

#include <stdexcept>

#include "simulated/network/process.h"

namespace zev::simulated {
namespace {

namespace error = winsock::error;

constexpr std::string_view far = "10.0.0.1";
constexpr std::uint16_t port = 7000;

class RemotePeers : public NetworkTest {
 protected:
  StreamServer& server() { return network.server(far, port); }
  RemoteStream& peer() { return server().connection(0); }
};

// ---- connecting

TEST_F(RemotePeers, AcceptAfterAWayThereAndBack) {
  server();
  const std::int32_t socket = connecting(far, port);
  pass(19);
  EXPECT_EQ(events(), Events{});
  pass(1);
  EXPECT_EQ(events(), (Events{"connect", "write"}));
  SocketAddress address;
  EXPECT_EQ(sockets.getpeername(socket, address), 0);
  EXPECT_EQ(toEndpoint(address), (Endpoint{addressOf(far), port}));
  EXPECT_EQ(peer().remote(), (Endpoint{addressOf("192.168.1.20"), portOf(socket)}));
  EXPECT_EQ(peer().local(), (Endpoint{addressOf(far), port}));
}

TEST_F(RemotePeers, Refuse) {
  server().refuse();
  connecting(far, port);
  pass(20);
  EXPECT_EQ(events(), Events{"connect 10061"});
  EXPECT_EQ(server().connections(), 0u);
}

TEST_F(RemotePeers, AcceptAgainWhenToldTo) {
  server().refuse();
  const std::int32_t socket = connecting(far, port);
  pass(20);
  server().accept();
  EXPECT_EQ(sockets.connect(socket, at(far, port)), winsock::failed);
  pass(20);
  EXPECT_EQ(events(), (Events{"connect 10061", "connect", "write"}));
}

TEST_F(RemotePeers, NeverAnswer) {
  server().neverAnswer();
  connecting(far, port);
  pass(20999);
  EXPECT_EQ(events(), Events{});
  pass(1);
  EXPECT_EQ(events(), Events{"connect 10060"});
}

TEST_F(RemotePeers, FailWithTheNumberTheyAreToldTo) {
  server().fail(error::networkUnreachable);
  connecting(far, port);
  pass(20);
  EXPECT_EQ(events(), Events{"connect 10051"});
}

TEST_F(RemotePeers, CannotBeReachedAtAnAddressThatFails) {
  server();
  network.failAddress(far, error::noRoute);
  connecting(far, port);
  pass(20);
  EXPECT_EQ(events(), Events{"connect 10065"});
}

TEST_F(RemotePeers, RefuseAtPortsWithoutAServer) {
  network.addHost("host.example", {"10.0.0.9"});
  connecting("10.0.0.9", 1);
  pass(20);
  EXPECT_EQ(events(), Events{"connect 10061"});
}

TEST_F(RemotePeers, AreSilentWhereNobodyIs) {
  connecting("10.0.0.200", 1);
  pass(20000);
  EXPECT_EQ(events(), Events{});
  pass(1000);
  EXPECT_EQ(events(), Events{"connect 10060"});
}

TEST_F(RemotePeers, SeeAResetWhenTheSocketIsGoneBeforeTheAnswer) {
  server();
  const std::int32_t socket = connecting(far, port);
  pass(10);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  pass(1000);
  EXPECT_EQ(events(), Events{});
  EXPECT_EQ(peer().error(), error::connectionReset);
}

TEST_F(RemotePeers, CanBeOnTheMachineItself) {
  network.server("127.0.0.1", port);
  connecting("127.0.0.1", port);
  EXPECT_EQ(events(), (Events{"connect", "write"}));
}

TEST_F(RemotePeers, CannotHaveAPortThatASocketHas) {
  listening(port);
  EXPECT_THROW(network.server("127.0.0.1", port), std::logic_error);
}

TEST_F(RemotePeers, AreTheSameForTheSamePort) {
  EXPECT_EQ(&network.server(far, port), &network.server(far, port));
  EXPECT_NE(&network.server(far, port), &network.server(far, port + 1));
}

// ---- data

TEST_F(RemotePeers, SendAndReceive) {
  server();
  const std::int32_t socket = connected(far, port);
  EXPECT_EQ(send(socket, "question"), 8);
  pass(9);
  EXPECT_EQ(peer().received(), "");
  pass(1);
  EXPECT_EQ(peer().received(), "question");
  peer().send("answer");
  pass(10);
  EXPECT_EQ(events(), Events{"read"});
  EXPECT_EQ(receive(socket), "answer");
  EXPECT_EQ(peer().take(), "question");
  EXPECT_EQ(peer().take(), "");
}

TEST_F(RemotePeers, FollowAScript) {
  server().onConnection([](RemoteStream& stream) {
    stream.send("welcome");
    stream.onReceived([](RemoteStream& each) { each.send("<" + each.take() + ">"); });
  });
  const std::int32_t socket = connecting(far, port);
  pass(20);
  EXPECT_EQ(events(), (Events{"connect", "write", "read"}));
  EXPECT_EQ(receive(socket), "welcome");
  EXPECT_EQ(send(socket, "x"), 1);
  pass(20);
  EXPECT_EQ(receive(socket), "<x>");
}

TEST_F(RemotePeers, SendMoreThanTheBuffersHold) {
  server();
  const std::int32_t socket = connected(far, port);
  const std::string sent(100000, 's');
  peer().send(sent);
  std::string got;
  for (int step = 0; step < 1000 && got.size() < sent.size(); ++step) {
    pass(10);
    if (const auto bytes = receive(socket)) got += *bytes;
  }
  EXPECT_EQ(got, sent);
}

TEST_F(RemotePeers, FillTheBuffersWhenTheyStopReading) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().stopReading();
  const std::string piece(4096, 'p');
  std::int32_t sent = 0;
  for (std::int32_t taken = 0; (taken = send(socket, piece)) > 0;) {
    sent += taken;
    pass(10);
  }
  EXPECT_EQ(lastError(), error::wouldBlock);
  EXPECT_EQ(sent, 8192 + 8192);  // what the receiver's and the sender's buffer hold
  EXPECT_EQ(peer().unread(), 8192u);
  pass(100000);
  EXPECT_EQ(events(), Events{});
  peer().goOnReading();
  pass(10);
  EXPECT_EQ(events(), Events{"write"});
  EXPECT_EQ(peer().received().size(), 16384u);
}

TEST_F(RemotePeers, TakeABurstAsFarAsTheSendBufferGoes) {
  server();
  const std::int32_t socket = connected(far, port);
  EXPECT_EQ(send(socket, std::string(10000, 'b')), 8192);
  EXPECT_EQ(send(socket, "more"), winsock::failed);
  EXPECT_EQ(lastError(), error::wouldBlock);
  pass(10);
  EXPECT_EQ(events(), Events{"write"});
  EXPECT_EQ(peer().received().size(), 8192u);
}

TEST_F(RemotePeers, KeepTheOrderWhenTheNetworkGetsFaster) {
  server();
  const std::int32_t socket = connected(far, port);
  EXPECT_EQ(send(socket, "first"), 5);
  network.settings.latency = 1;
  EXPECT_EQ(send(socket, "second"), 6);
  pass(100);
  EXPECT_EQ(peer().received(), "firstsecond");
}

// ---- the end

TEST_F(RemotePeers, Close) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().send("last");
  peer().close();
  pass(10);
  EXPECT_EQ(events(), Events{"read"});
  EXPECT_EQ(receive(socket), "last");
  EXPECT_EQ(events(), (Events{"read", "close"}));
  EXPECT_EQ(receive(socket), "");
}

TEST_F(RemotePeers, AnswerByAResetWhatComesBehindTheirClosing) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().close();
  pass(10);
  EXPECT_EQ(events(), Events{"close"});
  EXPECT_EQ(send(socket, "late"), 4);
  pass(20);
  EXPECT_EQ(events(), Events{"close"});  // it comes once
  EXPECT_EQ(send(socket, "later"), winsock::failed);
  EXPECT_EQ(lastError(), error::connectionReset);
}

TEST_F(RemotePeers, GoOnReadingBehindAHalfClose) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().finish();
  pass(10);
  EXPECT_EQ(events(), Events{"close"});
  EXPECT_EQ(send(socket, "still here"), 10);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  pass(10);
  EXPECT_EQ(peer().received(), "still here");
  EXPECT_TRUE(peer().peerClosed());
  EXPECT_EQ(peer().error(), 0);
}

TEST_F(RemotePeers, Reset) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().reset();
  pass(10);
  EXPECT_EQ(events(), Events{"close 10054"});
  EXPECT_EQ(receive(socket), std::nullopt);
  EXPECT_EQ(lastError(), error::connectionReset);
}

TEST_F(RemotePeers, ResetBehindDataThatHasCome) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().send("data");
  peer().reset();
  pass(10);
  EXPECT_EQ(events(), Events{"read"});
  EXPECT_EQ(receive(socket), "data");
  EXPECT_EQ(events(), (Events{"read", "close 10054"}));
}

TEST_F(RemotePeers, ResetWhenTheyCloseWithBytesUnread) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().stopReading();
  EXPECT_EQ(send(socket, "unread"), 6);
  pass(10);
  peer().close();
  pass(10);
  EXPECT_EQ(events(), Events{"close 10054"});
}

TEST_F(RemotePeers, SeeTheSocketClose) {
  server();
  const std::int32_t socket = connected(far, port);
  EXPECT_EQ(send(socket, std::string(8192, 'x')), 8192);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  EXPECT_FALSE(peer().peerClosed());
  pass(10);
  EXPECT_EQ(peer().received().size(), 8192u);
  EXPECT_TRUE(peer().peerClosed());
}

TEST_F(RemotePeers, GetWhatWasSentEvenWhenTheyReadItLate) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().stopReading();
  EXPECT_EQ(send(socket, std::string(8192, 'x')), 8192);
  pass(10);
  EXPECT_EQ(send(socket, std::string(8192, 'y')), 8192);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  pass(1000);
  peer().goOnReading();
  pass(1000);
  EXPECT_EQ(peer().received(), std::string(8192, 'x') + std::string(8192, 'y'));
  EXPECT_TRUE(peer().peerClosed());
}

TEST_F(RemotePeers, SeeAResetWhenTheSocketClosesWithBytesUnread) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().send("unread");
  pass(10);
  EXPECT_EQ(sockets.closesocket(socket), 0);
  pass(10);
  EXPECT_EQ(peer().error(), error::connectionReset);
}

TEST_F(RemotePeers, VanishUntilTheSenderGivesUp) {
  server();
  const std::int32_t socket = connected(far, port);
  peer().vanish();
  pass(1000000);
  EXPECT_EQ(events(), Events{});  // nobody asks, nobody notices
  EXPECT_EQ(send(socket, "hello?"), 6);
  pass(10 + 59999);
  EXPECT_EQ(events(), Events{});
  pass(1);
  EXPECT_EQ(events(), Events{"close 10053"});
  EXPECT_EQ(peer().received(), "");
}

TEST_F(RemotePeers, AnswerNothingOnceTheyHaveVanished) {
  server();
  connected(far, port);
  peer().vanish();
  peer().send("lost");
  peer().close();
  pass(1000);
  EXPECT_EQ(events(), Events{});
}

TEST_F(RemotePeers, HaveNoEndsBeforeTheConnection) {
  RemoteStream& client = network.connectFrom(far, "192.168.1.20", port);
  EXPECT_FALSE(client.connected());
  EXPECT_THROW(client.local(), std::logic_error);
  EXPECT_THROW(client.reset(), std::logic_error);
  pass(20);
  EXPECT_EQ(client.error(), error::refused);
}

// ---- peers that come

TEST_F(RemotePeers, ConnectToAListener) {
  const std::int32_t listener = listening(80);
  RemoteStream& client = network.connectFrom(far, "192.168.1.20", 80);
  client.send("early");
  pass(10);
  EXPECT_EQ(events(), Events{"accept"});
  SocketAddress address;
  const std::int32_t socket = sockets.accept(listener, address);
  ASSERT_NE(socket, winsock::noSocket);
  EXPECT_EQ(dotted(address.address), far);
  pass(20);
  EXPECT_TRUE(client.connected());
  EXPECT_EQ(client.local(), toEndpoint(address));
  EXPECT_EQ(events(), (Events{"accept", "write", "read"}));
  EXPECT_EQ(receive(socket), "early");
}

TEST_F(RemotePeers, AreRefusedWhenTheBacklogIsFull) {
  listening(80, 2);
  std::vector<RemoteStream*> clients;
  for (int each = 0; each < 3; ++each) {
    clients.push_back(&network.connectFrom(far, "192.168.1.20", 80));
  }
  pass(20);
  EXPECT_TRUE(clients[0]->connected());
  EXPECT_TRUE(clients[1]->connected());
  EXPECT_FALSE(clients[2]->connected());
  EXPECT_EQ(clients[2]->error(), error::refused);
}

TEST_F(RemotePeers, AreResetWhenTheListenerClosesBeforeItAccepts) {
  const std::int32_t listener = listening(80);
  RemoteStream& client = network.connectFrom(far, "192.168.1.20", 80);
  pass(20);
  EXPECT_TRUE(client.connected());
  EXPECT_EQ(sockets.closesocket(listener), 0);
  pass(10);
  EXPECT_EQ(client.error(), error::connectionReset);
}

// ---- datagrams

TEST_F(RemotePeers, SendAndGetDatagrams) {
  DatagramPeer& other = network.datagramPeer(far, port);
  const std::int32_t socket = udp();
  EXPECT_EQ(select(socket), 0);
  EXPECT_EQ(sendTo(socket, "question", at(far, port)), 8);
  pass(10);
  ASSERT_EQ(other.received().size(), 1u);
  const Datagram& came = other.received()[0];
  EXPECT_EQ(came.bytes, "question");
  EXPECT_EQ(came.sender, (Endpoint{addressOf("192.168.1.20"), portOf(socket)}));
  other.send(came.sender, "answer");
  pass(10);
  EXPECT_EQ(events(), (Events{"write", "read"}));
  EXPECT_EQ(receive(socket), "answer");
}

TEST_F(RemotePeers, AnswerDatagramsByAScript) {
  network.datagramPeer(far, port).onReceived([](DatagramPeer& self, const Datagram& datagram) {
    self.send(datagram.sender, datagram.bytes + "!");
  });
  const std::int32_t socket = udp();
  EXPECT_EQ(select(socket), 0);
  EXPECT_EQ(sendTo(socket, "hey", at(far, port)), 3);
  pass(20);
  EXPECT_EQ(receive(socket), "hey!");
}

TEST_F(RemotePeers, AllHearABroadcast) {
  DatagramPeer& one = network.datagramPeer(far, port);
  DatagramPeer& other = network.datagramPeer("10.0.0.2", port);
  DatagramPeer& elsewhere = network.datagramPeer("10.0.0.3", port + 1);
  const std::int32_t hears = udp();
  ASSERT_EQ(sockets.bind(hears, at("0.0.0.0", port)), 0);
  const std::int32_t socket = udp();
  EXPECT_EQ(sendTo(socket, "all", at("255.255.255.255", port)), winsock::failed);
  EXPECT_EQ(lastError(), error::accessDenied);
  ASSERT_EQ(sockets.setsockopt(socket, winsock::socketLevel, winsock::broadcast, 1), 0);
  EXPECT_EQ(sendTo(socket, "all", at("255.255.255.255", port)), 3);
  pass(10);
  EXPECT_EQ(one.received().size(), 1u);
  EXPECT_EQ(other.received().size(), 1u);
  EXPECT_EQ(elsewhere.received().size(), 0u);
  EXPECT_EQ(receive(hears), "all");
}

}  // namespace
}  // namespace zev::simulated
