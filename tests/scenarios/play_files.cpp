// The files of scenarios, each a test of its own by its path: "scenario.pages/first-page" plays
// pages/first-page.json as zevsim does.

#include <gtest/gtest.h>

#include <sstream>

#include "programs/zevsim/setup_program.h"
#include "programs/zevsim/zevsim_main.h"
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
    const int status = scenario::zevsimMain({std::string(ZEV_SCENARIOS) + "/" + file_, "--package",
                                             ZEV_PACKAGE, "--transcript", "/dev/null"},
                                            makeSetupProgram, {in, out, err});
    EXPECT_EQ(status, scenario::exit_status::held) << err.str();
  }

 private:
  std::string file_;
};

bool registerFiles() {
  for (const std::string& file : scenarioFiles()) {
    const std::string name = file.substr(0, file.rfind('.'));
    const std::string path = std::string(ZEV_SCENARIOS) + "/" + file;
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

}  // namespace
}  // namespace zev
