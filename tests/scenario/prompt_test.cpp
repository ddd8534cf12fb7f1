#include "scenario/prompt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "scenario/play.h"
#include "scenario/toy_program.h"

namespace zev::scenario {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// What a typed line stands for, as a step of a script.
std::string stepOf(const std::string& line, const Form* active = nullptr) {
  return parseLine(line, active).source.dump();
}

std::string lineError(const std::string& line) {
  return errorOf([&] { parseLine(line, nullptr); });
}

TEST(Prompt, TakesTheVerbsOfAScript) {
  EXPECT_EQ(stepOf("click Form1.Command2"), R"({"click":"Form1.Command2"})");
  EXPECT_EQ(stepOf("  select Combo1 Deutsch  "), R"({"select":["Combo1","Deutsch"]})");
  EXPECT_EQ(stepOf("type Text2 D:\\Some Apps"), R"({"type":["Text2","D:\\Some Apps"]})");
  EXPECT_EQ(stepOf("type Text2"), R"({"type":["Text2",""]})");
  EXPECT_EQ(stepOf("focus Text1"), R"({"focus":"Text1"})");
  EXPECT_EQ(stepOf("drive d:"), R"({"drive":"d:"})");
  EXPECT_EQ(stepOf("folder C:\\Program Files"), R"({"folder":"C:\\Program Files"})");
  EXPECT_EQ(stepOf("close Form1"), R"({"close":"Form1"})");
  EXPECT_EQ(stepOf("answer yes no"), R"({"answer":["yes","no"]})");
  EXPECT_EQ(stepOf("answer text New one"), R"({"answer":[{"text":"New one"}]})");
  EXPECT_EQ(stepOf("set global.gLanguage 2"), R"({"set":{"global.gLanguage":2}})");
  EXPECT_EQ(stepOf("set Form1.Caption Toy two"), R"({"set":{"Form1.Caption":"Toy two"}})");
  EXPECT_EQ(stepOf("restart"), R"({"restart":true})");
  EXPECT_EQ(stepOf(R"(change {"user": "eve"})"), R"({"change":{"user":"eve"}})");
}

TEST(Prompt, TakesAStepInJson) {
  EXPECT_EQ(stepOf(R"({"at": {"yield": 1}, "do": []})"), R"({"at":{"yield":1},"do":[]})");
}

TEST(Prompt, FindsAControlByItsCaption) {
  const Play play = playScript("");
  const Form* form = play.player->machine().screen().activeForm();
  EXPECT_EQ(stepOf("click Next >>", form), R"({"click":"Command2"})");
  EXPECT_EQ(stepOf("click next", form), R"({"click":"Command2"})");
  EXPECT_EQ(stepOf("click Text1", form), R"({"click":"Text1"})");
  EXPECT_EQ(stepOf("click Nonsense", form), R"({"click":"Nonsense"})");
  EXPECT_EQ(stepOf("close", form), R"({"close":"Form1"})");
}

TEST(Prompt, RefusesWhatIsNoVerb) {
  EXPECT_EQ(lineError("jump"), "prompt: no verb \"jump\"; help lists them");
  EXPECT_THAT(lineError("answer maybe"), StartsWith("prompt.answer[0]: no answer \"maybe\"; "));
  EXPECT_EQ(lineError("close"), "prompt: no form is active; name the form");
}

/// Answers by hand.
class ByHand final : public Companion {
 public:
  explicit ByHand(const std::string& typed) : in_(typed) {}
  std::optional<Step> goOn(Player& player) override { return prompt_.nextStep(player); }
  std::optional<Answer> answer(const simulated::Box& box) override { return prompt_.answer(box); }
  std::optional<Answer> input(TextView prompt, TextView title, TextView initial) override {
    return prompt_.input(prompt, title, initial);
  }
  bool refused(const ScenarioError& error) override {
    prompt_.refused(error);
    return true;
  }
  std::string shown() const { return out_.str(); }

 private:
  std::istringstream in_;
  std::ostringstream out_;
  Prompt prompt_{in_, out_};
};

/// Plays typed lines on the usual machine; gives what was printed.
std::string playByHand(const std::string& typed) {
  ByHand person(typed);
  simulated::NoTranscript transcript;
  const Scenario scenario;
  Player(scenario, makeToyProgram, transcript, person).play();
  return person.shown();
}

TEST(Prompt, DrawsABoxAndTakesItsAnswer) {
  const std::string shown = playByHand("click Cancel\nmaybe\nn\nclick Cancel\nyes\n");
  EXPECT_THAT(shown,
              HasSubstr("+- Toy\n  Do you want to leave?\n  [ yes * ]  [ no ]\nanswer> answer> "));
  EXPECT_THAT(shown, HasSubstr("The program has ended: \"unload\""));
}

TEST(Prompt, TakesTheDefaultButtonForAnEmptyLine) {
  EXPECT_THAT(playByHand("click Cancel\n\n"), HasSubstr("The program has ended: \"unload\""));
}

TEST(Prompt, TakesTheTextOfAnInputBox) {
  EXPECT_THAT(playByHand("click Name\nEve\nshow global.gName\n"), HasSubstr("> \"Eve\"\n"));
}

TEST(Prompt, GoesOnAfterAMistake) {
  const std::string shown =
      playByHand("click Command99\nshow Form1.None\nnonsense\nshow global.gPage\n");
  EXPECT_THAT(shown, HasSubstr("Form1 has no control Command99\n"));
  EXPECT_THAT(shown, HasSubstr("Form1 has no property None\n"));
  EXPECT_THAT(shown, HasSubstr("no verb \"nonsense\"; help lists them\n"));
  EXPECT_THAT(shown, HasSubstr("> 1\n"));
}

TEST(Prompt, GoesOnAfterAnAnswerThatTheBoxDoesNotHave) {
  const std::string shown = playByHand("answer retry\nclick Cancel\nno\nshow global.gPage\n");
  EXPECT_THAT(shown, HasSubstr("has no button \"retry\"; it has yes, no\n"));
  EXPECT_THAT(shown, HasSubstr("> 1\n"));
}

TEST(Prompt, RestartsAfterTheEnd) {
  const std::string shown = playByHand("click Stop\nclick Stop\nrestart\nshow ended\n");
  EXPECT_THAT(shown,
              HasSubstr("the program has ended; only expect, change and restart can follow"));
  EXPECT_THAT(shown, HasSubstr("> null\n"));
}

/// What was printed, a "/" for each line end, without the blanks and bars that frame a line.
std::string linesOf(const std::string& shown) {
  constexpr const char* frame = " |";
  std::istringstream in(shown);
  std::string lines = "/";
  for (std::string line; std::getline(in, line); lines += '/') {
    const std::size_t begin = line.find_first_not_of(frame);
    if (begin == std::string::npos) continue;
    lines += line.substr(begin, line.find_last_not_of(frame) + 1 - begin);
  }
  return lines;
}

TEST(Prompt, BreaksTheLinesOfABoxAtEveryKindOfLineEnd) {
  constexpr TextView text = u"one\r\ntwo\rthree\nfour\r\n\r\nsix\r\rend";
  std::istringstream in("\n\n");
  std::ostringstream box;
  Prompt(in, box).answer({.text = Text(text), .style = box_style::information, .title = u"Toy"});
  EXPECT_THAT(linesOf(box.str()), HasSubstr("/one/two/three/four//six//end/"));
  std::ostringstream inputBox;
  Prompt(in, inputBox).input(text, u"Toy", u"");
  EXPECT_THAT(linesOf(inputBox.str()), HasSubstr("/one/two/three/four//six//end/"));
}

TEST(Prompt, KeepsStepsThatAreDoneLater) {
  const std::string shown = playByHand(
      "{\"at\": {\"yield\": 2}, \"do\": [{\"click\": \"Command6\"}]}\nclick Next\nclick Run\n");
  EXPECT_THAT(shown, HasSubstr("The program has ended: \"exit\""));
}

}  // namespace
}  // namespace zev::scenario
