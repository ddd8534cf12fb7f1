// Where every binding leaves the focus when what has it can no longer keep it, and when the program
// gives it away.

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
  Frame& frame2 = form.control<Frame>(u"Frame2");
  TextBox& text = form.control<TextBox>(u"Text1");
  CheckBox& check = form.control<CheckBox>(u"Check1");
  CommandButton& command1 = form.control<CommandButton>(u"Command1");
  CommandButton& command2 = form.control<CommandButton>(u"Command2");
  std::vector<std::string> events;
};

TEST_F(FocusContract, StartsOnTheFirstControlThatCanTakeIt) {
  EXPECT_EQ(focused(), "Command1");
  EXPECT_THAT(events, ElementsAre("got Command1"));
}

// ---- a control that cannot keep it

TEST_F(FocusContract, GoesOnToTheNextControlInTheTabOrder) {
  EXPECT_THAT(after([&] { command1.Enabled = false; }),
              ElementsAre("lost Command1", "got Command2"));
  EXPECT_EQ(focused(), "Command2");
  EXPECT_THAT(after([&] { command2.Visible = false; }), ElementsAre("lost Command2", "got Text1"));
  EXPECT_EQ(focused(), "Text1");
  EXPECT_THAT(after([&] { frame1.Enabled = false; }), ElementsAre("lost Text1"));
  EXPECT_EQ(focused(), "");
}

TEST_F(FocusContract, GoesToTheFirstThatCanTakeItWhenNoneCould) {
  command2.Enabled = false;
  frame1.Visible = false;
  EXPECT_THAT(after([&] { command1.Enabled = false; }), ElementsAre("lost Command1"));
  EXPECT_EQ(focused(), "");
  EXPECT_THAT(after([&] { command2.Enabled = true; }), ElementsAre("got Command2"));
  EXPECT_EQ(focused(), "Command2");
}

TEST_F(FocusContract, GoesAlsoBackToTheOneThatHadIt) {
  command2.Enabled = false;
  frame1.Visible = false;
  command1.Enabled = false;
  EXPECT_THAT(after([&] { command1.Enabled = true; }),
              ElementsAre("lost Command1", "got Command1"));
  EXPECT_EQ(focused(), "Command1");
}

TEST_F(FocusContract, OfSeveralThatCanTakeItAgainTheFirstGetsIt) {
  check.SetFocus();
  command1.Enabled = false;
  command2.Enabled = false;
  settle();
  EXPECT_THAT(after([&] { frame1.Visible = false; }), ElementsAre("lost Check1"));
  EXPECT_EQ(focused(), "");
  EXPECT_THAT(after([&] { frame1.Visible = true; }), ElementsAre("got Text1"));
  EXPECT_EQ(focused(), "Text1");
}

/// The window that a hidden control lay in may have the keyboard meanwhile: nobody goes on from
/// there.
TEST_F(FocusContract, GoesToTheFirstBehindAHiddenControlOfAContainer) {
  text.SetFocus();
  command1.Enabled = false;
  command2.Enabled = false;
  check.Enabled = false;
  settle();
  EXPECT_THAT(after([&] { text.Visible = false; }), ElementsAre("lost Text1"));
  EXPECT_EQ(focused(), "");
  EXPECT_THAT(after([&] { frame2.Visible = true; }), ElementsAre("got Command3"));
  EXPECT_EQ(focused(), "Command3");
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
  EXPECT_EQ(test::raisedBy([&] { text.SetFocus(); }), 5);
  EXPECT_EQ(test::raisedBy([&] { command2.SetFocus(); }), 5);
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
