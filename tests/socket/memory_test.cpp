#include <algorithm>
#include <cstdlib>
#include <new>

#include "socket/scripted_network.h"

// What comes of bytes for which there is no memory: this program's own allocations can be refused.

namespace {

constexpr std::size_t everySize = static_cast<std::size_t>(-1);
std::size_t smallestRefused = everySize;

/// While it lives, memory of that size and more is refused.
class Refusing {
 public:
  explicit Refusing(std::size_t size) { smallestRefused = size; }
  Refusing(const Refusing&) = delete;
  Refusing& operator=(const Refusing&) = delete;
  ~Refusing() { smallestRefused = everySize; }
};

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = size >= smallestRefused ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace zev::socket_bench {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t much = 100'000;
constexpr std::size_t chunk = 8192;  // of this network's sockets

class MemoryTest : public FarPeerTest {};

TEST_F(MemoryTest, BytesThatFindNoneBehindOthersAreRaisedAndTheOthersStay) {
  peer->stopReading();
  socket->SendData(Bytes(30'000, 'a'));
  watched->log.clear();
  const Variant more = Bytes(much, 'b');
  {
    const Refusing refusing(much);
    EXPECT_EQ(raised([&] { socket->SendData(more); }), "7 CEventSocket.SendData: Out of memory");
  }
  EXPECT_EQ(socket->State(), sckConnected);
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(peer->received(), std::string(30'000, 'a'));
}

TEST_F(MemoryTest, ARestThatWaitsNeedsNone) {
  peer->stopReading();
  const Variant all = Bytes(much, 'a');
  {
    const Refusing refusing(much / 2);
    socket->SendData(all);
  }
  EXPECT_EQ(socket->State(), sckConnected);
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(peer->received(), std::string(much, 'a'));
}

TEST_F(MemoryTest, WhatWaitsToBeSentIsAsItWasGiven) {
  peer->stopReading();
  Variant all = Bytes(much, 'a');
  socket->SendData(all);
  Bytes taken = all.take<Bytes>();
  std::fill(taken.begin(), taken.end(), std::uint8_t{'b'});
  all = std::move(taken);
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(peer->received(), std::string(much, 'a'));
}

TEST_F(MemoryTest, WithoutRoomForAReadTheSocketIsInErrorAndTheBytesStayInTheSystem) {
  peer->send(std::string(100, 'x'));
  network.advance(1000);
  {
    const Refusing refusing(chunk);
    while (machine.queue.dispatch()) {
    }
  }
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_EQ(watched->log, Lines()) << "a raise within a notification reaches nobody";
  EXPECT_EQ(calls.count("recv"), 0);
}

TEST_F(MemoryTest, AFetchThatFindsNoneIsRaised) {
  peer->send(std::string(5000, 'x'));
  ASSERT_TRUE(pumpUntil([&] { return socket->BytesReceived() == 5000; }));
  Variant text = u"";
  {
    const Refusing refusing(5000);
    EXPECT_EQ(raised([&] { socket->GetData(text); }), "7 CEventSocket.RecvData: Out of memory");
  }
  EXPECT_EQ(socket->State(), sckConnected);
}

}  // namespace
}  // namespace zev::socket_bench
