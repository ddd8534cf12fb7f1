// What the windows of a form do beyond the contract of the forms: they are looked at, and clicked,
// as a person does.

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <span>

#include "runtime/application.h"
#include "state/forms.h"
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

struct ById {
  int id;
  HWND found = nullptr;
};

BOOL CALLBACK takeIfIts(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<ById*>(search);
  if (GetDlgCtrlID(window) == wanted.id) wanted.found = window;
  return TRUE;
}

/// The window of a control, by its place among those of its form.
HWND windowOf(Win32FormEngine& engine, const Form& form, int place) {
  ById search{firstControlId + place};
  EnumChildWindows(reinterpret_cast<HWND>(engine.windowHandle(form)), takeIfIts,
                   reinterpret_cast<LPARAM>(&search));
  return search.found;
}

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

  HWND windowAt(int place) { return windowOf(engine_, form_, place); }

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

  Win32FormEngine engine_;
  Application application_{engine_};
  Form form_{design};
  int clicks_ = 0;
};

TEST_F(FormWindowTest, ButtonsHearEachOfTwoQuickClicks) {
  clickTwice(windowAt(0));
  EXPECT_EQ(clicks_, 2);
  clickTwice(windowAt(4));
  EXPECT_EQ(clicks_, 4);
}

/// Nothing is dispatched here: the run shows how far it is while it copies.
TEST_F(FormWindowTest, ARefreshPaintsAtOnce) {
  const HWND onBar = windowAt(3);
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

/// A run refreshes one control after the other, often: each waits for its own turn.
TEST_F(FormWindowTest, ARefreshPaintsThatControlAlone) {
  const HWND picture = windowAt(1);
  auto& bar = form_.control<Label>(u"Label7");
  InvalidateRect(picture, nullptr, FALSE);
  bar.Width = 1500;
  bar.Refresh();
  EXPECT_EQ(colourAt(windowAt(3), 20, 10), green);
  EXPECT_TRUE(GetUpdateRect(picture, nullptr, FALSE));
  form_.Refresh();
  EXPECT_FALSE(GetUpdateRect(picture, nullptr, FALSE));
}

struct NameRow {
  TextView field;
  TextView label;
};

// The labels that name the fields, by what they say and where they stand.
constexpr NameRow namesOfForm1[] = {
    {u"Combo1", u"Label2"}, {u"Text1", u"Label3"}, {u"Text2", u"Label9"}};
constexpr NameRow namesOfForm3[] = {{u"Drive1", u"Label1"}};

/// Looks for a name as they do who read the screen aloud: backward in the order of the windows,
/// past what is hidden, up to a label; at a control that takes the focus there is none.
std::optional<Text> nameBefore(HWND field) {
  for (HWND each = GetWindow(field, GW_HWNDPREV); each != nullptr;
       each = GetWindow(each, GW_HWNDPREV)) {
    const LONG style = GetWindowLongW(each, GWL_STYLE);
    if ((style & WS_VISIBLE) == 0) continue;
    if ((style & WS_TABSTOP) != 0) return std::nullopt;
    if (SendMessageW(each, WM_GETDLGCODE, 0, 0) == DLGC_STATIC) return windowText(each);
  }
  return std::nullopt;
}

class NamedFields : public testing::Test {
 protected:
  NamedFields() { engine_.serve(application_); }

  HWND windowOf(const Form& form, TextView name) {
    const auto& controls = form.Controls();
    const auto place = std::find(controls.begin(), controls.end(), form.findControl(name));
    return win32::windowOf(engine_, form, static_cast<int>(place - controls.begin()));
  }

  void expectNames(Form& form, std::span<const NameRow> rows) {
    application_.Show(form);
    for (const NameRow& row : rows) {
      Control& label = *form.findControl(row.label);
      auto& caption = dynamic_cast<Property<Text>&>(*label.findProperty("Caption"));
      caption = join(u"names ", row.field);
      EXPECT_EQ(nameBefore(windowOf(form, row.field)).value_or(u"no name"), caption.get())
          << toUtf8(row.field);
    }
    application_.Unload(form);
  }

 private:
  Win32FormEngine engine_;
  Application application_{engine_};
};

TEST_F(NamedFields, OfTheWizardStandBehindTheirLabels) {
  Form1 form;
  expectNames(form, namesOfForm1);
}

/// The folders share the label of the drives, which stands before both.
TEST_F(NamedFields, OfTheBrowserStandBehindTheirLabel) {
  Form3 form;
  expectNames(form, namesOfForm3);
}

}  // namespace
}  // namespace zev::win32
