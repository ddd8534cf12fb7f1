// A person who cancels during the run, at each pass of the message loop that it makes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/simulated_stage.h"
#include "scenario/finding.h"
#include "scenarios/box_patterns.h"
#include "scenarios/branches.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using simulated::Event;

/// The run with an expectation at each of its passes: there a copy of the process can branch.
std::string runByPasses() {
  std::string at;
  for (std::size_t pass = 1; pass <= passesOfARun; ++pass) {
    at += R"({"at": {"yield": )" + std::to_string(pass) +
          R"(}, "do": [{"expect": {"ended": null}}]},)";
  }
  return R"({"script": [{"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},)" + at +
         R"({"click": "Command2"}]})";
}

/// A person who presses Cancel at any pass of a run, each time in a copy of it, and confirms it.
class Canceller final : public scenario::Audience {
 public:
  explicit Canceller(Branches& branches) : branches_(branches) {}

  void judged(const scenario::KeyedValue&, const scenario::Verdict*) override {
    ++pass_;
    if (cancels_) return;
    cancels_ = branches_.branch("pass " + std::to_string(pass_));
    if (!cancels_) return;
    cancelledAt_ = pass_;
    const auto cancel = scenario::controlOf({{"Form1", "Command3"}}, *stage, "$");
    stage->click(*cancel);
  }
  std::optional<scenario::Answer> answer(const scenario::Box&) override {
    return scenario::Answer{"yes", std::nullopt, "$"};
  }

  std::size_t passes() const { return pass_; }
  std::string name() const { return "pass " + std::to_string(cancelledAt_); }

  simulator::SimulatedStage* stage = nullptr;  ///< that the person stands at

 private:
  Branches& branches_;
  bool cancels_ = false;
  std::size_t pass_ = 0;
  std::size_t cancelledAt_ = 0;
};

/// The events behind the first box.
std::vector<Event> behindTheBox(const std::vector<Event>& all) {
  const auto box = std::find_if(all.begin(), all.end(),
                                [](const Event& each) { return each["event"] == "box"; });
  return box == all.end() ? std::vector<Event>() : std::vector<Event>(box + 1, all.end());
}

bool writesSomething(const Event& event) {
  static const std::set<std::string> cleaning = {"delete", "rmdir"};
  const std::string kind = event["event"].text();
  if (kind == "file") return !cleaning.contains(event["op"].text());
  return kind == "registry" || kind == "shortcut" || kind == "shell";
}

TEST(CancelInTheRun, ARunMakesSoManyPasses) {
  const WholeRun start(R"({"script": []})");
  WholeRun whole(std::string(R"({"script": [)") + stepsToInstall + "]}");
  EXPECT_EQ(whole.passes() - start.passes(), passesOfARun);
}

void expectCancelled(simulator::SimulatedStage& stage, const simulated::TranscriptLog& log) {
  const std::vector<Event> boxes = log.of("box");
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0]["text"], "Do you want to cancel the installation?");
  EXPECT_EQ(boxes[0]["style"], 4388);
  EXPECT_EQ(stage.ended(), "unload");
  const std::vector<Event> behind = behindTheBox(log.events());
  EXPECT_TRUE(std::none_of(behind.begin(), behind.end(), writesSomething));
  const auto& disks = stage.machine().disks();
  EXPECT_FALSE(disks.find(u"C:\\Users\\bob\\AppData\\Local\\Temp\\ZEVTMP").has_value());
}

TEST(CancelInTheRun, ConfirmedAtAnyPassEndsTheProgramThereAndThen) {
  Branches branches;
  Canceller person(branches);
  scenario::Scenario scenario = scenario::parseScenario(runByPasses());
  scenario.package.file = ZEV_PACKAGE;
  simulated::TranscriptLog log;
  simulator::SimulatedStage stage(scenario, simulator::makeSetupProgram, log);
  person.stage = &stage;
  const auto judge = [&] {
    SCOPED_TRACE(person.name());
    expectCancelled(stage, log);
    return Branches::Told{person.name()};
  };
  std::size_t cancelled = 0;
  branches.play([&] { stage.perform({&person}); }, judge,
                [&](const Branches::Told&) { ++cancelled; });
  EXPECT_EQ(person.passes(), passesOfARun);
  EXPECT_EQ(cancelled, passesOfARun);
}

TEST(CancelInTheRun, RefusedAtEveryPassChangesNothing) {
  WholeRun clean(std::string(R"({"script": [)") + stepsToInstall + "]}");
  std::string script;
  for (std::size_t pass = 1; pass <= passesOfARun; ++pass) {
    script += R"({"at": {"yield": )" + std::to_string(pass) +
              R"(}, "do": [{"answer": ["no"]}, {"click": "Command3"}]},)";
  }
  WholeRun refused(R"({"script": [{"click": "Command2"}, {"click": "Option1"},
                      {"click": "Command2"},)" +
                   script + R"({"click": "Command2"}]})");
  EXPECT_EQ(refused.events("box").size(), passesOfARun);
  EXPECT_TRUE(refused.ended().isNull());
  EXPECT_EQ(refused.machine().state(), clean.machine().state());
}

/// What the status line says in the end, what is painted at once, and when the files go.
std::vector<std::string> cleanUp(const WholeRun& run) {
  std::vector<std::string> told;
  for (const Event& event : run.events()) {
    const std::string kind = event["event"].text();
    const bool status = kind == "set" && event["control"] == "Form1.Label11";
    if (status && event["value"] != "") told.push_back(event["value"].text());
    if (kind == "refresh") told.push_back("refresh " + event["control"].text());
    if (kind == "call" && event["name"] == "Kill") told.push_back("Kill");
  }
  return told;
}

TEST(ConfirmedCancel, TellsTwiceOfItsCleanUpAndPaintsItAtOnce) {
  const WholeRun english(R"({"script": [{"answer": ["yes"]}, {"click": "Command3"}]})", true);
  EXPECT_EQ(cleanUp(english),
            (std::vector<std::string>{"Deleting temporary files...", "refresh Form1.Label11",
                                      "Temporary files are being deleted...",
                                      "refresh Form1.Label11", "Kill"}));
}

TEST(ConfirmedCancel, TellsOfItsCleanUpInEachLanguage) {
  const std::map<int, std::string> entries = {{2, "Deutsch"}, {3, "Français"}, {4, "Espanol"}};
  for (const auto& [language, entry] : entries) {
    const WholeRun run(R"({"script": [{"select": ["Combo1", ")" + entry +
                       R"("]}, {"answer": ["yes"]}, {"click": "Command3"}]})");
    EXPECT_EQ(cleanUp(run), (std::vector<std::string>{
                                translated("Deleting temporary files...", language),
                                translated("Temporary files are being deleted...", language)}));
    EXPECT_NE(cleanUp(run).front(), "Deleting temporary files...") << entry;
  }
}

TEST(CancelInTheRun, TheCloseBoxIsACancelToo) {
  WholeRun run(R"({"script": [{"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
      {"answer": ["yes"]}, {"at": {"set": ["Label12.Caption", "Beep.wa_"]}, "do": [{"close": "Form1"}]},
      {"click": "Command2"},
      {"expect": {"ended": "unload", "dir:C:\\Users\\bob\\AppData\\Local\\Temp": []}}]})");
  EXPECT_TRUE(run.held());
}

}  // namespace
}  // namespace zev
