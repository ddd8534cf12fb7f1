#include "scenarios/whole_run.h"

#include "programs/zevsim/setup_program.h"

namespace zev {
namespace {

scenario::Scenario withPackage(scenario::Scenario read) {
  if (!read.package.file) read.package.file = ZEV_PACKAGE;
  return read;
}

}  // namespace

const char* const stepsToInstall =
    R"({"click": "Command2"}, {"click": "Option1"}, {"click": "Command2"}, {"click": "Command2"})";

WholeRun::WholeRun(const std::string& text, bool all)
    : scenario_(withPackage(scenario::parseScenario(text))),
      log_(all),
      stage_(scenario_, simulator::makeSetupProgram, log_) {
  stage_.perform();
  passes_ = static_cast<std::size_t>(stage_.machine().calls("DoEvents"));
}

}  // namespace zev
