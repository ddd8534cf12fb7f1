// What a run without failures shows, in its order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
      values.push_back(event["value"].is_string() ? event["value"].get<std::string>()
                                                  : event["value"].dump());
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

}  // namespace
}  // namespace zev
