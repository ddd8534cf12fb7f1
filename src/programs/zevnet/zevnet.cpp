#include "programs/zevnet/zevnet.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>

#include "programs/zevnet/connections.h"
#include "programs/zevnet/datagrams.h"

namespace zev::netcat {
namespace {

/// Watches for traffic that stops.
class Idling {
 public:
  explicit Idling(std::optional<double> seconds) : seconds_(seconds) {}

  /// Begins anew if there was traffic since the last look.
  void look(std::uint64_t traffic) {
    if (traffic == traffic_) return;
    traffic_ = traffic;
    since_ = Clock::now();
  }
  bool over() const { return left() == 0; }
  /// Milliseconds; -1 for ever.
  int left() const {
    if (!seconds_) return -1;
    const std::chrono::duration<double, std::milli> idle = Clock::now() - since_;
    return static_cast<int>(std::ceil(std::max(*seconds_ * 1000.0 - idle.count(), 0.0)));
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<double> seconds_;
  std::uint64_t traffic_ = 0;
  Clock::time_point since_ = Clock::now();
};

std::unique_ptr<Conversation> conversationFor(const Wishes& wishes, modEventSocket& module,
                                              Terminal& terminal) {
  if (wishes.udp) return std::make_unique<Datagrams>(module, terminal, wishes);
  if (wishes.listen) return std::make_unique<Listener>(module, terminal, wishes);
  return std::make_unique<Caller>(module, terminal, wishes);
}

void converse(Conversation& conversation, modEventSocket& module, Terminal& terminal,
              Idling idling) {
  conversation.begin();
  for (conversation.settle(); !conversation.over(); conversation.settle()) {
    idling.look(conversation.traffic());
    if (idling.over()) return conversation.end();
    if (conversation.wantsInput()) {
      terminal.readInput(conversation, conversation.longestPiece());
    } else {
      terminal.holdInput();
    }
    terminal.dispatch(idling.left());
    module.rethrowEscaped();
  }
}

}  // namespace

int run(const Wishes& wishes, modEventSocket& module, Terminal& terminal) {
  if (wishes.trace) {
    module.trace().setReader([&](const Text& line) { terminal.tell(toUtf8(line)); });
  }
  try {
    const auto conversation = conversationFor(wishes, module, terminal);
    converse(*conversation, module, terminal, Idling(wishes.idle));
    return conversation->failed() ? 1 : 0;
  } catch (const RuntimeError& error) {
    terminal.tell(Failure(error).what());
  } catch (const Failure& failure) {
    terminal.tell(failure.what());
  }
  return 1;
}

}  // namespace zev::netcat
