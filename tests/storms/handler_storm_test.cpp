// Event procedures that do in every event what they should better not do, both ends of each
// connection in this process.

#include <array>
#include <map>
#include <random>

#include "storms/storm.h"

namespace zev::storms {
namespace {

using Random = std::minstd_rand;

enum Event {
  onConnect,
  onArrival,
  onProgress,
  onComplete,
  onClose,
  onRequest,
  onError,
  eventKinds
};
constexpr std::array<const char*, eventKinds> eventNames = {
    "Connect",  "DataArrival",       "SendProgress", "SendComplete",
    "CloseSck", "ConnectionRequest", "Error"};

enum class Action {
  closes,        ///< CloseSck of its own socket
  sends,         ///< SendData
  calls,         ///< a new instance that connects
  raises,        ///< a run-time error
  letsGo,        ///< drops the last reference to its own socket
  closesOthers,  ///< CloseSck of some other socket
  dropsOthers,   ///< and the last reference to one
  behaves,
};
constexpr std::size_t actionKinds = static_cast<std::size_t>(Action::behaves) + 1;
constexpr std::array<const char*, actionKinds> actionNames = {
    "CloseSck",           "SendData",           "a new instance",        "an error",
    "the last reference", "CloseSck elsewhere", "a reference elsewhere", "nothing"};

constexpr int mostCalls = sanitized ? 1'000 : 4'000;
constexpr std::size_t mostAtOnce = 60;
constexpr std::size_t largePiece = 12'000'000;  ///< that the system does not take at once

class HandlerStorm : public Storm, public testing::WithParamInterface<unsigned> {
 protected:
  /// A socket, and how far each direction of its stream is.
  struct End {
    std::shared_ptr<CEventSocket> socket;
    std::uint64_t sent = 0;
    PatternReader got;
    int large = 0;
  };
  using Number = int;

  void SetUp() override {
    std::printf("seed %u, %d calls\n", GetParam(), mostCalls);
    random.seed(GetParam());
  }

  // ---- sockets

  Number add() {
    const Number number = ++lastNumber;
    End& end = ends[number];
    end.socket = newSocket();
    SocketEvents& events = end.socket->events;
    events.Connect = [this, number] { act(onConnect, number); };
    events.DataArrival = [this, number](std::int32_t) {
      hear(number);
      act(onArrival, number);
    };
    events.SendProgress = [this, number](std::int32_t, std::int32_t) { act(onProgress, number); };
    events.SendComplete = [this, number] { act(onComplete, number); };
    events.CloseSck = [this, number] { act(onClose, number); };
    events.ConnectionRequest = [this, number](std::int32_t request) { answer(number, request); };
    events.Error = [this, number](const SocketErrorArguments&) { act(onError, number); };
    return number;
  }
  /// The socket of a number, which somebody may have let go of.
  std::shared_ptr<CEventSocket> socketOf(Number number) {
    const auto found = ends.find(number);
    return found == ends.end() ? nullptr : found->second.socket;
  }
  Number anyOther(Number number) {
    if (ends.size() < 2) return 0;
    auto place = ends.begin();
    std::advance(place, static_cast<std::ptrdiff_t>(random() % ends.size()));
    return place->first == number ? 0 : place->first;
  }

  void listen() {
    listener = add();
    const auto socket = socketOf(listener);
    socket->Bind(0, u"127.0.0.1");
    socket->Listen();
    port = socket->LocalPort();
  }
  bool listens() {
    const auto socket = socketOf(listener);
    return socket && socket->State() == sckListening;
  }
  /// To the listener, or to the port of one that has gone.
  void call() {
    if (made >= mostCalls || ends.size() >= mostAtOnce) return;
    ++made;
    socketOf(add())->Connect(u"127.0.0.1", random() % 16 == 0 ? 1 : port);
  }

  // ---- procedures

  void hear(Number number) {
    const auto socket = socketOf(number);
    if (!socket || random() % 4 == 0) return;
    const Bytes bytes = fetch(*socket);
    EXPECT_TRUE(ends[number].got.add(bytes)) << "a byte is not where it belongs";
  }

  void answer(Number number, std::int32_t request) {
    if (random() % 8 == 0) act(onRequest, number);
    if (random() % 8 != 0) {
      const Number taking = add();
      // The procedures that this runs may let go of it.
      const auto socket = socketOf(taking);
      ignoringErrors([&] { socket->Accept(request); });
      send(taking);
    }
    act(onRequest, number);
  }

  void send(Number number) {
    const auto socket = socketOf(number);
    if (!socket || socket->State() != sckConnected) return;
    End& end = ends[number];
    const bool large = end.large < 1 && random() % 64 == 0;
    if (large) ++end.large;
    const Bytes bytes = pattern(end.sent, large ? largePiece : 1 + random() % 3'000);
    end.sent += bytes.size();
    socket->SendData(bytes);
  }

  void act(Event event, Number number) {
    const auto action = static_cast<Action>(random() % actionKinds);
    ++counts[event][static_cast<std::size_t>(action)];
    switch (action) {
      case Action::closes:
        if (const auto socket = socketOf(number)) socket->CloseSck();
        return;
      case Action::sends:
        return send(number);
      case Action::calls:
        return call();
      case Action::raises:
        throw RuntimeError(ErrorNumber::TypeMismatch);
      case Action::letsGo:
        ends.erase(number);
        return;
      case Action::closesOthers:
        if (const auto socket = socketOf(anyOther(number))) socket->CloseSck();
        return;
      case Action::dropsOthers:
        ends.erase(anyOther(number));
        return;
      case Action::behaves:
        return;
    }
  }

  // ---- the storm

  /// Lets go of what has no connection any more and will not get one.
  void sweep() {
    std::erase_if(ends, [](const auto& each) {
      const SocketState state = each.second.socket->State();
      return state == sckClosed || state == sckError || state == sckClosing;
    });
  }
  void stir() {
    sweep();
    if (!listens()) {
      ends.erase(listener);
      listen();
    }
    call();
    const Number number = anyOther(0);
    if (number != 0) ignoringErrors([&] { send(number); });
    if (ends.size() >= mostAtOnce) ends.erase(anyOther(listener));
  }

  Random random;
  std::map<Number, End> ends;
  Number lastNumber = 0;
  Number listener = 0;
  std::int32_t port = 1;
  int made = 0;
  std::array<std::array<int, actionKinds>, eventKinds> counts{};
};

TEST_P(HandlerStorm, OutlivesWhateverProceduresDo) {
  while (made < mostCalls) {
    ignoringErrors([&] { stir(); });
    for (int i = 0; i < 20 && machine->dispatch(0); ++i) continue;
  }
  settle();
  for (int event = 0; event < eventKinds; ++event) {
    for (std::size_t action = 0; action < actionKinds; ++action) {
      EXPECT_GT(counts[static_cast<std::size_t>(event)][action], 0)
          << "no " << eventNames[static_cast<std::size_t>(event)] << " has done "
          << actionNames[action];
    }
  }
  EXPECT_FALSE(module->AcceptCollectionCount());
  // Procedures that run while the last ones go may make new ones.
  while (!ends.empty()) ends.clear();
  settle();
  ends.clear();
  expectInUse(0, 0);
}

INSTANTIATE_TEST_SUITE_P(Seeds, HandlerStorm, testing::Range(1u, 5u));

}  // namespace
}  // namespace zev::storms
