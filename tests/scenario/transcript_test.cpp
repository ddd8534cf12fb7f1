#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "programs/zevsim/event_writer.h"
#include "scenario/toy_play.h"
#include "scenario/toy_program.h"

namespace zev::scenario {
namespace {

using testing::ElementsAre;

/// What a play writes with a selection of kinds.
std::string written(std::string_view script, const std::vector<std::string>& kinds) {
  std::ostringstream out;
  simulator::EventWriter writer(&out, kinds);
  VerdictLog verdicts;
  const Scenario scenario = parseScenario("{\"script\": [" + std::string(script) + "]}");
  simulator::SimulatedStage(scenario, makeToyProgram, writer).perform({&verdicts});
  return out.str();
}

TEST(Transcript, TellsAWholeShortPlayInOrder) {
  const ToyPlay play = playScript(R"({"answer": ["no"]}, {"click": "Command3"},
      {"expect": {"boxes": [{"style": 36}], "Form1.Caption": {"contains": "x"}}},
      {"click": "Command6"})");
  EXPECT_THAT(
      play.lines(),
      ElementsAre(
          R"({"event":"step","step":{"answer":["no"]}})", R"({"event":"start"})",
          R"({"event":"show","form":"Form1"})", R"({"event":"step","step":{"click":"Command3"}})",
          R"({"event":"box","text":"Do you want to leave?","title":"Toy",)"
          R"("style":36,"answer":"no"})",
          R"({"event":"expect","key":"boxes","held":true,"expected":[{"style":36}],)"
          R"("found":[{"text":"Do you want to leave?","title":"Toy","style":36,"answer":"no"}]})",
          R"({"event":"expect","key":"Form1.Caption","held":false,"expected":{"contains":"x"},)"
          R"("found":"Toy"})",
          R"({"event":"step","step":{"click":"Command6"}})", R"({"event":"end","how":"exit"})"));
}

TEST(Transcript, TellsTheErrorThatEndedTheProgram) {
  const ToyPlay play = playScript(R"({"click": "Command7"})");
  EXPECT_THAT(
      play.lines("end"),
      ElementsAre(
          R"({"event":"end","how":"error","error":75,"description":"Path/File access error"})"));
}

TEST(Transcript, HasNoEndForAProgramThatIsLeftRunning) {
  const ToyPlay play = playScript(R"({"restart": true}, {"click": "Command3"})");
  EXPECT_EQ(play.lines("start").size(), 2u);
  EXPECT_THAT(play.lines("end"), ElementsAre(R"({"event":"end","how":"unload"})"));
  EXPECT_EQ(playScript(R"({"click": "Command2"})").lines("end").size(), 0u);
}

TEST(Transcript, TellsInputBoxes) {
  const ToyPlay play = playScript(R"({"answer": [{"text": "Eve"}]}, {"click": "Command5"})");
  EXPECT_THAT(
      play.lines("input"),
      ElementsAre(R"({"event":"input","prompt":"Your name:","title":"Name","answer":"Eve"})"));
}

TEST(Transcript, TellsTheStepsOfAnAtWhenTheyAreDone) {
  const ToyPlay play = playScript(R"({"at": {"yield": 1}, "do": [{"click": "Option1"}]},
                                  {"click": "Command2"}, {"click": "Command2"})");
  EXPECT_THAT(
      play.lines("step"),
      ElementsAre(R"({"event":"step","step":{"at":{"yield":1},"do":[{"click":"Option1"}]}})",
                  R"({"event":"step","step":{"click":"Command2"}})",
                  R"({"event":"step","step":{"click":"Command2"}})",
                  R"({"event":"step","step":{"click":"Option1"}})"));
}

TEST(Transcript, WritesAllKindsButCallsWithoutASelection) {
  const std::string lines = written(R"({"click": "Command2"}, {"click": "Command2"})", {});
  EXPECT_NE(
      lines.find(
          R"({"event":"set","control":"Form1.Label12","property":"Caption","value":"file1"})"),
      std::string::npos);
  EXPECT_NE(lines.find(R"("event":"file")"), std::string::npos);
  EXPECT_EQ(lines.find(R"("event":"call")"), std::string::npos);
}

TEST(Transcript, WritesTheSelectedKindsOnly) {
  EXPECT_EQ(written(R"({"click": "Command3"})", {"show", "unload"}),
            "{\"event\":\"show\",\"form\":\"Form1\"}\n{\"event\":\"unload\",\"form\":\"Form1\"}\n");
  EXPECT_NE(written(R"({"click": "Command3"})", {"call"}).find(R"("name":"MsgBox")"),
            std::string::npos);
}

TEST(Transcript, CountsWhatASummaryTells) {
  simulator::EventWriter writer(nullptr, {});
  VerdictLog verdicts;
  const Scenario scenario =
      parseScenario(R"({"script": [{"click": "Command2"}, {"click": "Command2"}]})");
  simulator::SimulatedStage(scenario, makeToyProgram, writer).perform({&verdicts});
  EXPECT_EQ(writer.tally().written.size(), 8u);
  EXPECT_EQ(writer.tally().boxes, 1u);
  EXPECT_EQ(writer.tally().settings, 0u);
}

}  // namespace
}  // namespace zev::scenario
