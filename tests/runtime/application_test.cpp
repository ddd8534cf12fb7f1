#include "runtime/application.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/fake_form_engine.h"

namespace zev {
namespace {

using Log = std::vector<std::string>;

constexpr ControlDesign controls[] = {
    {.name = u"Label1", .kind = ControlKind::Label, .text = u"design"},
    {.name = u"Combo1", .kind = ControlKind::ComboBox},
};
constexpr FormDesign firstDesign = {.name = u"Form1", .caption = u"One", .controls = controls};
constexpr FormDesign secondDesign = {.name = u"Form2", .caption = u"Two", .controls = controls};

class ApplicationTest : public testing::Test {
 protected:
  /// How an action leaves: nothing if it returns.
  std::optional<EndKind> endOf(const std::function<void()>& action) {
    try {
      action();
    } catch (const ProgramEnd& end) {
      return end.kind;
    }
    return std::nullopt;
  }
  /// The number of the error that met no trap in an action.
  std::int32_t unhandledIn(const std::function<void()>& action) {
    try {
      action();
    } catch (const UnhandledError& unhandled) {
      return unhandled.error.number();
    }
    return 0;
  }
  void note(const char* what) { engine.log.emplace_back(what); }

  test::FakeFormEngine engine;
  Application application{engine};
  Form form{firstDesign};
  Form other{secondDesign};
};

TEST_F(ApplicationTest, LoadsAFormBeforeItIsShown) {
  form.Load = [&] {
    note("Load");
    EXPECT_TRUE(form.loaded());
    EXPECT_FALSE(form.Visible);
    form.control<Label>(u"Label1").Caption = u"loaded";
  };
  application.Show(form);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "Load", "Label1.Caption", "shown Form1"}));
  EXPECT_TRUE(form.Visible);
  EXPECT_EQ(application.forms(), std::vector<Form*>{&form});
}

TEST_F(ApplicationTest, ShowsAShownFormNoSecondTime) {
  application.Show(form);
  application.Show(form);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1"}));
}

TEST_F(ApplicationTest, HidesAndShowsAFormWithoutLoadingItAgain) {
  application.Hide(form);  // not loaded: nothing happens
  application.Show(form);
  application.Hide(form);
  EXPECT_FALSE(form.Visible);
  application.Hide(form);
  application.Show(form);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1", "hidden Form1", "shown Form1"}));
}

TEST_F(ApplicationTest, DoesNotShowAFormThatItsOwnLoadUnloaded) {
  form.Load = [&] { application.Unload(form); };
  application.Show(form);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "unloaded Form1"}));
  EXPECT_FALSE(form.loaded());
  EXPECT_FALSE(form.Visible);
  EXPECT_TRUE(application.forms().empty());
}

TEST_F(ApplicationTest, ObservesAFormOnlyWhileItIsLoaded) {
  form.Caption = u"before";
  application.Show(form);
  form.Caption = u"shown";
  application.Unload(form);
  form.Caption = u"behind";
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1", "Form1.Caption", "unloaded Form1"}));
}

TEST_F(ApplicationTest, AsksBeforeItUnloads) {
  form.QueryUnload = [&](std::int16_t& Cancel, UnloadMode mode) {
    EXPECT_EQ(Cancel, 0);
    EXPECT_EQ(mode, UnloadMode::ControlMenu);
    note("QueryUnload");
  };
  form.Unload = [&](std::int16_t& Cancel) {
    EXPECT_EQ(Cancel, 0);
    EXPECT_TRUE(form.loaded());
    note("Unload");
  };
  application.Show(form);
  EXPECT_TRUE(application.Unload(form, UnloadMode::ControlMenu));
  EXPECT_EQ(engine.log,
            (Log{"loaded Form1", "shown Form1", "QueryUnload", "Unload", "unloaded Form1"}));
}

TEST_F(ApplicationTest, TellsTheQueryThatTheProgramUnloads) {
  UnloadMode seen = UnloadMode::ControlMenu;
  form.QueryUnload = [&](std::int16_t&, UnloadMode mode) { seen = mode; };
  application.Show(form);
  application.Unload(form);
  EXPECT_EQ(seen, UnloadMode::Code);
}

TEST_F(ApplicationTest, KeepsAFormWhoseQueryCancels) {
  form.QueryUnload = [](std::int16_t& Cancel, UnloadMode) { Cancel = -1; };
  form.Unload = [&](std::int16_t&) { note("Unload"); };
  application.Show(form);
  EXPECT_FALSE(application.Unload(form));
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1"}));
  EXPECT_TRUE(form.loaded());
  EXPECT_TRUE(form.Visible);
}

TEST_F(ApplicationTest, KeepsAFormWhoseUnloadCancels) {
  form.Unload = [](std::int16_t& Cancel) { Cancel = 1; };
  application.Show(form);
  EXPECT_FALSE(application.Unload(form));
  EXPECT_TRUE(form.loaded());
  EXPECT_EQ(application.forms().size(), 1u);
}

TEST_F(ApplicationTest, UnloadsAFormOnce) {
  form.Unload = [&](std::int16_t&) {
    note("Unload");
    form.Unload = nullptr;
    application.Unload(form);
  };
  application.Show(form);
  EXPECT_TRUE(application.Unload(form));
  EXPECT_TRUE(application.Unload(form));
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1", "Unload", "unloaded Form1"}));
}

TEST_F(ApplicationTest, LoadsAFormAnewInItsStateAtDesignTime) {
  application.Show(form);
  form.Caption = u"changed";
  form.control<Label>(u"Label1").Caption = u"changed";
  auto& combo = form.control<ComboBox>(u"Combo1");
  combo.AddItem(u"English");
  combo.setListIndex(0);
  application.Unload(form);
  EXPECT_EQ(form.Caption.get(), u"changed");
  engine.log.clear();
  application.Show(form);
  EXPECT_EQ(form.Caption.get(), u"One");
  EXPECT_EQ(form.control<Label>(u"Label1").Caption.get(), u"design");
  EXPECT_EQ(combo.ListIndex(), -1);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1"}));
}

TEST_F(ApplicationTest, RunsPostedEventsInOrder) {
  application.Show(form);
  engine.log.clear();
  application.post([&] { note("first"); });
  application.post([&] { note("second"); });
  application.DoEvents();
  EXPECT_EQ(engine.log, (Log{"pass", "first", "second"}));
}

TEST_F(ApplicationTest, RunsWhatMessagesPostWithinThePass) {
  application.Show(form);
  engine.log.clear();
  engine.messages.emplace_back([&] {
    note("dispatch 1");
    application.post([&] { note("event 1"); });
  });
  engine.messages.emplace_back([&] {
    note("dispatch 2");
    application.post([&] { note("event 2"); });
  });
  application.DoEvents();
  EXPECT_EQ(engine.log, (Log{"pass", "dispatch 1", "event 1", "dispatch 2", "event 2"}));
}

TEST_F(ApplicationTest, EndsInThePassInWhichTheLastFormGoes) {
  application.Show(form);
  application.post([&] { application.Unload(form); });
  application.post([&] { note("too late"); });
  engine.log.clear();
  EXPECT_EQ(endOf([&] { application.DoEvents(); }), EndKind::Unload);
  EXPECT_EQ(engine.log, (Log{"pass", "unloaded Form1"}));
}

TEST_F(ApplicationTest, EndsAtAPassThatFindsNoFormLeft) {
  application.Show(form);
  application.Unload(form);
  EXPECT_EQ(endOf([&] { application.DoEvents(); }), EndKind::Unload);
}

TEST_F(ApplicationTest, GoesOnWhileAnotherFormIsLoaded) {
  application.Show(form);
  application.Show(other);
  application.post([&] { application.Unload(form); });
  EXPECT_EQ(endOf([&] { application.DoEvents(); }), std::nullopt);
  EXPECT_EQ(application.forms(), std::vector<Form*>{&other});
}

TEST_F(ApplicationTest, RunsEventsOfANestedPassInsideTheOuterOne) {
  application.Show(form);
  engine.log.clear();
  application.post([&] {
    note("outer begins");
    application.post([&] { note("posted inside"); });
    application.DoEvents();
    note("outer ends");
  });
  application.post([&] { note("waiting"); });
  application.DoEvents();
  EXPECT_EQ(engine.log,
            (Log{"pass", "outer begins", "pass", "waiting", "posted inside", "outer ends"}));
}

TEST_F(ApplicationTest, UnwindsThroughEveryPassWhenTheLastFormGoesInANestedOne) {
  application.Show(form);
  application.post([&] {
    application.post([&] { application.Unload(form); });
    application.DoEvents();
    note("not reached");
  });
  engine.log.clear();
  EXPECT_EQ(endOf([&] { application.DoEvents(); }), EndKind::Unload);
  EXPECT_EQ(engine.log, (Log{"pass", "pass", "unloaded Form1"}));
}

TEST_F(ApplicationTest, EndsOnTheSpotWithoutAnyUnload) {
  form.Unload = [&](std::int16_t&) { note("Unload"); };
  application.Show(form);
  application.post([] { Application::End(); });
  engine.log.clear();
  EXPECT_EQ(endOf([&] { application.DoEvents(); }), EndKind::Exit);
  EXPECT_EQ(engine.log, Log{"pass"});
}

TEST_F(ApplicationTest, EndsWithAnErrorThatLeavesAnEventProcedure) {
  application.Show(form);
  application.post([] { throw RuntimeError(ErrorNumber::DiskFull); });
  EXPECT_EQ(unhandledIn([&] { application.DoEvents(); }), 61);
}

TEST_F(ApplicationTest, LetsNoTrapBelowCatchWhatLeftAnEventProcedure) {
  application.Show(form);
  application.post([&] {
    application.post([] { throw RuntimeError(ErrorNumber::Overflow); });
    ignoringErrors([&] { application.DoEvents(); });
    note("trapped");
  });
  EXPECT_EQ(unhandledIn([&] { application.DoEvents(); }), 6);
}

TEST_F(ApplicationTest, RunsTheEntryAndThenTheLoopUntilTheLastFormIsGone) {
  engine.messages.emplace_back([&] { application.post([&] { note("click"); }); });
  engine.messages.emplace_back(
      [&] { application.post([&] { application.Unload(form, UnloadMode::ControlMenu); }); });
  engine.messages.emplace_back([&] { note("too late"); });
  EXPECT_EQ(endOf([&] { application.run([&] { application.Show(form); }); }), EndKind::Unload);
  EXPECT_EQ(engine.log, (Log{"loaded Form1", "shown Form1", "click", "unloaded Form1"}));
}

TEST_F(ApplicationTest, EndsARunWhoseEntryShowsNothing) {
  EXPECT_EQ(endOf([&] { application.run([] {}); }), EndKind::Unload);
}

TEST_F(ApplicationTest, EndsARunWhoseEntryRaises) {
  EXPECT_EQ(
      unhandledIn([&] { application.run([] { throw RuntimeError(ErrorNumber::FileNotFound); }); }),
      53);
}

TEST_F(ApplicationTest, ReturnsFromARunWithoutMoreMessagesAndWithFormsOpen) {
  EXPECT_EQ(endOf([&] { application.run([&] { application.Show(form); }); }), std::nullopt);
  EXPECT_TRUE(form.loaded());
}

}  // namespace
}  // namespace zev
