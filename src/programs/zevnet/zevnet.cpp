#include "programs/zevnet/zevnet.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <utility>

#include "programs/zevnet/connections.h"
#include "programs/zevnet/datagrams.h"

namespace zev::netcat {
namespace {

/// A time that passes while nothing happens.
class Limit {
 public:
  explicit Limit(std::optional<double> seconds) : seconds_(seconds) {}

  void beginAnew() { since_ = Clock::now(); }
  bool over() const { return left() == 0; }
  /// Milliseconds; -1 for ever.
  int left() const {
    if (!seconds_) return -1;
    const std::chrono::duration<double, std::milli> passed = Clock::now() - since_;
    return static_cast<int>(std::ceil(std::max(*seconds_ * 1000.0 - passed.count(), 0.0)));
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::optional<double> seconds_;
  Clock::time_point since_ = Clock::now();
};

/// The limits of a conversation.
class Patience {
 public:
  explicit Patience(const Wishes& wishes) : idling_(wishes.idle), connecting_(wishes.timeout) {}

  /// Gives up a connection that does not come about. False if nothing has happened for so long that
  /// all is to end.
  bool look(Conversation& conversation) {
    if (conversation.traffic() != std::exchange(traffic_, conversation.traffic())) {
      idling_.beginAnew();
    }
    if (conversation.connecting() && connecting_.over()) conversation.giveUp();
    return !idling_.over();
  }
  /// Milliseconds until the next look; -1 for ever.
  int left(const Conversation& conversation) const {
    if (!conversation.connecting()) return idling_.left();
    if (idling_.left() < 0) return connecting_.left();
    return std::min(idling_.left(), connecting_.left());
  }

 private:
  Limit idling_;
  Limit connecting_;
  std::uint64_t traffic_ = 0;
};

std::unique_ptr<Conversation> conversationFor(const Wishes& wishes, modEventSocket& module,
                                              Terminal& terminal) {
  if (wishes.udp) return std::make_unique<Datagrams>(module, terminal, wishes);
  if (wishes.listen) return std::make_unique<Listener>(module, terminal, wishes);
  return std::make_unique<Caller>(module, terminal, wishes);
}

void converse(Conversation& conversation, modEventSocket& module, Terminal& terminal,
              Patience patience) {
  conversation.begin();
  for (;;) {
    const bool goesOn = patience.look(conversation);
    conversation.settle();
    if (conversation.over()) return;
    if (!goesOn) return conversation.end();
    if (conversation.wantsInput()) {
      terminal.readInput(conversation, conversation.longestPiece());
    } else {
      terminal.holdInput();
    }
    terminal.dispatch(patience.left(conversation));
    module.rethrowEscaped();
  }
}

/// The exit status of a program that a signal ends.
int interrupted(Conversation& conversation, const Interruption& interruption) {
  constexpr int signalled = 128;
  conversation.end();
  return signalled + interruption.signal;
}

}  // namespace

int run(const Wishes& wishes, modEventSocket& module, Terminal& terminal) {
  if (wishes.trace) {
    module.trace().setReader([&](const Text& line) { terminal.tell(toUtf8(line)); });
  }
  try {
    const auto conversation = conversationFor(wishes, module, terminal);
    try {
      converse(*conversation, module, terminal, Patience(wishes));
    } catch (const Interruption& interruption) {
      return interrupted(*conversation, interruption);
    }
    return conversation->failed() ? 1 : 0;
  } catch (const RuntimeError& error) {
    terminal.tell(Failure(error).what());
  } catch (const Failure& failure) {
    terminal.tell(failure.what());
  }
  return 1;
}

}  // namespace zev::netcat
