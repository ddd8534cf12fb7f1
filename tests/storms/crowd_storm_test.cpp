// A thousand connections at once, both ends of each in this process.

#include "storms/storm.h"

namespace zev::storms {
namespace {

constexpr std::size_t crowd = 1000;
constexpr int rounds = 5;

class CrowdStorm : public Storm {
 protected:
  struct Caller {
    std::shared_ptr<CEventSocket> socket;
    Checksum sent;
    Checksum echoed;
    std::uint64_t given = 0;
  };

  void SetUp() override {
    listener = newListener();
    listener->events.ConnectionRequest = [this](std::int32_t request) {
      const auto socket = newSocket();
      echoes.push_back(socket);
      CEventSocket* const echo = socket.get();
      socket->events.DataArrival = [echo](std::int32_t) { echo->SendData(fetch(*echo)); };
      socket->events.CloseSck = [this] { ++ended; };
      socket->Accept(request);
    };
    for (std::size_t i = 0; i < crowd; ++i) call(callers[i]);
  }

  void call(Caller& caller) {
    caller.socket = newSocket();
    caller.socket->events.Connect = [this] { ++connected; };
    caller.socket->events.CloseSck = [this] { ++ended; };
    caller.socket->events.DataArrival = [&caller](std::int32_t) {
      caller.echoed.add(fetch(*caller.socket));
    };
    caller.socket->Connect(u"127.0.0.1", listener->LocalPort());
  }

  /// Each one sends another amount.
  void send(std::size_t number, int round) {
    Caller& caller = callers[number];
    const Bytes bytes =
        pattern(caller.given, 1 + (number * 37 + static_cast<std::size_t>(round) * 4001) % 20'000);
    caller.given += bytes.size();
    caller.sent.add(bytes);
    caller.socket->SendData(bytes);
  }

  bool allEchoed() const {
    for (const Caller& each : callers) {
      if (each.echoed.count() < each.sent.count()) return false;
    }
    return true;
  }

  std::shared_ptr<CEventSocket> listener;
  std::vector<Caller> callers{crowd};
  std::vector<std::shared_ptr<CEventSocket>> echoes;
  std::size_t connected = 0;
  std::size_t ended = 0;
};

TEST_F(CrowdStorm, EchoesAThousandConnectionsAtOnce) {
  ASSERT_TRUE(pumpUntil([&] { return connected == crowd && echoes.size() == crowd; }));
  expectInUse(2 * crowd + 1, 2 * crowd + 1);
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < crowd; ++i) send(i, round);
    ASSERT_TRUE(pumpUntil([&] { return allEchoed(); }));
    for (const Caller& each : callers) ASSERT_EQ(each.echoed, each.sent);
  }
  // One half is left by the callers, the other one by those who echo.
  for (std::size_t i = 0; i < crowd; ++i) (i % 2 == 0 ? callers[i].socket : echoes[i])->CloseSck();
  ASSERT_TRUE(pumpUntil([&] { return ended == crowd; }));
  expectInUse(crowd + 1, 2 * crowd + 1);
  callers.clear();
  echoes.clear();
  expectInUse(1, 1);
  listener.reset();
}

}  // namespace
}  // namespace zev::storms
