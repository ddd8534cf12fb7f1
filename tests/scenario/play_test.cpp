#include "programs/zevsim/simulated_stage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenario/toy_play.h"
#include "scenario/toy_program.h"

namespace zev::scenario {
namespace {

using testing::StartsWith;

/// Plays a script and expects all its expectations to hold.
void expectHolds(std::string_view script) {
  const ToyPlay play = playScript(script);
  EXPECT_EQ(play.verdicts.failures, std::vector<std::string>{});
  EXPECT_GT(play.verdicts.judgements, 0);
}

std::string scriptError(std::string_view script) {
  return errorOf([&] { playScript(script); });
}

// Clicks, choices and typing.

TEST(Play, ClicksAControlOfTheActiveForm) {
  expectHolds(R"({"click": "Command2"}, {"expect": {"Form1.Frame1(2).Visible": true,
                 "Form1.Frame1(1).Visible": false, "Form1.Command2.Caption": "Run"}})");
}

TEST(Play, DoesNothingOnAControlThatIsDisabledOrHidden) {
  expectHolds(R"({"click": "Command1"}, {"click": "Option1"}, {"click": "Form2.Command1"},
                 {"expect": {"Form1.Option1.Value": false, "focus": "Form1.Command2",
                             "ended": null}})");
}

TEST(Play, MovesTheFocusBeforeAClick) {
  expectHolds(R"({"type": ["Text1", "second"]}, {"expect": {"global.gName": ""}},
                 {"click": "Command4"}, {"expect": {"global.gName": "second"}})");
}

TEST(Play, StartsTheFocusOnTheFirstControlThatCanTakeIt) {
  expectHolds(R"({"expect": {"focus": "Form1.Command2"}})");
}

TEST(Play, MovesTheFocus) {
  expectHolds(R"({"focus": "Text1"}, {"expect": {"focus": "Form1.Text1", "global.gName": ""}},
                 {"focus": "Command3"}, {"expect": {"focus": "Form1.Command3",
                                                    "global.gName": "first"}})");
}

TEST(Play, ChoosesOptionsAndTogglesChecks) {
  expectHolds(R"({"click": "Command2"}, {"click": "Option1"}, {"click": "Option2"},
                 {"click": "Check1"},
                 {"expect": {"Form1.Option1.Value": false, "Form1.Option2.Value": true,
                             "Form1.Check1.Value": 1}},
                 {"click": "Check1"}, {"expect": {"Form1.Check1.Value": 0}})");
}

TEST(Play, SelectsAnEntryAsAPersonWould) {
  expectHolds(R"({"select": ["Combo1", "Deutsch"]},
                 {"expect": {"Form1.Combo1.ListIndex": 1, "Form1.Combo1.Text": "Deutsch",
                             "Form1.Caption": "Deutsch", "focus": "Form1.Combo1"}})");
}

TEST(Play, TypesNothingIntoALockedBox) {
  expectHolds(R"({"type": ["Text2", "x"]}, {"expect": {"Form1.Text2.Text": "locked"}})");
}

TEST(Play, RefusesNamesThatAreNotThere) {
  EXPECT_EQ(scriptError(R"({"click": "Command9"})"),
            "$.script[0].click: Form1 has no control Command9");
  EXPECT_EQ(scriptError(R"({"click": "Form9.Command1"})"),
            "$.script[0].click: the program has no form Form9");
  EXPECT_EQ(scriptError(R"({"close": "Form9"})"),
            "$.script[0].close: the program has no form Form9");
  EXPECT_EQ(scriptError(R"({"select": ["Text1", "x"]})"), "$.script[0].select: Text1 is no list");
  EXPECT_EQ(scriptError(R"({"select": ["Combo1", "Klingon"]})"),
            "$.script[0].select: Combo1 has no entry \"Klingon\"");
  EXPECT_EQ(scriptError(R"({"type": ["Combo1", "x"]})"), "$.script[0].type: Combo1 is no text box");
  EXPECT_EQ(scriptError(R"({"drive": "c:"})"),
            "$.script[0].drive: the active form has no such list");
}

TEST(Play, ActsOnTheFormThatIsOnTopAndEnabled) {
  expectHolds(R"({"click": "Command4"}, {"expect": {"active": "Form2"}},
                 {"click": "Form1.Command3"}, {"expect": {"boxes": [], "ended": null}},
                 {"click": "Command1"}, {"expect": {"active": "Form1", "Form2.Visible": false}})");
}

TEST(Play, ChoosesDrivesAndFolders) {
  expectHolds(R"({"click": "Command4"}, {"drive": "C"}, {"expect": {"global.gName": "Drive1=c:"}},
                 {"folder": "C:\\Windows"}, {"expect": {"global.gName": "Dir1=C:\\Windows"}})");
  EXPECT_EQ(scriptError(R"({"click": "Command4"}, {"drive": "q:"})"),
            "$.script[1].drive: the drive list shows no drive \"q:\"");
  EXPECT_EQ(scriptError(R"({"click": "Command4"}, {"folder": "C:\\None"})"),
            "$.script[1].folder: the machine has no folder C:\\None");
  for (const std::string path : {"Windows", "\\\\Windows", "Q:\\\\Windows", ""}) {
    EXPECT_THAT(scriptError(R"({"click": "Command4"}, {"folder": ")" + path + "\"}"),
                StartsWith("$.script[1].folder: the machine has no folder "))
        << path;
  }
}

// Ends.

TEST(Play, ClosesAFormByItsTitleBar) {
  expectHolds(R"({"click": "Command4"}, {"close": "Form2"},
                 {"expect": {"active": "Form1", "ended": null}},
                 {"close": "Form1"}, {"expect": {"ended": "unload"}})");
}

TEST(Play, RefusesWhatComesAfterTheEnd) {
  const std::pair<const char*, const char*> steps[] = {
      {"click", R"({"click": "Command2"})"},       {"answer", R"({"answer": ["ok"]})"},
      {"at", R"({"at": {"yield": 1}, "do": []})"}, {"close", R"({"close": "Form1"})"},
      {"set", R"({"set": {"global.gPage": 1}})"},
  };
  for (const auto& [verb, step] : steps) {
    EXPECT_EQ(scriptError(R"({"click": "Command6"}, )" + std::string(step)),
              "$.script[1]." + std::string(verb) +
                  ": the program has ended; only expect, change and restart can follow");
  }
}

TEST(Play, LooksAtTheMachineAndTheFormsAfterTheEnd) {
  expectHolds(R"({"type": ["Text1", "last"]}, {"click": "Command6"},
                 {"change": {"files": {"C:\\x.txt": "x"}}},
                 {"expect": {"ended": "exit", "Form1.Text1.Text": "last",
                             "file:C:\\x.txt": "x"}})");
}

// Boxes.

TEST(Play, AnswersBoxesInOrderAndThenByDefault) {
  expectHolds(R"({"answer": ["no", "no"]}, {"click": "Command3"}, {"click": "Command3"},
                 {"expect": {"ended": null}}, {"click": "Command3"},
                 {"expect": {"ended": "unload", "boxes": [{"answer": "no"}, {"answer": "no"},
                                                          {"answer": "yes"}]}})");
}

TEST(Play, AnswersInputBoxesFromTheSameQueue) {
  expectHolds(R"({"answer": [{"text": "Işık"}, "cancel", "ok", "no"]},
                 {"click": "Command5"}, {"expect": {"global.gName": "Işık"}},
                 {"click": "Command5"}, {"expect": {"global.gName": ""}},
                 {"click": "Command5"}, {"expect": {"global.gName": "nobody"}},
                 {"click": "Command3"}, {"expect": {"ended": null, "boxes": [{"style": 36}]}})");
}

/// Writes down what it hears of input boxes, and answers them.
class InputWitness final : public Audience {
 public:
  std::optional<Answer> input(TextView prompt, TextView title, TextView initial) override {
    heard.push_back(join(prompt, u"|", title, u"|", initial));
    Answer answer;
    answer.text = u"Eve";
    return answer;
  }
  void inputAnswered(TextView prompt, TextView title, TextView answer) override {
    heard.push_back(join(prompt, u"|", title, u"|", answer));
  }

  std::vector<Text> heard;
};

TEST(Play, HandsAnInputBoxToItsAudience) {
  const Scenario scenario = parseScenario(R"({"script": [{"click": "Command5"}]})");
  simulated::NoTranscript transcript;
  InputWitness witness;
  simulator::SimulatedStage(scenario, makeToyProgram, transcript).perform({&witness});
  EXPECT_EQ(witness.heard, (std::vector<Text>{u"Your name:|Name|nobody", u"Your name:|Name|Eve"}));
}

TEST(Play, TakesTheInitialTextOfAnInputBoxByDefault) {
  expectHolds(R"({"click": "Command5"}, {"expect": {"global.gName": "nobody", "boxes": []}})");
}

TEST(Play, RefusesAnAnswerThatTheBoxDoesNotHave) {
  EXPECT_EQ(
      scriptError(R"({"answer": ["no", "retry"]}, {"click": "Command3"}, {"click": "Command3"})"),
      "$.script[0].answer[1]: the box \"Do you want to leave?\" has no button \"retry\"; it has "
      "yes, no");
  EXPECT_EQ(scriptError(R"({"answer": [{"text": "x"}]}, {"click": "Command3"})"),
            "$.script[0].answer[0]: a text for the message box \"Do you want to leave?\"");
  EXPECT_EQ(
      scriptError(R"({"answer": ["yes"]}, {"click": "Command5"})"),
      "$.script[0].answer[0]: an input box has no button \"yes\"; it takes a text, ok or cancel");
}

// Later steps.

TEST(Play, DoesStepsInAPassOfTheMessageLoop) {
  expectHolds(R"({"click": "Command2"},
                 {"at": {"yield": 3}, "do": [{"expect": {"Form1.Label12.Caption": "file3",
                                                         "calls:DoEvents": 3}}]},
                 {"click": "Command2"}, {"expect": {"Form1.Label12.Caption": "file8"}})");
}

TEST(Play, EndsTheProgramInAPass) {
  expectHolds(R"({"at": {"yield": 3}, "do": [{"click": "Command6"}]},
                 {"click": "Command2"}, {"click": "Command2"},
                 {"expect": {"ended": "exit", "Form1.Label12.Caption": "file3"}})");
}

TEST(Play, DoesTheStepsOfAPassOneAfterTheOther) {
  expectHolds(
      R"({"at": {"yield": 2}, "do": [
                    {"click": "Option1"}, {"expect": {"Form1.Option1.Value": true}},
                    {"click": "Option2"}, {"expect": {"Form1.Option1.Value": false}}]},
                 {"click": "Command2"}, {"click": "Command2"},
                 {"expect": {"Form1.Option2.Value": true}})");
}

TEST(Play, DoesStepsInThePassAfterAPropertyWasSet) {
  expectHolds(R"({"at": {"set": ["Label12.Caption", "file5"]},
                  "do": [{"expect": {"Form1.Label8.Caption": "60%"}}, {"click": "Command6"}]},
                 {"click": "Command2"}, {"click": "Command2"},
                 {"expect": {"ended": "exit", "Form1.Label12.Caption": "file5"}})");
}

TEST(Play, WaitsForAConditionOnAProperty) {
  expectHolds(R"({"at": {"set": ["Form1.Picture2.Tag", "never"]}, "do": [{"click": "Command6"}]},
                 {"at": {"set": ["form1.label8.caption", {"matches": "^7"}]},
                  "do": [{"expect": {"Form1.Label12.Caption": "file6"}}]},
                 {"click": "Command2"}, {"click": "Command2"}, {"expect": {"ended": null}})");
}

TEST(Play, DoesStepsForAPropertyAtRestIfNoPassComes) {
  expectHolds(R"({"at": {"set": ["Form1.Caption", "Deutsch"]},
                  "do": [{"set": {"global.gName": "seen"}}]},
                 {"select": ["Combo1", "Deutsch"]}, {"expect": {"global.gName": "seen"}})");
}

TEST(Play, LeavesStepsForAPropertyUndoneIfTheProgramEndsFirst) {
  expectHolds(R"({"at": {"set": ["Form1.Text1.Text", "last"]}, "do": [{"click": "Command2"}]},
                 {"at": {"box": 1}, "do": [{"set": {"Form1.Text1.Text": "last"}}]},
                 {"click": "Command3"}, {"expect": {"ended": "unload"}})");
}

TEST(Play, DoesStepsBeforeABoxIsAnswered) {
  expectHolds(
      R"({"at": {"box": 2}, "do": [{"expect": {"boxes": [{}, {"text": {"contains": "leave"}}]}},
                                           {"click": "Command2"}, {"answer": ["no"]}]},
                 {"answer": ["no"]}, {"click": "Command3"}, {"click": "Command3"},
                 {"expect": {"ended": null, "global.gPage": 1}})");
}

TEST(Play, CountsPassesFromTheStepThatArmsThem) {
  expectHolds(R"({"click": "Command2"},
                 {"at": {"yield": 2}, "do": [
                    {"at": {"yield": 2}, "do": [{"expect": {"Form1.Label12.Caption": "file4"}}]}]},
                 {"click": "Command2"}, {"expect": {"Form1.Label12.Caption": "file8"}})");
}

// Changes and restarts.

TEST(Play, ChangesTheMachineWhileTheProgramRuns) {
  expectHolds(R"({"click": "Command2"},
                 {"at": {"yield": 2}, "do": [{"change": {"files": {"C:\\toy1.txt": null}}}]},
                 {"click": "Command2"},
                 {"expect": {"file:C:\\toy1.txt": {"exists": false},
                             "file:C:\\toy2.txt": "made\r\n"}})");
}

TEST(Play, LetsFaultsStrike) {
  expectHolds(R"({"change": {"faults": [{"call": "OpenOutput", "nth": 3, "error": 5}]}},
                 {"click": "Command2"}, {"click": "Command2"},
                 {"expect": {"ended": "error", "Form1.Label12.Caption": "file3"}})");
}

TEST(Play, StartsTheProgramAnewOnTheMachineAsItIs) {
  expectHolds(R"({"click": "Command2"}, {"click": "Command2"}, {"set": {"global.gName": "old"}},
                 {"restart": true},
                 {"expect": {"global.gName": "", "Form1.Frame1(1).Visible": true,
                             "file:C:\\toy8.txt": "made\r\n", "ended": null, "calls:DoEvents": 0,
                             "focus": "Form1.Command2"}})");
}

TEST(Play, RestartsAfterTheEnd) {
  expectHolds(R"({"click": "Command6"}, {"expect": {"ended": "exit"}}, {"restart": true},
                 {"expect": {"ended": null}}, {"click": "Command7"},
                 {"expect": {"ended": {"error": 75}}})");
}

TEST(Play, RestartsInTheMidstOfAPass) {
  expectHolds(R"({"click": "Command2"}, {"at": {"yield": 2}, "do": [{"restart": true}]},
                 {"click": "Command2"}, {"expect": {"Form1.Label12.Caption": "", "global.gPage": 1,
                 "file:C:\\toy2.txt": {"exists": true}, "file:C:\\toy3.txt": {"exists": false}}})");
}

TEST(Play, CarriesAnswersBoxesAndLaterStepsOverARestart) {
  expectHolds(
      R"({"answer": ["no", "no"]}, {"at": {"box": 2}, "do": [{"set": {"global.gName": "box 2"}}]},
                 {"click": "Command3"}, {"restart": true}, {"click": "Command3"},
                 {"expect": {"ended": null, "global.gName": "box 2", "boxes": [{}, {}]}})");
}

TEST(Play, SetsGlobalsAndProperties) {
  expectHolds(R"({"set": {"global.gPage": 2, "Form1.Check1.Value": 1, "Form1.Caption": "new"}},
                 {"expect": {"global.gPage": 2, "Form1.Check1.Value": 1,
                             "Form1.Caption": "new"}})");
  EXPECT_EQ(scriptError(R"({"set": {"global.gPage": "x"}})"),
            "$.script[0].set[\"global.gPage\"]: the program has no such global of that type");
  EXPECT_EQ(scriptError(R"({"set": {"Form1.Caption": 1}})"),
            "$.script[0].set[\"Form1.Caption\"]: the property is of another type");
}

TEST(Play, CountsWhatDoesNotHold) {
  const ToyPlay play = playScript(R"({"expect": {"global.gPage": 2, "Form1.Caption": "Toy"}},
                                  {"expect": {"ended": "unload"}})");
  EXPECT_EQ(play.stage->judgements().failed, 2u);
  EXPECT_EQ(play.verdicts.failures,
            (std::vector<std::string>{"global.gPage found 1", "ended found null"}));
}

TEST(Play, PlaysManyMachinesSideBySide) {
  const ToyPlay first(R"({"machine": {"user": "ann"}, "script": [{"click": "Command2"}]})");
  const ToyPlay second(R"({"script": [{"click": "Command6"}]})");
  EXPECT_TRUE(first.stage->ended().isNull());
  EXPECT_EQ(second.stage->ended(), "exit");
  EXPECT_TRUE(first.stage->machine().disks().exists(u"C:\\Users\\ann"));
  EXPECT_FALSE(second.stage->machine().disks().exists(u"C:\\Users\\ann"));
}

}  // namespace
}  // namespace zev::scenario
