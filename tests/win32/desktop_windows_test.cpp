#include "win32/processes.h"

#include <gtest/gtest.h>

#include <set>

#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// A window of this program at the top level.
class OwnWindow {
 public:
  explicit OwnWindow(const char* title, DWORD style = 0)
      : window_(CreateWindowExA(0, "STATIC", title, WS_OVERLAPPEDWINDOW | style, 0, 0, 100, 100,
                                nullptr, nullptr, nullptr, nullptr)) {}
  ~OwnWindow() { DestroyWindow(window_); }
  OwnWindow(const OwnWindow&) = delete;
  OwnWindow& operator=(const OwnWindow&) = delete;

  HWND window() const { return window_; }
  WindowHandle handle() const { return reinterpret_cast<WindowHandle>(window_); }

 private:
  HWND window_;
};

TEST(DesktopWindows, AreWalkedFromTheFirstToTheLast) {
  Win32Windows windows;
  const OwnWindow one("One");
  const OwnWindow two("Two");
  std::set<WindowHandle> seen;
  for (WindowHandle each = windows.GetWindow(one.handle(), GW_HWNDFIRST); each != 0;
       each = windows.GetWindow(each, GW_HWNDNEXT)) {
    ASSERT_TRUE(seen.insert(each).second);
  }
  EXPECT_TRUE(seen.contains(one.handle()));
  EXPECT_TRUE(seen.contains(two.handle()));
}

TEST(DesktopWindows, HaveTitlesThatAreCutToTheBuffer) {
  Win32Windows windows;
  const OwnWindow window("Settings");
  EXPECT_EQ(windows.GetWindowTextLengthA(window.handle()), 8);
  Text buffer = blanks(12);
  EXPECT_EQ(windows.GetWindowTextA(window.handle(), buffer, 9), 8);
  EXPECT_EQ(buffer, Text(u"Settings\0   ", 12));
  buffer = blanks(12);
  EXPECT_EQ(windows.GetWindowTextA(window.handle(), buffer, 4), 3);
  EXPECT_EQ(buffer, Text(u"Set\0        ", 12));
}

TEST(DesktopWindows, NoWindowLeavesTheBufferAsItWas) {
  Win32Windows windows;
  Text buffer = blanks(4);
  EXPECT_EQ(windows.GetWindowTextA(0, buffer, 4), 0);
  EXPECT_EQ(windows.GetWindowTextA(0, buffer, 0), 0);
  EXPECT_EQ(buffer, u"    ");
}

/// True if one of two windows lies over the other.
bool liesOver(const OwnWindow& upper, const OwnWindow& lower) {
  for (HWND each = upper.window(); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
    if (each == lower.window()) return true;
  }
  return false;
}

TEST(DesktopWindows, ComeToTheFrontAndAreInUseThen) {
  Win32Windows windows;
  const OwnWindow one("One", WS_VISIBLE);
  const OwnWindow other("Other", WS_VISIBLE);
  for (const OwnWindow* each : {&one, &other, &one}) {
    EXPECT_TRUE(windows.SetForegroundWindow(each->handle()));
    EXPECT_EQ(GetForegroundWindow(), each->window());
  }
  EXPECT_FALSE(windows.SetForegroundWindow(0));
}

TEST(DesktopWindows, ComeToTheTopOfTheOthers) {
  Win32Windows windows;
  const OwnWindow one("One", WS_VISIBLE);
  const OwnWindow other("Other", WS_VISIBLE);
  EXPECT_TRUE(windows.BringWindowToTop(one.handle()));
  EXPECT_TRUE(liesOver(one, other));
  EXPECT_TRUE(windows.BringWindowToTop(other.handle()));
  EXPECT_TRUE(liesOver(other, one));
  EXPECT_FALSE(windows.BringWindowToTop(0));
}

}  // namespace
}  // namespace zev::win32
