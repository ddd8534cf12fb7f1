// Datagrams of every size, one at a time.

#include "posix/peer.h"
#include "storms/storm.h"

namespace zev::storms {
namespace {

using posix::Peer;

constexpr std::size_t largest = 65'507;

/// Every size that is small, then steps that meet no power of two, its neighbours, and the largest.
std::vector<std::size_t> interestingSizes() {
  std::vector<std::size_t> sizes;
  for (std::size_t size = 0; size <= 2'000; ++size) sizes.push_back(size);
  for (std::size_t size = 2'001; size < largest; size += 331) sizes.push_back(size);
  for (std::size_t power = 2'048; power < largest; power *= 2) {
    for (const std::size_t size : {power - 1, power, power + 1}) sizes.push_back(size);
  }
  sizes.insert(sizes.end(), {largest - 1, largest});
  return sizes;
}

class DatagramStorm : public Storm {
 protected:
  void SetUp() override {
    socket = newSocket();
    socket->Protocol(ProtocolUDP);
    socket->Bind(0, u"127.0.0.1");
    socket->events.DataArrival = [this](std::int32_t size) {
      told.push_back(size);
      if (fetches) got.push_back(fetch(*socket));
    };
    socket->events.Error = [](const SocketErrorArguments& arguments) {
      ADD_FAILURE() << arguments.Number;
    };
  }
  void TearDown() override {
    expectInUse(1, 1);
    socket.reset();
    peer.close();
    Storm::TearDown();
  }
  void aim() {
    socket->RemoteHost(u"127.0.0.1");
    socket->RemotePort(peer.port());
  }
  /// Sends one datagram from the peer and waits until it is told of, if it ever is.
  void receive(const Bytes& bytes) {
    const std::size_t before = told.size();
    peer.sendTo(portOf(*socket), textOf(bytes));
    if (bytes.empty()) return;
    ASSERT_TRUE(pumpUntil([&] { return told.size() != before; }));
    ASSERT_EQ(told.back(), static_cast<std::int32_t>(bytes.size()));
  }

  Peer peer = Peer::forDatagrams();
  std::shared_ptr<CEventSocket> socket;
  bool fetches = true;
  std::vector<std::int32_t> told;
  std::vector<Bytes> got;
};

TEST_F(DatagramStorm, SendsEverySize) {
  for (const std::size_t size : interestingSizes()) {
    const Bytes bytes = pattern(size, size);
    aim();
    socket->SendData(bytes);
    if (size != 0) {
      ASSERT_TRUE(peer.receiveDatagram() == textOf(bytes)) << size;
    }
  }
}

TEST_F(DatagramStorm, ReceivesEverySize) {
  for (const std::size_t size : interestingSizes()) {
    const Bytes bytes = pattern(size, size);
    ASSERT_NO_FATAL_FAILURE(receive(bytes)) << size;
    if (size == 0) continue;
    ASSERT_TRUE(got.back() == bytes) << size;
    ASSERT_EQ(socket->RemotePort(), peer.port());
  }
  settle();
  EXPECT_EQ(told.size(), interestingSizes().size() - 1) << "nothing tells of an empty datagram";
}

/// An empty datagram brings no event and does not hold up the others.
TEST_F(DatagramStorm, PassesOverEmptyOnes) {
  for (int batch = 0; batch < 10; ++batch) {
    for (int i = 0; i < 100; ++i) peer.sendTo(portOf(*socket), "");
    settle();
  }
  EXPECT_TRUE(told.empty());
  ASSERT_NO_FATAL_FAILURE(receive(pattern(0, 10)));
  EXPECT_TRUE(got.back() == pattern(0, 10));
}

/// What the procedure does not fetch is gone, and the next one comes whole.
TEST_F(DatagramStorm, LosesWhatNobodyFetches) {
  for (const std::size_t size : interestingSizes()) {
    if (size == 0) continue;
    fetches = false;
    ASSERT_NO_FATAL_FAILURE(receive(pattern(1, size)));
    fetches = true;
    ASSERT_NO_FATAL_FAILURE(receive(pattern(2, size)));
    ASSERT_TRUE(got.back() == pattern(2, size)) << size;
  }
}

/// There and back between two sockets of the component, the answer to whoever has asked.
TEST_F(DatagramStorm, AnswersEverySize) {
  auto other = newSocket();
  other->Protocol(ProtocolUDP);
  other->Bind(0, u"127.0.0.1");
  other->events.DataArrival = [&](std::int32_t) {
    const Bytes bytes = fetch(*other);
    other->RemoteHost(other->RemoteHostIP());
    other->SendData(bytes);
  };
  for (const std::size_t size : interestingSizes()) {
    if (size == 0) continue;
    socket->RemoteHost(u"127.0.0.1");
    socket->RemotePort(other->LocalPort());
    socket->SendData(pattern(size, size));
    const std::size_t before = got.size();
    ASSERT_TRUE(pumpUntil([&] { return got.size() != before; })) << size;
    ASSERT_TRUE(got.back() == pattern(size, size)) << size;
  }
}

}  // namespace
}  // namespace zev::storms
