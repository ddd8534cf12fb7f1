// What a run without failures shows, in its order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "scenarios/whole_run.h"

namespace zev {
namespace {

using testing::ElementsAreArray;

/// What the program wrote into a property, in order.
std::vector<std::string> written(const WholeRun& run, const std::string& control,
                                 const std::string& property) {
  std::vector<std::string> values;
  for (const simulated::Event& event : run.events("set")) {
    if (event["control"] == "Form1." + control && event["property"] == property) {
      values.push_back(event["value"].isText() ? event["value"].text() : event["value"].dump());
    }
  }
  return values;
}

WholeRun cleanRun() { return WholeRun(std::string(R"({"script": [)") + stepsToInstall + "]}"); }

TEST(RunScreen, ShowsEveryTickOnceAndTheFirstTwice) {
  const char* const percents[] = {
      "0%",  "0%",  "2%",  "3%",  "5%",  "7%",  "8%",  "10%", "12%", "13%", "15%", "17%", "18%",
      "20%", "22%", "23%", "25%", "27%", "28%", "30%", "32%", "33%", "35%", "37%", "38%", "40%",
      "42%", "43%", "45%", "47%", "48%", "50%", "52%", "53%", "55%", "57%", "58%", "60%", "62%",
      "63%", "65%", "67%", "68%", "70%", "72%", "73%", "75%", "77%", "78%", "80%", "82%", "83%",
      "85%", "87%", "88%", "90%", "92%", "93%", "95%", "97%", "98%", "100%"};
  EXPECT_THAT(written(cleanRun(), "Label8", "Caption"), ElementsAreArray(percents));
}

TEST(RunScreen, TheBarGrowsFromNothingToItsFrame) {
  const std::vector<std::string> widths = written(cleanRun(), "Label7", "Width");
  ASSERT_EQ(widths.size(), 62u);
  EXPECT_EQ(widths.front(), "0");
  EXPECT_EQ(widths[2], "104");  // 2% of 5235 twips is 104.7
  EXPECT_EQ(widths.back(), "5235");
}

TEST(RunScreen, TellsEachStageInItsOrder) {
  const char* const stages[] = {
      "Copying files into temporary folder and expanding into install directory...",
      "Registry settings are being done...",
      "'.zrd' file type registry...",
      "Temporary files are being deleted...",
      "ZEV has been sucessfully installed into 'C:\\Program Files\\ZEV Screen Recorder 6' "
      "directory.\r\n\r\nNow creating shortcuts...",
      "Installation of ZEV Screen Recorder has been successfully completed! You can launch ZEV "
      "from the Start Menu."};
  EXPECT_THAT(written(cleanRun(), "Label11", "Caption"), ElementsAreArray(stages));
}

TEST(RunScreen, NamesEachMemberPackedAndThenInItsTarget) {
  const std::vector<std::string> names = written(cleanRun(), "Label12", "Caption");
  ASSERT_EQ(names.size(), 55u * 2 + 1);
  EXPECT_EQ(names[0], "MCD28m.wa_");
  EXPECT_EQ(names[1], "C:\\Program Files\\ZEV Screen Recorder 6\\MCD28m.wav");
  EXPECT_EQ(names.back(), "");
}

// ---- what is painted at once

/// "set Label11", "refresh Label11", "call DoEvents": what an event did, without values.
std::string deed(const simulated::Event& event) {
  const std::string kind = event["event"].text();
  if (kind == "call") return "call " + event["name"].text();
  if (!event.contains("control")) return kind;
  const std::string control = event["control"].text();
  return kind + " " + control.substr(control.find('.') + 1);
}

std::vector<std::string> deeds(const WholeRun& run) {
  std::vector<std::string> all;
  for (const simulated::Event& each : run.events()) all.push_back(deed(each));
  return all;
}

/// What followed each of certain deeds.
std::vector<std::vector<std::string>> behind(const std::vector<std::string>& deeds,
                                             const std::string& begin, std::size_t count) {
  std::vector<std::vector<std::string>> found;
  for (std::size_t place = 0; place + count < deeds.size(); ++place) {
    if (deeds[place] != begin) continue;
    const auto next = deeds.begin() + static_cast<std::ptrdiff_t>(place) + 1;
    found.emplace_back(next, next + static_cast<std::ptrdiff_t>(count));
  }
  return found;
}

/// Another user's profile adds a text of its own.
const WholeRun& paintedRun() {
  static const WholeRun run(
      std::string(R"({"machine": {"files": {"C:\\Users\\eve\\AppData\\Local": {"directory": true}}},
                      "script": [)") +
          stepsToInstall + "]}",
      true);
  return run;
}

TEST(RunScreen, PaintsEachLabelAsSoonAsItsTextStands) {
  const std::vector<std::string> all = deeds(paintedRun());
  constexpr std::size_t texts[] = {7, 55u * 2 + 1, 62};
  const auto painted = [&](const std::string& label) { return behind(all, "set " + label, 1); };
  EXPECT_THAT(painted("Label11"),
              testing::AllOf(testing::SizeIs(texts[0]),
                             testing::Each(testing::ElementsAre("refresh Label11"))));
  EXPECT_THAT(painted("Label12"),
              testing::AllOf(testing::SizeIs(texts[1]),
                             testing::Each(testing::ElementsAre("refresh Label12"))));
  EXPECT_THAT(behind(all, "set Label7", 3),
              testing::AllOf(testing::SizeIs(texts[2]),
                             testing::Each(testing::ElementsAre("set Label8", "refresh Label7",
                                                                "refresh Label8"))));
}

TEST(RunScreen, PaintsItselfAroundTheLastPassAndBetweenTheStepsToTheFront) {
  const std::vector<std::string> all = deeds(paintedRun());
  EXPECT_EQ(std::count(all.begin(), all.end(), "refresh Form1"), 3);
  const auto last = std::find(all.begin(), all.end(), "refresh Form1");
  ASSERT_NE(last, all.end());
  EXPECT_EQ(std::vector<std::string>(last - 1, last + 3),
            (std::vector<std::string>{"refresh Label8", "refresh Form1", "call DoEvents",
                                      "refresh Form1"}));
  EXPECT_THAT(behind(all, "call SetForegroundWindow", 2),
              testing::ElementsAre(testing::ElementsAre("refresh Form1", "call BringWindowToTop")));
}

}  // namespace
}  // namespace zev
