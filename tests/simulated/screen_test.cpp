#include <gmock/gmock.h>

#include "simulated/bench.h"

namespace zev::simulated {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// clang-format off
constexpr ControlDesign firstControls[] = {
    {.name = u"Frame1", .kind = ControlKind::Frame},
    {.name = u"Text1", .kind = ControlKind::TextBox, .container = u"Frame1", .tabIndex = 3},
    {.name = u"Option1", .kind = ControlKind::OptionButton, .container = u"Frame1", .tabIndex = 4},
    {.name = u"Option2", .kind = ControlKind::OptionButton, .container = u"Frame1", .tabIndex = 5},
    {.name = u"Command1", .kind = ControlKind::CommandButton, .tabIndex = 1, .enabled = false},
    {.name = u"Command2", .kind = ControlKind::CommandButton, .tabIndex = 2},
    {.name = u"Check1", .kind = ControlKind::CheckBox, .tabIndex = 7},
    {.name = u"Combo1", .kind = ControlKind::ComboBox, .tabIndex = 6},
    {.name = u"Label1", .kind = ControlKind::Label, .text = u"A"},
    {.name = u"Text2", .kind = ControlKind::TextBox, .visible = false, .locked = true},
};
constexpr ControlDesign secondControls[] = {
    {.name = u"Command1", .kind = ControlKind::CommandButton, .tabIndex = 1},
};
constexpr ControlDesign listControls[] = {
    {.name = u"Combo1", .kind = ControlKind::ComboBox, .tabIndex = 1},
    {.name = u"Drive1", .kind = ControlKind::DriveListBox, .tabIndex = 2},
    {.name = u"Dir1", .kind = ControlKind::DirListBox, .tabIndex = 3},
    {.name = u"Line1", .kind = ControlKind::Line},
};
// clang-format on

constexpr FormDesign firstDesign = {.name = u"Form1", .caption = u"One", .controls = firstControls};
constexpr FormDesign secondDesign = {
    .name = u"Form2", .caption = u"Two", .controls = secondControls};
constexpr FormDesign listDesign = {.name = u"Form3", .caption = u"Three", .controls = listControls};

class ScreenTest : public MachineTest {
 protected:
  ScreenTest() {
    combo.designList({u"English", u"Deutsch"});
    note(first, text);
    note(first, option1);
    note(first, option2);
    note(first, command2);
    note(first, check);
    note(first, combo);
    note(first, label);
    note(second, second.control<CommandButton>(u"Command1"));
  }

  void note(const Form& form, Control& control) {
    const std::string name = toUtf8(join(form.name(), u".", control.name()));
    control.Click = [this, name] { events.push_back("click " + name); };
    control.GotFocus = [this, name] { events.push_back("got " + name); };
    control.LostFocus = [this, name] { events.push_back("lost " + name); };
  }

  Application& application() { return platform().application; }
  Hand& hand() { return machine.hand(); }
  Screen& screen() { return machine.screen(); }

  /// Shows the first form and forgets what happened on the way.
  void begin() {
    application().Show(first);
    settle();
    events.clear();
  }
  /// Lets everything run that was posted.
  void settle() { application().DoEvents(); }
  std::vector<std::string> after(const std::function<void()>& deed) {
    events.clear();
    deed();
    settle();
    return events;
  }
  std::vector<std::string> lines(std::string_view kind) {
    std::vector<std::string> told;
    for (const Event& event : log.of(kind)) told.push_back(event.dump());
    return told;
  }

  Form first{firstDesign};
  Form second{secondDesign};
  TextBox& text = first.control<TextBox>(u"Text1");
  OptionButton& option1 = first.control<OptionButton>(u"Option1");
  OptionButton& option2 = first.control<OptionButton>(u"Option2");
  CommandButton& command1 = first.control<CommandButton>(u"Command1");
  CommandButton& command2 = first.control<CommandButton>(u"Command2");
  CheckBox& check = first.control<CheckBox>(u"Check1");
  ComboBox& combo = first.control<ComboBox>(u"Combo1");
  Label& label = first.control<Label>(u"Label1");
  Frame& frame = first.control<Frame>(u"Frame1");
  std::vector<std::string> events;
};

// ---- focus

TEST_F(ScreenTest, TheFocusStartsOnTheFirstControlThatCanTakeIt) {
  application().Show(first);
  settle();
  EXPECT_EQ(screen().focused(first), &command2);
  EXPECT_THAT(events, ElementsAre("got Form1.Command2"));
}

TEST_F(ScreenTest, AClickMovesTheFocusFirst) {
  begin();
  EXPECT_THAT(after([&] { hand().click(check); }),
              ElementsAre("lost Form1.Command2", "got Form1.Check1", "click Form1.Check1"));
  EXPECT_EQ(check.Value, 1);
  EXPECT_THAT(after([&] { hand().click(check); }), ElementsAre("click Form1.Check1"));
  EXPECT_EQ(check.Value, 0);
}

TEST_F(ScreenTest, AControlThatTakesNoFocusIsClickedWithoutIt) {
  begin();
  EXPECT_THAT(after([&] { hand().click(label); }), ElementsAre("click Form1.Label1"));
  EXPECT_EQ(screen().focused(first), &command2);
}

/// What a list tells as a click is that something in it was chosen, and a line tells nothing.
TEST_F(ScreenTest, AClickOnAListOrALineIsNoneForTheProgram) {
  Form lists{listDesign};
  application().Show(lists);
  for (Control* const control : lists.Controls()) {
    control->Click = [&] { events.push_back("click"); };
    EXPECT_THAT(after([&] { EXPECT_TRUE(hand().click(*control)); }), IsEmpty())
        << toUtf8(control->name());
    EXPECT_EQ(screen().focused(lists) == control, control->canTakeFocus())
        << toUtf8(control->name());
  }
  application().Unload(lists);
}

TEST_F(ScreenTest, TheFocusLeavesAControlThatCannotKeepIt) {
  begin();
  hand().focus(text);
  settle();
  EXPECT_THAT(after([&] { frame.Visible = false; }),
              ElementsAre("lost Form1.Text1", "got Form1.Combo1"));
  EXPECT_THAT(after([&] { combo.Enabled = false; }),
              ElementsAre("lost Form1.Combo1", "got Form1.Check1"));
  EXPECT_THAT(after([&] { check.Visible = false; }),
              ElementsAre("lost Form1.Check1", "got Form1.Command2"));
  EXPECT_THAT(after([&] { command2.Enabled = false; }), ElementsAre("lost Form1.Command2"));
  EXPECT_EQ(screen().focused(first), nullptr);
  EXPECT_THAT(after([&] { command2.Enabled = true; }), ElementsAre("got Form1.Command2"));
  EXPECT_EQ(screen().focused(first), &command2);
}

TEST_F(ScreenTest, FormsHandTheFocusToEachOther) {
  begin();
  EXPECT_THAT(after([&] { application().Show(second); }),
              ElementsAre("lost Form1.Command2", "got Form2.Command1"));
  EXPECT_EQ(screen().activeForm(), &second);
  EXPECT_THAT(after([&] { hand().click(command2); }),
              ElementsAre("lost Form2.Command1", "got Form1.Command2", "click Form1.Command2"));
  EXPECT_EQ(screen().activeForm(), &first);
  hand().focus(second.control<CommandButton>(u"Command1"));
  settle();
  EXPECT_THAT(after([&] { application().Unload(second); }), ElementsAre("got Form1.Command2"));
}

TEST_F(ScreenTest, AnEnabledFormIsActiveBeforeADisabledOne) {
  begin();
  application().Show(second);
  second.Enabled = false;
  EXPECT_EQ(screen().activeForm(), &first);
  first.Enabled = false;
  EXPECT_EQ(screen().activeForm(), &second);
}

// ---- the hand

TEST_F(ScreenTest, OptionButtonsAreChosenBeforeTheyClick) {
  begin();
  option2.Click = [&] { events.push_back(option1.Value ? "still" : "moved"); };
  after([&] { hand().click(option1); });
  EXPECT_TRUE(option1.Value);
  EXPECT_THAT(after([&] { hand().click(option2); }),
              ElementsAre("lost Form1.Option1", "got Form1.Option2", "moved"));
  EXPECT_TRUE(option2.Value);
  EXPECT_FALSE(option1.Value);
}

TEST_F(ScreenTest, ListsAreChosenFromByText) {
  begin();
  EXPECT_THAT(after([&] { EXPECT_TRUE(hand().select(combo, u"Deutsch")); }),
              ElementsAre("lost Form1.Command2", "got Form1.Combo1", "click Form1.Combo1"));
  EXPECT_EQ(combo.ListIndex(), 1);
  EXPECT_FALSE(hand().select(combo, u"Latin"));
  EXPECT_FALSE(hand().select(combo, 2));
  EXPECT_FALSE(hand().select(combo, -1));
}

TEST_F(ScreenTest, TypingReplacesTheText) {
  begin();
  EXPECT_THAT(after([&] { EXPECT_TRUE(hand().type(text, u"D:\\Apps")); }),
              ElementsAre("lost Form1.Command2", "got Form1.Text1"));
  EXPECT_EQ(text.Text_.get(), u"D:\\Apps");
  EXPECT_EQ(text.SelStart, 7);
  TextBox& lockedText = first.control<TextBox>(u"Text2");
  lockedText.Visible = true;
  EXPECT_FALSE(hand().type(lockedText, u"x"));
}

TEST_F(ScreenTest, NothingHappensWhereAHandDoesNotReach) {
  EXPECT_FALSE(hand().click(command2));  // not loaded
  begin();
  EXPECT_FALSE(hand().click(command1));  // disabled
  frame.Enabled = false;
  EXPECT_FALSE(hand().click(option1));  // in a disabled frame
  frame.Enabled = true;
  frame.Visible = false;
  EXPECT_FALSE(hand().click(option1));  // in a hidden frame
  label.Visible = false;
  EXPECT_FALSE(hand().click(label));
  first.Enabled = false;
  EXPECT_FALSE(hand().click(command2));
  EXPECT_FALSE(hand().close(first));
  first.Enabled = true;
  application().Hide(first);
  EXPECT_FALSE(hand().click(command2));
  EXPECT_THAT(after([] {}), IsEmpty());
}

TEST_F(ScreenTest, NothingHappensWhileABoxIsOpen) {
  begin();
  person.beforeAnswer = [&] {
    EXPECT_TRUE(screen().boxOpen());
    EXPECT_FALSE(hand().click(command2));
    EXPECT_FALSE(hand().close(first));
  };
  platform().dialogs.MsgBox(u"x", 0, u"y");
  EXPECT_FALSE(screen().boxOpen());
  EXPECT_EQ(person.boxes.size(), 1u);
  EXPECT_TRUE(hand().click(command2));
}

TEST_F(ScreenTest, TheCloseBoxAsksTheForm) {
  begin();
  UnloadMode seen{};
  std::int16_t keep = -1;
  first.QueryUnload = [&](std::int16_t& Cancel, UnloadMode mode) {
    seen = mode;
    Cancel = keep;
  };
  EXPECT_TRUE(hand().close(first));
  settle();
  EXPECT_EQ(seen, UnloadMode::ControlMenu);
  EXPECT_TRUE(first.loaded());
  keep = 0;
  hand().close(first);
  EXPECT_THROW(settle(), ProgramEnd);
  EXPECT_THAT(lines("unload"), ElementsAre(R"({"event":"unload","form":"Form1"})"));
}

TEST_F(ScreenTest, EventsOfAFormThatIsGoneDoNotRun) {
  begin();
  application().Show(second);
  settle();
  EXPECT_THAT(after([&] {
                hand().click(second.control<CommandButton>(u"Command1"));
                application().Unload(second);
              }),
              ElementsAre("got Form1.Command2"));
}

// ---- the transcript of the forms

TEST_F(ScreenTest, PropertiesAreToldFromTheFirstShowOn) {
  first.Load = [&] { label.Caption = u"loading"; };
  application().Show(first);
  label.Caption = u"B";
  first.Caption = u"Title";
  check.Value = 2;
  text.Enabled = false;
  application().Hide(first);
  EXPECT_THAT(
      lines("set"),
      ElementsAre(R"({"event":"set","control":"Form1.Label1","property":"Caption","value":"B"})",
                  R"({"event":"set","control":"Form1","property":"Caption","value":"Title"})",
                  R"({"event":"set","control":"Form1.Check1","property":"Value","value":2})",
                  R"({"event":"set","control":"Form1.Text1","property":"Enabled","value":false})"));
  EXPECT_THAT(lines("show"), ElementsAre(R"({"event":"show","form":"Form1"})"));
  EXPECT_THAT(lines("hide"), ElementsAre(R"({"event":"hide","form":"Form1"})"));
}

// ---- the message loop

TEST_F(ScreenTest, APassDoesOneThingAfterTheOther) {
  begin();
  person.passes = 0;
  person.inPasses = {[&] { hand().click(command2); }, [&] { hand().click(check); }};
  EXPECT_THAT(after([] {}), ElementsAre("click Form1.Command2", "lost Form1.Command2",
                                        "got Form1.Check1", "click Form1.Check1"));
  EXPECT_EQ(person.passes, 1);
}

TEST_F(ScreenTest, ARunWaitsForThePersonUntilNothingIsLeft) {
  person.whenWaiting = {[&] { hand().click(command2); }, [&] { hand().click(check); }};
  application().run([&] { application().Show(first); });
  EXPECT_THAT(events, ElementsAre("got Form1.Command2", "click Form1.Command2",
                                  "lost Form1.Command2", "got Form1.Check1", "click Form1.Check1"));
}

// ---- measures and windows

TEST_F(ScreenTest, TextIsSixPixelsACharacter) {
  EXPECT_EQ(screen().TextWidth(first, u"abcd"), 360);
  EXPECT_EQ(screen().TwipsPerPixelX(), 15);
}

TEST_F(ScreenTest, FormsStandBehindTheWindowsOfOthers) {
  EXPECT_EQ(screen().windowHandle(first), 0u);
  begin();
  machine.settings().windows = {u"ZEV", u"A title that is long"};
  Windows& windows = platform().windows;
  const WindowHandle own = screen().windowHandle(first);
  std::vector<Text> titles;
  for (WindowHandle window = windows.GetWindow(own, GW_HWNDFIRST); window != 0;
       window = windows.GetWindow(window, GW_HWNDNEXT)) {
    Text buffer = blanks(10);
    const std::int32_t length = windows.GetWindowTextA(window, buffer, 8);
    titles.push_back(buffer.substr(0, static_cast<std::size_t>(length)));
    EXPECT_EQ(buffer[static_cast<std::size_t>(length)], u'\0');
  }
  EXPECT_THAT(titles, ElementsAre(u"ZEV", u"A title", u"One"));
  EXPECT_EQ(windows.GetWindowTextLengthA(own), 3);
  EXPECT_TRUE(windows.SetForegroundWindow(own));
}

TEST_F(ScreenTest, TellsWhatIsPaintedAtOnce) {
  label.Refresh();
  EXPECT_THAT(lines("refresh"), IsEmpty()) << "a form that is not loaded shows nothing";
  begin();
  label.Refresh();
  first.Refresh();
  EXPECT_THAT(lines("refresh"), ElementsAre(R"({"event":"refresh","control":"Form1.Label1"})",
                                            R"({"event":"refresh","control":"Form1"})"));
}

TEST_F(ScreenTest, TitlesTakeTheBytesOfTheirLetters) {
  machine.settings().system.codePage = 932;
  begin();
  machine.settings().windows = {u"\u9332\u753B ZEV"};
  Windows& windows = platform().windows;
  const WindowHandle window = windows.GetWindow(screen().windowHandle(first), GW_HWNDFIRST);
  EXPECT_EQ(windows.GetWindowTextLengthA(window), 8);
  Text buffer = blanks(12);
  EXPECT_EQ(windows.GetWindowTextA(window, buffer, 9), 6);
  EXPECT_EQ(buffer, Text(u"\u9332\u753B ZEV\0   ", 10));
  buffer = blanks(12);
  EXPECT_EQ(windows.GetWindowTextA(window, buffer, 6), 3);
  EXPECT_EQ(beforeNul(buffer), u"\u9332\u753B ");
}

}  // namespace
}  // namespace zev::simulated
