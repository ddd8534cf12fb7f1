// The files of scenarios, each a test of its own by its path: "scenario.pages/forward" plays
// pages/forward.json as zevsim does, "scenario.pages/directory/empty" the case "empty" of
// pages/directory.json.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/zevsim_main.h"
#include "scenario/written_out.h"
#include "scenarios/scenario_files.h"

namespace zev {
namespace {

class ScenarioFile final : public testing::Test {
 public:
  explicit ScenarioFile(std::string file) : file_(std::move(file)) {}

  void TestBody() override {
    std::istringstream in;
    std::ostringstream out;
    std::ostringstream err;
    const int status = simulator::zevsimMain({std::string(ZEV_SCENARIOS) + "/" + file_, "--package",
                                              ZEV_PACKAGE, "--transcript", "/dev/null"},
                                             simulator::makeSetupProgram, {in, out, err});
    EXPECT_EQ(status, simulator::exit_status::held) << err.str();
  }

 private:
  std::string file_;
};

std::string nameOfTest(const scenario::ScenarioAddress& address) {
  const std::string file = (address.file.parent_path() / address.file.stem()).generic_string();
  return address.chosen ? file + "/" + *address.chosen : file;
}

bool registerFiles() {
  for (const std::string& file : scenarioFiles()) {
    const scenario::ScenarioAddress address = scenario::addressOf(file);
    const std::string name = nameOfTest(address);
    const std::string path = std::string(ZEV_SCENARIOS) + "/" + address.file.generic_string();
    testing::RegisterTest("scenario", name.c_str(), nullptr, nullptr, path.c_str(), 1,
                          [file]() -> testing::Test* { return new ScenarioFile(file); });
  }
  return true;
}

const bool registered = registerFiles();

TEST(ScenarioFiles, AreFound) {
  EXPECT_TRUE(registered);
  EXPECT_FALSE(scenarioFiles().empty());
}

TEST(ScenarioFiles, AreLaidOut) {
  for (const auto& each : std::filesystem::recursive_directory_iterator(ZEV_SCENARIOS)) {
    if (each.path().extension() != ".json") continue;
    std::ostringstream text;
    text << std::ifstream(each.path(), std::ios::binary).rdbuf();
    EXPECT_EQ(text.str(), scenario::layOut(scenario::readDocument(each.path()))) << each.path();
  }
}

}  // namespace
}  // namespace zev
