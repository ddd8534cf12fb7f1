// Where every binding leaves the focus when the program gives it away.

#include <gmock/gmock.h>

#include "contract/bench.h"

namespace zev::contract {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// clang-format off
constexpr ControlDesign controls[] = {
    {.name = u"Frame1", .kind = ControlKind::Frame, .tabIndex = 4},
    {.name = u"Text1", .kind = ControlKind::TextBox, .container = u"Frame1", .tabIndex = 5},
    {.name = u"Check1", .kind = ControlKind::CheckBox, .container = u"Frame1", .tabIndex = 6},
    {.name = u"Frame2", .kind = ControlKind::Frame, .tabIndex = 8, .visible = false},
    {.name = u"Command4", .kind = ControlKind::CommandButton, .container = u"Frame2", .tabIndex = 7},
    {.name = u"Command3", .kind = ControlKind::CommandButton, .container = u"Frame2", .tabIndex = 1},
    {.name = u"Command2", .kind = ControlKind::CommandButton, .tabIndex = 3},
    {.name = u"Command1", .kind = ControlKind::CommandButton, .tabIndex = 2},
};
constexpr ControlDesign controlsAbove[] = {
    {.name = u"Command5", .kind = ControlKind::CommandButton, .tabIndex = 0},
};
// clang-format on

constexpr FormDesign design = {
    .name = u"Form1", .caption = u"One", .width = 3000, .height = 1500, .controls = controls};
constexpr FormDesign designAbove = {
    .name = u"Form2", .caption = u"Two", .width = 3000, .height = 1500, .controls = controlsAbove};

class FocusContract : public ContractTest {
 protected:
  FocusContract() {
    for (Form* each : {&form, &above}) {
      for (Control* control : each->Controls()) note(*control);
    }
    application().Show(form);
    settle();
  }
  ~FocusContract() override {
    application().Unload(above);
    application().Unload(form);
  }

  Application& application() { return platform().application; }
  void settle() { application().DoEvents(); }

  void note(Control& control) {
    control.GotFocus = [this, &control] { events.push_back("got " + toUtf8(control.name())); };
    control.LostFocus = [this, &control] { events.push_back("lost " + toUtf8(control.name())); };
  }
  /// The focus events of a deed of the program's.
  std::vector<std::string> after(const std::function<void()>& deed) {
    events.clear();
    deed();
    settle();
    return events;
  }

  /// The name of the control that has the focus; empty if none has.
  std::string focused(const Form& on) {
    const Control* control = bench().focused(on);
    return control == nullptr ? "" : toUtf8(control->name());
  }
  std::string focused() { return focused(form); }

  Form form{design};
  Form above{designAbove};
  Frame& frame1 = form.control<Frame>(u"Frame1");
  TextBox& text = form.control<TextBox>(u"Text1");
  CommandButton& command2 = form.control<CommandButton>(u"Command2");
  std::vector<std::string> events;
};

TEST_F(FocusContract, StartsOnTheFirstControlThatCanTakeIt) {
  EXPECT_EQ(focused(), "Command1");
  EXPECT_THAT(events, ElementsAre("got Command1"));
}

// ---- the program gives it

TEST_F(FocusContract, TheProgramCanGiveIt) {
  EXPECT_THAT(after([&] { text.SetFocus(); }), ElementsAre("lost Command1", "got Text1"));
  EXPECT_EQ(focused(), "Text1");
}

TEST_F(FocusContract, IsGivenToNoControlThatCannotTakeIt) {
  frame1.Visible = false;
  command2.Enabled = false;
  settle();
  events.clear();
  EXPECT_EQ(errorOf([&] { text.SetFocus(); }), 5);
  EXPECT_EQ(errorOf([&] { command2.SetFocus(); }), 5);
  settle();
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(focused(), "Command1");
}

// ---- forms above each other

TEST_F(FocusContract, AFormHasItsOwnFocusWhenItIsInUseAgain) {
  EXPECT_THAT(after([&] { application().Show(above); }),
              ElementsAre("lost Command1", "got Command5"));
  EXPECT_EQ(focused(above), "Command5");
  EXPECT_THAT(after([&] { text.SetFocus(); }), IsEmpty());
  EXPECT_EQ(focused(above), "Command5");
  EXPECT_THAT(after([&] { application().Unload(above); }), ElementsAre("got Text1"));
  EXPECT_EQ(focused(), "Text1");
}

TEST_F(FocusContract, AFormThatIsEnabledBeforeTheOneAboveGoesHasItBack) {
  form.Enabled = false;
  application().Show(above);
  settle();
  text.SetFocus();
  form.Enabled = true;
  application().Unload(above);
  settle();
  EXPECT_EQ(focused(), "Text1");
}

TEST_F(FocusContract, AFormThatIsEnabledBehindTheOneAboveHasItBack) {
  form.Enabled = false;
  application().Show(above);
  settle();
  text.SetFocus();
  application().Unload(above);
  form.Enabled = true;
  settle();
  EXPECT_EQ(focused(), "Text1");
}

}  // namespace
}  // namespace zev::contract
