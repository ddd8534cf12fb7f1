#include "scenario/toy_play.h"

#include "scenario/toy_program.h"

namespace zev::scenario {

ToyPlay::ToyPlay(std::string_view text, const std::filesystem::path& folder)
    : scenario(parseScenario(text, folder)),
      stage(std::make_unique<simulator::SimulatedStage>(scenario, makeToyProgram, transcript)) {
  stage->perform({&verdicts});
}

std::vector<std::string> ToyPlay::lines(std::string_view kind) const {
  std::vector<std::string> all;
  for (const auto& event : transcript.of(kind)) all.push_back(event.dump());
  return all;
}

std::vector<std::string> ToyPlay::lines() const {
  std::vector<std::string> all;
  for (const auto& event : transcript.events()) all.push_back(event.dump());
  return all;
}

ToyPlay playScript(std::string_view script) {
  return ToyPlay("{\"script\": [" + std::string(script) + "]}");
}

bool holds(std::string_view machine, std::string_view expectation) {
  const ToyPlay play("{\"machine\": {" + std::string(machine) + "}, \"script\": [{\"expect\": {" +
                     std::string(expectation) + "}}]}");
  return play.verdicts.judgements > 0 && play.verdicts.failures.empty();
}

}  // namespace zev::scenario
