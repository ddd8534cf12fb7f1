#include "scenario/play.h"

#include "scenario/toy_program.h"

namespace zev::scenario {

Play::Play(std::string_view text, const std::filesystem::path& folder)
    : scenario(parseScenario(text, folder)),
      player(std::make_unique<Player>(scenario, makeToyProgram, transcript, verdicts)) {
  player->play();
}

std::vector<std::string> Play::lines(std::string_view kind) const {
  std::vector<std::string> all;
  for (const auto& event : transcript.of(kind)) all.push_back(event.dump());
  return all;
}

std::vector<std::string> Play::lines() const {
  std::vector<std::string> all;
  for (const auto& event : transcript.events()) all.push_back(event.dump());
  return all;
}

Play playScript(std::string_view script) {
  return Play("{\"script\": [" + std::string(script) + "]}");
}

bool holds(std::string_view machine, std::string_view expectation) {
  const Play play("{\"machine\": {" + std::string(machine) + "}, \"script\": [{\"expect\": {" +
                  std::string(expectation) + "}}]}");
  return play.verdicts.judgements > 0 && play.verdicts.failures.empty();
}

}  // namespace zev::scenario
