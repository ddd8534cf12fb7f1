#include "socket/socket_fixture.h"

#include <algorithm>

#include "runtime/error.h"

namespace zev::socket_bench {

std::string raised(const std::function<void()>& action) {
  try {
    action();
  } catch (const RuntimeError& error) {
    return std::to_string(error.number()) + ' ' + toUtf8(error.source()) + ": " +
           toUtf8(error.description());
  }
  return "nothing";
}

Recorder::Recorder() = default;
Recorder::~Recorder() = default;

/// A copy of the procedure: it may take its own place.
template <typename Event, typename... Arguments>
void Recorder::note(std::string line, const Event& event, Arguments&&... arguments) {
  log.push_back(std::move(line));
  const Event procedure = event;
  if (procedure) procedure(std::forward<Arguments>(arguments)...);
}

void Recorder::watch(SocketEvents& events) {
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

bool Recorder::has(const std::string& line) const {
  return std::find(log.begin(), log.end(), line) != log.end();
}

void Recorder::noteError(const SocketErrorArguments& arguments) {
  EXPECT_EQ(arguments.sCode, 0);
  EXPECT_EQ(arguments.HelpFile, u"");
  EXPECT_EQ(arguments.HelpContext, 0);
  EXPECT_TRUE(arguments.CancelDisplay);
  note("Error " + std::to_string(arguments.Number) + ' ' + toUtf8(arguments.Source) + ": " +
           toUtf8(arguments.Description),
       then.Error, arguments);
}

Watched::Watched(modEventSocket& module) : socket(CEventSocket::create(module)) {
  watch(socket->events);
}
Watched::~Watched() = default;

SocketTest::SocketTest(std::unique_ptr<Bench> made)
    : bench(std::move(made)),
      services(bench->sockets(), bench->windows(), bench->kernel()),
      calls(services.calls),
      module(SocketServices{services.sockets, services.windows, services.kernel, dialogs}) {
  module.trace().setReader([this](const Text& line) { trace.push_back(toUtf8(line)); });
}
SocketTest::~SocketTest() = default;

void SocketTest::TearDown() {
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

void SocketTest::settle() {
  for (int messages = 0; messages < 1000 && bench->pump(60); ++messages) {
  }
}

bool SocketTest::pumpTo(const Watched& socket, SocketState state) {
  return pumpUntil([&] { return socket->State() == state; });
}

void SocketTest::postToWindow(std::uint32_t message, std::int32_t handle, std::int32_t lowWord,
                              std::int32_t highWord) {
  const auto lParam = static_cast<std::int32_t>(static_cast<std::uint32_t>(highWord) << 16 |
                                                static_cast<std::uint32_t>(lowWord));
  bench->post({static_cast<std::uint32_t>(module.lngWindowHandle()), message,
               static_cast<std::uint32_t>(handle), lParam});
}

void SocketTest::connectPair(Watched& listener, Watched& client, Watched& server) {
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

ConnectedTest::ConnectedTest(std::unique_ptr<Bench> made)
    : SocketTest(std::move(made)),
      listener(std::make_unique<Watched>(module)),
      client(std::make_unique<Watched>(module)),
      server(std::make_unique<Watched>(module)) {}
ConnectedTest::~ConnectedTest() = default;

void ConnectedTest::SetUp() { ASSERT_NO_FATAL_FAILURE(connectPair(*listener, *client, *server)); }

void ConnectedTest::TearDown() {
  client.reset();
  server.reset();
  listener.reset();
  SocketTest::TearDown();
}

}  // namespace zev::socket_bench
