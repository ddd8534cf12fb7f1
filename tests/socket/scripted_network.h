#pragma once

#include <memory>
#include <string>

#include "simulated/network/simulated_kernel.h"
#include "simulated/network/simulated_network.h"
#include "simulated/network/simulated_sockets.h"
#include "socket/socket_fixture.h"

namespace zev::socket_bench {

/// A bench that shows the network that it stands on, for tests that play the other machines.
class ScriptedBench final : public Bench {
 public:
  std::string name() const override { return "scripted"; }
  Sockets& sockets() override { return sockets_; }
  MessageWindows& windows() override { return queue; }
  Kernel& kernel() override { return memory; }
  bool pump(int milliseconds) override {
    const std::uint64_t end = network.now() + static_cast<std::uint64_t>(milliseconds);
    while (!queue.dispatch()) {
      if (!network.advanceToNext(end)) return queue.dispatch();
    }
    return true;
  }
  void post(const WindowMessage& message) override { queue.post(message); }
  void setFull(bool full) override {
    network.settings.maximumSockets = full ? sockets_.openSockets() : usual_;
  }
  bool isExecutable(const std::uint8_t*) override { return false; }
  int openSockets() override { return static_cast<int>(sockets_.openSockets()); }
  int openWindows() override { return static_cast<int>(queue.openWindows()); }

  simulated::SimulatedNetwork network;
  MessageQueue queue;
  simulated::SimulatedKernel memory;

 private:
  simulated::SimulatedSockets sockets_{network, queue};
  const std::size_t usual_ = network.settings.maximumSockets;
};

/// Lines, and behind them others.
inline Lines operator+(Lines first, const Lines& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// The network of one machine, "BOBPC" at 192.168.1.20, and of whatever a test puts around it.
template <typename Base>
class OnScriptedNetwork : public Base {
 protected:
  OnScriptedNetwork() : OnScriptedNetwork(std::make_unique<ScriptedBench>()) {}
  explicit OnScriptedNetwork(std::unique_ptr<ScriptedBench> made)
      : Base(std::move(made)),
        machine(static_cast<ScriptedBench&>(*this->bench)),
        network(machine.network) {}

  void TearDown() override {
    Base::TearDown();
    EXPECT_EQ(machine.memory.pages(), 0u);
  }

  ScriptedBench& machine;
  simulated::SimulatedNetwork& network;
};

using ScriptedTest = OnScriptedNetwork<SocketTest>;

/// A socket with a connection to 10.0.0.5, whose end the test plays.
class FarPeerTest : public ScriptedTest {
 protected:
  void SetUp() override {
    simulated::StreamServer& far = network.server("10.0.0.5", 80);
    socket->RemoteHost(u"10.0.0.5");
    socket->RemotePort(80);
    socket->Connect();
    ASSERT_TRUE(pumpTo(*watched, sckConnected));
    settle();
    peer = &far.connection(0);
    watched->log.clear();
    calls.clearLines();
    trace.clear();
  }
  void TearDown() override {
    socket.reset();
    watched.reset();
    ScriptedTest::TearDown();
  }

  std::unique_ptr<Watched> watched = std::make_unique<Watched>(module);
  std::shared_ptr<CEventSocket> socket = watched->socket;
  simulated::RemoteStream* peer = nullptr;
};

}  // namespace zev::socket_bench
