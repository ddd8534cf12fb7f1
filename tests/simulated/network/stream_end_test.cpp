// What the two ends of a connection do to each other, beneath sockets and peers.

#include "simulated/network/stream_end.h"

#include <gtest/gtest.h>

#include "platform/sockets.h"

namespace zev::simulated {
namespace {

constexpr std::uint64_t latency = 10;
constexpr std::uint64_t patience = 60000;

class StreamEnds : public testing::Test {
 protected:
  StreamEnds() {
    for (StreamEnd* const end : {&here, &there}) {
      end->setSendBuffer(100);
      end->setReceiveBuffer(100);
    }
    there.observe([this] { ++changes; });
  }

  Timeline timeline;
  std::array<std::shared_ptr<StreamEnd>, 2> ends =
      Connection::make(timeline, {latency, patience}, {1, 1000}, {2, 2000});
  StreamEnd& here = *ends[0];
  StreamEnd& there = *ends[1];
  int changes = 0;
};

/// Room that the other end makes by reading takes nothing more out of an end that has broken off.
TEST_F(StreamEnds, BehindAResetNothingFollows) {
  EXPECT_EQ(here.send("last words"), 10u);
  timeline.advance(latency);
  here.reset();
  timeline.advance(latency / 2);
  here.reset();
  timeline.advance(latency / 2);
  EXPECT_EQ(there.error(), winsock::error::connectionReset);
  changes = 0;
  EXPECT_EQ(there.read(10), "last words");
  EXPECT_FALSE(timeline.advanceToNext()) << "nothing is on its way";
  EXPECT_FALSE(there.finished());
  EXPECT_EQ(changes, 0);
  EXPECT_EQ(here.send("more"), 0u);
}

TEST_F(StreamEnds, ClosingWithBytesUnreadIsAResetAndNoEndOfTheBytes) {
  EXPECT_EQ(here.send("answer"), 6u);
  EXPECT_EQ(there.send("question"), 8u);
  timeline.advance(latency);
  here.close();
  EXPECT_EQ(there.read(6), "answer");
  timeline.advance(latency);
  EXPECT_EQ(there.error(), winsock::error::connectionReset);
  EXPECT_FALSE(there.finished());
}

/// The first bytes without an answer count; later ones put nothing off and ask for nothing anew.
TEST_F(StreamEnds, GivingUpIsWaitedForOnce) {
  there.vanish();
  EXPECT_EQ(here.send("hello?"), 6u);
  timeline.advance(patience / 2);
  EXPECT_EQ(here.send("anybody?"), 8u);
  timeline.advance(latency + patience / 2 - 1);
  EXPECT_EQ(here.error(), 0);
  timeline.advance(1);
  EXPECT_EQ(here.error(), winsock::error::connectionAborted);
  EXPECT_FALSE(timeline.advanceToNext()) << "nothing is left on the clock";
}

}  // namespace
}  // namespace zev::simulated
