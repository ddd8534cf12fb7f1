// A person who cancels during the run, at each pass of the message loop that it makes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "scenarios/box_patterns.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

using simulated::Event;

std::string cancelAt(std::size_t pass, const std::string& answer) {
  return R"({"script": [{"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"},
             {"answer": [")" +
         answer + R"("]}, {"at": {"yield": )" + std::to_string(pass) +
         R"(}, "do": [{"click": "Command3"}]}, {"click": "Command2"}]})";
}

/// The events behind the first box.
std::vector<Event> behindTheBox(const WholeRun& run) {
  const std::vector<Event>& all = run.events();
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

TEST(CancelInTheRun, ConfirmedAtAnyPassEndsTheProgramThereAndThen) {
  for (std::size_t pass = 1; pass <= passesOfARun; ++pass) {
    SCOPED_TRACE("pass " + std::to_string(pass));
    WholeRun run(cancelAt(pass, "yes"));
    ASSERT_EQ(run.events("box").size(), 1u);
    EXPECT_EQ(run.events("box")[0]["text"], "Do you want to cancel the installation?");
    EXPECT_EQ(run.events("box")[0]["style"], 4388);
    EXPECT_EQ(run.ended(), "unload");
    const std::vector<Event> behind = behindTheBox(run);
    EXPECT_TRUE(std::none_of(behind.begin(), behind.end(), writesSomething));
    const auto& disks = run.machine().disks();
    EXPECT_FALSE(disks.find(u"C:\\Users\\bob\\AppData\\Local\\Temp\\ZEVTMP").has_value());
  }
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
