#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "runtime/error.h"
#include "socket/bench.h"
#include "socket/event_socket.h"
#include "socket/watched_services.h"
#include "support/fake_dialogs.h"

namespace zev::socket_bench {

using Lines = std::vector<std::string>;
using Bytes = std::vector<std::uint8_t>;

/// What an action raises, as in "40020 CEventSocket.Connect: Invalid operation at current state";
/// "nothing" if it raises nothing.
inline std::string raised(const std::function<void()>& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return std::to_string(error.number()) + ' ' + toUtf8(error.source()) + ": " +
           toUtf8(error.description());
  }
  return "nothing";
}

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

  Recorder() = default;
  Recorder(const Recorder&) = delete;
  Recorder& operator=(const Recorder&) = delete;

  void watch(SocketEvents& events) {
    events.CloseSck = [this] { note("CloseSck", then.CloseSck); };
    events.Connect = [this] { note("Connect", then.Connect); };
    events.ConnectionRequest = [this](std::int32_t requestID) {
      request = requestID;
      note("ConnectionRequest", then.ConnectionRequest, requestID);
    };
    events.DataArrival = [this](std::int32_t bytesTotal) {
      note("DataArrival " + std::to_string(bytesTotal), then.DataArrival, bytesTotal);
    };
    events.Error = [this](const SocketErrorArguments& arguments) { noteError(arguments); };
    events.SendComplete = [this] { note("SendComplete", then.SendComplete); };
    events.SendProgress = [this](std::int32_t sent, std::int32_t remaining) {
      note("SendProgress " + std::to_string(sent) + ' ' + std::to_string(remaining),
           then.SendProgress, sent, remaining);
    };
  }

  bool has(const std::string& line) const {
    return std::find(log.begin(), log.end(), line) != log.end();
  }

 private:
  /// A copy of the procedure: it may take its own place.
  template <typename Event, typename... Arguments>
  void note(std::string line, const Event& event, Arguments&&... arguments) {
    log.push_back(std::move(line));
    const Event procedure = event;
    if (procedure) procedure(std::forward<Arguments>(arguments)...);
  }

  void noteError(const SocketErrorArguments& arguments) {
    EXPECT_EQ(arguments.sCode, 0);
    EXPECT_EQ(arguments.HelpFile, u"");
    EXPECT_EQ(arguments.HelpContext, 0);
    EXPECT_TRUE(arguments.CancelDisplay);
    note("Error " + std::to_string(arguments.Number) + ' ' + toUtf8(arguments.Source) + ": " +
             toUtf8(arguments.Description),
         then.Error, arguments);
  }
};

/// A socket whose events are recorded. Its owner lets go of it by resetting `socket`.
class Watched : public Recorder {
 public:
  std::shared_ptr<CEventSocket> socket;

  explicit Watched(modEventSocket& module) : socket(CEventSocket::create(module)) {
    watch(socket->events);
  }
  CEventSocket* operator->() const { return socket.get(); }
};

/// Tests of the component over a bench. Behind each one nothing may be left: no instance, no
/// socket, no window, no page of code, no entry of a table.
class SocketTest : public testing::Test {
 protected:
  SocketTest() : SocketTest(makeBench()) {}
  explicit SocketTest(std::unique_ptr<Bench> made)
      : bench(std::move(made)),
        services(bench->sockets(), bench->windows(), bench->kernel()),
        calls(services.calls),
        module(SocketServices{services.sockets, services.windows, services.kernel, dialogs}) {
    module.trace().setReader([this](const Text& line) { trace.push_back(toUtf8(line)); });
  }

  void TearDown() override {
    EXPECT_EQ(module.InstanceCount(), 0);
    EXPECT_FALSE(module.ServiceStarted());
    EXPECT_EQ(module.lngWindowHandle(), 0);
    EXPECT_EQ(module.thunk().ThunkBlock(), nullptr);
    EXPECT_EQ(module.thunk().SubclassedWindow(), 0u);
    EXPECT_EQ(module.thunk().resolveTable().count(), 0);
    EXPECT_EQ(module.thunk().socketTable().count(), 0);
    EXPECT_FALSE(module.SocketCollectionCount());
    EXPECT_FALSE(module.AcceptCollectionCount());
    EXPECT_EQ(module.instances().entries(), 0u);
    EXPECT_LE(bench->openSockets(), 0);
    EXPECT_LE(bench->openWindows(), 0);
    EXPECT_EQ(calls.count("VirtualAlloc"), calls.count("VirtualFree"));
    EXPECT_NO_THROW(module.rethrowEscaped());
  }

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
  void settle() {
    for (int messages = 0; messages < 1000 && bench->pump(60); ++messages) {
    }
  }
  bool pumpTo(const Watched& socket, SocketState state) {
    return pumpUntil([&] { return socket->State() == state; });
  }

  /// Posts a notification of a socket as the system does.
  void notify(std::int32_t socket, std::int32_t event, std::int32_t errorCode = 0) {
    postToWindow(WM_SOCKET_EVENT, socket, event, errorCode);
  }
  void postToWindow(std::uint32_t message, std::int32_t handle, std::int32_t lowWord,
                    std::int32_t highWord) {
    const auto lParam = static_cast<std::int32_t>(static_cast<std::uint32_t>(highWord) << 16 |
                                                  static_cast<std::uint32_t>(lowWord));
    bench->post({static_cast<std::uint32_t>(module.lngWindowHandle()), message,
                 static_cast<std::uint32_t>(handle), lParam});
  }

  /// Makes `server` take what `client` connects to `listener`.
  void connectPair(Watched& listener, Watched& client, Watched& server) {
    listener->Listen();
    listener.then.ConnectionRequest = [&server](std::int32_t request) { server->Accept(request); };
    client->Connect(listener->LocalIP(), listener->LocalPort());
    ASSERT_TRUE(pumpTo(client, sckConnected)) << client->State();
    ASSERT_TRUE(pumpTo(server, sckConnected)) << server->State();
    settle();
    listener.log.clear();
    client.log.clear();
    server.log.clear();
  }

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
  ConnectedTest() = default;
  explicit ConnectedTest(std::unique_ptr<Bench> made) : SocketTest(std::move(made)) {}

  void SetUp() override { ASSERT_NO_FATAL_FAILURE(connectPair(*listener, *client, *server)); }
  void TearDown() override {
    client.reset();
    server.reset();
    listener.reset();
    SocketTest::TearDown();
  }

  std::unique_ptr<Watched> listener = std::make_unique<Watched>(module);
  std::unique_ptr<Watched> client = std::make_unique<Watched>(module);
  std::unique_ptr<Watched> server = std::make_unique<Watched>(module);
};

}  // namespace zev::socket_bench
