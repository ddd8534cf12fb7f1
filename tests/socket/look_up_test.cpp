#include "socket/socket_fixture.h"

// Names of hosts: looking up, failing, being overtaken.
namespace zev::socket_bench {
namespace {

using LookUpTest = SocketTest;

const char* const nobody = "Error 11001 CEventSocket.ConnectToIP: Host not found.";

/// The blocks that look-ups were given and that were freed; the former have to stay.
void expectBlocksStay(const Calls& calls) {
  EXPECT_EQ(calls.count("GlobalAlloc"), calls.count("GlobalLock"));
  EXPECT_EQ(calls.count("GlobalLock"), calls.count("GlobalUnlock"));
  for (const std::string& line : calls.linesOf({"GlobalFree"})) EXPECT_EQ(line, "GlobalFree 0");
}

TEST_F(LookUpTest, ANameThatDoesNotExistIsReportedByConnectToIP) {
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  EXPECT_EQ(socket->State(), sckResolvingHost);
  EXPECT_EQ(socket.log, Lines());
  trace.clear();
  ASSERT_TRUE(pumpTo(socket, sckError));
  EXPECT_EQ(trace, Lines({"STATE: sckError"})) << "no host is resolved on the way";
  EXPECT_EQ(socket.log, Lines({nobody}));
  EXPECT_EQ(calls.count("bind"), 0);
  EXPECT_EQ(calls.count("connect"), 0);
  EXPECT_EQ(calls.count("GlobalFree"), 1);
  expectBlocksStay(calls);
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(LookUpTest, ANameLeadsToItsAddress) {
  Watched socket(module);
  socket->Connect(u"localhost", 9);
  EXPECT_EQ(socket->State(), sckResolvingHost);
  ASSERT_TRUE(pumpUntil([&] { return calls.count("connect") == 1; }));
  const std::string handle = std::to_string(socket->SocketHandle());
  EXPECT_EQ(calls.linesOf({"connect"}), Lines({"connect " + handle + " 127.0.0.1:9"}));
  EXPECT_EQ(calls.count("GlobalFree"), 1);
  EXPECT_EQ(socket->RemoteHostIP(), u"") << "set on connecting alone";
  EXPECT_EQ(socket->RemoteHost(), u"localhost");
  expectBlocksStay(calls);
}

TEST_F(LookUpTest, ConnectsToTheMachineByItsName) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client->Connect(client->LocalHostName(), listener->LocalPort());
  ASSERT_TRUE(pumpTo(client, sckConnected));
  EXPECT_EQ(client->RemoteHostIP(),
            listener->RemoteHostIP().empty() ? client->RemoteHostIP() : listener->RemoteHostIP());
  EXPECT_EQ(client->RemoteHost(), client->LocalHostName()) << "FD_CONNECT leaves the name";
  EXPECT_EQ(client.log, Lines({"Connect"}));
}

TEST_F(LookUpTest, TheConnectionBeginsInTheDispatchThatEndsTheLookUp) {
  Watched socket(module);
  socket->Connect(u"localhost", 9);
  trace.clear();
  ASSERT_TRUE(pumpUntil([&] { return calls.count("connect") == 1; }));
  const auto place = [&](const std::string& line) {
    return std::find(trace.begin(), trace.end(), line) - trace.begin();
  };
  EXPECT_LT(place("STATE: sckHostResolved"), place("STATE: sckConnecting"));
  EXPECT_LT(place("STATE: sckConnecting"), static_cast<std::ptrdiff_t>(trace.size()));
}

TEST_F(LookUpTest, TheBroadcastAddressCountsAsAName) {
  Watched socket(module);
  socket->Connect(u"255.255.255.255", 80);
  EXPECT_EQ(socket->State(), sckResolvingHost);
  EXPECT_EQ(calls.count("WSAAsyncGetHostByName"), 1);
  socket->CloseSck();
}

TEST_F(LookUpTest, TheAddress1000CountsAsALookUpThatRuns) {
  Watched socket(module);
  socket->Connect(u"1.0.0.0", 80);
  settle();
  EXPECT_EQ(calls.count("WSAAsyncGetHostByName"), 0);
  EXPECT_EQ(calls.count("connect"), 0);
  EXPECT_EQ(socket->State(), sckClosed) << "nothing runs, and nothing says so";
  EXPECT_NE(socket->SocketHandle(), -1);
}

TEST_F(LookUpTest, CloseSckBringsItToClosedAndTheCompletionIsIgnored) {
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"localhost", 9);
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
  settle();
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(calls.count("connect"), 0);
  expectBlocksStay(calls);
}

TEST_F(LookUpTest, CancellingHandsTheDestinationsOnAndKeepsThem) {
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  for (int round = 1; round <= 3; ++round) {
    calls.clearLines();
    socket->Connect(u"nobody.invalid", 80);
    socket->CloseSck();
    EXPECT_EQ(calls.linesOf({"WSACancelAsyncRequest"}),
              Lines(static_cast<std::size_t>(round), "WSACancelAsyncRequest 0"))
        << "one for every look-up whose completion was ignored";
  }
  settle();
  calls.clearLines();
  socket.socket.reset();
  EXPECT_EQ(calls.linesOf({"WSACancelAsyncRequest"}).size(), 3u);
  EXPECT_EQ(calls.linesOf({"GlobalFree"}), Lines()) << "no block is left to be freed";
}

TEST_F(LookUpTest, ALookUpThatEndedIsNotCancelled) {
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  ASSERT_TRUE(pumpTo(socket, sckError));
  socket->CloseSck();
  EXPECT_EQ(calls.count("WSACancelAsyncRequest"), 0);
}

TEST_F(LookUpTest, AnEarlierLookUpChangesNothingWhileALaterOneRuns) {
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  socket->CloseSck();
  socket->Connect(u"localhost", 9);
  ASSERT_TRUE(pumpUntil([&] { return calls.count("connect") == 1; }));
  settle();
  EXPECT_FALSE(socket.has(nobody));
  expectBlocksStay(calls);
}

TEST_F(LookUpTest, AnInstanceThatHasEndedIsNotReached) {
  Watched keeper(module);
  keeper->Bind();
  {
    Watched socket(module);
    socket->Connect(u"nobody.invalid", 80);
  }
  settle();
  EXPECT_EQ(module.InstanceCount(), 1);
  expectBlocksStay(calls);
}

TEST_F(LookUpTest, TheWindowMayGoBeforeTheLookUpEnds) {
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  socket->CloseSck();
  EXPECT_EQ(module.lngWindowHandle(), 0);
  settle();
  socket->Connect(u"nobody.invalid", 80);
  ASSERT_TRUE(pumpTo(socket, sckError));
  EXPECT_EQ(socket.log, Lines({nobody}));
}

TEST_F(LookUpTest, TheEntryOfALookUpStaysUntilTheWindowGoes) {
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  EXPECT_EQ(module.thunk().resolveTable().used(), 1);
  ASSERT_TRUE(pumpTo(socket, sckError));
  EXPECT_EQ(module.thunk().resolveTable().used(), 1);
  socket->CloseSck();
  EXPECT_EQ(module.thunk().resolveTable().count(), 0);
}

TEST_F(LookUpTest, ManyLookUpsRunAtOnce) {
  std::vector<std::unique_ptr<Watched>> sockets;
  for (int count = 0; count < 12; ++count) {
    sockets.push_back(std::make_unique<Watched>(module));
    (*sockets.back())->Connect(count % 2 == 0 ? u"nobody.invalid" : u"localhost", 9);
  }
  ASSERT_TRUE(pumpUntil([&] {
    return std::none_of(sockets.begin(), sockets.end(),
                        [](const auto& each) { return (*each)->State() == sckResolvingHost; });
  }));
  for (std::size_t count = 0; count < sockets.size(); ++count) {
    EXPECT_EQ(sockets[count]->has(nobody), count % 2 == 0);
  }
  EXPECT_EQ(calls.count("connect"), 6);
}

TEST_F(LookUpTest, TheErrorsHandlerMayConnectAnew) {
  Watched listener(module);
  listener->Listen();
  Watched socket(module);
  socket.then.Error = [&](const SocketErrorArguments&) {
    socket->CloseSck();
    socket->Connect(socket->LocalHostName(), listener->LocalPort());
  };
  socket->Connect(u"nobody.invalid", 80);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket.log, Lines({nobody, "Connect"}));
}

TEST_F(LookUpTest, TheErrorsHandlerMayLetGo) {
  Watched socket(module);
  socket.then.Error = [&](const SocketErrorArguments&) { socket.socket.reset(); };
  socket->Connect(u"nobody.invalid", 80);
  ASSERT_TRUE(pumpUntil([&] { return !socket.socket; }));
  EXPECT_EQ(module.InstanceCount(), 0);
}

}  // namespace
}  // namespace zev::socket_bench
