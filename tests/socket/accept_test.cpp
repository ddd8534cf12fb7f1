#include "socket/socket_fixture.h"

// Connections that come in: the listener's side, the holding instance, and whoever takes them.
namespace zev::socket_bench {
namespace {

using AcceptTest = SocketTest;

void connectTo(Watched& client, const Watched& listener) {
  client->Connect(listener->LocalIP(), listener->LocalPort());
}

// ---- the listener

TEST_F(AcceptTest, AConnectionThatNobodyTakesIsClosedAtOnce) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(client.log, Lines({"Connect", "CloseSck"}));
  EXPECT_EQ(listener.log, Lines({"ConnectionRequest"}));
  EXPECT_EQ(listener->State(), sckListening);
  EXPECT_FALSE(module.IsAcceptRegistered(listener.request));
  EXPECT_FALSE(module.IsSocketRegistered(listener.request));
  EXPECT_FALSE(module.AcceptCollectionCount());
  EXPECT_EQ(module.InstanceCount(), 2) << "the holding instance has gone";
}

TEST_F(AcceptTest, AConnectionWithoutAHandlerIsClosedAsWell) {
  const auto listener = CEventSocket::create(module);
  listener->Listen();
  Watched client(module);
  client->Connect(listener->LocalIP(), listener->LocalPort());
  EXPECT_TRUE(pumpTo(client, sckClosing));
}

TEST_F(AcceptTest, TheListenerShowsTheCallerWhileTheHandlerRuns) {
  Watched listener(module);
  listener->RemoteHost(u"of.the.listener");
  listener->RemotePort(1234);
  listener->Listen();
  Text ip, host;
  std::int32_t port = 0;
  listener.then.ConnectionRequest = [&](std::int32_t) {
    ip = listener->RemoteHostIP();
    host = listener->RemoteHost();
    port = listener->RemotePort();
  };
  Watched client(module);
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(port, client->LocalPort());
  EXPECT_EQ(ip, client->LocalIP());
  EXPECT_EQ(host, u"") << "nothing is known of the caller's name";
  EXPECT_EQ(listener->RemoteHost(), u"of.the.listener");
  EXPECT_EQ(listener->RemotePort(), 1234);
  EXPECT_EQ(listener->RemoteHostIP(), u"");
}

TEST_F(AcceptTest, AListenerThatTheHandlerClosesKeepsTheCaller) {
  Watched listener(module);
  listener->RemoteHost(u"of.the.listener");
  listener->RemotePort(1234);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t) { listener->CloseSck(); };
  Watched client(module);
  connectTo(client, listener);
  const std::int32_t port = client->LocalPort();
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(listener->State(), sckClosed);
  EXPECT_EQ(listener->RemotePort(), port) << "only a listener gets the saved values back";
  EXPECT_EQ(listener->RemoteHost(), u"");
  EXPECT_EQ(listener->RemoteHostIP(), u"") << "by CloseSck";
}

TEST_F(AcceptTest, AListenerCanTakeTheConnectionItself) {
  Watched listener(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    listener->CloseSck();
    listener->Accept(request);
  };
  Watched client(module);
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(listener, sckConnected));
  ASSERT_TRUE(pumpTo(client, sckConnected));
  EXPECT_EQ(listener->RemotePort(), client->LocalPort());
  EXPECT_EQ(listener->RemoteHostIP(), client->LocalIP()) << "the values stay: it listens no more";
  client->SendData(u"hello");
  ASSERT_TRUE(pumpUntil([&] { return listener.has("DataArrival 5"); }));
}

TEST_F(AcceptTest, TheHandlerMayLetGoOfTheListener) {
  Watched listener(module);
  listener->Listen();
  const Text address = listener->LocalIP();
  const std::int32_t port = listener->LocalPort();
  listener.then.ConnectionRequest = [&](std::int32_t) { listener.socket.reset(); };
  Watched client(module);
  client->Connect(address, port);
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(module.InstanceCount(), 1);
}

TEST_F(AcceptTest, AnErrorOfTheHandlerStillClosesTheConnection) {
  Watched listener(module);
  listener->RemotePort(1234);
  listener->Listen();
  listener.then.ConnectionRequest = [](std::int32_t) {
    throw RuntimeError(ErrorNumber::TypeMismatch);
  };
  Watched client(module);
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(module.InstanceCount(), 2);
  EXPECT_FALSE(module.AcceptCollectionCount());
  EXPECT_EQ(listener->State(), sckListening);
  EXPECT_EQ(listener->RemotePort(), 1234) << "and shows the caller no more";
}

TEST_F(AcceptTest, AnErrorOfTheHandlerBehindAcceptLeavesTheConnection) {
  Watched listener(module);
  Watched server(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    server->Accept(request);
    throw RuntimeError(ErrorNumber::TypeMismatch);
  };
  Watched client(module);
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(server, sckConnected));
  settle();
  EXPECT_EQ(server->State(), sckConnected);
  EXPECT_EQ(client->State(), sckConnected);
}

TEST_F(AcceptTest, AListenerTakesManyOneAfterTheOther) {
  Watched listener(module);
  listener->Listen();
  std::vector<std::unique_ptr<Watched>> servers, clients;
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    servers.push_back(std::make_unique<Watched>(module));
    (*servers.back())->Accept(request);
  };
  for (int count = 0; count < 20; ++count) {
    clients.push_back(std::make_unique<Watched>(module));
    connectTo(*clients.back(), listener);
    ASSERT_TRUE(pumpUntil([&] { return static_cast<int>(servers.size()) == count + 1; }));
  }
  ASSERT_TRUE(pumpUntil([&] {
    return std::all_of(clients.begin(), clients.end(),
                       [](const auto& each) { return (*each)->State() == sckConnected; });
  }));
  for (std::size_t count = 0; count < clients.size(); ++count) {
    (*clients[count])->SendData(static_cast<std::int32_t>(count));
  }
  ASSERT_TRUE(pumpUntil([&] {
    return std::all_of(servers.begin(), servers.end(),
                       [](const auto& each) { return (*each)->BytesReceived() == 4; });
  }));
  for (std::size_t count = 0; count < servers.size(); ++count) {
    Variant number = std::int32_t{-1};
    EXPECT_EQ((*servers[count])->GetData(number), 4);
    EXPECT_EQ(number, Variant(static_cast<std::int32_t>(count)));
  }
}

// ---- whoever takes it

TEST_F(AcceptTest, TheTakerKnowsBothEnds) {
  Watched listener(module);
  Watched server(module);
  Watched client(module);
  server->RemoteHost(u"before");
  server->RemotePort(1);
  server->Protocol(ProtocolUDP);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  EXPECT_EQ(server->SocketHandle(), listener.request);
  EXPECT_EQ(server->Protocol(), ProtocolTCP);
  EXPECT_EQ(server->LocalPort(), listener->LocalPort());
  EXPECT_EQ(server->RemotePort(), client->LocalPort());
  EXPECT_EQ(server->RemoteHostIP(), client->LocalIP());
  EXPECT_EQ(server->RemoteHost(), u"");
}

TEST_F(AcceptTest, TakingRaisesNoEventOfItsOwn) {
  Watched listener(module);
  Watched server(module);
  Watched client(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    server->Accept(request);
    EXPECT_EQ(server->State(), sckConnected);
    EXPECT_FALSE(module.IsAcceptRegistered(request));
    EXPECT_TRUE(module.IsSocketRegistered(request));
  };
  connectTo(client, listener);
  ASSERT_TRUE(pumpTo(client, sckConnected));
  settle();
  EXPECT_EQ(server.log, Lines());
  EXPECT_EQ(module.InstanceCount(), 3) << "the holding instance has gone";
  EXPECT_EQ(calls.count("closesocket"), 0);
}

TEST_F(AcceptTest, ATakersChosenPortIsForgottenByCloseSck) {
  Watched listener(module);
  Watched server(module);
  Watched client(module);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  EXPECT_NE(server->LocalPort(), 0);
  server->CloseSck();
  EXPECT_EQ(server->LocalPort(), 0);
}

/// Holds a connection in the handler until what the test asks for has arrived.
class HeldTest : public AcceptTest {
 protected:
  void hold(std::function<void(std::int32_t request)> meanwhile) {
    listener->Listen();
    listener.then.ConnectionRequest = std::move(meanwhile);
    connectTo(client, listener);
  }
  void TearDown() override {
    client.socket.reset();
    server.socket.reset();
    listener.socket.reset();
    AcceptTest::TearDown();
  }

  Watched listener{module};
  Watched client{module};
  Watched server{module};
};

TEST_F(HeldTest, WhatArrivedBeforeIsHandedOver) {
  hold([&](std::int32_t request) {
    EXPECT_TRUE(module.IsAcceptRegistered(request));
    EXPECT_EQ(module.AcceptCollectionCount(), 1u);
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"hello");
    ASSERT_TRUE(pumpUntil([&] { return holding->BytesReceived() == 5; }));
    EXPECT_EQ(holding->State(), sckConnected);
    server->Accept(request);
    EXPECT_EQ(holding->BytesReceived(), 0);
  });
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(server.log, Lines({"DataArrival 5"}));
  EXPECT_EQ(server->BytesReceived(), 5);
  client->SendData(u" there");
  ASSERT_TRUE(pumpUntil([&] { return server.has("DataArrival 11"); }));
  Variant text = Text();
  EXPECT_EQ(server->GetData(text), 11);
  EXPECT_EQ(text, Variant(u"hello there"));
}

TEST_F(HeldTest, ASingleByteThatArrivedBeforeIsHandedOverToo) {
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"h");
    ASSERT_TRUE(pumpUntil([&] { return holding->BytesReceived() == 1; }));
    server->Accept(request);
  });
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(server.log, Lines({"DataArrival 1"}));
  EXPECT_EQ(server->BytesReceived(), 1);
}

TEST_F(HeldTest, TheClosingOfThePeerIsKeptBehindItsData) {
  SocketState atArrival = sckClosed;
  server.then.DataArrival = [&](std::int32_t) {
    atArrival = server->State();
    Variant text = Text();
    server->GetData(text);
    EXPECT_EQ(text, Variant(u"bye"));
  };
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"bye");
    client->CloseSck();
    ASSERT_TRUE(pumpUntil([&] { return holding->State() == sckClosing; }));
    EXPECT_EQ(server.log, Lines());
    server->Accept(request);
    EXPECT_EQ(server->State(), sckClosing);
  });
  ASSERT_TRUE(pumpUntil([&] { return !server.log.empty(); }));
  settle();
  EXPECT_EQ(server.log, Lines({"DataArrival 3", "CloseSck"}));
  EXPECT_EQ(atArrival, sckConnected);
}

TEST_F(HeldTest, AClosingWithoutDataIsKeptAsWell) {
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->CloseSck();
    ASSERT_TRUE(pumpUntil([&] { return holding->State() == sckClosing; }));
    server->Accept(request);
  });
  ASSERT_TRUE(pumpUntil([&] { return !server.log.empty(); }));
  settle();
  EXPECT_EQ(server.log, Lines({"CloseSck"}));
}

TEST_F(HeldTest, NoCloseSckFollowsIfTheDatasHandlerHasClosed) {
  server.then.DataArrival = [&](std::int32_t) { server->CloseSck(); };
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"bye");
    client->CloseSck();
    ASSERT_TRUE(pumpUntil([&] { return holding->State() == sckClosing; }));
    server->Accept(request);
  });
  ASSERT_TRUE(pumpUntil([&] { return !server.log.empty(); }));
  settle();
  EXPECT_EQ(server.log, Lines({"DataArrival 3"}));
  EXPECT_EQ(server->State(), sckClosed);
}

TEST_F(HeldTest, TheDatasHandlerMayLetGoOfTheTaker) {
  server.then.DataArrival = [&](std::int32_t) { server.socket.reset(); };
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"bye");
    ASSERT_TRUE(pumpUntil([&] { return holding->BytesReceived() == 3; }));
    server->Accept(request);
  });
  ASSERT_TRUE(pumpUntil([&] { return !server.socket; }));
  ASSERT_TRUE(pumpUntil([&] { return client->State() != sckConnected; }));
  EXPECT_EQ(module.InstanceCount(), 2);
}

TEST_F(HeldTest, AHoldingInstanceServesDataAfterThePeerHasClosed) {
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    ASSERT_TRUE(pumpTo(client, sckConnected));
    client->SendData(u"bye");
    client->CloseSck();
    ASSERT_TRUE(pumpUntil([&] { return holding->State() == sckClosing; }));
    Variant peeked = Text();
    EXPECT_EQ(raised([&] { holding->PeekData(peeked); }), wrongProtocolOrState("PeekData"));
    Variant text = Text();
    EXPECT_EQ(holding->GetData(text), 3);
    EXPECT_EQ(text, Variant(u"bye"));
    EXPECT_EQ(raised([&] { holding->SendData(u"x"); }), wrongProtocolOrState("SendData"));
  });
  ASSERT_TRUE(pumpUntil([&] { return !listener.log.empty(); }));
  settle();
}

TEST_F(HeldTest, AHoldingInstanceTellsNobodyOfAnError) {
  hold([&](std::int32_t request) {
    const auto holding = module.GetAcceptObject(request);
    notify(request, 1, 10054);
    ASSERT_TRUE(pumpUntil([&] { return holding->State() == sckError; }));
    server->Accept(request);
    EXPECT_EQ(server->State(), sckConnected) << "only a closing is handed over";
  });
  ASSERT_TRUE(pumpUntil([&] { return server->SocketHandle() != -1; }));
  settle();
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(HeldTest, NestedPumpingMayEndTheConnectionsAtHand) {
  hold([&](std::int32_t request) {
    settle();
    server->Accept(request);
    server->CloseSck();
  });
  ASSERT_TRUE(pumpTo(client, sckClosing));
  EXPECT_EQ(server->State(), sckClosed);
}

// ---- Accept in wrong places

TEST_F(HeldTest, AcceptNeedsAClosedInstance) {
  hold([&](std::int32_t request) {
    EXPECT_EQ(raised([&] { listener->Accept(request); }), wrongState("Accept"));
    EXPECT_EQ(raised([&] { client->Accept(request); }), wrongState("Accept"));
    EXPECT_TRUE(module.IsAcceptRegistered(request));
    server->Accept(request);
    EXPECT_EQ(raised([&] { server->Accept(request); }), wrongState("Accept"));
  });
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_TRUE(pumpTo(client, sckConnected));
}

TEST_F(HeldTest, ASecondAcceptRaises40006AndKeepsTheHandle) {
  auto late = std::make_unique<Watched>(module);
  hold([&](std::int32_t request) { server->Accept(request); });
  ASSERT_TRUE(pumpTo(server, sckConnected));
  std::int32_t request = listener.request;
  EXPECT_EQ(raised([&] { (*late)->Accept(request); }), wrongProtocolOrState("Accept"));
  EXPECT_EQ((*late)->SocketHandle(), request);
  EXPECT_EQ((*late)->State(), sckClosed);
  EXPECT_EQ(request, listener.request);
  (*late)->CloseSck();
  EXPECT_EQ(server->State(), sckConnected) << "though its socket has been closed under it";
  late.reset();
  server.socket.reset();
  EXPECT_EQ(module.InstanceCount(), 3) << "whose end breaks off";
  module.FinalizeProcesses();
}

TEST_F(AcceptTest, AHandleThatNobodyHoldsMakesAHoldingInstance) {
  Watched keeper(module);
  keeper->Bind();
  std::int32_t handle = bench->sockets().socket(winsock::internet, winsock::stream, winsock::tcp);
  ASSERT_NE(handle, -1);
  {
    const Watched socket(module);
    socket->Accept(handle);
    EXPECT_EQ(socket->State(), sckConnected);
    EXPECT_EQ(socket->SocketHandle(), handle);
    EXPECT_TRUE(module.IsSocketRegistered(handle));
    EXPECT_EQ(calls.count("WSAAsyncSelect"), 1) << "of the keeper's alone";
    Variant data;
    EXPECT_EQ(raised([&] { socket->GetData(data); }), "nothing");
    EXPECT_EQ(socket.log, Lines());
  }
  EXPECT_EQ(calls.count("closesocket"), 0) << "its end leaves the socket open";
  std::int32_t value = 0;
  EXPECT_EQ(
      bench->sockets().getsockopt(handle, winsock::socketLevel, winsock::sendBufferSize, value), 0);
  EXPECT_TRUE(module.IsSocketRegistered(handle)) << "and known";
  EXPECT_EQ(bench->sockets().closesocket(handle), 0);
  module.UnregisterSocket(handle);
}

TEST_F(AcceptTest, ANumberThatIsNoSocketRaisesWhatTheSystemSays) {
  Watched socket(module);
  std::int32_t handle = 0x7FFFFF0;
  EXPECT_EQ(raised([&] { socket->Accept(handle); }),
            "10038 CEventSocket.ProcessOptions: Socket operation on nonsocket.");
  EXPECT_EQ(socket->SocketHandle(), handle);
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(raised([&] { socket->CloseSck(); }),
            "10038 CEventSocket.DestroySocket: Socket operation on nonsocket.");
  EXPECT_EQ(socket->State(), sckError);
  socket.socket.reset();
  EXPECT_EQ(module.InstanceCount(), 1) << "its end breaks off where the socket cannot be closed";
  module.FinalizeProcesses();
}

}  // namespace
}  // namespace zev::socket_bench
