#include "platform/message_queue.h"

#include <gtest/gtest.h>

#include "socket/targets.h"

namespace zev {
namespace {

using socket_bench::RecordingRoutine;

constexpr std::uintptr_t address = 0x401000;

class MessageQueueTest : public testing::Test {
 protected:
  MessageQueueTest() {
    queue.standIn(address, &routine);
    queue.SetWindowLongA(window, windowProcedureIndex, address);
  }

  std::vector<std::uint32_t> numbers() const {
    std::vector<std::uint32_t> all;
    for (const WindowMessage& each : routine.taken) all.push_back(each.message);
    return all;
  }
  void dispatchAll() {
    while (queue.dispatch()) {
    }
  }

  MessageQueue queue;
  RecordingRoutine routine;
  const WindowHandle window = queue.CreateWindowExA(u"STATIC", u"TEST");
};

using Numbers = std::vector<std::uint32_t>;

TEST_F(MessageQueueTest, DispatchesInTheOrderOfPosting) {
  for (std::uint32_t number = 1; number <= 3; ++number) {
    EXPECT_TRUE(queue.post({window, number, 0, 0}));
  }
  EXPECT_EQ(queue.waiting(), 3u);
  EXPECT_TRUE(queue.dispatch());
  EXPECT_EQ(numbers(), Numbers{1});
  EXPECT_EQ(queue.waiting(), 2u);
  EXPECT_TRUE(queue.dispatch());
  EXPECT_TRUE(queue.dispatch());
  EXPECT_FALSE(queue.dispatch());
  EXPECT_EQ(numbers(), (Numbers{1, 2, 3}));
}

TEST_F(MessageQueueTest, HandsAllFourArgumentsOver) {
  queue.post({window, 2049, 0xFFFFFFF0u, -5});
  queue.dispatch();
  ASSERT_EQ(routine.taken.size(), 1u);
  EXPECT_EQ(routine.taken[0].window, window);
  EXPECT_EQ(routine.taken[0].message, 2049u);
  EXPECT_EQ(routine.taken[0].wParam, 0xFFFFFFF0u);
  EXPECT_EQ(routine.taken[0].lParam, -5);
}

TEST_F(MessageQueueTest, QueuesBehindWhatWaitsWhatIsPostedMeanwhile) {
  routine.during = [&] {
    if (routine.taken.size() == 1) queue.post({window, 9, 0, 0});
  };
  queue.post({window, 1, 0, 0});
  queue.post({window, 2, 0, 0});
  dispatchAll();
  EXPECT_EQ(numbers(), (Numbers{1, 2, 9}));
}

TEST_F(MessageQueueTest, SendsPastWhatWaits) {
  routine.answer = 12;
  queue.post({window, 1, 0, 0});
  EXPECT_EQ(queue.send({window, 2, 0, 0}), 12);
  EXPECT_EQ(numbers(), Numbers{2});
  EXPECT_EQ(queue.send({window + 100, 2, 0, 0}), 0);
}

TEST_F(MessageQueueTest, KnowsItsWindows) {
  const WindowHandle another = queue.CreateWindowExA(u"STATIC", u"");
  EXPECT_NE(another, window);
  EXPECT_EQ(queue.openWindows(), 2u);
  EXPECT_FALSE(queue.post({another + 100, 1, 0, 0}));
  EXPECT_FALSE(queue.DestroyWindow(another + 100));
  EXPECT_TRUE(queue.DestroyWindow(another));
  EXPECT_FALSE(queue.DestroyWindow(another));
  EXPECT_EQ(queue.openWindows(), 1u);
}

TEST_F(MessageQueueTest, AWindowIsBornWithTheDefaultProcedure) {
  const WindowHandle another = queue.CreateWindowExA(u"STATIC", u"");
  EXPECT_EQ(queue.GetWindowLongA(another, windowProcedureIndex), MessageQueue::defaultProcedure);
  EXPECT_EQ(queue.send({another, 1, 2, 3}), 0);
  EXPECT_EQ(queue.GetWindowLongA(another, 0), 0u);
  EXPECT_EQ(queue.GetWindowLongA(another + 100, windowProcedureIndex), 0u);
}

TEST_F(MessageQueueTest, GivesThePreviousProcedure) {
  EXPECT_EQ(queue.SetWindowLongA(window, windowProcedureIndex, 0x402000), address);
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), 0x402000u);
  EXPECT_EQ(queue.SetWindowLongA(window, 0, address), 0u);
  EXPECT_EQ(queue.SetWindowLongA(window + 100, windowProcedureIndex, address), 0u);
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), 0x402000u);
}

TEST_F(MessageQueueTest, ProcedureZeroIsTheDefaultOne) {
  EXPECT_EQ(queue.SetWindowLongA(window, windowProcedureIndex, 0), address);
  EXPECT_EQ(queue.GetWindowLongA(window, windowProcedureIndex), MessageQueue::defaultProcedure);
  EXPECT_EQ(queue.send({window, 1, 0, 0}), 0);
  EXPECT_TRUE(routine.taken.empty());
}

TEST_F(MessageQueueTest, StandingInEnds) {
  queue.standIn(address, nullptr);
  routine.answer = 12;
  EXPECT_EQ(queue.send({window, 1, 0, 0}), 0);
  EXPECT_EQ(queue.CallWindowProcA(address, {window, 1, 0, 0}), 0);
  EXPECT_TRUE(routine.taken.empty());
}

TEST_F(MessageQueueTest, TellsAWindowOfItsEndAndForgetsWhatWaitsForIt) {
  const WindowHandle another = queue.CreateWindowExA(u"STATIC", u"");
  RecordingRoutine itsRoutine;
  queue.standIn(0x403000, &itsRoutine);
  queue.SetWindowLongA(another, windowProcedureIndex, 0x403000);
  queue.post({another, 1, 0, 0});
  queue.post({window, 2, 0, 0});
  queue.post({another, 3, 0, 0});
  queue.DestroyWindow(another);
  ASSERT_EQ(itsRoutine.taken.size(), 2u);
  EXPECT_EQ(itsRoutine.taken[0].message, 2u);
  EXPECT_EQ(itsRoutine.taken[1].message, 130u);
  EXPECT_EQ(queue.waiting(), 1u);
  dispatchAll();
  EXPECT_EQ(numbers(), Numbers{2});
}

TEST_F(MessageQueueTest, DropsPostedMessagesOnly) {
  queue.dropBeforeDispatch(window, [](const WindowMessage& each) { return each.message == 5; });
  queue.post({window, 5, 0, 0});
  queue.post({window, 6, 0, 0});
  EXPECT_TRUE(queue.dispatch());
  EXPECT_TRUE(queue.dispatch());
  EXPECT_EQ(numbers(), Numbers{6});
  queue.send({window, 5, 0, 0});
  EXPECT_EQ(numbers(), (Numbers{6, 5}));
}

TEST_F(MessageQueueTest, DropsUntilToldOtherwise) {
  queue.dropBeforeDispatch(window, [](const WindowMessage&) { return true; });
  queue.post({window, 1, 0, 0});
  dispatchAll();
  EXPECT_TRUE(routine.taken.empty());
  queue.dropBeforeDispatch(window, {});
  queue.post({window, 2, 0, 0});
  dispatchAll();
  EXPECT_EQ(numbers(), Numbers{2});
}

TEST_F(MessageQueueTest, DropsForOneWindowAlone) {
  const WindowHandle another = queue.CreateWindowExA(u"STATIC", u"");
  queue.dropBeforeDispatch(another, [](const WindowMessage&) { return true; });
  queue.post({window, 1, 0, 0});
  dispatchAll();
  EXPECT_EQ(numbers(), Numbers{1});
}

}  // namespace
}  // namespace zev
