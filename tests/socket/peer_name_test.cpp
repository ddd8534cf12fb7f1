#include "socket/scripted_network.h"

// The peer's port and address are those that the system names, whatever was asked for.
namespace zev::socket_bench {
namespace {

constexpr std::uint16_t elsewhere = 4711;

/// Sockets of a network that leads connections to another machine than they ask for.
class LeadingElsewhere final : public simulated::SimulatedSockets {
 public:
  using SimulatedSockets::SimulatedSockets;
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override {
    const std::int32_t result = SimulatedSockets::getpeername(socket, address);
    address.port = htons(elsewhere);
    address.address = inet_addr(u"10.9.8.7");
    return result;
  }
};

class ElsewhereBench final : public Bench {
 public:
  std::string name() const override { return "elsewhere"; }
  Sockets& sockets() override { return sockets_; }
  MessageWindows& windows() override { return queue_; }
  Kernel& kernel() override { return memory_; }
  bool pump(int milliseconds) override {
    const std::uint64_t end = network.now() + static_cast<std::uint64_t>(milliseconds);
    while (!queue_.dispatch()) {
      if (!network.advanceToNext(end)) return queue_.dispatch();
    }
    return true;
  }
  void post(const WindowMessage& message) override { queue_.post(message); }
  void setFull(bool) override {}
  bool isExecutable(const std::uint8_t*) override { return false; }
  int openSockets() override { return static_cast<int>(sockets_.openSockets()); }
  int openWindows() override { return static_cast<int>(queue_.openWindows()); }

  simulated::SimulatedNetwork network;

 private:
  MessageQueue queue_;
  simulated::SimulatedKernel memory_;
  LeadingElsewhere sockets_{network, queue_};
};

class PeerNameTest : public SocketTest {
 protected:
  PeerNameTest() : SocketTest(std::make_unique<ElsewhereBench>()) {}
  simulated::SimulatedNetwork& network() { return static_cast<ElsewhereBench&>(*bench).network; }
};

TEST_F(PeerNameTest, AClientTakesItFromTheSystemOnConnecting) {
  network().server("10.0.0.5", 80);
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  EXPECT_EQ(socket->RemotePort(), 80);
  socket.then.Connect = [&] {
    EXPECT_EQ(socket->RemotePort(), elsewhere);
    EXPECT_EQ(socket->RemoteHostIP(), u"10.9.8.7");
  };
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket.log, Lines({"Connect"}));
  EXPECT_EQ(socket->RemotePort(), elsewhere);
  EXPECT_EQ(socket->RemoteHost(), u"10.0.0.5");
}

TEST_F(PeerNameTest, AListenerAndWhoTakesTheCallDoAsWell) {
  Watched listener(module), server(module);
  listener->RemotePort(5);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    EXPECT_EQ(listener->RemotePort(), elsewhere);
    EXPECT_EQ(listener->RemoteHostIP(), u"10.9.8.7");
    server->Accept(request);
  };
  network().connectFrom("10.0.0.9", "192.168.1.20",
                        static_cast<std::uint16_t>(listener->LocalPort()));
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(server->RemotePort(), elsewhere);
  EXPECT_EQ(server->RemoteHostIP(), u"10.9.8.7");
  EXPECT_EQ(listener->RemotePort(), 5);
}

}  // namespace
}  // namespace zev::socket_bench
