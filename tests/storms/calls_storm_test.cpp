// Short connections, one behind the other. The peer closes first, so that the past of a connection
// stays with it.

#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "posix/peer.h"
#include "storms/storm.h"
#include "storms/wanderer.h"

namespace zev::storms {
namespace {

using posix::Peer;

constexpr int connections = sanitized ? 10'000 : 100'000;

class CallsStorm : public Storm {
 protected:
  static std::string message(int number) { return "call " + std::to_string(number); }
  static std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
  static Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

  /// Fewer under sanitizers, and said so.
  void SetUp() override { std::printf("%d connections\n", connections); }
};

/// The component is called: it echoes, and ends when its peer has.
TEST_F(CallsStorm, IsCalledAgainAndAgain) {
  const auto listener = newListener();
  std::map<CEventSocket*, std::shared_ptr<CEventSocket>> answering;
  int ended = 0;
  listener->events.ConnectionRequest = [&](std::int32_t request) {
    const auto made = newSocket();
    CEventSocket* const socket = made.get();
    answering[socket] = made;
    socket->events.DataArrival = [socket](std::int32_t) { socket->SendData(fetch(*socket)); };
    socket->events.CloseSck = [&, socket] {
      ++ended;
      answering.erase(socket);
    };
    socket->Accept(request);
  };
  std::string wrong;
  std::thread callers([&, port = portOf(*listener)] {
    try {
      for (int i = 0; i < connections; ++i) {
        const Wanderer caller(i, port);
        if (caller.ask(message(i)) != message(i)) throw std::runtime_error(message(i));
      }
    } catch (const std::exception& error) {
      wrong = error.what();
    }
  });
  EXPECT_TRUE(pumpUntil([&] { return ended == connections; }));
  callers.join();
  EXPECT_EQ(wrong, "");
  EXPECT_EQ(ended, connections);
  expectInUse(1, 1);
  EXPECT_LE(module->thunk().socketTable().count(), 8) << "slots that were left are taken again";
}

/// The component calls, and says something; the peer says it again and ends.
TEST_F(CallsStorm, CallsAgainAndAgain) {
  const Peer listening = Peer::listening();
  std::string wrongThere;
  std::thread answering([&] {
    try {
      for (int i = 0; i < connections; ++i) {
        const Peer peer = listening.accept();
        peer.send(peer.receive(message(i).size()));
      }
    } catch (const std::exception& error) {
      wrongThere = error.what();
    }
  });
  const auto socket = newSocket();
  int number = 0;
  std::string heard;
  std::string wrong;
  const auto call = [&] {
    heard.clear();
    socket->Connect(u"127.0.0.1", static_cast<std::int32_t>(listening.port()));
  };
  socket->events.Connect = [&] { socket->SendData(bytesOf(message(number))); };
  socket->events.DataArrival = [&](std::int32_t) { heard += textOf(fetch(*socket)); };
  socket->events.CloseSck = [&] {
    if (heard != message(number)) wrong = heard;
    socket->CloseSck();
    if (++number < connections) call();
  };
  socket->events.Error = [&](const SocketErrorArguments& arguments) {
    wrong = toUtf8(arguments.Description);
  };
  call();
  EXPECT_TRUE(pumpUntil([&] { return number == connections || !wrong.empty(); })) << number;
  answering.join();
  EXPECT_EQ(wrong, "");
  EXPECT_EQ(wrongThere, "");
  EXPECT_EQ(number, connections);
  expectInUse(0, 1);
}

}  // namespace
}  // namespace zev::storms
