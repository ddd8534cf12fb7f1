#include "simulated/simulated_dde.h"

#include "runtime/error.h"

namespace zev::simulated {
namespace {

constexpr TextView programManager = u"Progman|progman";

}  // namespace

void SimulatedDde::requireServer() const {
  const bool served =
      machine_.settings.services.programManager && equalText(topic_, programManager);
  if (!served) throw RuntimeError(ErrorNumber::NoForeignApplicationResponded);
}

/// A new topic ends the conversation.
void SimulatedDde::LinkTopic(TextView topic) {
  topic_ = topic;
  linked_ = false;
}

void SimulatedDde::LinkMode(std::int32_t mode) {
  linked_ = false;
  if (mode == 0) return;
  requireServer();
  linked_ = true;
}

void SimulatedDde::LinkExecute(TextView command) {
  if (!linked_) throw RuntimeError(ErrorNumber::NoForeignApplicationResponded);
  requireServer();
  machine_.records.dde.emplace_back(command);
  if (!machine_.transcript.wants("dde")) return;
  machine_.transcript.add(
      {{"event", "dde"}, {"topic", toUtf8(topic_)}, {"command", toUtf8(command)}});
}

}  // namespace zev::simulated
