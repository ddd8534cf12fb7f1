#include "socket/byte_queue.h"

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <string_view>

namespace zev {
namespace {

std::span<const std::uint8_t> bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

std::string textOf(std::span<const std::uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

TEST(ByteQueue, BeginsEmpty) {
  ByteQueue queue;
  EXPECT_TRUE(queue.empty());
  EXPECT_EQ(queue.size(), 0u);
  EXPECT_TRUE(queue.front(5).empty());
  EXPECT_TRUE(queue.take(5).empty());
}

TEST(ByteQueue, GivesBackInOrder) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  queue.append(bytesOf("def"));
  EXPECT_EQ(queue.size(), 6u);
  EXPECT_EQ(textOf(queue.front(4)), "abcd");
  EXPECT_EQ(queue.size(), 6u) << "looking takes nothing";
  EXPECT_EQ(textOf(queue.take(2)), "ab");
  EXPECT_EQ(textOf(queue.front(100)), "cdef");
  queue.drop(3);
  EXPECT_EQ(textOf(queue.take(100)), "f");
  EXPECT_TRUE(queue.empty());
}

TEST(ByteQueue, TakesWholeAndBeginsAnew) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  EXPECT_EQ(textOf(queue.take(3)), "abc");
  queue.append(bytesOf("xy"));
  EXPECT_EQ(textOf(queue.front(2)), "xy");
}

TEST(ByteQueue, DropsNoMoreThanThereIs) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  queue.drop(5);
  EXPECT_TRUE(queue.empty());
  queue.append(bytesOf("d"));
  EXPECT_EQ(textOf(queue.front(9)), "d");
}

TEST(ByteQueue, TakingNothingChangesNothing) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  EXPECT_TRUE(queue.take(0).empty());
  queue.drop(0);
  queue.append({});
  EXPECT_EQ(textOf(queue.front(9)), "abc");
}

TEST(ByteQueue, ClearForgetsEverything) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  queue.drop(1);
  queue.clear();
  EXPECT_TRUE(queue.empty());
  queue.append(bytesOf("z"));
  EXPECT_EQ(textOf(queue.take(9)), "z");
}

/// Against a plain queue, with a fixed sequence of operations.
TEST(ByteQueue, BehavesLikeAPlainQueue) {
  ByteQueue queue;
  std::deque<std::uint8_t> plain;
  std::uint32_t random = 12345;
  const auto next = [&](std::uint32_t below) {
    random = random * 1664525 + 1013904223;
    return (random >> 8) % below;
  };
  std::uint8_t value = 0;
  for (int step = 0; step < 20000; ++step) {
    const std::size_t amount = next(40);
    if (next(2) == 0) {
      std::vector<std::uint8_t> bytes(amount);
      for (std::uint8_t& each : bytes) each = value++;
      queue.append(bytes);
      plain.insert(plain.end(), bytes.begin(), bytes.end());
    } else {
      const std::size_t taken = std::min(amount, plain.size());
      const std::vector<std::uint8_t> expected(plain.begin(),
                                               plain.begin() + static_cast<std::ptrdiff_t>(taken));
      if (next(2) == 0) {
        EXPECT_EQ(queue.take(amount), expected);
      } else {
        const auto front = queue.front(amount);
        EXPECT_TRUE(std::equal(front.begin(), front.end(), expected.begin(), expected.end()));
        queue.drop(amount);
      }
      plain.erase(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(taken));
    }
    ASSERT_EQ(queue.size(), plain.size());
  }
}

TEST(ByteQueue, BorrowsWithoutACopyAndKeepsTheRest) {
  ByteQueue queue;
  std::string text = "abcdef";
  queue.borrow(bytesOf(text));
  EXPECT_EQ(queue.size(), 6u);
  EXPECT_EQ(static_cast<const void*>(queue.front(6).data()), text.data());
  queue.drop(2);
  EXPECT_EQ(textOf(queue.front(3)), "cde");
  queue.keep();
  text = "XXXXXX";
  EXPECT_EQ(textOf(queue.front(9)), "cdef");
  queue.keep();
  EXPECT_EQ(textOf(queue.take(9)), "cdef");
}

TEST(ByteQueue, BorrowedBytesAreFollowedByOthers) {
  ByteQueue queue;
  std::string text = "abc";
  queue.borrow(bytesOf(text));
  queue.append(bytesOf("def"));
  text = "XXX";
  EXPECT_EQ(textOf(queue.take(9)), "abcdef");
}

TEST(ByteQueue, OnlyAnEmptyQueueBorrows) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  std::string text = "def";
  queue.borrow(bytesOf(text));
  text = "XXX";
  EXPECT_EQ(textOf(queue.take(9)), "abcdef");
}

TEST(ByteQueue, BorrowedBytesCanBeTakenDroppedAndForgotten) {
  ByteQueue queue;
  const std::string text = "abc";
  queue.borrow(bytesOf(text));
  EXPECT_EQ(textOf(queue.take(2)), "ab");
  EXPECT_EQ(textOf(queue.take(2)), "c");
  queue.borrow(bytesOf(text));
  queue.drop(9);
  EXPECT_TRUE(queue.empty());
  queue.borrow(bytesOf(text));
  queue.clear();
  EXPECT_TRUE(queue.empty());
  queue.append(bytesOf("z"));
  EXPECT_EQ(textOf(queue.take(9)), "z");
}

TEST(ByteQueue, AdoptsTheFrontOfAVector) {
  for (const std::size_t count : {0u, 1u, 3u, 6u}) {
    ByteQueue queue;
    std::vector<std::uint8_t> bytes = {'a', 'b', 'c', 'd', 'e', 'f'};
    queue.adopt(bytes, count);
    EXPECT_EQ(queue.size(), count);
    EXPECT_EQ(textOf(queue.front(9)), std::string("abcdef").substr(0, count));
    bytes = {'g', 'h'};
    queue.adopt(bytes, 2);
    EXPECT_EQ(textOf(queue.take(99)), std::string("abcdef").substr(0, count) + "gh");
  }
}

/// Small pieces off a long queue: in quadratic time this would take minutes.
TEST(ByteQueue, ServesManySmallPiecesOfMuch) {
  ByteQueue queue;
  const std::vector<std::uint8_t> much(std::size_t{8} << 20, 7);
  queue.append(much);
  std::size_t taken = 0;
  while (!queue.empty()) {
    taken += queue.take(4).size();
    if (taken % 4096 == 0 && taken < much.size() / 2) queue.append({much.data(), 16});
  }
  EXPECT_GT(taken, much.size());
}

TEST(ByteQueue, BorrowsWithoutACopy) {
  const std::string text = "abcdef";
  ByteQueue queue;
  queue.borrow(bytesOf(text));
  EXPECT_EQ(queue.size(), 6u);
  EXPECT_EQ(queue.front(4).data(), bytesOf(text).data());
  queue.drop(2);
  EXPECT_EQ(textOf(queue.front(100)), "cdef");
  queue.drop(100);
  EXPECT_TRUE(queue.empty());
}

TEST(ByteQueue, KeepsWhatIsLeftOfTheBorrowed) {
  std::string text = "abcdef";
  ByteQueue queue;
  queue.borrow(bytesOf(text));
  queue.drop(2);
  queue.keep();
  text = "------";
  queue.keep();
  EXPECT_EQ(queue.size(), 4u);
  EXPECT_EQ(textOf(queue.take(3)), "cde");
  EXPECT_EQ(textOf(queue.take(3)), "f");
}

TEST(ByteQueue, KeepsTheBorrowedBeforeItTakesMore) {
  std::string text = "abc";
  ByteQueue queue;
  queue.borrow(bytesOf(text));
  queue.append(bytesOf("de"));
  text = "---";
  queue.borrow(bytesOf("fg"));
  EXPECT_EQ(textOf(queue.take(100)), "abcdefg");
}

TEST(ByteQueue, ForgetsTheBorrowed) {
  ByteQueue queue;
  queue.borrow(bytesOf("abc"));
  queue.clear();
  EXPECT_TRUE(queue.empty());
  queue.borrow(bytesOf("de"));
  EXPECT_EQ(textOf(queue.take(100)), "de");
}

TEST(ByteQueue, AdoptsTheMemoryOfAFullVector) {
  std::vector<std::uint8_t> bytes(8, 'x');
  const std::uint8_t* const memory = bytes.data();
  ByteQueue queue;
  queue.adopt(bytes, 5);
  EXPECT_EQ(textOf(queue.front(100)), "xxxxx");
  EXPECT_EQ(queue.front(1).data(), memory);
}

TEST(ByteQueue, CopiesOutOfAVectorThatIsMostlyIdle) {
  std::vector<std::uint8_t> bytes(8, 'x');
  ByteQueue queue;
  queue.adopt(bytes, 3);
  EXPECT_EQ(textOf(queue.front(100)), "xxx");
  EXPECT_EQ(bytes.size(), 8u);
}

TEST(ByteQueue, AdoptsBehindWhatWaits) {
  std::vector<std::uint8_t> bytes(2, 'x');
  ByteQueue queue;
  queue.append(bytesOf("ab"));
  queue.adopt(bytes, 2);
  EXPECT_EQ(textOf(queue.take(100)), "abxx");
}

constexpr std::size_t large = std::size_t{8} << 20;

TEST(SpareMemory, GoesFromAQueueThatIsThroughToTheNextOne) {
  SpareMemory spare;
  ByteQueue first(spare);
  first.append(std::vector<std::uint8_t>(large, 1));
  const void* const memory = first.front(1).data();
  first.drop(large);
  ByteQueue second(spare);
  second.append(std::vector<std::uint8_t>(large / 2, 2));
  EXPECT_EQ(static_cast<const void*>(second.front(1).data()), memory);
  EXPECT_EQ(second.take(large), std::vector<std::uint8_t>(large / 2, 2));
}

TEST(SpareMemory, ServesWhatWasBorrowedToo) {
  SpareMemory spare;
  ByteQueue queue(spare);
  const std::vector<std::uint8_t> bytes(large, 1);
  queue.borrow(bytes);
  queue.keep();
  const void* const memory = queue.front(1).data();
  queue.drop(large);
  queue.borrow(bytes);
  queue.drop(large / 2);
  queue.keep();
  EXPECT_EQ(static_cast<const void*>(queue.front(1).data()), memory);
  EXPECT_EQ(queue.size(), large / 2);
}

TEST(SpareMemory, IsTooSmallOrTooLargeForSome) {
  SpareMemory spare;
  std::vector<std::uint8_t> memory(100);
  spare.give(memory);
  EXPECT_EQ(memory.capacity(), 0u);
  std::vector<std::uint8_t> wanting;
  spare.take(wanting, 101);
  EXPECT_EQ(wanting.capacity(), 0u);
  spare.take(wanting, 100);
  EXPECT_EQ(wanting.capacity(), 100u);
  std::vector<std::uint8_t> huge;
  huge.reserve(SpareMemory::most + 1);
  spare.give(huge);
  EXPECT_GT(huge.capacity(), SpareMemory::most) << "it stays its owner's";
}

}  // namespace
}  // namespace zev
