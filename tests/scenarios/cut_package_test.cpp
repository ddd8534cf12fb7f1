// Packages that were cut short, or whose bytes are not what they should be.

#include <gtest/gtest.h>

#include <set>

#include "package/manifest.h"
#include "runtime/text.h"
#include "scenarios/whole_run.h"
#include "support/table.h"

namespace zev {
namespace {

const std::string desktop = "C:\\Users\\bob\\Desktop";

WholeRun install(const std::string& package) {
  return WholeRun(R"({"package": )" + package + R"(, "script": [)" + stepsToInstall + "]}");
}

std::string targetOf(const ManifestRow& row) {
  const std::string name = "\\" + toUtf8(row.installedName);
  if (row.target == Target::System) return "C:\\Windows\\system32" + name;
  if (row.target == Target::Projects) return "C:\\Users\\bob\\Documents\\ZEV Projects" + name;
  return installFolder + name;
}

/// The folder of the group, its shortcuts and the one on the desktop.
std::set<std::string> shortcutPaths() {
  const std::string group =
      "C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\ZEV Screen Recorder 6";
  std::set<std::string> paths = {group};
  for (const test::Row& row : test::Table::read("shortcuts.tsv")) {
    const std::string& folder = row.is("place", "desktop") ? desktop : group;
    paths.insert(folder + "\\" + row.quoted("file"));
  }
  return paths;
}

/// All that a run may write to.
std::set<std::string> allowedPaths() {
  std::set<std::string> paths = {installFolder,
                                 installFolder + "\\UserF.dat",
                                 temporaryFolder,
                                 "C:\\Users\\bob\\Documents\\ZEV Projects",
                                 userFolder + "\\deneme_sil",
                                 userFolder + "\\Tavorns",
                                 userFolder + "\\Tavorns\\ZEV5"};
  for (const ManifestRow& row : manifest()) {
    if (row.row == 0) continue;
    paths.insert(temporaryFolder + "\\" + toUtf8(row.packedName));
    paths.insert(targetOf(row));
  }
  for (const char* name :
       {"Dizin", "Version", "IncCur", "dwKFE", "RecSnd", "CapSpeed", "Language"}) {
    paths.insert(userFolder + "\\Tavorns\\ZEV5\\" + name);
  }
  paths.merge(shortcutPaths());
  return paths;
}

void expectNothingElseTouched(const WholeRun& run) {
  const std::set<std::string> allowed = allowedPaths();
  for (const simulated::Event& event : run.events("file")) {
    EXPECT_TRUE(allowed.contains(event["path"].text())) << event;
  }
}

TEST(CutPackage, BelowTheSmallestLengthItIsRefusedBeforeAnythingIsWritten) {
  for (const char* length : {"0", "1", "1000000", "8999999"}) {
    SCOPED_TRACE(length);
    WholeRun run = install(R"({"length": )" + std::string(length) + "}");
    ASSERT_EQ(run.events("box").size(), 1u);
    EXPECT_EQ(run.events("box")[0]["text"],
              "Installation file is not complete. Please redownload the file from "
              "http://www.tavorns.example/zev/");
    EXPECT_EQ(run.events("box")[0]["title"], "ZEV Screen Recorder");
    EXPECT_EQ(run.events("box")[0]["style"], 48);
    for (const simulated::Event& event : run.events("file")) EXPECT_EQ(event["op"], "mkdir");
    EXPECT_TRUE(run.ended().isNull());
  }
}

TEST(CutPackage, AtAnyLengthNothingButTheTargetsIsTouched) {
  for (const char* cut : {"1", "193", "194", "195", "4532708", "4534000", "6000000", "6246000"}) {
    SCOPED_TRACE(cut);
    WholeRun run = install(R"({"cutEnd": )" + std::string(cut) + "}");
    expectNothingElseTouched(run);
    EXPECT_FALSE(run.ended().isMembers()) << run.ended();
    EXPECT_EQ(run.machine().openHandles().files, 0u);
  }
}

TEST(CutPackage, AWholeOneTouchesTheTargetsAlone) {
  WholeRun run = install("{}");
  EXPECT_TRUE(run.events("box").empty());
  expectNothingElseTouched(run);
}

}  // namespace
}  // namespace zev
