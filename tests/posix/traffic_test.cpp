#include <random>

#include "posix/on_the_machine.h"

namespace zev::posix {
namespace {

/// Streams from a peer on another thread that writes in pieces of any size and at any time, read in
/// pieces of any size, one for each notification: nothing is lost, nothing is told that is not
/// there, and the end comes once and last.
class Traffic : public OnTheMachine, public testing::WithParamInterface<unsigned> {
 protected:
  static std::string contents(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
  }
  static void write(Peer& peer, const std::string& text, unsigned seed, bool reset) {
    std::minstd_rand random(seed);
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t size = std::min<std::size_t>(text.size() - at, 1 + random() % 5000);
      peer.send(std::string_view(text).substr(at, size));
      at += size;
      if (random() % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 300));
    }
    if (reset) {
      peer.awaitArrival();  // what is still under way is lost
      peer.reset();
    } else {
      peer.close();
    }
  }
};

TEST_P(Traffic, LosesNothing) {
  const unsigned seed = GetParam();
  const bool reset = seed % 2 == 1;
  const std::string text = contents(300'000);
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  std::minstd_rand random(seed * 31 + 1);
  std::string got;
  int ends = 0;
  onTold = [&](const Told& each) {
    ASSERT_EQ(ends, 0);
    if (each.event == ws::fdRead) {
      std::vector<std::uint8_t> part(1 + random() % 4000);
      const std::int32_t count = sockets().recv(socket, part, 0);
      ASSERT_GT(count, 0) << lastError();
      got.append(part.begin(), part.begin() + count);
    } else {
      EXPECT_EQ(each.event, ws::fdClose);
      EXPECT_EQ(each.error, reset ? ws::error::connectionReset : 0);
      ++ends;
    }
  };
  std::thread writer([&] { write(*peer, text, seed, reset); });
  EXPECT_TRUE(pumpUntil([&] { return ends != 0; }));
  writer.join();
  settle();
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(got.size(), text.size());
  EXPECT_TRUE(got == text);
}

INSTANTIATE_TEST_SUITE_P(Seeds, Traffic, testing::Range(1u, 13u));

/// The other way, through notifications of room.
TEST_F(Traffic, SendsAllThatIsGiven) {
  const std::string text = contents(20'000'000);
  std::unique_ptr<Peer> peer;
  const std::int32_t socket = newConnection(peer);
  std::size_t at = 0;
  const auto sendOn = [&] {
    while (at < text.size()) {
      const std::int32_t sent = send(socket, std::string_view(text).substr(at, 100'000));
      if (sent < 0) {
        EXPECT_EQ(lastError(), ws::error::wouldBlock);
        return;
      }
      at += static_cast<std::size_t>(sent);
    }
  };
  onTold = [&](const Told& each) {
    if (each.event == ws::fdWrite) sendOn();
  };
  std::string got;
  std::thread reader([&] { got = peer->receive(text.size()); });
  sendOn();
  EXPECT_TRUE(pumpUntil([&] { return at == text.size(); }));
  reader.join();
  EXPECT_TRUE(got == text);
}

}  // namespace
}  // namespace zev::posix
