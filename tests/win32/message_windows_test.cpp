#include "win32/message_windows.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "socket/bench.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

constexpr std::uintptr_t code = 0x00C0DE10;  // where machine code of another kind would lie
constexpr std::uintptr_t otherCode = 0x00C0DE20;
constexpr std::uint32_t told = WM_USER + 1;
constexpr std::uint32_t unwanted = WM_USER + 2;

HWND windowOf(WindowHandle window) { return reinterpret_cast<HWND>(window); }

/// Notes what it gets and answers it: by itself, or by the procedure behind it.
class Routine final : public MessageRoutine {
 public:
  explicit Routine(MessageWindows& windows) : windows_(windows) {}

  std::intptr_t enter(const WindowMessage& message) override {
    seen.push_back(message);
    if (onMessage) onMessage(message);
    return behind == 0 ? answer : windows_.CallWindowProcA(behind, message);
  }

  std::size_t count(std::uint32_t number) const {
    std::size_t found = 0;
    for (const WindowMessage& each : seen) found += each.message == number ? 1u : 0u;
    return found;
  }

  std::vector<WindowMessage> seen;
  std::intptr_t answer = 0;
  std::uintptr_t behind = 0;
  std::function<void(const WindowMessage&)> onMessage;

 private:
  MessageWindows& windows_;
};

class MessageWindowsTest : public testing::Test {
 protected:
  ~MessageWindowsTest() override {
    while (bench_->pump(0)) {
    }
  }

  WindowHandle make() { return windows_.CreateWindowExA(u"STATIC", u"Caption"); }

  std::uintptr_t procedureOf(WindowHandle window) {
    return windows_.GetWindowLongA(window, windowProcedureIndex);
  }

  std::uintptr_t setProcedure(WindowHandle window, std::uintptr_t procedure) {
    return windows_.SetWindowLongA(window, windowProcedureIndex, procedure);
  }

  /// A window whose messages a routine gets.
  WindowHandle makeFor(Routine& routine) {
    windows_.standIn(code, &routine);
    const WindowHandle window = make();
    setProcedure(window, code);
    return window;
  }

  void dispatchAll() {
    while (bench_->pump(0)) {
    }
  }

  std::unique_ptr<socket_bench::Bench> bench_ = socket_bench::makeBench();
  MessageWindows& windows_ = bench_->windows();
};

TEST_F(MessageWindowsTest, AreHiddenAndHaveTheClassesOwnProcedure) {
  const WindowHandle window = make();
  ASSERT_NE(window, 0u);
  EXPECT_EQ(bench_->openWindows(), 1);
  EXPECT_FALSE(IsWindowVisible(windowOf(window)));
  char name[32] = {};
  GetClassNameA(windowOf(window), name, sizeof name);
  EXPECT_STRCASEEQ(name, "STATIC");
  char caption[32] = {};
  GetWindowTextA(windowOf(window), caption, sizeof caption);
  EXPECT_STREQ(caption, "Caption");
  EXPECT_NE(procedureOf(window), 0u);
  EXPECT_EQ(GetWindowLongPtrA(windowOf(window), GWLP_HINSTANCE),
            reinterpret_cast<LONG_PTR>(GetModuleHandleA(nullptr)));
  EXPECT_EQ(GetWindow(windowOf(window), GW_OWNER), nullptr);
  EXPECT_TRUE(windows_.DestroyWindow(window));
  EXPECT_EQ(bench_->openWindows(), 0);
}

TEST_F(MessageWindowsTest, OfNoClassAreNotMade) {
  EXPECT_EQ(windows_.CreateWindowExA(u"ZevNoSuchClass", u""), 0u);
  EXPECT_EQ(bench_->openWindows(), 0);
}

TEST_F(MessageWindowsTest, EnterTheRoutineAndPassItsAnswerOn) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  routine.answer = -7;
  EXPECT_EQ(SendMessageA(windowOf(window), told, 0xFFFFFFF0u, -2), -7);
  ASSERT_EQ(routine.seen.size(), 1u);
  EXPECT_EQ(routine.seen[0].window, window);
  EXPECT_EQ(routine.seen[0].message, told);
  EXPECT_EQ(routine.seen[0].wParam, 0xFFFFFFF0u);
  EXPECT_EQ(routine.seen[0].lParam, -2);
  bench_->post({window, told, 3, 4});
  EXPECT_TRUE(bench_->pump(1000));
  EXPECT_EQ(routine.count(told), 2u);
}

TEST_F(MessageWindowsTest, AnswerWithTheProcedureThatWasSet) {
  Routine one(windows_);
  Routine two(windows_);
  windows_.standIn(code, &one);
  windows_.standIn(otherCode, &two);
  const WindowHandle window = make();
  const std::uintptr_t first = procedureOf(window);
  EXPECT_EQ(setProcedure(window, code), first);
  EXPECT_EQ(procedureOf(window), code);
  EXPECT_EQ(setProcedure(window, otherCode), code);
  EXPECT_EQ(setProcedure(window, first), otherCode);
  EXPECT_EQ(procedureOf(window), first);
  EXPECT_EQ(SendMessageA(windowOf(window), told, 0, 0), 0);
  EXPECT_TRUE(one.seen.empty());
  EXPECT_TRUE(two.seen.empty());
}

TEST_F(MessageWindowsTest, HaveProceduresOfTheirOwn) {
  Routine routine(windows_);
  const WindowHandle taken = makeFor(routine);
  const WindowHandle left = make();
  SendMessageA(windowOf(left), told, 0, 0);
  EXPECT_TRUE(routine.seen.empty());
  EXPECT_EQ(procedureOf(taken), code);
  EXPECT_NE(procedureOf(left), code);
}

TEST_F(MessageWindowsTest, ForwardToTheClassesOwnProcedure) {
  Routine routine(windows_);
  windows_.standIn(code, &routine);
  const WindowHandle window = make();
  routine.behind = setProcedure(window, code);
  char caption[32] = {};
  EXPECT_EQ(
      SendMessageA(windowOf(window), WM_GETTEXT, sizeof caption, reinterpret_cast<LPARAM>(caption)),
      7);
  EXPECT_STREQ(caption, "Caption");
  EXPECT_EQ(routine.count(WM_GETTEXT), 1u);
  EXPECT_EQ(SendMessageA(windowOf(window), WM_GETDLGCODE, 0, 0), DLGC_STATIC);
}

TEST_F(MessageWindowsTest, WithTheProcedure0DoWhatTheSystemDoes) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  EXPECT_EQ(setProcedure(window, 0), code);
  EXPECT_NE(procedureOf(window), 0u);
  EXPECT_EQ(GetWindowTextLengthA(windowOf(window)), 7);
  EXPECT_EQ(SendMessageA(windowOf(window), WM_GETDLGCODE, 0, 0), 0);
  EXPECT_TRUE(routine.seen.empty());
  EXPECT_TRUE(windows_.DestroyWindow(window));
}

TEST_F(MessageWindowsTest, RefuseWhatIsNotServed) {
  const WindowHandle window = make();
  Routine routine(windows_);
  windows_.standIn(code, &routine);
  EXPECT_EQ(windows_.GetWindowLongA(window, -21), 0u);
  EXPECT_EQ(windows_.SetWindowLongA(window, -21, code), 0u);
  EXPECT_EQ(GetWindowLongPtrA(windowOf(window), GWLP_USERDATA), 0);
  EXPECT_EQ(setProcedure(window + 0x10000, code), 0u);
  EXPECT_EQ(procedureOf(window + 0x10000), 0u);
  EXPECT_FALSE(windows_.DestroyWindow(window + 0x10000));
  EXPECT_EQ(windows_.CallWindowProcA(0, {window, told, 0, 0}), 0);
}

TEST_F(MessageWindowsTest, Of64BitsRefuseCodeThatNobodyStandsInFor) {
  if (windows_.entersMachineCode()) GTEST_SKIP() << "machine code is entered here";
  const WindowHandle window = make();
  const std::uintptr_t first = procedureOf(window);
  EXPECT_EQ(setProcedure(window, code), 0u);
  EXPECT_EQ(procedureOf(window), first);
  EXPECT_EQ(windows_.CallWindowProcA(code, {window, told, 0, 0}), 0);
}

TEST_F(MessageWindowsTest, LoseARoutineThatEnds) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  windows_.standIn(code, nullptr);
  if (!windows_.entersMachineCode()) {
    EXPECT_EQ(SendMessageA(windowOf(window), told, 0, 0), 0);
  }
  EXPECT_TRUE(routine.seen.empty());
  setProcedure(window, 0);
}

TEST_F(MessageWindowsTest, TellOfTheirEndAndLoseWhatWasPosted) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  bench_->post({window, told, 0, 0});
  EXPECT_TRUE(windows_.DestroyWindow(window));
  EXPECT_EQ(routine.count(WM_DESTROY), 1u);
  EXPECT_EQ(routine.count(WM_NCDESTROY), 1u);
  EXPECT_EQ(routine.seen.back().message, std::uint32_t{WM_NCDESTROY});
  EXPECT_FALSE(IsWindow(windowOf(window)));
  EXPECT_EQ(procedureOf(window), 0u);
  EXPECT_FALSE(windows_.DestroyWindow(window));
  dispatchAll();
  EXPECT_EQ(routine.count(told), 0u);
}

TEST_F(MessageWindowsTest, CanEndWithinTheirOwnMessage) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  routine.answer = 5;
  routine.onMessage = [&](const WindowMessage& message) {
    if (message.message == told) windows_.DestroyWindow(window);
  };
  EXPECT_EQ(SendMessageA(windowOf(window), told, 0, 0), 5);
  EXPECT_EQ(routine.count(WM_NCDESTROY), 1u);
  EXPECT_EQ(bench_->openWindows(), 0);
}

TEST_F(MessageWindowsTest, EndedBySomebodyElseAreForgotten) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  EXPECT_TRUE(::DestroyWindow(windowOf(window)));
  EXPECT_EQ(bench_->openWindows(), 0);
  EXPECT_EQ(routine.count(WM_NCDESTROY), 1u);
}

TEST_F(MessageWindowsTest, EndWithTheirOwnerWhoseRoutinesHearNothing) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  bench_ = socket_bench::makeBench();
  EXPECT_FALSE(IsWindow(windowOf(window)));
  EXPECT_TRUE(routine.seen.empty());
}

// ---- rules

bool isUnwanted(const WindowMessage& message) { return message.message == unwanted; }

TEST_F(MessageWindowsTest, DropPostedMessagesBeforeTheyAreDispatched) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  std::vector<WindowMessage> asked;
  windows_.dropBeforeDispatch(window, [&](const WindowMessage& message) {
    asked.push_back(message);
    return isUnwanted(message);
  });
  bench_->post({window, unwanted, 1, 2});
  bench_->post({window, told, 3, 4});
  dispatchAll();
  EXPECT_EQ(routine.count(unwanted), 0u);
  EXPECT_EQ(routine.count(told), 1u);
  ASSERT_GE(asked.size(), 2u);
  EXPECT_EQ(asked[0].window, window);
  EXPECT_EQ(asked[0].wParam, 1u);
  EXPECT_EQ(asked[0].lParam, 2);
}

TEST_F(MessageWindowsTest, LetSentMessagesThroughARule) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  windows_.dropBeforeDispatch(window, isUnwanted);
  SendMessageA(windowOf(window), unwanted, 0, 0);
  EXPECT_EQ(routine.count(unwanted), 1u);
}

TEST_F(MessageWindowsTest, DropNothingThatIsOnlyLookedAt) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  windows_.dropBeforeDispatch(window, isUnwanted);
  bench_->post({window, unwanted, 1, 2});
  MSG message;
  ASSERT_TRUE(PeekMessageA(&message, windowOf(window), 0, 0, PM_NOREMOVE));
  EXPECT_EQ(message.message, unwanted);
  ASSERT_TRUE(PeekMessageA(&message, windowOf(window), 0, 0, PM_REMOVE));
  EXPECT_EQ(message.message, std::uint32_t{WM_NULL});
  EXPECT_EQ(message.hwnd, nullptr);
}

TEST_F(MessageWindowsTest, KeepTheRuleOfOneFromTheOthers) {
  Routine routine(windows_);
  const WindowHandle ruled = makeFor(routine);
  const WindowHandle free = makeFor(routine);
  windows_.dropBeforeDispatch(ruled, isUnwanted);
  bench_->post({free, unwanted, 0, 0});
  bench_->post({ruled, unwanted, 0, 0});
  dispatchAll();
  ASSERT_EQ(routine.count(unwanted), 1u);
  EXPECT_EQ(routine.seen.back().window, free);
}

TEST_F(MessageWindowsTest, EndARuleWhenTold) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  windows_.dropBeforeDispatch(window, isUnwanted);
  windows_.dropBeforeDispatch(window, {});
  bench_->post({window, unwanted, 0, 0});
  dispatchAll();
  EXPECT_EQ(routine.count(unwanted), 1u);
}

TEST_F(MessageWindowsTest, EndTheirRuleWithThemselvesAndLeaveTheOthers) {
  Routine routine(windows_);
  const WindowHandle gone = makeFor(routine);
  const WindowHandle left = makeFor(routine);
  int asked = 0;
  windows_.dropBeforeDispatch(gone, [&](const WindowMessage&) { return ++asked > 0; });
  windows_.dropBeforeDispatch(left, isUnwanted);
  windows_.DestroyWindow(gone);
  const WindowHandle next = makeFor(routine);
  bench_->post({next, unwanted, 0, 0});
  bench_->post({left, unwanted, 0, 0});
  dispatchAll();
  EXPECT_EQ(routine.count(unwanted), 1u);
  EXPECT_EQ(asked, 0);
}

/// Takes a box that is open.
BOOL CALLBACK takeBox(HWND window, LPARAM into) {
  char name[16] = {};
  GetClassNameA(window, name, sizeof name);
  if (std::string_view(name) != "#32770") return TRUE;
  *reinterpret_cast<HWND*>(into) = window;
  return FALSE;
}

/// The box of this thread that is open; null without one.
HWND openBox() {
  HWND found = nullptr;
  EnumThreadWindows(GetCurrentThreadId(), takeBox, reinterpret_cast<LPARAM>(&found));
  return found;
}

/// The message behind the unwanted one closes the box, within the box's loop.
TEST_F(MessageWindowsTest, DropInTheLoopOfABoxToo) {
  Routine routine(windows_);
  const WindowHandle window = makeFor(routine);
  windows_.dropBeforeDispatch(window, isUnwanted);
  bool boxWasOpen = false;
  routine.onMessage = [&](const WindowMessage& message) {
    if (message.message != told) return;
    const HWND box = openBox();
    boxWasOpen = box != nullptr;
    if (boxWasOpen) EndDialog(box, IDOK);
  };
  bench_->post({window, unwanted, 0, 0});
  bench_->post({window, told, 0, 0});
  EXPECT_EQ(MessageBoxA(nullptr, "Text", "Title", MB_OK), IDOK);
  EXPECT_TRUE(boxWasOpen);
  EXPECT_EQ(routine.count(told), 1u);
  EXPECT_EQ(routine.count(unwanted), 0u);
}

}  // namespace
}  // namespace zev::win32
