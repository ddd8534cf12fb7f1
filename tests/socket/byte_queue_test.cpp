#include "socket/byte_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <memory>
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

TEST(ByteQueue, ClearGivesTheMemoryBack) {
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  queue.clear();
  EXPECT_EQ(queue.take(1).capacity(), 0u);
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

/// Bytes with an owner, whose end can be seen.
struct Given {
  explicit Given(std::string text) : owner(std::make_shared<std::string>(std::move(text))) {}
  void shareWith(ByteQueue& queue) const { queue.share(owner, bytesOf(*owner)); }
  bool isShared() const { return owner.use_count() > 1; }

  std::shared_ptr<std::string> owner;
};

TEST(ByteQueue, SharesWithoutACopyUntilTheLastByteIsGone) {
  const Given given("abcdef");
  ByteQueue queue;
  given.shareWith(queue);
  EXPECT_EQ(queue.size(), 6u);
  EXPECT_EQ(static_cast<const void*>(queue.front(4).data()), given.owner->data());
  queue.drop(2);
  EXPECT_EQ(textOf(queue.front(3)), "cde");
  EXPECT_EQ(static_cast<const void*>(queue.front(1).data()), given.owner->data() + 2);
  EXPECT_TRUE(given.isShared());
  queue.drop(4);
  EXPECT_TRUE(queue.empty());
  EXPECT_FALSE(given.isShared());
}

TEST(ByteQueue, CopiesWhatItSharesOnlyWhenOthersFollow) {
  const Given given("abcdef");
  ByteQueue queue;
  given.shareWith(queue);
  queue.drop(2);
  queue.append(bytesOf("gh"));
  EXPECT_FALSE(given.isShared());
  *given.owner = "------";
  queue.append(bytesOf("i"));
  EXPECT_EQ(queue.size(), 7u);
  EXPECT_EQ(textOf(queue.take(9)), "cdefghi");
}

TEST(ByteQueue, OnlyAnEmptyQueueShares) {
  const Given given("def");
  ByteQueue queue;
  queue.append(bytesOf("abc"));
  given.shareWith(queue);
  EXPECT_FALSE(given.isShared());
  EXPECT_EQ(textOf(queue.take(9)), "abcdef");
}

TEST(ByteQueue, SharedBytesCanBeTakenDroppedAndForgotten) {
  const Given given("abc");
  ByteQueue queue;
  given.shareWith(queue);
  EXPECT_EQ(textOf(queue.take(2)), "ab");
  EXPECT_EQ(textOf(queue.take(2)), "c");
  given.shareWith(queue);
  queue.drop(9);
  EXPECT_TRUE(queue.empty());
  given.shareWith(queue);
  queue.clear();
  EXPECT_TRUE(queue.empty());
  EXPECT_FALSE(given.isShared());
  queue.append(bytesOf("z"));
  EXPECT_EQ(textOf(queue.take(9)), "z");
}

/// Fills room as a call of the system does.
void fill(ByteQueue& queue, std::size_t room, std::string_view text) {
  const std::span<std::uint8_t> place = queue.room(room);
  ASSERT_EQ(place.size(), room);
  std::copy(text.begin(), text.end(), place.begin());
  queue.filled(text.size());
}

TEST(ByteQueue, HasRoomThatIsFilledInPart) {
  ByteQueue queue;
  fill(queue, 10, "abc");
  EXPECT_EQ(queue.size(), 3u);
  fill(queue, 10, "");
  fill(queue, 4, "defg");
  queue.append(bytesOf("h"));
  queue.drop(1);
  fill(queue, 1000, "ij");
  EXPECT_EQ(textOf(queue.front(100)), "bcdefghij");
  EXPECT_EQ(textOf(queue.take(100)), "bcdefghij") << "and none of the room";
  EXPECT_TRUE(queue.empty());
}

TEST(ByteQueue, HasRoomBehindWhatItShares) {
  const Given given("abc");
  ByteQueue queue;
  given.shareWith(queue);
  fill(queue, 10, "de");
  EXPECT_EQ(textOf(queue.take(100)), "abcde");
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
      if (next(2) == 0) {
        queue.append(bytes);
      } else {
        fill(queue, amount + next(3), {reinterpret_cast<const char*>(bytes.data()), amount});
      }
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
  const std::vector<std::uint8_t> much(std::size_t{32} << 20, 7);
  queue.append(much);
  std::size_t taken = 0;
  while (!queue.empty()) {
    taken += queue.take(128).size();
    if (taken % 4096 == 0 && taken < much.size() / 2) queue.append({much.data(), 16});
  }
  EXPECT_GT(taken, much.size());
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

TEST(SpareMemory, ServesARoomWithoutClearingItAgain) {
  SpareMemory spare;
  ByteQueue first(spare);
  first.append(std::vector<std::uint8_t>(large, 1));
  first.drop(large);
  ByteQueue second(spare);
  second.append(bytesOf("abc"));
  const auto room = second.room(large / 2);
  EXPECT_EQ(room.back(), 1) << "what was written last";
  second.filled(1);
  EXPECT_EQ(textOf(second.take(9)), std::string("abc") + '\x01');
}

TEST(SpareMemory, MovesWhatWaitsIntoWhatIsLarger) {
  SpareMemory spare;
  std::vector<std::uint8_t> much(4 * large, 9);
  spare.give(much);
  ByteQueue queue(spare);
  std::vector<std::uint8_t> expected;
  for (std::uint8_t i = 0; i < 80; ++i) {
    const std::vector<std::uint8_t> piece(large / 16, i);
    queue.append(piece);
    expected.insert(expected.end(), piece.begin(), piece.end());
  }
  EXPECT_EQ(queue.take(expected.size()), expected);
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
}

TEST(SpareMemory, KeepsAsMuchAsItIsToldTo) {
  SpareMemory spare;
  std::vector<std::uint8_t> huge(SpareMemory::usual + 1);
  spare.give(huge);
  EXPECT_GT(huge.size(), SpareMemory::usual) << "it stays its owner's";
  spare.keepAtMost(huge.size());
  spare.give(huge);
  EXPECT_EQ(huge.capacity(), 0u);
  spare.keepAtMost(SpareMemory::usual);
  spare.take(huge, 1);
  EXPECT_EQ(huge.capacity(), 0u) << "it was let go of";
}

}  // namespace
}  // namespace zev
