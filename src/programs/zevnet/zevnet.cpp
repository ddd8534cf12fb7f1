#include "programs/zevnet/zevnet.h"

#include <memory>
#include <utility>

#include "programs/zevnet/connections.h"
#include "programs/zevnet/datagrams.h"
#include "programs/zevnet/limit.h"

namespace zev::netcat {
namespace {

/// How long a conversation may be silent.
class Silence {
 public:
  explicit Silence(const Wishes& wishes) : limit_(wishes.idle) {}

  /// False if nothing has happened for so long that all is to end.
  bool look(const Conversation& conversation) {
    if (conversation.traffic() != std::exchange(traffic_, conversation.traffic())) {
      limit_.beginAnew();
    }
    return !limit_.over();
  }
  /// Milliseconds until the next look; -1 for ever.
  int left() const { return limit_.left(); }

 private:
  Limit limit_;
  std::uint64_t traffic_ = 0;
};

std::unique_ptr<Conversation> conversationFor(const Wishes& wishes, modEventSocket& module,
                                              Terminal& terminal) {
  if (wishes.udp) return std::make_unique<Datagrams>(module, terminal, wishes);
  if (wishes.listen) return std::make_unique<Listener>(module, terminal, wishes);
  return std::make_unique<Caller>(module, terminal, wishes);
}

void converse(Conversation& conversation, modEventSocket& module, Terminal& terminal,
              Silence silence) {
  conversation.begin();
  for (;;) {
    const bool goesOn = silence.look(conversation);
    conversation.settle();
    if (conversation.over()) return;
    if (!goesOn) return conversation.end();
    if (conversation.wantsInput()) {
      terminal.readInput(conversation, conversation.longestPiece());
    } else {
      terminal.holdInput();
    }
    terminal.dispatch(earlier(silence.left(), conversation.patience()));
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
      converse(*conversation, module, terminal, Silence(wishes));
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
