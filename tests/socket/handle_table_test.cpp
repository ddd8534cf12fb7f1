#include "socket/handle_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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

/// The same, walked slot by slot.
struct WalkedTable {
  struct Slot {
    std::int32_t handle;
    InstancePointer instance;
    bool operator==(const Slot&) const = default;
  };

  Added add(std::int32_t handle, InstancePointer instance) {
    for (Slot& each : slots) {
      if (each.handle == -1) {
        each = {handle, instance};
        return Added::InFreeSlot;
      }
      if (each.handle == handle) return Added::Known;
    }
    slots.push_back({handle, instance});
    return Added::AtTheEnd;
  }
  Slot* slotOf(std::int32_t handle) {
    const auto found = std::find_if(slots.begin(), slots.end(),
                                    [&](const Slot& each) { return each.handle == handle; });
    return found == slots.end() ? nullptr : &*found;
  }
  bool holds(InstancePointer instance) const {
    return std::any_of(slots.begin(), slots.end(),
                       [&](const Slot& each) { return each.instance == instance; });
  }

  std::vector<Slot> slots;
};

/// Both do the same, step by step, with handles that come again and the one of free slots.
TEST(HandleTable, IsWhatAWalkFromTheFirstSlotWouldFind) {
  std::mt19937 random(17);
  HandleTable table;
  WalkedTable walked;
  const auto any = [&](std::uint32_t most) {
    return static_cast<std::int32_t>(random() % most) - 1;
  };
  for (int step = 0; step < 20000; ++step) {
    const std::int32_t handle = any(12);
    const InstancePointer instance = any(9);
    switch (random() % 5) {
      case 0:
      case 1:
        EXPECT_EQ(table.add(handle, instance), walked.add(handle, instance));
        break;
      case 2:
        table.remove(handle);
        if (auto* const slot = walked.slotOf(handle)) *slot = {-1, -1};
        break;
      case 3:
        table.replace(handle, instance);
        if (auto* const slot = walked.slotOf(handle)) slot->instance = instance;
        break;
      default:
        if (random() % 100 == 0) {
          table.clear();
          walked.slots.clear();
        }
    }
    const auto* const slot = walked.slotOf(handle);
    ASSERT_EQ(table.find(handle), slot == nullptr ? noInstance : slot->instance) << step;
    ASSERT_EQ(table.holds(instance), walked.holds(instance)) << step;
    ASSERT_EQ(table.count(), static_cast<std::int32_t>(walked.slots.size())) << step;
    for (std::size_t i = 0; i < walked.slots.size(); ++i) {
      ASSERT_EQ((WalkedTable::Slot{table.handles()[i], table.objects()[i]}), walked.slots[i]);
    }
  }
}

}  // namespace
}  // namespace zev
