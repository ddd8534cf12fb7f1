#include "socket/scripted_network.h"

// What other machines do: they are slow, refuse, fall silent, stop reading, break off.
namespace zev::socket_bench {
namespace {

std::string asError(std::int32_t number, const std::string& source) {
  return "Error " + std::to_string(number) + " CEventSocket." + source + ": " +
         toUtf8(WinsockErrorText(number));
}

// ---- connecting

class FarNetworkTest : public ScriptedTest {};

TEST_F(FarNetworkTest, ConnectingMayEndInEveryError) {
  for (const std::int32_t error : {10061, 10065, 10051, 10050}) {
    network.server("10.0.0.5", 80).fail(error);
    Watched socket(module);
    socket->Connect(u"10.0.0.5", 80);
    EXPECT_EQ(socket->State(), sckConnecting);
    ASSERT_TRUE(pumpTo(socket, sckError));
    EXPECT_EQ(socket.log, Lines({asError(error, "PostSocket")}));
  }
}

TEST_F(FarNetworkTest, SilenceIsATimeOut) {
  network.server("10.0.0.5", 80).neverAnswer();
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  network.advance(20000);
  EXPECT_FALSE(machine.queue.dispatch() && socket->State() == sckError);
  EXPECT_EQ(socket->State(), sckConnecting);
  network.advance(2000);
  settle();
  EXPECT_EQ(socket.log, Lines({asError(10060, "PostSocket")}));
  EXPECT_EQ(socket->State(), sckError);
}

TEST_F(FarNetworkTest, ClosingWhileConnectingEndsIt) {
  network.server("10.0.0.5", 80).neverAnswer();
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  socket->CloseSck();
  network.advance(60000);
  settle();
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(FarNetworkTest, ANotificationOfAnEarlierSocketReachesNobody) {
  network.server("10.0.0.5", 80);
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  network.advance(100);
  ASSERT_GT(machine.queue.waiting(), 0u) << "FD_CONNECT waits";
  socket->CloseSck();
  settle();
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(FarNetworkTest, TheRemoteEndIsWhatTheSystemTells) {
  network.addHost("far.example", {"10.0.0.5"});
  network.server("10.0.0.5", 45678);
  Watched socket(module);
  socket->Connect(u"far.example", 45678);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket->RemoteHostIP(), u"10.0.0.5");
  EXPECT_EQ(socket->RemotePort(), 45678) << "above the signed 16 bits";
  EXPECT_EQ(socket->RemoteHost(), u"far.example");
  socket->CloseSck();
  EXPECT_EQ(socket->RemoteHost(), u"far.example");
}

TEST_F(FarNetworkTest, APeerMayHaveAnotherPortAndAddressThanWereAskedFor) {
  network.server("10.0.0.5", 80);
  services.sockets.setPeer(simulated::toSocketAddress({simulated::addressOf("10.0.0.6"), 45678}));
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  EXPECT_EQ(socket->RemotePort(), 80);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket->RemotePort(), 45678);
  EXPECT_EQ(socket->RemoteHostIP(), u"10.0.0.6");
  EXPECT_EQ(socket->RemoteHost(), u"10.0.0.5");
}

TEST_F(FarNetworkTest, LookUpsFailInTheirOwnWays) {
  for (const std::int32_t error : {11001, 11002, 11003, 11004}) {
    network.failName("lost.example", error);
    Watched socket(module);
    socket->Connect(u"lost.example", 80);
    ASSERT_TRUE(pumpTo(socket, sckError));
    EXPECT_EQ(socket.log, Lines({asError(error, "ConnectToIP")}));
  }
}

TEST_F(FarNetworkTest, ALateLookUpDoesNotEndALaterOne) {
  network.addHost("first.example", {"10.0.0.1"});
  network.addHost("second.example", {"10.0.0.2"});
  network.server("10.0.0.2", 80);
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"first.example", 80);
  network.advance(10);
  socket->CloseSck();
  socket->Connect(u"second.example", 80);
  network.advance(10);
  settle();
  EXPECT_EQ(calls.linesOf({"connect"}),
            Lines({"connect " + std::to_string(socket->SocketHandle()) + " 10.0.0.2:80"}));
  EXPECT_EQ(socket->State(), sckConnected);
  EXPECT_EQ(machine.memory.blocks(), 2u);
}

TEST_F(FarNetworkTest, AFailureOfALateLookUpDoesNotEndALaterOne) {
  network.failName("first.example", 11001);
  network.addHost("second.example", {"10.0.0.2"});
  network.server("10.0.0.2", 80);
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"first.example", 80);
  network.advance(10);
  socket->CloseSck();
  socket->Connect(u"second.example", 80);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket.log, Lines({"Connect"}));
}

TEST_F(FarNetworkTest, TheKeyOfAnIgnoredLookUpStays) {
  network.addHost("first.example", {"10.0.0.1"});
  Watched keeper(module);
  keeper->Bind();
  Watched socket(module);
  socket->Connect(u"first.example", 80);
  socket->CloseSck();
  settle();
  calls.clearLines();
  socket->Bind();
  socket->CloseSck();
  EXPECT_EQ(calls.linesOf({"WSACancelAsyncRequest"}), Lines({"WSACancelAsyncRequest 0"}));
}

// ---- a connection

using ConnectionTest = FarPeerTest;

TEST_F(ConnectionTest, AResetIsReported) {
  peer->reset();
  settle();
  EXPECT_EQ(watched->log, Lines({asError(10054, "PostSocket")}));
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_NE(socket->SocketHandle(), -1);
}

TEST_F(ConnectionTest, DataComesBeforeTheClosing) {
  peer->send("last words");
  peer->finish();
  settle();
  EXPECT_EQ(watched->log, Lines({"DataArrival 10", "CloseSck"}));
  EXPECT_EQ(socket->State(), sckClosing);
  EXPECT_EQ(socket->BytesReceived(), 10);
}

TEST_F(ConnectionTest, APeerThatOnlyFinishesClosesTheSocketsSide) {
  peer->finish();
  settle();
  EXPECT_EQ(watched->log, Lines({"CloseSck"}));
  EXPECT_EQ(raised([&] { socket->SendData(u"x"); }), wrongProtocolOrState("SendData"));
  EXPECT_FALSE(peer->peerClosed());
  socket->CloseSck();
  settle();
  EXPECT_TRUE(peer->peerClosed());
}

TEST_F(ConnectionTest, APeerThatIsSilentBreaksTheConnection) {
  peer->vanish();
  socket->SendData(u"anybody?");
  network.advance(120000);
  settle();
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_EQ(watched->log.back(), asError(10053, "PostSocket"));
}

TEST_F(ConnectionTest, AReadOfNothingRaisesNoArrival) {
  peer->finish();
  network.advance(100);
  EXPECT_EQ(socket->WndProc(0, WM_SOCKET_EVENT, 0, 1), 0);
  EXPECT_EQ(calls.linesOf({"recv"}).size(), 1u);
  EXPECT_EQ(watched->log, Lines());
  EXPECT_EQ(socket->State(), sckConnected);
}

TEST_F(ConnectionTest, ReadsAreOneForEachNotification) {
  peer->send(std::string(20000, 'x'));
  settle();
  std::int32_t last = 0;
  for (const std::string& line : watched->log) {
    const std::int32_t total = std::stoi(line.substr(line.find(' ')));
    EXPECT_LE(total - last, 8192);
    EXPECT_GT(total, last);
    last = total;
  }
  EXPECT_EQ(last, 20000);
}

// ---- a peer that stops reading

class FullWindowTest : public FarPeerTest {
 protected:
  void SetUp() override {
    ASSERT_NO_FATAL_FAILURE(FarPeerTest::SetUp());
    peer->stopReading();
  }
  /// "SendProgress sent remaining" as its two numbers.
  static std::pair<std::int32_t, std::int32_t> progress(const std::string& line) {
    std::pair<std::int32_t, std::int32_t> numbers{-1, -1};
    EXPECT_EQ(std::sscanf(line.c_str(), "SendProgress %d %d", &numbers.first, &numbers.second), 2)
        << line;
    return numbers;
  }
};

TEST_F(FullWindowTest, ProgressTellsWhatWentAndWhatWaits) {
  socket->SendData(Bytes(100000, 'x'));
  ASSERT_EQ(watched->log.size(), 1u);
  const auto [sent, remaining] = progress(watched->log[0]);
  EXPECT_GT(sent, 0);
  EXPECT_EQ(sent + remaining, 100000);
  EXPECT_EQ(socket->State(), sckConnected);
}

TEST_F(FullWindowTest, WhatIsSentMeanwhileOnlyWaits) {
  socket->SendData(Bytes(100000, 'x'));
  watched->log.clear();
  calls.clearLines();
  socket->SendData(u"behind");
  EXPECT_EQ(calls.linesOf({"send"}), Lines());
  EXPECT_EQ(watched->log, Lines());
}

TEST_F(FullWindowTest, EachFlushCountsFrom0) {
  std::int32_t total = 0, last = 100006;
  watched->then.SendProgress = [&](std::int32_t sent, std::int32_t remaining) {
    total += sent;
    EXPECT_LT(remaining, last);
    last = remaining;
  };
  socket->SendData(Bytes(100000, 'x'));
  socket->SendData(u"behind");
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(total, 100006);
  EXPECT_EQ(last, 0);
  EXPECT_EQ(watched->log.back(), "SendComplete");
  EXPECT_EQ(std::count(watched->log.begin(), watched->log.end(), "SendComplete"), 1);
  EXPECT_EQ(peer->received(), std::string(100000, 'x') + "behind");
}

TEST_F(FullWindowTest, NothingIsToldOfASocketThatTakesNothingOnANotification) {
  socket->SendData(Bytes(100000, 'x'));
  watched->log.clear();
  calls.clearLines();
  notify(socket->SocketHandle(), 2);
  machine.queue.dispatch();
  settle();
  EXPECT_GE(calls.linesOf({"send"}).size(), 1u) << "it tried";
  for (const std::string& line : watched->log) EXPECT_GT(progress(line).first, 0);
}

TEST_F(FullWindowTest, AHandlerThatSendsWhileOthersWaitOnlyAppends) {
  watched->then.SendProgress = [&](std::int32_t, std::int32_t remaining) {
    if (remaining == 0) return;
    watched->then.SendProgress = {};
    calls.clearLines();
    socket->SendData(u"behind");
    EXPECT_EQ(calls.linesOf({"send"}), Lines());
  };
  socket->SendData(Bytes(100000, 'x'));
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(peer->received(), std::string(100000, 'x') + "behind");
}

TEST_F(FullWindowTest, AHandlerThatClosesEndsTheSending) {
  watched->then.SendProgress = [&](std::int32_t, std::int32_t) { socket->CloseSck(); };
  socket->SendData(Bytes(100000, 'x'));
  EXPECT_EQ(watched->log.size(), 1u);
  EXPECT_EQ(socket->State(), sckClosed);
  const std::size_t sends = calls.linesOf({"send"}).size();
  settle();
  EXPECT_EQ(calls.linesOf({"send"}).size(), sends);
}

TEST_F(FullWindowTest, AHandlerThatLetsGoEndsTheSending) {
  socket->SendData(Bytes(100000, 'x'));
  bool gone = false;
  watched->then.SendProgress = [&](std::int32_t, std::int32_t) {
    watched->socket.reset();
    socket.reset();
    gone = true;
  };
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return gone; }));
  settle();
  EXPECT_EQ(module.InstanceCount(), 0);
}

TEST_F(FullWindowTest, ANestedFlushThatFillsTheSocketLeavesTheRestToTheOuterOne) {
  peer->goOnReading();
  watched->then.SendProgress = [&](std::int32_t, std::int32_t remaining) {
    if (remaining != 0) return;
    watched->then.SendProgress = {};
    peer->stopReading();
    socket->SendData(Bytes(100000, 'y'));
  };
  socket->SendData(u"first");
  ASSERT_EQ(watched->log.size(), 3u);
  EXPECT_EQ(watched->log[0], "SendProgress 5 0");
  EXPECT_GT(progress(watched->log[1]).second, 0);
  EXPECT_EQ(watched->log[2], "SendComplete") << "of the first";
  watched->log.clear();
  peer->goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return watched->has("SendComplete"); }));
  settle();
  EXPECT_EQ(peer->received(), "first" + std::string(100000, 'y'));
}

TEST_F(FullWindowTest, AResetWhileDataWaitsIsReportedOnce) {
  socket->SendData(Bytes(100000, 'x'));
  watched->log.clear();
  peer->reset();
  settle();
  EXPECT_EQ(watched->log, Lines({asError(10054, "PostSocket")}));
  notify(socket->SocketHandle(), 2);
  settle();
  EXPECT_EQ(watched->log.size(), 1u);
}

TEST_F(FullWindowTest, ClosingThrowsAwayWhatWaits) {
  socket->SendData(Bytes(100000, 'x'));
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
  peer->goOnReading();
  settle();
  EXPECT_LT(peer->received().size(), 100000u);
  network.server("10.0.0.5", 81);
  socket->Connect(u"10.0.0.5", 81);
  ASSERT_TRUE(pumpTo(*watched, sckConnected));
  watched->log.clear();
  socket->SendData(u"anew");
  EXPECT_EQ(watched->log, Lines({"SendProgress 4 0", "SendComplete"}));
  settle();
  EXPECT_EQ(network.server("10.0.0.5", 81).connection(0).received(), "anew");
}

// ---- held connections

TEST_F(FarNetworkTest, AResetOfAHeldConnectionIsLost) {
  Watched listener(module), server(module);
  listener->Listen();
  simulated::RemoteStream& caller = network.connectFrom(
      "10.0.0.9", "192.168.1.20", static_cast<std::uint16_t>(listener->LocalPort()));
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    network.advance(100);
    caller.send("abc");
    settle();
    caller.reset();
    settle();
    EXPECT_EQ(holding->State(), sckError);
    server->Accept(request);
  };
  ASSERT_TRUE(pumpUntil([&] { return server->State() == sckConnected; }));
  settle();
  EXPECT_EQ(server.log, Lines({"DataArrival 3"}));
  EXPECT_EQ(server->State(), sckConnected);
}

TEST_F(FarNetworkTest, CallersThatWaitAreOfferedOneAfterTheOther) {
  Watched listener(module);
  std::vector<std::unique_ptr<Watched>> servers;
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    servers.push_back(std::make_unique<Watched>(module));
    (*servers.back())->Accept(request);
  };
  for (const char* const from : {"10.0.0.1", "10.0.0.2", "10.0.0.3", "10.0.0.4", "10.0.0.5"}) {
    network.connectFrom(from, "192.168.1.20", static_cast<std::uint16_t>(listener->LocalPort()));
  }
  network.advance(100);
  settle();
  ASSERT_EQ(servers.size(), 5u);
  EXPECT_EQ((*servers[0])->RemoteHostIP(), u"10.0.0.1");
  EXPECT_EQ((*servers[4])->RemoteHostIP(), u"10.0.0.5");
}

// ---- the code page

TEST_F(ConnectionTest, TextsGoThroughTheSystemsCodePage) {
  machine.memory.setCodePage(1254);
  socket->SendData(u"\u0130\u011F");
  settle();
  EXPECT_EQ(peer->received(), "\xDD\xF0");
  peer->send("\xDD\xF0");
  settle();
  Variant text = Text();
  EXPECT_EQ(socket->GetData(text), 2);
  EXPECT_EQ(text, Variant(u"\u0130\u011F"));
}

}  // namespace
}  // namespace zev::socket_bench
