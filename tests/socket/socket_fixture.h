#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "socket/bench.h"
#include "socket/event_socket.h"
#include "socket/watched_services.h"
#include "support/fake_dialogs.h"

namespace zev::socket_bench {

using Lines = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

/// What an action raises, as in "40020 CEventSocket.Connect: Invalid operation at current state";
/// "nothing" if it raises nothing.
std::string raised(const std::function<void()>& action);

inline std::string wrongState(const std::string& operation) {
  return "40020 CEventSocket." + operation + ": Invalid operation at current state";
}

inline std::string wrongProtocolOrState(const std::string& operation) {
  return "40006 CEventSocket." + operation +
         ": Wrong protocol or connection state for the requested transaction or request";
}

inline std::string outOfRange(const std::string& operation) {
  return "40014 CEventSocket." + operation +
         ": The argument passed to a function was not in the correct format or in the specified "
         "range.";
}

inline std::string unsupported(const std::string& operation) {
  return "40018 CEventSocket." + operation + ": Unsupported variant type.";
}

/// Bytes as a text of one character each.
inline std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
inline Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

/// The events of a socket as lines: "DataArrival 5", "Error 10061 CEventSocket.PostSocket:
/// Connection refused.". Behind each line the procedure of `then`, if there is one, is run.
class Recorder {
 public:
  Lines log;
  SocketEvents then;
  std::int32_t request = -1;  ///< of the last ConnectionRequest

  Recorder();
  ~Recorder();
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  void watch(SocketEvents& events);

  bool has(const std::string& line) const;

 private:
  template <typename Event, typename... Arguments>
  void note(std::string line, const Event& event, Arguments&&... arguments);
  void noteError(const SocketErrorArguments& arguments);
};

/// A socket whose events are recorded. Its owner lets go of it by resetting `socket`.
class Watched : public Recorder {
 public:
  std::shared_ptr<CEventSocket> socket;

  explicit Watched(modEventSocket& module);
  ~Watched();
  CEventSocket* operator->() const { return socket.get(); }
};

/// Tests of the component over a bench. Behind each one nothing may be left: no instance, no
/// socket, no window, no page of code, no entry of a table.
class SocketTest : public testing::Test {
 protected:
  SocketTest() : SocketTest(makeBench()) {}
  explicit SocketTest(std::unique_ptr<Bench> made);
  ~SocketTest() override;

  void TearDown() override;

  /// Dispatches until it holds; false if that takes more than five seconds of the bench's clock.
  template <typename Predicate>
  bool pumpUntil(const Predicate& holds) {
    constexpr int step = 20;
    for (int waited = 0; waited < 5000;) {
      if (holds()) return true;
      if (!bench->pump(step)) waited += step;
    }
    return holds();
  }
  /// Dispatches until nothing more comes for a while.
  void settle();
  bool pumpTo(const Watched& socket, SocketState state);

  /// Posts a notification of a socket as the system does.
  void notify(std::int32_t socket, std::int32_t event, std::int32_t errorCode = 0) {
    postToWindow(WM_SOCKET_EVENT, socket, event, errorCode);
  }
  void postToWindow(std::uint32_t message, std::int32_t handle, std::int32_t lowWord,
                    std::int32_t highWord);

  /// Makes `server` take what `client` connects to `listener`.
  void connectPair(Watched& listener, Watched& client, Watched& server);

  void bindUdp(Watched& socket) {
    socket->Protocol(ProtocolUDP);
    socket->Bind(0);
  }
  /// The next datagrams go there.
  static void aimAt(Watched& sender, const Watched& receiver) {
    sender->RemoteHost(receiver->LocalIP());
    sender->RemotePort(receiver->LocalPort());
  }

  std::unique_ptr<Bench> bench;
  WatchedServices services;
  Calls& calls;
  test::FakeDialogs dialogs;
  Lines trace;
  modEventSocket module;
};

/// Two ends of a connection over the bench's network, and the listener that it came by.
class ConnectedTest : public SocketTest {
 protected:
  ConnectedTest() : ConnectedTest(makeBench()) {}
  explicit ConnectedTest(std::unique_ptr<Bench> made);
  ~ConnectedTest() override;

  void SetUp() override;
  void TearDown() override;

  std::unique_ptr<Watched> listener;
  std::unique_ptr<Watched> client;
  std::unique_ptr<Watched> server;
};

}  // namespace zev::socket_bench
