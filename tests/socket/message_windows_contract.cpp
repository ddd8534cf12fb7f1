// What the hidden windows of every binding do.

#include "socket/contract.h"

namespace zev::socket_bench {
namespace {

constexpr std::uint32_t WM_DESTROY = 2;
constexpr std::uint32_t WM_NCDESTROY = 130;
constexpr std::uint32_t first = Ear::firstMessage;
constexpr std::uint32_t second = Ear::firstMessage + 1;
constexpr WindowHandle noWindow = 0;

class MessageWindowsContract : public ContractTest {
 protected:
  void post(const Ear& to, std::uint32_t message, std::uintptr_t wParam = 0,
            std::intptr_t lParam = 0) {
    bench().post({to.window(), message, wParam, lParam});
  }

  static std::vector<std::uint32_t> own(const Ear& ear) {
    std::vector<std::uint32_t> numbers;
    for (const WindowMessage& each : ear.messages) {
      if (each.message >= Ear::firstMessage) numbers.push_back(each.message);
    }
    return numbers;
  }
  using Numbers = std::vector<std::uint32_t>;
};

// ---- windows

TEST_F(MessageWindowsContract, AWindowHasAHandleOfItsOwn) {
  const WindowHandle one = windows().CreateWindowExA(u"STATIC", u"One");
  const WindowHandle other = windows().CreateWindowExA(u"STATIC", u"One");
  EXPECT_NE(one, noWindow);
  EXPECT_NE(other, noWindow);
  EXPECT_NE(one, other);
  EXPECT_TRUE(windows().DestroyWindow(one));
  EXPECT_TRUE(windows().DestroyWindow(other));
}

TEST_F(MessageWindowsContract, TheBenchCountsWindows) {
  if (bench().openWindows() < 0) GTEST_SKIP() << bench().name() << " cannot count windows";
  const int before = bench().openWindows();
  Ear ear(windows());
  EXPECT_EQ(bench().openWindows(), before + 1);
  ear.destroy();
  EXPECT_EQ(bench().openWindows(), before);
}

TEST_F(MessageWindowsContract, ADyingWindowHearsOfItBeforeTheCallReturns) {
  Ear ear(windows());
  EXPECT_TRUE(ear.destroy());
  EXPECT_EQ(ear.count(WM_DESTROY), 1u);
  EXPECT_EQ(ear.count(WM_NCDESTROY), 1u);
  EXPECT_EQ(ear.messages.back().message, WM_NCDESTROY);
  for (const WindowMessage& each : ear.messages) {
    if (each.message != WM_DESTROY && each.message != WM_NCDESTROY) continue;
    EXPECT_EQ(each.wParam, 0u) << each.message;
    EXPECT_EQ(each.lParam, 0) << each.message;
  }
}

TEST_F(MessageWindowsContract, WhatWasPostedToADyingWindowVanishes) {
  Ear ear(windows());
  Ear other(windows(), 0x402000);
  post(ear, first);
  post(other, second);
  ear.destroy();
  quiet();
  EXPECT_EQ(own(ear), Numbers{});
  EXPECT_EQ(own(other), Numbers{second});
}

TEST_F(MessageWindowsContract, AWindowThatIsNotThereCannotBeDestroyed) {
  const WindowHandle window = windows().CreateWindowExA(u"STATIC", u"");
  EXPECT_TRUE(windows().DestroyWindow(window));
  EXPECT_FALSE(windows().DestroyWindow(window));
  EXPECT_FALSE(windows().DestroyWindow(noWindow));
}

// ---- procedures

TEST_F(MessageWindowsContract, AWindowIsBornWithAProcedure) {
  const WindowHandle window = windows().CreateWindowExA(u"STATIC", u"");
  EXPECT_NE(windows().GetWindowLongA(window, windowProcedureIndex), 0u);
  windows().DestroyWindow(window);
}

TEST_F(MessageWindowsContract, SettingAProcedureGivesTheOneBefore) {
  const WindowHandle window = windows().CreateWindowExA(u"STATIC", u"");
  Ear ear(windows());
  const std::uintptr_t born = windows().GetWindowLongA(window, windowProcedureIndex);
  EXPECT_EQ(windows().SetWindowLongA(window, windowProcedureIndex, ear.address()), born);
  EXPECT_EQ(windows().GetWindowLongA(window, windowProcedureIndex), ear.address());
  EXPECT_EQ(windows().SetWindowLongA(window, windowProcedureIndex, born), ear.address());
  EXPECT_EQ(windows().GetWindowLongA(window, windowProcedureIndex), born);
  windows().DestroyWindow(window);
}

TEST_F(MessageWindowsContract, AWindowThatIsNotThereHasNoProcedure) {
  Ear ear(windows());
  const WindowHandle window = windows().CreateWindowExA(u"STATIC", u"");
  windows().DestroyWindow(window);
  EXPECT_EQ(windows().GetWindowLongA(window, windowProcedureIndex), 0u);
  EXPECT_EQ(windows().SetWindowLongA(window, windowProcedureIndex, ear.address()), 0u);
  EXPECT_EQ(windows().GetWindowLongA(noWindow, windowProcedureIndex), 0u);
}

TEST_F(MessageWindowsContract, ADispatchedMessageReachesTheProcedureWithAllItCarries) {
  Ear ear(windows());
  post(ear, first, 0x7FFFFFFF, 0x12340020);
  ASSERT_TRUE(waitUntil([&] { return ear.count(first) == 1; }));
  const WindowMessage& message = ear.messages.back();
  EXPECT_EQ(message.window, ear.window());
  EXPECT_EQ(message.wParam, 0x7FFFFFFFu);
  EXPECT_EQ(message.lParam, 0x12340020);
}

TEST_F(MessageWindowsContract, MessagesAreDispatchedInTheOrderInWhichTheyWerePosted) {
  Ear ear(windows());
  for (const std::uint32_t each : {first, second, first, first, second}) post(ear, each);
  EXPECT_TRUE(waitUntil([&] { return own(ear).size() == 5; }));
  EXPECT_EQ(own(ear), (Numbers{first, second, first, first, second}));
}

TEST_F(MessageWindowsContract, OneMessageIsDispatchedAtATime) {
  Ear ear(windows());
  post(ear, first);
  post(ear, second);
  ASSERT_TRUE(waitUntil([&] { return !own(ear).empty(); }));
  EXPECT_EQ(own(ear), Numbers{first});
}

TEST_F(MessageWindowsContract, TheProcedureZeroIsNone) {
  Ear ear(windows());
  EXPECT_EQ(windows().SetWindowLongA(ear.window(), windowProcedureIndex, 0), ear.address());
  post(ear, first);
  quiet();
  EXPECT_EQ(own(ear), Numbers{});
  EXPECT_TRUE(ear.destroy());
  EXPECT_EQ(ear.count(WM_NCDESTROY), 0u);
}

TEST_F(MessageWindowsContract, CallingAProcedureEntersItAndGivesItsResult) {
  Ear ear(windows());
  ear.result = 77;
  EXPECT_EQ(windows().CallWindowProcA(ear.address(), {ear.window(), first, 5, 6}), 77);
  ASSERT_EQ(own(ear), Numbers{first});
  EXPECT_EQ(ear.messages.back().wParam, 5u);
  EXPECT_EQ(ear.messages.back().lParam, 6);
}

TEST_F(MessageWindowsContract, CallingTheFormerProcedureDoesNotComeBack) {
  Ear ear(windows());
  EXPECT_EQ(windows().CallWindowProcA(ear.former(), {ear.window(), first, 0, 0}), 0);
  EXPECT_EQ(own(ear), Numbers{});
}

// ---- routines that stand in

TEST_F(MessageWindowsContract, OnlyAProcessOfThirtyTwoBitsEntersMachineCode) {
  if (sizeof(void*) > 4) {
    EXPECT_FALSE(windows().entersMachineCode());
  }
}

TEST_F(MessageWindowsContract, ARoutineServesSeveralWindows) {
  Ear ear(windows());
  if (windows().entersMachineCode()) GTEST_SKIP() << "procedures are entered as they are";
  const WindowHandle window = windows().CreateWindowExA(u"STATIC", u"");
  windows().SetWindowLongA(window, windowProcedureIndex, ear.address());
  bench().post({window, first, 0, 0});
  ASSERT_TRUE(waitUntil([&] { return ear.count(first) == 1; }));
  EXPECT_EQ(ear.messages.back().window, window);
  windows().DestroyWindow(window);
}

TEST_F(MessageWindowsContract, ARoutineThatNoLongerStandsInIsNotEntered) {
  Ear ear(windows());
  if (windows().entersMachineCode()) GTEST_SKIP() << "procedures are entered as they are";
  windows().standIn(ear.address(), nullptr);
  post(ear, first);
  quiet();
  EXPECT_EQ(own(ear), Numbers{});
}

// ---- messages that are dropped

TEST_F(MessageWindowsContract, PostedMessagesOfTheRuleVanishAndOthersPass) {
  Ear ear(windows());
  windows().dropBeforeDispatch(ear.window(),
                               [](const WindowMessage& each) { return each.message == first; });
  for (const std::uint32_t each : {first, second, first}) post(ear, each);
  quiet();
  EXPECT_EQ(own(ear), Numbers{second});
}

TEST_F(MessageWindowsContract, ARuleSeesAllThatTheMessageCarries) {
  Ear ear(windows());
  windows().dropBeforeDispatch(ear.window(), [&](const WindowMessage& each) {
    return each.window == ear.window() && each.wParam == 3 && each.lParam == 4;
  });
  post(ear, first, 3, 4);
  post(ear, second, 3, 5);
  quiet();
  EXPECT_EQ(own(ear), Numbers{second});
}

TEST_F(MessageWindowsContract, ARuleIsForItsWindowOnly) {
  Ear ear(windows());
  Ear other(windows(), 0x402000);
  windows().dropBeforeDispatch(ear.window(), [](const WindowMessage&) { return true; });
  post(ear, first);
  post(other, first);
  quiet();
  EXPECT_EQ(own(ear), Numbers{});
  EXPECT_EQ(own(other), Numbers{first});
}

TEST_F(MessageWindowsContract, ARuleIsAskedBeforeDispatchNotWhenPosted) {
  Ear ear(windows());
  post(ear, first);
  windows().dropBeforeDispatch(ear.window(), [](const WindowMessage&) { return true; });
  quiet();
  EXPECT_EQ(own(ear), Numbers{});
}

TEST_F(MessageWindowsContract, ARuleDoesNotTouchWhatIsNotPosted) {
  Ear ear(windows());
  windows().dropBeforeDispatch(ear.window(), [](const WindowMessage&) { return true; });
  windows().CallWindowProcA(ear.address(), {ear.window(), first, 0, 0});
  EXPECT_EQ(own(ear), Numbers{first});
}

TEST_F(MessageWindowsContract, AnEmptyRuleEndsIt) {
  Ear ear(windows());
  windows().dropBeforeDispatch(ear.window(), [](const WindowMessage&) { return true; });
  windows().dropBeforeDispatch(ear.window(), {});
  post(ear, first);
  quiet();
  EXPECT_EQ(own(ear), Numbers{first});
}

TEST_F(MessageWindowsContract, ARuleEndsWithItsWindow) {
  int asked = 0;
  {
    Ear ear(windows());
    windows().dropBeforeDispatch(ear.window(), [&](const WindowMessage&) { return ++asked > 0; });
  }
  Ear next(windows());
  post(next, first);
  quiet();
  EXPECT_EQ(asked, 0);
  EXPECT_EQ(own(next), Numbers{first});
}

}  // namespace
}  // namespace zev::socket_bench
