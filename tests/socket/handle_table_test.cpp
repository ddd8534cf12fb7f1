#include "socket/handle_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zev {
namespace {

using Added = HandleTable::Added;
using testing::ElementsAre;

constexpr InstancePointer first = 101;
constexpr InstancePointer second = 102;
constexpr InstancePointer third = 103;

HandleTable filled() {
  HandleTable table;
  table.add(7, first);
  table.add(8, second);
  table.add(9, third);
  return table;
}

TEST(HandleTable, BeginsEmptyWithASingleCell) {
  const HandleTable table;
  EXPECT_EQ(table.count(), 0);
  EXPECT_EQ(table.used(), 0);
  EXPECT_EQ(table.handles().size(), 1u);
  EXPECT_EQ(table.objects().size(), 1u);
  EXPECT_EQ(table.find(7), noInstance);
  EXPECT_EQ(table.find(0), noInstance);
  EXPECT_FALSE(table.holds(first));
}

TEST(HandleTable, GrowsByOneSlotAnEntry) {
  HandleTable table;
  EXPECT_EQ(table.add(7, first), Added::AtTheEnd);
  EXPECT_EQ(table.add(8, second), Added::AtTheEnd);
  EXPECT_EQ(table.count(), 2);
  EXPECT_THAT(table.handles(), ElementsAre(7, 8));
  EXPECT_THAT(table.objects(), ElementsAre(first, second));
}

TEST(HandleTable, FindsTheFirstTheMiddleAndTheLastSlot) {
  const HandleTable table = filled();
  EXPECT_EQ(table.find(7), first);
  EXPECT_EQ(table.find(8), second);
  EXPECT_EQ(table.find(9), third);
  EXPECT_EQ(table.find(10), noInstance);
}

TEST(HandleTable, KeepsTheFirstInstanceOfAHandleThatComesTwice) {
  HandleTable table = filled();
  EXPECT_EQ(table.add(8, 999), Added::Known);
  EXPECT_EQ(table.count(), 3);
  EXPECT_EQ(table.find(8), second);
}

TEST(HandleTable, FreesBothCellsAndKeepsTheCount) {
  HandleTable table = filled();
  table.remove(8);
  EXPECT_EQ(table.count(), 3);
  EXPECT_EQ(table.used(), 2);
  EXPECT_THAT(table.handles(), ElementsAre(7, -1, 9));
  EXPECT_THAT(table.objects(), ElementsAre(first, -1, third));
  EXPECT_FALSE(table.holds(second));
}

TEST(HandleTable, ReusesTheFirstFreeSlot) {
  HandleTable table = filled();
  table.remove(9);
  table.remove(7);
  EXPECT_EQ(table.add(20, second), Added::InFreeSlot);
  EXPECT_THAT(table.handles(), ElementsAre(20, 8, -1));
  EXPECT_EQ(table.add(21, second), Added::InFreeSlot);
  EXPECT_THAT(table.handles(), ElementsAre(20, 8, 21));
  EXPECT_EQ(table.add(22, second), Added::AtTheEnd);
  EXPECT_EQ(table.count(), 4);
}

TEST(HandleTable, PrefersAFreeSlotToALaterOneWithTheHandle) {
  HandleTable table = filled();
  table.remove(7);
  EXPECT_EQ(table.add(9, 999), Added::InFreeSlot);
  EXPECT_THAT(table.handles(), ElementsAre(9, 8, 9));
  EXPECT_EQ(table.find(9), 999);
  table.remove(9);
  EXPECT_THAT(table.handles(), ElementsAre(-1, 8, 9));
  EXPECT_EQ(table.find(9), third);
}

TEST(HandleTable, PrefersAnEarlierSlotWithTheHandleToAFreeOne) {
  HandleTable table = filled();
  table.remove(9);
  EXPECT_EQ(table.add(7, 999), Added::Known);
  EXPECT_THAT(table.handles(), ElementsAre(7, 8, -1));
  EXPECT_EQ(table.find(7), first);
}

TEST(HandleTable, RemovesNothingForAnUnknownHandle) {
  HandleTable table = filled();
  table.remove(10);
  EXPECT_THAT(table.handles(), ElementsAre(7, 8, 9));
}

TEST(HandleTable, ReplacesTheInstanceOfTheFirstSlotAlone) {
  HandleTable table = filled();
  table.remove(7);
  table.add(9, second);
  table.replace(9, 999);
  EXPECT_THAT(table.objects(), ElementsAre(999, second, third));
  table.replace(10, 888);
  EXPECT_THAT(table.objects(), ElementsAre(999, second, third));
}

TEST(HandleTable, ClearedBeginsAnewAtTheSamePlace) {
  HandleTable table = filled();
  const std::int32_t* const place = table.handles().data();
  table.clear();
  EXPECT_EQ(table.count(), 0);
  EXPECT_EQ(table.used(), 0);
  EXPECT_EQ(table.find(7), noInstance);
  EXPECT_FALSE(table.holds(first));
  EXPECT_EQ(table.handles().data(), place);
  EXPECT_EQ(table.add(30, second), Added::AtTheEnd);
  EXPECT_EQ(table.count(), 1);
  EXPECT_EQ(table.find(30), second);
  EXPECT_EQ(table.find(8), noInstance);
}

TEST(HandleTable, ShrunkHasSingleCellsAndNoEntry) {
  HandleTable table = filled();
  table.shrink();
  EXPECT_EQ(table.handles().size(), 1u);
  EXPECT_EQ(table.objects().size(), 1u);
  EXPECT_EQ(table.count(), 0);
  EXPECT_EQ(table.find(8), noInstance);
  EXPECT_EQ(table.used(), 0);
  EXPECT_EQ(table.add(40, first), Added::AtTheEnd);
  EXPECT_EQ(table.add(41, second), Added::AtTheEnd);
  EXPECT_THAT(table.handles(), ElementsAre(40, 41));
}

TEST(HandleTable, DoesNotGrowWhileSlotsComeAndGo) {
  HandleTable table;
  for (std::int32_t handle = 1; handle <= 100; ++handle) table.add(handle, handle);
  for (std::int32_t round = 0; round < 1000; ++round) {
    table.remove(round + 1);
    EXPECT_EQ(table.add(round + 101, round), Added::InFreeSlot);
  }
  EXPECT_EQ(table.count(), 100);
  EXPECT_EQ(table.used(), 100);
}

}  // namespace
}  // namespace zev
