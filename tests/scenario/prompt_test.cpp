#include "programs/zevsim/prompt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "programs/zevsim/typed_line.h"
#include "runtime/controls.h"
#include "scenario/toy_play.h"
#include "scenario/toy_program.h"

namespace zev::scenario {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

/// What a typed line stands for, as a step of a script.
std::string stepOf(const std::string& line, const Form* active = nullptr) {
  return simulator::parseLine(line, active).source.dump();
}

std::string lineError(const std::string& line) {
  return errorOf([&] { simulator::parseLine(line, nullptr); });
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
  // No document goes so deep.
  const std::string deep = std::string(200, '[') + std::string(200, ']');
  EXPECT_EQ(stepOf("set Form1.Caption " + deep), R"({"set":{"Form1.Caption":")" + deep + R"("}})");
  EXPECT_EQ(stepOf("restart"), R"({"restart":true})");
  EXPECT_EQ(stepOf(R"(change {"user": "eve"})"), R"({"change":{"user":"eve"}})");
}

TEST(Prompt, TakesAStepInJson) {
  EXPECT_EQ(stepOf(R"({"at": {"yield": 1}, "do": []})"), R"({"at":{"yield":1},"do":[]})");
}

TEST(Prompt, FindsAControlByItsCaption) {
  const ToyPlay play = playScript("");
  const Form* form = play.stage->machine().screen().activeForm();
  EXPECT_EQ(stepOf("click Next >>", form), R"({"click":"Command2"})");
  EXPECT_EQ(stepOf("click next", form), R"({"click":"Command2"})");
  EXPECT_EQ(stepOf("click Back", form), R"({"click":"Command1"})");
  EXPECT_EQ(stepOf("click Text1", form), R"({"click":"Text1"})");
  EXPECT_EQ(stepOf("click Nonsense", form), R"({"click":"Nonsense"})");
  EXPECT_EQ(stepOf("close", form), R"({"close":"Form1"})");
}

TEST(Prompt, FindsAnEntryByItsBeginning) {
  const ToyPlay play = playScript("");
  const Form* form = play.stage->machine().screen().activeForm();
  EXPECT_EQ(stepOf("select Combo1 deu", form), R"({"select":["Combo1","Deutsch"]})");
  EXPECT_EQ(stepOf("select Combo1 FRANC", form), R"({"select":["Combo1","Français"]})");
  EXPECT_EQ(stepOf("select Combo1 franc\xCC\xA7", form), R"({"select":["Combo1","Français"]})");
  EXPECT_EQ(stepOf("select eng", form), R"({"select":["Combo1","English"]})");
  EXPECT_EQ(errorOf([&] { simulator::parseLine("select Combo1 Dansk", form); }),
            "prompt: Combo1 has no entry \"Dansk\"; there are English, Deutsch, Français");
  EXPECT_EQ(stepOf("select Text1 Dansk", form), R"({"select":["Text1","Dansk"]})");
}

TEST(Prompt, SelectsDrivesAndFoldersAsWell) {
  const ToyPlay play = playScript(R"({"click": "Command4"})");
  const Form* form = play.stage->machine().screen().activeForm();
  EXPECT_EQ(stepOf("select Drive1 d:", form), R"({"drive":"d:"})");
  EXPECT_EQ(stepOf("select dir1 C:\\Some Apps", form), R"({"folder":"C:\\Some Apps"})");
}

constexpr ControlDesign treeFormControls[] = {
    {.name = u"Dir1", .kind = ControlKind::DirListBox, .place = {0, 0, 1500, 1200}},
};

TEST(Prompt, FindsAFolderInTheOpenedOne) {
  Form form({.name = u"Form1",
             .caption = u"",
             .width = 1800,
             .height = 1200,
             .controls = treeFormControls});
  auto& tree = form.control<DirListBox>(u"Dir1");
  const auto folder = [&](const std::string& written) {
    const simulator::FolderNames names = [](const Text& opened) -> std::vector<Text> {
      if (opened == u"C:\\") return {u"Program Files", u"ProgramData", u"Windows"};
      return {u"\u00C9t\u00E9"};
    };
    return simulator::parseLine("folder " + written, &form, names)
        .source["folder"]
        .get<std::string>();
  };
  tree.comeUpOn(u"C:\\");
  EXPECT_EQ(folder("windows"), "C:\\Windows");
  EXPECT_EQ(folder("files"), "C:\\Program Files");
  EXPECT_EQ(folder("D:\\Temp"), "D:\\Temp");
  EXPECT_EQ(folder("\\Temp"), "\\Temp");
  EXPECT_EQ(folder(".."), "C:\\");
  EXPECT_EQ(errorOf([&] { folder("prog"); }), "prompt: \"prog\" may be Program Files, ProgramData");
  EXPECT_EQ(errorOf([&] { folder("none"); }), "prompt: no folder \"none\" in C:\\");
  tree.comeUpOn(u"C:\\Program Files");
  EXPECT_EQ(folder("ete"), "C:\\Program Files\\\xC3\x89t\xC3\xA9");
  EXPECT_EQ(folder(".."), "C:\\");
  tree.comeUpOn(u"C:\\A\\B");
  EXPECT_EQ(folder(".."), "C:\\A");
}

TEST(Prompt, RefusesWhatIsNoVerb) {
  EXPECT_EQ(lineError("jump"), "prompt: no verb \"jump\"; help lists them");
  EXPECT_THAT(lineError("answer maybe"), StartsWith("prompt.answer[0]: no answer \"maybe\"; "));
  EXPECT_EQ(lineError("close"), "prompt: no form is active; name the form");
}

TEST(Prompt, GuessesAtACaptionInPlaceOfAVerb) {
  const ToyPlay play = playScript("");
  const Form* form = play.stage->machine().screen().activeForm();
  EXPECT_EQ(errorOf([&] { simulator::parseLine("next", form); }),
            "prompt: no verb \"next\"; is it \"click next\"?");
}

/// Answers by hand.
class ByHand final : public Audience {
 public:
  ByHand(const std::string& typed, int columns) : in_(typed), prompt_(in_, out_, columns) {}
  std::optional<Step> goOn() override { return prompt_.nextStep(*stage); }
  std::optional<Answer> answer(const Box& box) override { return prompt_.answer(box); }
  std::optional<Answer> input(TextView prompt, TextView title, TextView initial) override {
    return prompt_.input(prompt, title, initial);
  }
  bool refused(const ScenarioError& error) override {
    prompt_.refused(error);
    return true;
  }
  std::string shown() const { return out_.str(); }

  simulator::SimulatedStage* stage = nullptr;  ///< that it sits at

 private:
  std::istringstream in_;
  std::ostringstream out_;
  simulator::Prompt prompt_;
};

/// Plays typed lines on the usual machine; gives what was printed.
std::string playByHand(const std::string& typed, int columns = 78) {
  ByHand person(typed, columns);
  simulated::NoTranscript transcript;
  const Scenario scenario;
  simulator::SimulatedStage stage(scenario, makeToyProgram, transcript);
  person.stage = &stage;
  stage.perform({&person});
  return person.shown();
}

/// How often a text stands in another one.
std::size_t countOf(const std::string& piece, const std::string& whole) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = whole.find(piece, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST(Prompt, DrawsABoxAndTakesItsAnswer) {
  const std::string shown = playByHand("click Cancel\nmaybe\nn\nclick Cancel\nyes\n");
  EXPECT_THAT(shown, HasSubstr("> +- Toy -----------------+\n"
                               "| Do you want to leave? |\n"
                               "|                       |\n"
                               "| [ yes * ]  [ no ]     |\n"
                               "+-----------------------+\n"
                               "answer> no button \"maybe\"; there are yes, no\n"
                               "answer> +- Toy ---"));
  EXPECT_THAT(shown, HasSubstr("The program has ended: \"unload\""));
}

TEST(Prompt, BreaksTheLongLinesOfABox) {
  const Box box{u"One line that is far longer than the box can be\r\nand another",
                u"A title that is longer than the box can be",
                0,
                {BoxAnswer::OK}};
  std::istringstream in("\n");
  std::ostringstream out;
  EXPECT_FALSE(simulator::Prompt(in, out, 40).answer(box));
  EXPECT_THAT(out.str(), HasSubstr("+- A title that is longer than the bo -+\n"
                                   "| One line that is far longer than the |\n"
                                   "| box can be                           |\n"
                                   "| and another                          |\n"));
}

TEST(Prompt, HelpsAndIsLeftEverywhere) {
  std::string shown = playByHand("help\nquit\nclick Next\n");
  EXPECT_THAT(shown, HasSubstr("> click NAME         a control by its name"));
  EXPECT_EQ(countOf("> ", shown), 2u + countOf(">> ", shown)) << shown;
  shown = playByHand("click Cancel\nhelp\nquit\nyes\nclick Next\n");
  EXPECT_THAT(shown, HasSubstr("answer> A button or its beginning: yes, no.\n"));
  EXPECT_THAT(shown, EndsWith("answer> "));
  shown = playByHand("click Name\nhelp\nquit\nEve\nclick Next\n");
  EXPECT_THAT(shown, HasSubstr("text> What is typed is the text;"));
  EXPECT_THAT(shown, EndsWith("text> "));
  shown = playByHand("read Text1\nhelp\nexit\n\nclick Next\n");
  EXPECT_THAT(shown, HasSubstr("more> Enter shows the next page,"));
  EXPECT_THAT(shown, EndsWith("more> "));
}

TEST(Prompt, IsLeftAtTheEndOfTheInput) {
  EXPECT_THAT(playByHand("click Cancel\n"), EndsWith("answer> \n"));
  EXPECT_THAT(playByHand("click Name\n"), EndsWith("text> \n"));
  EXPECT_THAT(playByHand("click Next\n"), EndsWith("> \n"));
}

TEST(Prompt, TakesAQuotedWordForATextAndNotForItself) {
  EXPECT_THAT(playByHand("click Name\n\"quit\"\nshow global.gName\n"), HasSubstr("> \"quit\"\n"));
  EXPECT_THAT(playByHand("click Name\n\"\nshow global.gName\n"), HasSubstr("> \"\\\"\"\n"));
}

TEST(Prompt, TellsWhyNothingHappens) {
  const std::string shown = playByHand(
      "click Back\nclick Option1\ntype Text2 x\nfocus Frame1(1)\nclick Form2.Command1\n"
      "close Form2\nclick More\nclick Form1.Command2\nshow global.gPage\n");
  EXPECT_THAT(shown, HasSubstr("> Command1 \"<< Back\" is disabled\n"
                               "> Option1 \"Yes\" is hidden\n"
                               "> Text2 is locked\n"
                               "> Frame1(1) takes no focus\n"
                               "> Form2 is not shown\n"
                               "> Form2 is not shown\n"
                               "> +- More"));
  EXPECT_THAT(shown, HasSubstr("> Form1 is disabled\n> 1\n"));
}

TEST(Prompt, TellsOfADisabledContainer) {
  EXPECT_THAT(playByHand("set Form1.Frame1(1).Enabled false\nselect Combo1 deu\n"),
              HasSubstr("> Combo1 is disabled\n"));
}

TEST(Prompt, ShowsWhatAListHas) {
  EXPECT_THAT(playByHand("select deu\nlist Combo1\n"),
              HasSubstr("> \x20 English\n* Deutsch\n  Français\n> "));
  EXPECT_THAT(playByHand("list\n"), HasSubstr("> \x20 English\n"));
  EXPECT_THAT(playByHand("list Text1\n"), HasSubstr("> Text1 is no list\n"));
  EXPECT_THAT(playByHand("list None\n"), HasSubstr("> Form1 has no control None\n"));
  EXPECT_THAT(playByHand("click Next\nlist\n"), HasSubstr("> no list is shown\n"));
  const std::string shown = playByHand(R"(change {"drives": {"D": {}, "N": {"type": 1}}})"
                                       "\nclick More\nlist\nlist Drive1\n");
  EXPECT_THAT(shown, HasSubstr("> which list: Drive1 or Dir1?\n> \x20 c:\n  d:\n> "));
}

TEST(Prompt, DrawsTheFormOnlyWhenItHasChanged) {
  const std::string shown = playByHand("click Text1\nfocus Text1\nnonsense\nscreen\n");
  EXPECT_EQ(countOf("+- Toy ", shown), 3u) << shown;
}

/// The longest line, without the prompts that a line is typed behind.
std::size_t widest(const std::string& shown) {
  std::istringstream lines(shown);
  std::size_t most = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t typed = line.rfind("> +-");
    most = std::max(most, typed == std::string::npos ? line.size() : line.size() - typed - 2);
  }
  return most;
}

TEST(Prompt, IsDrawnAsWideAsIsWanted) {
  const std::string typed = "click Next\nscreen\nclick Cancel\nn\nlist\n";
  EXPECT_GT(widest(playByHand(typed)), 60u);
  EXPECT_EQ(widest(playByHand(typed, 60)), 60u);
  EXPECT_EQ(widest(playByHand(typed, 40)), 40u);
  EXPECT_THAT(playByHand("width 50\n"),
              HasSubstr("> +- Toy ------------------------------------------+\n|"));
  for (const char* width : {"39", "x", "", "50 x", "-50", "1001"}) {
    EXPECT_THAT(playByHand("width " + std::string(width) + "\n"),
                HasSubstr("> a width is a number of columns, 40 at least\n"));
  }
}

TEST(Prompt, FitsOnAScreenOfTwentyFourLines) {
  const std::string shown = playByHand("", 40);
  EXPECT_LE(std::count(shown.begin(), shown.end(), '\n'), 24);
}

/// Text1 holds so many lines, "1" to that number.
std::string readLines(int count, const std::string& typed) {
  std::string text;
  for (int line = 1; line <= count; ++line) text += (line == 1 ? "" : "\\n") + std::to_string(line);
  return playByHand("set Form1.Text1.Text \"" + text + "\"\nread Text1\n" + typed);
}

TEST(Prompt, ReadsALongTextPageByPage) {
  const std::string shown = readLines(50, "\nb\nx\n\n\n\n");
  const std::size_t first = shown.find("> 1\n2\n");
  ASSERT_NE(first, std::string::npos);
  EXPECT_THAT(shown.substr(first), HasSubstr("\n22\n-- 22 of 50 lines; Enter, back or done --\n"
                                             "more> 23\n"));
  EXPECT_THAT(shown.substr(first), HasSubstr("\n44\n-- 44 of 50 lines; Enter, back or done --\n"
                                             "more> 1\n2\n"));
  EXPECT_THAT(shown.substr(first),
              HasSubstr("more> no \"x\"; there are Enter, back, done\nmore> 23\n"));
  EXPECT_THAT(shown.substr(first), HasSubstr("\n50\n-- 50 of 50 lines; Enter, back or done --\n"
                                             "more> +- Toy"));
}

TEST(Prompt, StopsReading) {
  EXPECT_THAT(readLines(50, "done\n"), HasSubstr("-- 22 of 50 lines; Enter, back or done --\n"
                                                 "more> +- Toy"));
  EXPECT_THAT(playByHand("read\n"), HasSubstr("> no long text is shown\n"));
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
  simulator::Prompt(in, box).answer({.text = Text(text),
                                     .title = u"Toy",
                                     .style = box_style::information,
                                     .buttons = {BoxAnswer::OK}});
  EXPECT_THAT(linesOf(box.str()), HasSubstr("/one/two/three/four//six//end/"));
  std::ostringstream inputBox;
  simulator::Prompt(in, inputBox).input(text, u"Toy", u"");
  EXPECT_THAT(linesOf(inputBox.str()), HasSubstr("/one/two/three/four//six//end/"));
}

TEST(Prompt, KeepsStepsThatAreDoneLater) {
  const std::string shown = playByHand(
      "{\"at\": {\"yield\": 2}, \"do\": [{\"click\": \"Command6\"}]}\nclick Next\nclick Run\n");
  EXPECT_THAT(shown, HasSubstr("The program has ended: \"exit\""));
}

}  // namespace
}  // namespace zev::scenario
