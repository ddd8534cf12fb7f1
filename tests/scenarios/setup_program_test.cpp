// The program's globals as scenarios read and write them.

#include "programs/zevsim/setup_program.h"

#include <gtest/gtest.h>

#include "simulated/nobody.h"
#include "simulated/simulated_machine.h"

namespace zev {
namespace {

class SetupProgramTest : public testing::Test {
 protected:
  SetupProgramTest() {
    machine_.startProgram();
    program_ = simulator::makeSetupProgram(machine_.platform());
  }

  bool takes(std::string_view name, std::int32_t number) {
    const bool taken = program_->setGlobal(name, number);
    EXPECT_EQ(std::get<std::int32_t>(program_->global(name).value()) == number, taken);
    return taken;
  }

 private:
  simulated::Nobody person_;
  simulated::NoTranscript transcript_;
  simulated::SimulatedMachine machine_{person_, transcript_};
  std::unique_ptr<simulator::PlayedProgram> program_;
};

TEST_F(SetupProgramTest, TakesNumbersThatFitIntoAGlobal) {
  EXPECT_TRUE(takes("gCurrentPage", 255));
  EXPECT_FALSE(takes("gCurrentPage", 256));
  EXPECT_FALSE(takes("gCurrentPage", -1));
  EXPECT_TRUE(takes("gProductVersion", -32768));
  EXPECT_FALSE(takes("gProductVersion", 32768));
  EXPECT_TRUE(takes("gLanguage", -2147483647));
}

}  // namespace
}  // namespace zev
