// What the Windows binding does beyond the contracts on a system whose letters take two bytes.
// These run on a Japanese machine alone.

#include <gtest/gtest.h>

#include "win32/ansi.h"
#include "win32/processes.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

class Japanese : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(GetACP(), 932u) << "these run on a Japanese machine"; }
};

/// A window of this program at the top level.
class TitledWindow {
 public:
  explicit TitledWindow(const wchar_t* title)
      : window_(CreateWindowExW(0, L"STATIC", title, WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                                nullptr, nullptr, nullptr)) {}
  ~TitledWindow() { DestroyWindow(window_); }
  TitledWindow(const TitledWindow&) = delete;
  TitledWindow& operator=(const TitledWindow&) = delete;

  WindowHandle handle() const { return reinterpret_cast<WindowHandle>(window_); }

 private:
  HWND window_;
};

TEST_F(Japanese, LettersHaveTwoBytes) {
  EXPECT_EQ(toAnsi(u"C:\\\u8868\u30BD \uFF71"), "C:\\\x95\\\x83\\ \xB1");
  EXPECT_EQ(fromAnsi("C:\\\x95\\\x83\\ \xB1"), u"C:\\\u8868\u30BD \uFF71");
}

TEST_F(Japanese, AYenSignIsNoBackslash) { EXPECT_EQ(toAnsi(u"C:\u00A5x\u301C"), "C:?x?"); }

TEST_F(Japanese, HalfALetterIsUnknown) {
  EXPECT_EQ(fromAnsi("a\x83"), u"a\u30FB");
  EXPECT_EQ(fromAnsi(std::string_view("a\x83\0b", 4)), Text(u"a\u30FB\0b", 4));
  EXPECT_EQ(fromAnsi("a\x83 b"), u"a\u30FBb");
}

TEST_F(Japanese, AnAnswerTakesItsBytesAndCountsItsLetters) {
  Text buffer = blanks(8);
  EXPECT_EQ(writeAnswer(buffer, "\x93\x63\x92\x86"), 2u);
  EXPECT_EQ(buffer, Text(u"\u7530\u4E2D\0   ", 6));
  buffer = blanks(3);
  EXPECT_EQ(writeAnswer(buffer, "\x93\x63\x92\x86"), 2u);
  EXPECT_EQ(buffer, u"\u7530\u30FB");
}

TEST_F(Japanese, TitlesTakeTheBytesOfTheirLetters) {
  Win32Windows windows;
  const TitledWindow window(L"\u9332\u753B ZEV");
  const std::int32_t bytes = windows.GetWindowTextLengthA(window.handle());
  EXPECT_GE(bytes, 8);
  Text buffer = blanks(12);
  EXPECT_EQ(windows.GetWindowTextA(window.handle(), buffer, bytes + 1), 6);
  EXPECT_EQ(buffer, Text(u"\u9332\u753B ZEV\0   ", 10));
}

TEST_F(Japanese, PathsOfItsLettersStayAndOthersBecomeShort) {
  const Text korean = u"C:\\\uD55C\uAD6D and more";
  const Text japanese = u"C:\\\u7530\u4E2D and more";
  for (const Text& path : {korean, japanese}) ASSERT_TRUE(CreateDirectoryW(wide(path), nullptr));
  EXPECT_EQ(writablePath(japanese), japanese);
  const Text brief = writablePath(korean);
  EXPECT_EQ(fromAnsi(toAnsi(brief)), brief);
  EXPECT_NE(brief, korean);
  EXPECT_TRUE(RemoveDirectoryA(toAnsi(brief).c_str()));
  EXPECT_EQ(writablePath(korean), korean) << "an entry that is not there has no short name";
  RemoveDirectoryW(wide(japanese));
}

}  // namespace
}  // namespace zev::win32
