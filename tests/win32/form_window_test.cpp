// What the windows of a form do beyond the contract of the forms: they are looked at, and clicked,
// as a person does.

#include <gtest/gtest.h>

#include "runtime/application.h"
#include "win32/control_windows.h"
#include "win32/form_engine.h"

namespace zev::win32 {
namespace {

constexpr COLORREF green = RGB(0, 192, 0);

constexpr ControlDesign controls[] = {
    {.name = u"Command1", .kind = ControlKind::CommandButton, .place = {150, 150, 1500, 450}},
    {.name = u"Picture2", .kind = ControlKind::PictureBox, .place = {150, 900, 3000, 300}},
    {.name = u"Label7",
     .kind = ControlKind::Label,
     .container = u"Picture2",
     .place = {0, 0, 0, 300},
     .bar = true},
    {.name = u"Label8",
     .kind = ControlKind::Label,
     .container = u"Picture2",
     .place = {0, 0, 3000, 300},
     .onBar = true},
    {.name = u"Check1", .kind = ControlKind::CheckBox, .place = {150, 1500, 1500, 300}},
};
constexpr FormDesign design = {
    .name = u"Form1", .caption = u"A form", .width = 3300, .height = 2000, .controls = controls};

class FormWindowTest : public testing::Test {
 protected:
  FormWindowTest() {
    engine_.serve(application_);
    form_.control<CommandButton>(u"Command1").Click = [this] { ++clicks_; };
    form_.control<CheckBox>(u"Check1").Click = [this] { ++clicks_; };
    application_.Show(form_);
    application_.DoEvents();
  }
  ~FormWindowTest() override { application_.Unload(form_); }

  HWND windowOf(int place) const {
    const auto form = reinterpret_cast<HWND>(engine_.windowHandle(form_));
    const HWND direct = GetDlgItem(form, firstControlId + place);
    const HWND within = GetDlgItem(GetDlgItem(form, firstControlId + 1), firstControlId + place);
    return direct == nullptr ? within : direct;
  }

  /// What the mouse tells a window of a click, and of a second one that follows quickly.
  void clickTwice(HWND window) {
    for (const UINT down : {UINT{WM_LBUTTONDOWN}, UINT{WM_LBUTTONDBLCLK}}) {
      SendMessageW(window, down, MK_LBUTTON, MAKELPARAM(5, 5));
      SendMessageW(window, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    }
    application_.DoEvents();
  }

  COLORREF colourAt(HWND window, int x, int y) const {
    const HDC canvas = GetDC(window);
    const COLORREF colour = GetPixel(canvas, x, y);
    ReleaseDC(window, canvas);
    return colour;
  }

  mutable WindowsEngine engine_;
  Application application_{engine_};
  Form form_{design};
  int clicks_ = 0;
};

TEST_F(FormWindowTest, ButtonsHearEachOfTwoQuickClicks) {
  clickTwice(windowOf(0));
  EXPECT_EQ(clicks_, 2);
  clickTwice(windowOf(4));
  EXPECT_EQ(clicks_, 4);
}

/// Nothing is dispatched here: the run shows how far it is while it copies.
TEST_F(FormWindowTest, ARefreshPaintsAtOnce) {
  const HWND onBar = windowOf(3);
  auto& bar = form_.control<Label>(u"Label7");
  EXPECT_EQ(colourAt(onBar, 20, 10), GetSysColor(COLOR_BTNFACE));
  bar.Width = 1500;
  EXPECT_EQ(colourAt(onBar, 20, 10), GetSysColor(COLOR_BTNFACE));
  form_.control<Label>(u"Label8").Refresh();
  EXPECT_EQ(colourAt(onBar, 20, 10), green);
  EXPECT_EQ(colourAt(onBar, 98, 10), green);
  EXPECT_EQ(colourAt(onBar, 102, 10), GetSysColor(COLOR_BTNFACE));
  EXPECT_FALSE(GetUpdateRect(onBar, nullptr, FALSE));
}

}  // namespace
}  // namespace zev::win32
