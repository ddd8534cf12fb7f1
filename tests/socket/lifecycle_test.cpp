#include <cstring>

#include "socket/socket_fixture.h"

// The life of a socket over any network: properties, binding, listening, connecting, closing.
namespace zev::socket_bench {
namespace {

using LifecycleTest = SocketTest;

Text localAddress(Bench& bench) {
  char name[256] = {};
  EXPECT_EQ(bench.sockets().gethostname(name, sizeof name), 0);
  const HostRecord* const record = bench.sockets().gethostbyname(fromUtf8(name));
  if (record == nullptr) return u"unknown";
  std::int32_t address = 0;
  std::memcpy(&address, record->addresses[0], sizeof address);
  return fromUtf8(bench.sockets().inet_ntoa(address));
}

// ---- a new instance

TEST_F(LifecycleTest, BeginsClosedAndEmpty) {
  const Watched socket(module);
  EXPECT_EQ(socket->SocketHandle(), -1);
  EXPECT_EQ(socket->State(), 0);
  EXPECT_EQ(socket->Tag(), u"");
  EXPECT_EQ(socket->RemoteHost(), u"");
  EXPECT_EQ(socket->RemotePort(), 0);
  EXPECT_EQ(socket->RemoteHostIP(), u"");
  EXPECT_EQ(socket->LocalPort(), 0);
  EXPECT_EQ(socket->Protocol(), 0);
  EXPECT_EQ(socket->BytesReceived(), 0);
}

TEST_F(LifecycleTest, StartsTheServiceWithoutAWindow) {
  const Watched socket(module);
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_TRUE(module.ServiceStarted());
  EXPECT_EQ(module.lngWindowHandle(), 0);
  EXPECT_EQ(calls.count("socket"), 0);
}

TEST_F(LifecycleTest, EndsWithoutASocketAndClosesNothing) {
  { const Watched socket(module); }
  EXPECT_EQ(calls.count("closesocket"), 0);
  EXPECT_EQ(calls.count("GlobalFree"), 0);
  EXPECT_EQ(calls.count("WSACancelAsyncRequest"), 0);
  EXPECT_EQ(calls.count("WSACleanup"), 1);
}

// ---- properties

TEST_F(LifecycleTest, KeepsWhatIsSet) {
  const Watched socket(module);
  socket->RemotePort(8080);
  socket->RemoteHost(u"host.example");
  socket->LocalPort(4711);
  socket->Tag(u"mine");
  socket->Protocol(ProtocolUDP);
  EXPECT_EQ(socket->RemotePort(), 8080);
  EXPECT_EQ(socket->RemoteHost(), u"host.example");
  EXPECT_EQ(socket->LocalPort(), 4711);
  EXPECT_EQ(socket->Tag(), u"mine");
  EXPECT_EQ(socket->Protocol(), 1);
}

TEST_F(LifecycleTest, TakesPortsFrom0To65535) {
  const Watched socket(module);
  for (const std::int32_t port : {0, 1, 32767, 32768, 65535}) {
    socket->RemotePort(port);
    EXPECT_EQ(socket->RemotePort(), port);
    socket->LocalPort(port);
    EXPECT_EQ(socket->LocalPort(), port);
  }
  for (const std::int32_t port : {-1, 65536, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(raised([&] { socket->RemotePort(port); }), outOfRange("RemotePort")) << port;
    EXPECT_EQ(raised([&] { socket->LocalPort(port); }), outOfRange("LocalPort")) << port;
  }
  EXPECT_EQ(socket->RemotePort(), 65535);
  EXPECT_EQ(socket->LocalPort(), 65535);
}

TEST_F(LifecycleTest, TakesAnyNumberAsProtocol) {
  const Watched socket(module);
  for (const std::int32_t value : {0, 1, 2, -1, 77}) {
    socket->Protocol(static_cast<SocketProtocol>(value));
    EXPECT_EQ(socket->Protocol(), value);
  }
}

TEST_F(LifecycleTest, TellsTheMachinesNameAndAddressInAnyStateWithoutOneOfItsOwn) {
  const Watched socket(module);
  char name[256] = {};
  ASSERT_EQ(bench->sockets().gethostname(name, sizeof name), 0);
  EXPECT_EQ(toUtf8(socket->LocalHostName()), name);
  EXPECT_EQ(socket->LocalIP(), localAddress(*bench));
}

// ---- Bind

TEST_F(LifecycleTest, BindsToAPortOfTheSystemsChoice) {
  const Watched socket(module);
  socket->Bind();
  EXPECT_EQ(socket->State(), sckOpen);
  EXPECT_NE(socket->SocketHandle(), -1);
  EXPECT_GT(socket->LocalPort(), 1024);
  EXPECT_EQ(socket->LocalIP(), localAddress(*bench));
  SocketAddress bound;
  ASSERT_EQ(bench->sockets().getsockname(socket->SocketHandle(), bound), 0);
  EXPECT_EQ(IntegerToUnsigned(ntohs(bound.port)), socket->LocalPort());
}

TEST_F(LifecycleTest, BindsToTheGivenPortAndAddress) {
  Watched finder(module);
  finder->Bind(0, u"127.0.0.1");
  const std::int32_t free = finder->LocalPort();
  finder->CloseSck();

  const Watched socket(module);
  socket->Bind(free, u"127.0.0.1");
  EXPECT_EQ(socket->LocalPort(), free);
  EXPECT_EQ(socket->LocalIP(), u"127.0.0.1");
  SocketAddress bound;
  ASSERT_EQ(bench->sockets().getsockname(socket->SocketHandle(), bound), 0);
  EXPECT_EQ(IntegerToUnsigned(ntohs(bound.port)), free);
  EXPECT_EQ(bound.address, bench->sockets().inet_addr(u"127.0.0.1"));
}

TEST_F(LifecycleTest, BindsToThePropertyLocalPortWhenNoneIsGiven) {
  Watched finder(module);
  finder->Bind();
  const std::int32_t free = finder->LocalPort();
  finder->CloseSck();

  const Watched socket(module);
  socket->LocalPort(free);
  socket->Bind();
  EXPECT_EQ(socket->LocalPort(), free);
}

TEST_F(LifecycleTest, LocalPortForgetsAChosenPortAndKeepsAGivenOne) {
  const Watched socket(module);
  socket->Bind();
  const std::int32_t chosen = socket->LocalPort();
  ASSERT_NE(chosen, 0);
  socket->CloseSck();
  EXPECT_EQ(socket->LocalPort(), 0);

  socket->Bind(chosen);
  EXPECT_EQ(socket->LocalPort(), chosen);
  socket->CloseSck();
  EXPECT_EQ(socket->LocalPort(), chosen);
}

TEST_F(LifecycleTest, AGivenPortTakesThePlaceOfTheProperty) {
  Watched finder(module);
  finder->Bind();
  const std::int32_t free = finder->LocalPort();
  finder->CloseSck();

  const Watched socket(module);
  socket->LocalPort(1);
  socket->Bind(Text(decimal(free)));
  EXPECT_EQ(socket->LocalPort(), free);
  socket->CloseSck();
  EXPECT_EQ(socket->LocalPort(), free);
}

TEST_F(LifecycleTest, APortGivenAs0LeavesThePropertyAsItWas) {
  const Watched socket(module);
  socket->LocalPort(1);
  socket->Bind(0);
  EXPECT_GT(socket->LocalPort(), 1024);
  socket->CloseSck();
  EXPECT_EQ(socket->LocalPort(), 1);
}

TEST_F(LifecycleTest, BindRefusesPortsBeforeItMakesASocket) {
  const Watched socket(module);
  EXPECT_EQ(raised([&] { socket->Bind(-1); }), outOfRange("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(65536); }), outOfRange("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(u"70000"); }), outOfRange("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(1e10); }), outOfRange("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(u"http"); }), unsupported("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(Variant::Null()); }), unsupported("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(Variant::Object()); }), unsupported("BindInternal"));
  EXPECT_EQ(raised([&] { socket->Bind(Bytes{1}); }), unsupported("BindInternal"));
  EXPECT_EQ(calls.count("socket"), 0);
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(LifecycleTest, BindLooksNamesUp) {
  const Watched socket(module);
  socket->Bind(0, u"localhost");
  EXPECT_EQ(socket->LocalIP(), u"127.0.0.1");
  EXPECT_EQ(socket->State(), sckOpen);
}

TEST_F(LifecycleTest, BindTakesAnEmptyAddressForNone) {
  const Watched socket(module);
  socket->Bind(0, u"");
  EXPECT_EQ(socket->LocalIP(), localAddress(*bench));
}

TEST_F(LifecycleTest, BindRefusesATextThatNoAddressComesOf) {
  const Watched socket(module);
  EXPECT_EQ(raised([&] { socket->Bind(0, u"nobody.invalid"); }),
            "40014 CEventSocket.BindInternal: Invalid argument");
  EXPECT_EQ(calls.count("socket"), 0);
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(LifecycleTest, BindRaisesWhatTheSystemRefuses) {
  Watched first(module);
  first->Bind(0, u"127.0.0.1");
  first->Listen();
  Watched second(module);
  EXPECT_EQ(raised([&] { second->Bind(first->LocalPort(), u"127.0.0.1"); }),
            "10048 CEventSocket.BindInternal: Address already in use.");
  EXPECT_EQ(second->State(), sckClosed) << "a raise changes no state";
  EXPECT_NE(second->SocketHandle(), -1) << "the socket was made before";
  EXPECT_EQ(second.log, Lines());
  second->CloseSck();
  EXPECT_EQ(second->SocketHandle(), -1);
}

TEST_F(LifecycleTest, BindRaisesForAnAddressOfAnotherMachine) {
  const Watched socket(module);
  EXPECT_EQ(raised([&] { socket->Bind(0, u"192.0.2.1"); }),
            "10049 CEventSocket.BindInternal: Cannot assign requested address.");
}

TEST_F(LifecycleTest, ABindThatFailedCanBeTriedAgainWithTheSameSocket) {
  const Watched socket(module);
  EXPECT_NE(raised([&] { socket->Bind(0, u"192.0.2.1"); }), "nothing");
  const std::int32_t handle = socket->SocketHandle();
  socket->Bind(0, u"127.0.0.1");
  EXPECT_EQ(socket->State(), sckOpen);
  EXPECT_EQ(socket->SocketHandle(), handle);
  EXPECT_EQ(calls.count("socket"), 1);
}

// ---- Listen

TEST_F(LifecycleTest, ListensOnAPortOfTheSystemsChoice) {
  const Watched socket(module);
  socket->Listen();
  EXPECT_EQ(socket->State(), sckListening);
  EXPECT_GT(socket->LocalPort(), 1024);
  EXPECT_EQ(socket->LocalIP(), localAddress(*bench));
}

TEST_F(LifecycleTest, ListenAfterBindKeepsTheBoundPort) {
  const Watched socket(module);
  socket->Bind(0, u"127.0.0.1");
  const std::int32_t port = socket->LocalPort();
  socket->Listen();
  EXPECT_EQ(socket->State(), sckListening);
  EXPECT_EQ(socket->LocalPort(), port);
  EXPECT_EQ(socket->LocalIP(), u"127.0.0.1");
  EXPECT_EQ(calls.count("bind"), 1);
  EXPECT_EQ(calls.count("socket"), 1);
}

TEST_F(LifecycleTest, ADatagramSocketCannotListen) {
  const Watched socket(module);
  socket->Protocol(ProtocolUDP);
  EXPECT_EQ(raised([&] { socket->Listen(); }),
            "10045 CEventSocket.Listen: Operation not supported.");
  EXPECT_EQ(socket->State(), sckClosed);
}

// ---- Connect

TEST_F(LifecycleTest, ConnectsToAnAddress) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client->Connect(listener->LocalIP(), listener->LocalPort());
  EXPECT_EQ(client->State(), sckConnecting);
  EXPECT_EQ(client->RemoteHost(), listener->LocalIP());
  EXPECT_EQ(client->RemotePort(), listener->LocalPort());
  EXPECT_EQ(client->RemoteHostIP(), u"") << "known once the connection stands";
  EXPECT_EQ(client.log, Lines());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  EXPECT_EQ(client.log[0], "Connect");
  EXPECT_EQ(client->RemotePort(), listener->LocalPort());
  EXPECT_EQ(client->RemoteHostIP(), listener->LocalIP());
  EXPECT_EQ(client->RemoteHost(), listener->LocalIP()) << "the event leaves the name as it is";
  EXPECT_GT(client->LocalPort(), 0) << "a client binds first";
}

TEST_F(LifecycleTest, TheStateIsConnectedWithinTheEventConnect) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  SocketState within = sckClosed;
  client.then.Connect = [&] { within = client->State(); };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  EXPECT_EQ(within, sckConnected);
}

TEST_F(LifecycleTest, ConnectTakesThePropertiesForMissingArguments) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client->RemoteHost(listener->LocalIP());
  client->RemotePort(listener->LocalPort());
  client->Connect();
  EXPECT_TRUE(pumpTo(client, sckConnected));
}

TEST_F(LifecycleTest, ConnectTakesAPortInAText) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client->RemoteHost(listener->LocalIP());
  client->Connect(Variant::missing(), decimal(listener->LocalPort()));
  EXPECT_TRUE(pumpTo(client, sckConnected));
}

TEST_F(LifecycleTest, ConnectRefusesPortsBeforeItMakesASocket) {
  const Watched socket(module);
  socket->RemotePort(7);
  for (const Variant& port : {Variant(0), Variant(-1), Variant(65536), Variant(u"0"), Variant(1e10),
                              Variant(), Variant(true)}) {
    EXPECT_EQ(raised([&] { socket->Connect(u"127.0.0.1", port); }), outOfRange("Connect"));
  }
  for (const Variant& port : {Variant(u"http"), Variant(Variant::Null()), Variant(Date{80}),
                              Variant(Variant::Object()), Variant(Bytes{80})}) {
    EXPECT_EQ(raised([&] { socket->Connect(u"127.0.0.1", port); }), unsupported("Connect"));
  }
  EXPECT_EQ(socket->RemotePort(), 7);
  EXPECT_EQ(socket->RemoteHost(), u"127.0.0.1") << "the host was stored before";
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(calls.count("socket"), 0);
}

TEST_F(LifecycleTest, ConnectStoresAnEmptyHostAsTheEmptyText) {
  const Watched socket(module);
  socket->RemoteHost(u"host.example");
  EXPECT_EQ(raised([&] { socket->Connect(Variant(), 0); }), outOfRange("Connect"));
  EXPECT_EQ(socket->RemoteHost(), u"");
  socket->RemoteHost(u"host.example");
  EXPECT_EQ(raised([&] { socket->Connect(Variant::missing(), 0); }), outOfRange("Connect"));
  EXPECT_EQ(socket->RemoteHost(), u"host.example");
}

TEST_F(LifecycleTest, TheSecondConnectIsInAWrongState) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client->Connect(listener->LocalIP(), listener->LocalPort());
  EXPECT_EQ(raised([&] { client->Connect(u"10.9.8.7", 5); }), wrongState("Connect"));
  EXPECT_EQ(client->RemoteHost(), listener->LocalIP()) << "the state is looked at first";
}

TEST_F(LifecycleTest, ARefusedConnectionIsReported) {
  Watched bound(module);
  bound->Bind();
  Watched client(module);
  client->Connect(bound->LocalIP(), bound->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  settle();
  EXPECT_EQ(client.log, Lines({"Error 10061 CEventSocket.PostSocket: Connection refused."}));
  EXPECT_EQ(client->State(), sckError);
  EXPECT_NE(client->SocketHandle(), -1);
  EXPECT_EQ(raised([&] { client->Connect(); }), wrongState("Connect"));
  client->CloseSck();
  EXPECT_EQ(client->State(), sckClosed);
}

TEST_F(LifecycleTest, AnErrorsHandlerMayCloseAndConnectAnew) {
  Watched bound(module);
  bound->Bind();
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client.then.Error = [&](const SocketErrorArguments&) {
    client->CloseSck();
    client->Connect(listener->LocalIP(), listener->LocalPort());
  };
  client->Connect(bound->LocalIP(), bound->LocalPort());
  EXPECT_TRUE(pumpTo(client, sckConnected));
  EXPECT_EQ(client.log,
            Lines({"Error 10061 CEventSocket.PostSocket: Connection refused.", "Connect"}));
}

// ---- the error's box

TEST_F(LifecycleTest, AHandlerThatWantsTheErrorShownGetsABox) {
  Watched bound(module);
  bound->Bind();
  Watched client(module);
  client.then.Error = [&](const SocketErrorArguments& arguments) {
    EXPECT_TRUE(dialogs.boxes.empty());
    arguments.Description = u"of the handler's own";
    arguments.CancelDisplay = false;
  };
  client->Connect(bound->LocalIP(), bound->LocalPort());
  ASSERT_TRUE(pumpTo(client, sckError));
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].text, u"Connection refused.");
  EXPECT_EQ(dialogs.boxes[0].style, 0);
  EXPECT_EQ(dialogs.boxes[0].title, u"CEventSocket.PostSocket");
}

TEST_F(LifecycleTest, NoBoxComesUnlessTheHandlerAsksForIt) {
  Watched bound(module);
  bound->Bind();
  Watched client(module);
  client->Connect(bound->LocalIP(), bound->LocalPort());
  ASSERT_TRUE(pumpTo(client, sckError));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(LifecycleTest, NoBoxComesWithoutAHandler) {
  Watched bound(module);
  bound->Bind();
  const auto client = CEventSocket::create(module);
  client->Connect(bound->LocalIP(), bound->LocalPort());
  EXPECT_TRUE(pumpUntil([&] { return client->State() == sckError; }));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(LifecycleTest, TheBoxComesEvenIfTheHandlerLetsGoOfTheSocket) {
  Watched bound(module);
  bound->Bind();
  Watched client(module);
  client.then.Error = [&](const SocketErrorArguments& arguments) {
    arguments.CancelDisplay = false;
    client.socket.reset();
  };
  client->Connect(bound->LocalIP(), bound->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  EXPECT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(module.InstanceCount(), 1);
}

// ---- UDP

TEST_F(LifecycleTest, ConnectOfADatagramSocketBindsAndSendsNothing) {
  const Watched socket(module);
  socket->Protocol(ProtocolUDP);
  socket->Connect(u"127.0.0.1", 9);
  EXPECT_EQ(socket->State(), sckOpen);
  EXPECT_GT(socket->LocalPort(), 0);
  EXPECT_EQ(calls.count("connect"), 0);
  EXPECT_EQ(calls.count("sendto"), 0);
  settle();
  EXPECT_EQ(socket.log, Lines());
}

TEST_F(LifecycleTest, AProtocolBeyondUdpMakesADatagramSocketAndConnectsIt) {
  Watched socket(module);
  socket->Protocol(static_cast<SocketProtocol>(2));
  socket->Connect(u"127.0.0.1", 9);
  const std::string handle = std::to_string(socket->SocketHandle());
  EXPECT_EQ(calls.linesOf({"socket", "setsockopt", "getsockopt", "connect"}),
            Lines({"socket 2 2 17", "setsockopt " + handle + " 65535 32 1",
                   "getsockopt " + handle + " 65535 8195", "connect " + handle + " 127.0.0.1:9"}));
  EXPECT_NE(socket->State(), sckOpen);
}

// ---- CloseSck and the end

TEST_F(LifecycleTest, CloseSckWithoutASocketDoesNothing) {
  const Watched socket(module);
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(trace, Lines({trace[0], "OK Winsock service initiated"}));
}

TEST_F(LifecycleTest, CloseSckTwiceIsOnce) {
  const Watched socket(module);
  socket->Bind();
  socket->CloseSck();
  socket->CloseSck();
  EXPECT_EQ(calls.count("closesocket"), 1);
}

TEST_F(LifecycleTest, CloseSckForgetsTheConnectionAndKeepsWhatWasSet) {
  Watched listener(module);
  Watched client(module);
  Watched server(module);
  client->Tag(u"mine");
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  const Text localIp = client->LocalIP();
  server->SendData(u"hello");
  ASSERT_TRUE(pumpUntil([&] { return client->BytesReceived() == 5; }));
  client->CloseSck();
  EXPECT_EQ(client->State(), sckClosed);
  EXPECT_EQ(client->SocketHandle(), -1);
  EXPECT_EQ(client->LocalPort(), 0);
  EXPECT_EQ(client->RemoteHostIP(), u"");
  EXPECT_EQ(client->BytesReceived(), 0);
  EXPECT_EQ(client->RemoteHost(), listener->LocalIP());
  EXPECT_EQ(client->RemotePort(), listener->LocalPort());
  EXPECT_EQ(client->Tag(), u"mine");
  EXPECT_EQ(client->Protocol(), ProtocolTCP);
  EXPECT_EQ(client.log, Lines({"DataArrival 5"})) << "closing raises no event";
}

TEST_F(LifecycleTest, AClosedSocketConnectsAgain) {
  Watched listener(module);
  Watched client(module);
  Watched server(module);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  const std::int32_t first = client->SocketHandle();
  client->CloseSck();
  server->CloseSck();
  client->Connect();
  EXPECT_TRUE(pumpTo(client, sckConnected));
  EXPECT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(calls.linesOf({"closesocket"})[0], "closesocket " + std::to_string(first));
}

TEST_F(LifecycleTest, ThePeerLearnsOfTheClosing) {
  Watched listener(module);
  Watched client(module);
  Watched server(module);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  client->CloseSck();
  ASSERT_TRUE(pumpTo(server, sckClosing));
  settle();
  EXPECT_EQ(server.log, Lines({"CloseSck"}));
  EXPECT_NE(server->SocketHandle(), -1) << "its owner is to close it";
  server->CloseSck();
  EXPECT_EQ(server->State(), sckClosed);
  EXPECT_EQ(server.log, Lines({"CloseSck"}));
}

TEST_F(LifecycleTest, AnInstanceThatEndsClosesItsSocketWithoutAnEvent) {
  Watched listener(module);
  Watched client(module);
  Watched server(module);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  client.socket.reset();
  EXPECT_EQ(client.log, Lines());
  EXPECT_EQ(calls.count("closesocket"), 1);
  ASSERT_TRUE(pumpTo(server, sckClosing));
}

TEST_F(LifecycleTest, AnInstanceThatEndsLeavesNothingWhileOthersLive) {
  Watched keeper(module);
  keeper->Bind();
  const std::size_t entries = module.instances().entries();
  for (int round = 0; round < 20; ++round) {
    const Watched each(module);
    each->Bind();
  }
  EXPECT_EQ(module.instances().entries(), entries);
  EXPECT_EQ(module.thunk().socketTable().count(), 2);
  EXPECT_EQ(module.thunk().socketTable().used(), 1);
}

TEST_F(LifecycleTest, LocalIpIsTheBoundAddressWhileOpenAndListeningOnly) {
  const Watched socket(module);
  socket->Bind(0, u"127.0.0.1");
  EXPECT_EQ(socket->LocalIP(), u"127.0.0.1");
  socket->Listen();
  EXPECT_EQ(socket->LocalIP(), u"127.0.0.1");
  socket->CloseSck();
  EXPECT_EQ(socket->LocalIP(), localAddress(*bench));
}

// ---- notifications

TEST_F(LifecycleTest, AnEventIgnoredInItsStateRaisesNothing) {
  Watched socket(module);
  socket->Bind();
  for (const std::int32_t event : {1, 2, 8, 16, 32, 4, 64, 3, 0}) {
    notify(socket->SocketHandle(), event);
  }
  settle();
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(socket->State(), sckOpen);
}

TEST_F(LifecycleTest, AnErrorCodeIsReportedWhateverTheEvent) {
  for (const std::int32_t event : {1, 2, 8, 16, 32, 4}) {
    Watched socket(module);
    socket->Listen();
    notify(socket->SocketHandle(), event, 10050);
    settle();
    EXPECT_EQ(socket.log, Lines({"Error 10050 CEventSocket.PostSocket: Network is down."}))
        << event;
    EXPECT_EQ(socket->State(), sckError);
  }
}

TEST_F(LifecycleTest, ACodeWithoutATextIsAnUnknownError) {
  Watched socket(module);
  socket->Bind();
  notify(socket->SocketHandle(), 1, 10066);
  settle();
  EXPECT_EQ(socket.log, Lines({"Error 10066 CEventSocket.PostSocket: Unknown error."}));
}

TEST_F(LifecycleTest, TheWindowsProcedureAnswers0) {
  Watched socket(module);
  socket->Bind();
  EXPECT_EQ(socket->WndProc(1, WM_SOCKET_EVENT, socket->SocketHandle(), 2), 0);
  EXPECT_EQ(socket->WndProc(1, WM_SOCKET_EVENT, socket->SocketHandle(), 10054 << 16 | 1), 0);
  EXPECT_EQ(socket->WndProc(1, WM_RESOLVE_DONE, 5, 0), 0);
  EXPECT_EQ(socket->WndProc(1, 2050, 5, 1 << 16), 0);
  EXPECT_EQ(socket.log, Lines({"Error 10054 CEventSocket.PostSocket: Connection reset by peer."}));
}

TEST_F(LifecycleTest, ARaiseWithinANotificationReachesNobody) {
  Watched listener(module), server(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) { server->Accept(request); };
  Watched client(module);
  client.then.Connect = [&] { client->Connect(); };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpTo(client, sckConnected));
  settle();
  EXPECT_EQ(client.log, Lines({"Connect"}));
  EXPECT_EQ(client->State(), sckConnected);
  EXPECT_TRUE(dialogs.boxes.empty());
}

// ---- handlers that change everything

TEST_F(LifecycleTest, ConnectsHandlerMayCloseTheSocket) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client.then.Connect = [&] { client->CloseSck(); };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  settle();
  EXPECT_EQ(client->State(), sckClosed);
  EXPECT_EQ(client.log, Lines({"Connect"}));
}

TEST_F(LifecycleTest, ConnectsHandlerMayLetGoOfTheSocket) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  client.then.Connect = [&] { client.socket.reset(); };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return !client.log.empty(); }));
  EXPECT_EQ(module.InstanceCount(), 1);
  settle();
}

TEST_F(LifecycleTest, CloseSckHandlersMayCloseOrLetGo) {
  Watched listener(module);
  Watched client(module);
  Watched server(module);
  ASSERT_NO_FATAL_FAILURE(connectPair(listener, client, server));
  server.then.CloseSck = [&] {
    EXPECT_EQ(server->State(), sckClosing);
    server->CloseSck();
    server.socket.reset();
  };
  client->CloseSck();
  ASSERT_TRUE(pumpUntil([&] { return !server.socket; }));
  EXPECT_EQ(server.log, Lines({"CloseSck"}));
}

TEST_F(LifecycleTest, HandlersMayMakeInstances) {
  Watched listener(module);
  listener->Listen();
  Watched client(module);
  std::vector<std::unique_ptr<Watched>> more;
  client.then.Connect = [&] {
    for (int count = 0; count < 50; ++count) {
      more.push_back(std::make_unique<Watched>(module));
      (*more.back())->Bind();
    }
  };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpTo(client, sckConnected));
  EXPECT_EQ(more.size(), 50u);
  EXPECT_GE(module.thunk().socketTable().count(), 52) << "listener, client, the 50";
  more.clear();
  settle();
}

TEST_F(LifecycleTest, AHandlerMayTakeItsOwnPlaceAway) {
  Watched listener(module);
  listener->Listen();
  const auto client = CEventSocket::create(module);
  int runs = 0;
  const auto guard = std::make_shared<int>(7);
  client->events.Connect = [&, guard] {
    client->events = {};
    runs += *guard;
  };
  client->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return runs != 0; }));
  EXPECT_EQ(runs, 7);
  EXPECT_EQ(guard.use_count(), 1);
}

}  // namespace
}  // namespace zev::socket_bench
