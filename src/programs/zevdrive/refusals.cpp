#include "programs/zevdrive/refusals.h"

#include "programs/zevdrive/machine_hand.h"

namespace zev::drive {
namespace {

using scenario::Step;

std::optional<std::string> refusal(const std::vector<Step>& steps);

struct StepRefusal {
  std::optional<std::string> operator()(const scenario::At& at) const {
    if (!std::holds_alternative<scenario::AtBox>(at.when)) return "points in the middle of a pass";
    return refusal(at.steps);
  }
  std::optional<std::string> operator()(const scenario::Change& change) const {
    const auto reason = drive::refusal(change.change);
    return reason ? std::optional("a change while it runs: " + *reason) : std::nullopt;
  }
  std::optional<std::string> operator()(const scenario::Set&) const {
    return "globals or properties written by the script";
  }
  std::optional<std::string> operator()(const scenario::EndSession&) const {
    return "the end of the session";
  }
  std::optional<std::string> operator()(const scenario::Other&) const {
    return "what another program does";
  }
  std::optional<std::string> operator()(const scenario::Beside&) const {
    return "a second program";
  }
  template <typename Another>
  std::optional<std::string> operator()(const Another&) const {
    return std::nullopt;
  }
};

std::optional<std::string> refusal(const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    if (auto reason = std::visit(StepRefusal{}, step.action)) return reason;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> refusal(const scenario::Scenario& scenario) {
  if (scenario.machine.faults && !scenario.machine.faults->empty()) return "faults";
  return refusal(scenario.script);
}

}  // namespace zev::drive
