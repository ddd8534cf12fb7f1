// What the routing does, whichever of its two entries is in force: the machine code, or the routine
// that stands in for it. Each message is sent with proof of where it went.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "runtime/error.h"
#include "socket/bench.h"
#include "socket/instruction_trace.h"
#include "socket/targets.h"
#include "socket/thunk.h"
#include "socket/watched_services.h"

namespace zev::socket_bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Arguments = Target::Arguments;

constexpr std::uint32_t somethingElse = 2050;

struct Mode {
  std::int32_t answer = 1;
  int asked = 0;
};
Mode mode;

std::int32_t ebMode() {
  ++mode.asked;
  return mode.answer;
}

std::int32_t olderEbMode() { return 2; }

std::uintptr_t addressOf(std::int32_t (*function)()) {
  return reinterpret_cast<std::uintptr_t>(function);
}

/// A program's own procedure, which the block is put before, and who hears of what it gets. Where
/// code is really entered it is code; elsewhere nothing lies at its address.
class PreviousProcedure {
 public:
  PreviousProcedure(MessageWindows& windows, MessageRoutine& routine) : windows_(windows) {
#if defined(__i386__)
    if (windows.entersMachineCode()) {
      address_ = reinterpret_cast<std::uintptr_t>(&enter);
      behind = &routine;
      return;
    }
#endif
    windows.standIn(address_, &routine);
  }
  ~PreviousProcedure() { windows_.standIn(address_, nullptr); }
  PreviousProcedure(const PreviousProcedure&) = delete;
  PreviousProcedure& operator=(const PreviousProcedure&) = delete;

  std::uintptr_t address() const { return address_; }

 private:
#if defined(__i386__)
  static std::intptr_t __attribute__((stdcall))
  enter(WindowHandle window, std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
    return behind->enter({window, message, wParam, lParam});
  }
  static inline MessageRoutine* behind = nullptr;
#endif

  MessageWindows& windows_;
  std::uintptr_t address_ = 0x401000;
};

class ThunkBehaviour : public testing::Test {
 protected:
  ThunkBehaviour() {
    mode = {};
    windows.SetWindowLongA(window, windowProcedureIndex, previous);
  }

  ~ThunkBehaviour() override {
    windows.SetWindowLongA(window, windowProcedureIndex, bornWith);
    windows.DestroyWindow(window);
  }

  void build(bool guarded = false) {
    thunk.BuildThunk(guarded);
    ASSERT_TRUE(thunk.SubclassMessageWindow(window));
    block = reinterpret_cast<std::uintptr_t>(thunk.ThunkBlock());
    previousRoutine.taken.clear();
  }

  /// A new instance, known to the table of that message under a handle.
  std::shared_ptr<Target> add(std::uint32_t message, std::int32_t handle) {
    auto target = std::make_shared<Target>();
    const InstancePointer pointer = instances.add(target);
    addEntry(message, handle, pointer);
    pointers[target.get()] = pointer;
    return target;
  }
  void addEntry(std::uint32_t message, std::int32_t handle, InstancePointer pointer) {
    if (message == WM_RESOLVE_DONE) {
      thunk.AddResolveEntry(handle, pointer);
    } else {
      thunk.AddSocketEntry(handle, pointer);
    }
  }
  void deleteEntry(std::uint32_t message, std::int32_t handle) {
    if (message == WM_RESOLVE_DONE) {
      thunk.DeleteResolveEntry(handle);
    } else {
      thunk.DeleteSocketEntry(handle);
    }
  }

  /// Enters the window's procedure, and makes sure that the entry in force was entered.
  std::int32_t send(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) {
    const int entriesBefore = windows.entries(block);
    const auto* const code = reinterpret_cast<const std::uint8_t*>(block);
    std::intptr_t result = 0;
    const auto executed =
        executedOffsets(code, thunkSize, [&] { result = sendUnwatched(message, wParam, lParam); });
    const int entered = windows.entries(block) - entriesBefore;
    if (windows.entersMachineCode()) {
      EXPECT_EQ(entered, 0) << "a routine stood in for code that could run";
      if (canFollowInstructions()) {
        EXPECT_TRUE(!executed.empty() && executed.front() == 0) << "the code did not run";
        EXPECT_EQ(std::count(executed.begin(), executed.end(), 10),  // its only clearing of eax
                  std::count(executed.begin(), executed.end(), 0));
      }
    } else {
      EXPECT_GE(entered, 1) << "the routine was not entered";
      EXPECT_THAT(executed, IsEmpty());
    }
    return static_cast<std::int32_t>(result);
  }
  /// Not by way of what observes the windows: every instruction on the way is followed.
  std::intptr_t sendUnwatched(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) {
    return bench->windows().CallWindowProcA(
        block, {window, message, static_cast<std::uint32_t>(wParam), lParam});
  }
  void post(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) {
    bench->post({window, message, static_cast<std::uint32_t>(wParam), lParam});
  }
  void pumpAll() {
    while (bench->pump(0)) {
    }
  }

  Arguments arguments(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) const {
    return {static_cast<std::int32_t>(window), static_cast<std::int32_t>(message), wParam, lParam};
  }
  /// What reached the previous procedure.
  std::vector<Arguments> forwarded() const {
    std::vector<Arguments> all;
    for (const WindowMessage& each : previousRoutine.taken) {
      EXPECT_EQ(each.window, window);
      all.push_back(arguments(each.message, static_cast<std::int32_t>(each.wParam),
                              static_cast<std::int32_t>(each.lParam)));
    }
    return all;
  }

  std::unique_ptr<Bench> bench = makeBench();
  Calls calls;
  WatchedKernel kernel{bench->kernel(), calls};
  WatchedWindows windows{bench->windows(), calls};
  RecordingRoutine previousRoutine;
  PreviousProcedure previousProcedure{windows, previousRoutine};
  const std::uintptr_t previous = previousProcedure.address();
  const WindowHandle window = windows.CreateWindowExA(u"STATIC", u"TEST");
  const std::uintptr_t bornWith = windows.GetWindowLongA(window, windowProcedureIndex);
  std::vector<std::exception_ptr> escaped;
  Instances instances{[this](std::exception_ptr error) { escaped.push_back(error); }};
  std::map<const Target*, InstancePointer> pointers;
  Trace trace;
  Thunk thunk{kernel, windows, instances, trace};
  std::uintptr_t block = 0;
};

// ---- routing, for either table

class ThunkRouting : public ThunkBehaviour, public testing::WithParamInterface<std::uint32_t> {
 protected:
  std::uint32_t message() const { return GetParam(); }
  std::uint32_t other() const {
    return message() == WM_RESOLVE_DONE ? WM_SOCKET_EVENT : WM_RESOLVE_DONE;
  }
};

std::string nameOf(const testing::TestParamInfo<std::uint32_t>& each) {
  return each.param == WM_RESOLVE_DONE ? "LookUps" : "Sockets";
}

INSTANTIATE_TEST_SUITE_P(Tables, ThunkRouting, testing::Values(WM_RESOLVE_DONE, WM_SOCKET_EVENT),
                         nameOf);

TEST_P(ThunkRouting, HitsTheOnlySlot) {
  build();
  const auto target = add(message(), 97);
  target->answer = 41;
  EXPECT_EQ(send(message(), 97, 1), 41);
  EXPECT_THAT(target->taken, ElementsAre(arguments(message(), 97, 1)));
  EXPECT_THAT(forwarded(), IsEmpty());
}

TEST_P(ThunkRouting, HitsTheFirstTheMiddleAndTheLastSlot) {
  build();
  std::vector<std::shared_ptr<Target>> targets;
  for (std::int32_t i = 0; i < 5; ++i) {
    targets.push_back(add(message(), 100 + i));
    targets.back()->answer = i + 1;
  }
  for (std::int32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(send(message(), 100 + i, i << 16 | 1), i + 1);
    EXPECT_THAT(targets[static_cast<std::size_t>(i)]->taken,
                ElementsAre(arguments(message(), 100 + i, i << 16 | 1)));
  }
  EXPECT_THAT(forwarded(), IsEmpty());
}

TEST_P(ThunkRouting, HitsHandlesOfEveryKind) {
  build();
  constexpr std::int32_t handles[] = {0, 1, -2, 2147483647, -2147483647 - 1, 2048, 2049};
  std::vector<std::shared_ptr<Target>> targets;
  for (const std::int32_t handle : handles) targets.push_back(add(message(), handle));
  for (std::size_t i = 0; i < std::size(handles); ++i) {
    EXPECT_EQ(send(message(), handles[i], -1), 0);
    EXPECT_THAT(targets[i]->taken, ElementsAre(arguments(message(), handles[i], -1)));
  }
}

TEST_P(ThunkRouting, HandsResultsOfEveryKindBack) {
  build();
  const auto target = add(message(), 97);
  for (const std::int32_t answer : {0, 1, -1, 2147483647, -2147483647 - 1}) {
    target->answer = answer;
    EXPECT_EQ(send(message(), 97, 0), answer);
  }
}

TEST_P(ThunkRouting, KeepsTheTablesApart) {
  build();
  const auto here = add(message(), 97);
  const auto there = add(other(), 97);
  const auto onlyThere = add(other(), 98);
  send(message(), 97, 7);
  EXPECT_EQ(here->taken.size(), 1u);
  EXPECT_THAT(there->taken, IsEmpty());
  EXPECT_EQ(send(message(), 98, 7), 98);
  EXPECT_THAT(onlyThere->taken, IsEmpty());
}

TEST_P(ThunkRouting, DropsAnUnknownHandleWithItAsTheResult) {
  build();
  const auto target = add(message(), 97);
  for (const std::int32_t unknown : {0, 1, 96, 98, -2, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(send(message(), unknown, 1), unknown);
  }
  post(message(), 98, 1);
  pumpAll();
  EXPECT_THAT(target->taken, IsEmpty());
  EXPECT_THAT(forwarded(), IsEmpty());
}

TEST_P(ThunkRouting, MissesAHandleThatIsFreed) {
  build();
  const auto first = add(message(), 97);
  const auto second = add(message(), 98);
  const auto third = add(message(), 99);
  deleteEntry(message(), 98);
  EXPECT_EQ(send(message(), 98, 1), 98);
  EXPECT_THAT(second->taken, IsEmpty());
  send(message(), 97, 1);
  send(message(), 99, 1);
  EXPECT_EQ(first->taken.size(), 1u);
  EXPECT_EQ(third->taken.size(), 1u);
}

TEST_P(ThunkRouting, HitsAReusedSlot) {
  build();
  const auto first = add(message(), 97);
  const auto second = add(message(), 98);
  deleteEntry(message(), 97);
  const auto third = add(message(), 99);
  send(message(), 99, 1);
  send(message(), 98, 1);
  EXPECT_EQ(send(message(), 97, 1), 97);
  EXPECT_EQ(third->taken.size(), 1u);
  EXPECT_EQ(second->taken.size(), 1u);
  EXPECT_THAT(first->taken, IsEmpty());
}

TEST_P(ThunkRouting, HitsTheFirstOfTwoSlotsWithAHandle) {
  build();
  add(message(), 97);
  const auto later = add(message(), 98);
  deleteEntry(message(), 97);
  const auto earlier = add(message(), 98);
  send(message(), 98, 1);
  EXPECT_EQ(earlier->taken.size(), 1u);
  EXPECT_THAT(later->taken, IsEmpty());
}

TEST_P(ThunkRouting, HitsTheLastOfThousands) {
  build();
  std::vector<std::shared_ptr<Target>> targets;
  for (std::int32_t i = 0; i < 3000; ++i) targets.push_back(add(message(), 1000 + i));
  for (const std::size_t i : {0u, 1500u, 2999u}) {
    post(message(), 1000 + static_cast<std::int32_t>(i), 5);
  }
  pumpAll();
  for (std::size_t i = 0; i < targets.size(); ++i) {
    EXPECT_EQ(targets[i]->taken.size(), i == 0 || i == 1500 || i == 2999 ? 1u : 0u) << i;
  }
}

TEST_P(ThunkRouting, RoutesPostedMessages) {
  build();
  const auto target = add(message(), 97);
  post(message(), 97, 3);
  EXPECT_THAT(target->taken, IsEmpty());
  pumpAll();
  EXPECT_THAT(target->taken, ElementsAre(arguments(message(), 97, 3)));
}

TEST_P(ThunkRouting, DropsWhatIsPostedWhileTheTableIsEmpty) {
  build();
  const auto there = add(other(), 97);
  for (const std::int32_t handle : {97, 0, -1}) post(message(), handle, 1);
  pumpAll();
  EXPECT_THAT(there->taken, IsEmpty());
  EXPECT_THAT(forwarded(), IsEmpty());
}

TEST_P(ThunkRouting, DropsWhatIsPostedForTheHandleOfAFreeSlot) {
  build();
  const auto first = add(message(), 97);
  const auto second = add(message(), 98);
  deleteEntry(message(), 97);
  post(message(), -1, 1);
  pumpAll();
  EXPECT_THAT(first->taken, IsEmpty());
  EXPECT_THAT(second->taken, IsEmpty());
  EXPECT_THAT(forwarded(), IsEmpty());
}

TEST_P(ThunkRouting, BeginsAnewWithEmptyTables) {
  build();
  const auto first = add(message(), 97);
  ASSERT_TRUE(thunk.UnsubclassMessageWindow());
  windows.SetWindowLongA(window, windowProcedureIndex, previous);
  ASSERT_TRUE(thunk.SubclassMessageWindow(window));
  post(message(), 97, 1);
  pumpAll();
  EXPECT_THAT(first->taken, IsEmpty());
  const auto second = add(message(), 98);
  EXPECT_EQ(send(message(), 97, 1), 97);
  send(message(), 98, 1);
  EXPECT_EQ(second->taken.size(), 1u);
  previousRoutine.answer = 6;
  EXPECT_EQ(send(somethingElse, 1, 2), 6);
}

TEST_P(ThunkRouting, EntersNoInstanceThatHasEnded) {
  build();
  auto target = add(message(), 97);
  target->answer = 9;
  const InstancePointer pointer = pointers[target.get()];
  instances.ended(pointer, true);
  EXPECT_EQ(send(message(), 97, 1), 0);
  EXPECT_THAT(target->taken, IsEmpty());
  target.reset();
  EXPECT_EQ(send(message(), 97, 1), 0);
  EXPECT_THAT(forwarded(), IsEmpty());
}

// ---- what instances do meanwhile

TEST_P(ThunkRouting, SwallowsRunTimeErrors) {
  build();
  const auto target = add(message(), 97);
  target->answer = 9;
  target->during = [] { throw RuntimeError(ErrorNumber::TypeMismatch); };
  EXPECT_EQ(static_cast<std::int32_t>(sendUnwatched(message(), 97, 1)), 0);
  EXPECT_EQ(target->taken.size(), 1u);
  EXPECT_TRUE(escaped.empty());
}

TEST_P(ThunkRouting, LetsOtherExceptionsEscapeBesideTheCode) {
  build();
  const auto target = add(message(), 97);
  target->answer = 9;
  target->during = [] { throw std::logic_error("out of here"); };
  EXPECT_EQ(static_cast<std::int32_t>(sendUnwatched(message(), 97, 1)), 0);
  ASSERT_EQ(escaped.size(), 1u);
  EXPECT_THROW(std::rethrow_exception(escaped[0]), std::logic_error);
  target->during = {};
  EXPECT_EQ(send(message(), 97, 1), 9);
}

TEST_P(ThunkRouting, StandsTablesThatMoveMeanwhile) {
  build();
  const auto target = add(message(), 97);
  target->answer = 9;
  const std::int32_t* const place = thunk.socketTable().handles().data();
  std::vector<std::shared_ptr<Target>> added;
  target->during = [&] {
    for (std::int32_t i = 0; i < 2000; ++i) {
      added.push_back(add(message(), 1000 + i));
      added.push_back(add(other(), 1000 + i));
    }
  };
  EXPECT_EQ(static_cast<std::int32_t>(sendUnwatched(message(), 97, 1)), 9);
  EXPECT_NE(thunk.socketTable().handles().data(), place);
  target->during = {};
  EXPECT_EQ(send(message(), 97, 2), 9);
  send(message(), 2999, 1);
  send(other(), 1000, 1);
  EXPECT_EQ(added[2 * 1999]->taken.size(), 1u);
  EXPECT_EQ(added[1]->taken.size(), 1u);
}

TEST_P(ThunkRouting, StandsAnEntryThatGoesMeanwhile) {
  build();
  auto target = add(message(), 97);
  target->answer = 9;
  const std::weak_ptr<Target> seen = target;
  target->during = [&] {
    deleteEntry(message(), 97);
    instances.ended(pointers[target.get()], false);
    target.reset();
  };
  EXPECT_EQ(send(message(), 97, 1), 9);
  EXPECT_TRUE(seen.expired());
  EXPECT_EQ(send(message(), 97, 1), 97);
}

TEST_P(ThunkRouting, StandsAWindowThatGoesMeanwhile) {
  build();
  const auto target = add(message(), 97);
  target->answer = 9;
  const WindowHandle another = windows.CreateWindowExA(u"STATIC", u"");
  target->during = [&] {
    EXPECT_TRUE(thunk.UnsubclassMessageWindow());
    EXPECT_TRUE(thunk.SubclassMessageWindow(another));
    EXPECT_TRUE(thunk.UnsubclassMessageWindow());
    EXPECT_TRUE(windows.DestroyWindow(another));
  };
  EXPECT_EQ(send(message(), 97, 1), 9);
}

TEST_P(ThunkRouting, StandsABlockThatGoesMeanwhile) {
  build();
  const auto target = add(message(), 97);
  target->answer = 9;
  target->during = [&] { thunk.ReleaseThunk(); };
  EXPECT_EQ(static_cast<std::int32_t>(sendUnwatched(message(), 97, 1)), 9);
  EXPECT_EQ(thunk.ThunkBlock(), nullptr);
}

TEST_P(ThunkRouting, RoutesWithinANotification) {
  build();
  const auto outer = add(message(), 97);
  const auto inner = add(other(), 98);
  inner->answer = 5;
  outer->answer = 6;
  previousRoutine.answer = 7;
  outer->during = [&] {
    if (outer->taken.size() > 1) return;
    EXPECT_EQ(sendUnwatched(other(), 98, 2), 5);
    EXPECT_EQ(sendUnwatched(somethingElse, 3, 4), 7);
    EXPECT_EQ(sendUnwatched(message(), 96, 2), 96);
    EXPECT_EQ(sendUnwatched(message(), 97, 3), 6);
  };
  EXPECT_EQ(send(message(), 97, 1), 6);
  EXPECT_THAT(outer->taken, ElementsAre(arguments(message(), 97, 1), arguments(message(), 97, 3)));
  EXPECT_THAT(inner->taken, ElementsAre(arguments(other(), 98, 2)));
  EXPECT_THAT(forwarded(), ElementsAre(arguments(somethingElse, 3, 4)));
}

// ---- everything else

TEST_F(ThunkBehaviour, ForwardsOtherMessages) {
  build();
  const auto socket = add(WM_SOCKET_EVENT, 97);
  const auto lookUp = add(WM_RESOLVE_DONE, 97);
  for (const std::uint32_t message : {0u, 1u, 1024u, 2047u, 2050u, 0x10800u, 0x80000801u}) {
    previousRoutine.taken.clear();
    previousRoutine.answer = static_cast<std::intptr_t>(message % 1000) - 500;
    EXPECT_EQ(send(message, 97, -98), previousRoutine.answer);
    EXPECT_THAT(forwarded(), ElementsAre(arguments(message, 97, -98)));
  }
  EXPECT_THAT(socket->taken, IsEmpty());
  EXPECT_THAT(lookUp->taken, IsEmpty());
}

TEST_F(ThunkBehaviour, ForwardsWithEmptyTables) {
  build();
  previousRoutine.answer = 8;
  EXPECT_EQ(send(somethingElse, -1, -2), 8);
  EXPECT_THAT(forwarded(), ElementsAre(arguments(somethingElse, -1, -2)));
}

TEST_F(ThunkBehaviour, ForwardsWithinTheForwarded) {
  build();
  const auto target = add(WM_SOCKET_EVENT, 97);
  target->answer = 3;
  previousRoutine.during = [&] {
    if (previousRoutine.taken.size() == 1) {
      EXPECT_EQ(sendUnwatched(WM_SOCKET_EVENT, 97, 1), 3);
      EXPECT_EQ(sendUnwatched(somethingElse, 5, 6), 4);
    }
  };
  previousRoutine.answer = 4;
  EXPECT_EQ(send(somethingElse, 1, 2), 4);
  EXPECT_EQ(target->taken.size(), 1u);
  EXPECT_EQ(previousRoutine.taken.size(), 2u);
}

TEST_F(ThunkBehaviour, RoutesToAReplacement) {
  build();
  const auto first = add(WM_SOCKET_EVENT, 97);
  const auto second = std::make_shared<Target>();
  thunk.ReplaceSocketEntry(97, instances.add(second));
  send(WM_SOCKET_EVENT, 97, 1);
  EXPECT_THAT(first->taken, IsEmpty());
  EXPECT_EQ(second->taken.size(), 1u);
}

// ---- the guard

class ThunkGuard : public ThunkBehaviour {
 protected:
  ThunkGuard() { kernel.setProcAddress("vba6", "EbMode", addressOf(&ebMode)); }
};

TEST_F(ThunkGuard, IsNotAskedUnlessInForce) {
  build(false);
  mode.answer = 2;
  const auto target = add(WM_SOCKET_EVENT, 97);
  send(WM_SOCKET_EVENT, 97, 1);
  EXPECT_EQ(mode.asked, 0);
  EXPECT_EQ(target->taken.size(), 1u);
}

TEST_F(ThunkGuard, LetsOnWhileTheProgramRuns) {
  build(true);
  const auto target = add(WM_SOCKET_EVENT, 97);
  target->answer = 9;
  previousRoutine.answer = 8;
  int asked = 0;
  for (const std::int32_t running : {1, 3, -1, 256, 2147483647}) {
    mode.answer = running;
    EXPECT_EQ(send(WM_SOCKET_EVENT, 97, 1), 9);
    EXPECT_EQ(mode.asked, ++asked);
    EXPECT_EQ(send(somethingElse, 1, 2), 8);
    EXPECT_EQ(mode.asked, ++asked);
    EXPECT_EQ(send(WM_SOCKET_EVENT, 98, 1), 98);
    EXPECT_EQ(mode.asked, ++asked);
  }
  EXPECT_EQ(target->taken.size(), 5u);
}

TEST_F(ThunkGuard, ForwardsEverythingWhileTheProgramIsPaused) {
  build(true);
  mode.answer = 2;
  previousRoutine.answer = 8;
  const auto socket = add(WM_SOCKET_EVENT, 97);
  const auto lookUp = add(WM_RESOLVE_DONE, 97);
  EXPECT_EQ(send(WM_SOCKET_EVENT, 97, 1), 8);
  EXPECT_EQ(send(WM_RESOLVE_DONE, 97, 2), 8);
  EXPECT_EQ(send(WM_SOCKET_EVENT, 98, 3), 8);
  EXPECT_EQ(send(somethingElse, 4, 5), 8);
  EXPECT_THAT(forwarded(),
              ElementsAre(arguments(WM_SOCKET_EVENT, 97, 1), arguments(WM_RESOLVE_DONE, 97, 2),
                          arguments(WM_SOCKET_EVENT, 98, 3), arguments(somethingElse, 4, 5)));
  EXPECT_THAT(socket->taken, IsEmpty());
  EXPECT_THAT(lookUp->taken, IsEmpty());
  EXPECT_EQ(mode.asked, 4);
}

TEST_F(ThunkGuard, PutsThePreviousProcedureBackWhenTheProgramHasStopped) {
  build(true);
  mode.answer = 0;
  const auto target = add(WM_SOCKET_EVENT, 97);
  EXPECT_EQ(send(WM_SOCKET_EVENT, 97, 1), static_cast<std::int32_t>(block));
  EXPECT_EQ(windows.GetWindowLongA(window, windowProcedureIndex), previous);
  EXPECT_THAT(target->taken, IsEmpty());
  EXPECT_THAT(forwarded(), IsEmpty());
  EXPECT_EQ(mode.asked, 1);

  post(somethingElse, 3, 4);
  pumpAll();
  EXPECT_THAT(forwarded(), ElementsAre(arguments(somethingElse, 3, 4)));
  EXPECT_EQ(mode.asked, 1);
}

TEST_F(ThunkBehaviour, GuardAsksTheOlderLibraryIfTheNewerHasNothing) {
  kernel.setProcAddress("vba5", "EbMode", addressOf(&olderEbMode));
  build(true);
  previousRoutine.answer = 8;
  const auto target = add(WM_SOCKET_EVENT, 97);
  EXPECT_EQ(send(WM_SOCKET_EVENT, 97, 1), 8);
  EXPECT_THAT(target->taken, IsEmpty());
}

}  // namespace
}  // namespace zev::socket_bench
