#include "simulated/network/timeline.h"

#include <gtest/gtest.h>

#include <string>

namespace zev::simulated {
namespace {

TEST(Timeline, MovesOnlyWhenToldTo) {
  Timeline timeline;
  EXPECT_EQ(timeline.now(), 0u);
  timeline.advance(7);
  EXPECT_EQ(timeline.now(), 7u);
}

TEST(Timeline, RunsWhatFallsDueInOrder) {
  Timeline timeline;
  std::string order;
  timeline.after(20, [&] { order += 'c'; });
  timeline.after(10, [&] { order += 'a'; });
  timeline.after(10, [&] { order += 'b'; });
  timeline.advance(9);
  EXPECT_EQ(order, "");
  timeline.advance(1);
  EXPECT_EQ(order, "ab");
  timeline.advance(100);
  EXPECT_EQ(order, "abc");
}

TEST(Timeline, RunsAnActionAtItsMoment) {
  Timeline timeline;
  std::uint64_t moment = 0;
  timeline.after(10, [&] { moment = timeline.now(); });
  timeline.advance(100);
  EXPECT_EQ(moment, 10u);
}

TEST(Timeline, RunsWhatAnActionAdds) {
  Timeline timeline;
  std::uint64_t moment = 0;
  timeline.after(10, [&] { timeline.after(5, [&] { moment = timeline.now(); }); });
  timeline.advance(15);
  EXPECT_EQ(moment, 15u);
}

TEST(Timeline, WaitsForTheClockEvenWithoutDelay) {
  Timeline timeline;
  bool done = false;
  timeline.after(0, [&] { done = true; });
  EXPECT_FALSE(done);
  timeline.advance(0);
  EXPECT_TRUE(done);
}

TEST(Timeline, JumpsToTheNextActionUpToALimit) {
  Timeline timeline;
  timeline.after(10, [] {});
  timeline.after(30, [] {});
  EXPECT_TRUE(timeline.advanceToNext());
  EXPECT_EQ(timeline.now(), 10u);
  EXPECT_FALSE(timeline.advanceToNext(25));
  EXPECT_EQ(timeline.now(), 25u);
  EXPECT_TRUE(timeline.advanceToNext(30));
  EXPECT_FALSE(timeline.advanceToNext());
  EXPECT_EQ(timeline.now(), 30u);
}

}  // namespace
}  // namespace zev::simulated
