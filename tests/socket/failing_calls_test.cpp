#include "socket/scripted_network.h"

// Calls of the system that fail, one at a time, and what survives; and the order of those calls.
namespace zev::socket_bench {
namespace {

class FailingCallsTest : public ScriptedTest {
 protected:
  FailingCallsTest() {
    network.addHost("far.example", {"10.0.0.5", "10.0.0.6"});
    network.server("10.0.0.5", 80);
  }

  static std::string handleOf(const Watched& socket) {
    return std::to_string(socket->SocketHandle());
  }
  std::string window() const { return std::to_string(module.lngWindowHandle()); }
  std::string block() const {
    return std::to_string(reinterpret_cast<std::uintptr_t>(module.thunk().ThunkBlock()));
  }
  /// The lines of everything but inet_ntoa, whose argument is a mere number.
  Lines made() const {
    Lines lines = calls.lines();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("inet_ntoa"); });
    return lines;
  }
  /// Calls for a new socket that is the first one.
  Lines making(const Watched& socket) const {
    const std::string handle = handleOf(socket);
    return {"socket 2 1 6",
            "getsockopt " + handle + " 65535 4098",
            "getsockopt " + handle + " 65535 4097",
            "CreateWindowExA STATIC SOCKET_WINDOW",
            "GetWindowLongA " + window() + " -4",
            "SetWindowLongA " + window() + " -4 " + block(),
            "WSAAsyncSelect " + handle + " " + window() + " 2049 59"};
  }
  static Lines binding(const std::string& handle) {
    return {"bind " + handle + " 192.168.1.20:0", "getsockname " + handle};
  }
  static Lines findingOwnAddress() {
    return {"gethostname 256", "gethostbyname BOBPC", "inet_addr 192.168.1.20"};
  }
};

void connectFar(const Watched& socket) { socket->Connect(u"10.0.0.5", 80); }

// ---- the order of calls

TEST_F(FailingCallsTest, OrderOfConnectWithAnAddress) {
  const Watched socket(module);
  calls.clearLines();
  connectFar(socket);
  EXPECT_EQ(made(), making(socket) + Lines({"inet_addr 10.0.0.5"}) + findingOwnAddress() +
                        binding(handleOf(socket)) +
                        Lines({"connect " + handleOf(socket) + " 10.0.0.5:80"}));
}

TEST_F(FailingCallsTest, OrderOfConnectWithAName) {
  const Watched socket(module);
  calls.clearLines();
  socket->Connect(u"far.example", 40000);
  EXPECT_EQ(made(), making(socket) +
                        Lines({"inet_addr far.example", "GlobalAlloc 0 1024", "GlobalLock block",
                               "GlobalUnlock block",
                               "WSAAsyncGetHostByName " + window() + " 2048 far.example 1024"}));
  calls.clearLines();
  ASSERT_TRUE(pumpTo(socket, sckConnecting));
  EXPECT_EQ(made(), Lines({"GlobalFree 0"}) + findingOwnAddress() + binding(handleOf(socket)) +
                        Lines({"connect " + handleOf(socket) + " 10.0.0.5:40000"}))
      << "to the first address";
}

TEST_F(FailingCallsTest, OrderOfBind) {
  const Watched socket(module);
  calls.clearLines();
  socket->Bind(40001);
  EXPECT_EQ(made(), findingOwnAddress() + making(socket) +
                        Lines({"bind " + handleOf(socket) + " 192.168.1.20:40001"}))
      << "a port that was given is not asked for";
}

TEST_F(FailingCallsTest, OrderOfBindToAName) {
  network.addHost("mine.example", {"192.168.1.20"});
  const Watched socket(module);
  calls.clearLines();
  socket->Bind(0, u"mine.example");
  EXPECT_EQ(made(), Lines({"inet_addr mine.example", "gethostbyname mine.example"}) +
                        making(socket) + binding(handleOf(socket)));
}

TEST_F(FailingCallsTest, OrderOfListen) {
  const Watched socket(module);
  calls.clearLines();
  socket->Listen();
  EXPECT_EQ(made(), making(socket) + findingOwnAddress() + binding(handleOf(socket)) +
                        Lines({"listen " + handleOf(socket) + " 5"}));
}

TEST_F(FailingCallsTest, OrderOfADatagram) {
  const Watched socket(module);
  socket->Protocol(ProtocolUDP);
  socket->RemoteHost(u"far.example");
  socket->RemotePort(7);
  calls.clearLines();
  socket->SendData(u"hello");
  const std::string handle = handleOf(socket);
  EXPECT_EQ(
      made(),
      Lines({"socket 2 2 17", "setsockopt " + handle + " 65535 32 1",
             "getsockopt " + handle + " 65535 8195", "CreateWindowExA STATIC SOCKET_WINDOW",
             "GetWindowLongA " + window() + " -4", "SetWindowLongA " + window() + " -4 " + block(),
             "WSAAsyncSelect " + handle + " " + window() + " 2049 59"}) +
          findingOwnAddress() + binding(handle) +
          Lines({"inet_addr far.example", "gethostbyname far.example",
                 "sendto " + handle + " 5 0 10.0.0.5:7"}));
  calls.clearLines();
  socket->SendData(u"again");
  EXPECT_EQ(made(), Lines({"inet_addr far.example", "gethostbyname far.example",
                           "sendto " + handle + " 5 0 10.0.0.5:7"}))
      << "the host is looked up for each";
}

TEST_F(FailingCallsTest, OrderOfCloseSckDuringALookUp) {
  const Watched socket(module);
  socket->Connect(u"far.example", 80);
  const std::string handle = handleOf(socket), old = window();
  calls.clearLines();
  trace.clear();
  socket->CloseSck();
  EXPECT_EQ(made(), Lines({"WSACancelAsyncRequest 0", "GlobalFree 0", "closesocket " + handle,
                           "SetWindowLongA " + old + " -4 0", "DestroyWindow " + old}));
  EXPECT_EQ(trace.front(), "STATE: sckClosing");
  EXPECT_EQ(trace.back(), "STATE: sckClosed");
}

TEST_F(FailingCallsTest, OrderOfTheEndOfAnInstance) {
  Watched socket(module);
  socket->Connect(u"far.example", 80);
  const std::string handle = handleOf(socket), old = window();
  calls.clearLines();
  socket.socket.reset();
  EXPECT_EQ(made(), Lines({"WSACancelAsyncRequest 0", "GlobalFree 0", "closesocket " + handle,
                           "SetWindowLongA " + old + " -4 0", "DestroyWindow " + old, "WSACleanup",
                           "VirtualFree 0 32768"}));
}

TEST_F(FailingCallsTest, OrderOfAccepting) {
  Watched listener(module), server(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    calls.clearLines();
    server->Accept(request);
  };
  network.connectFrom("10.0.0.9", "192.168.1.20",
                      static_cast<std::uint16_t>(listener->LocalPort()));
  ASSERT_TRUE(pumpTo(server, sckConnected));
  const std::string handle = handleOf(server);
  EXPECT_EQ(made(),
            Lines({"getsockopt " + handle + " 65535 4098", "getsockopt " + handle + " 65535 4097",
                   "getsockname " + handle, "getpeername " + handle}));
  EXPECT_EQ(server->RemoteHostIP(), u"10.0.0.9");
}

TEST_F(FailingCallsTest, OrderOfAConnectionThatNobodyTakes) {
  Watched listener(module);
  listener->Listen();
  calls.clearLines();
  network.connectFrom("10.0.0.9", "192.168.1.20",
                      static_cast<std::uint16_t>(listener->LocalPort()));
  ASSERT_TRUE(pumpUntil([&] { return listener.request != -1; }));
  const std::string handle = std::to_string(listener.request);
  EXPECT_EQ(made(), Lines({"accept " + handleOf(listener), "getsockopt " + handle + " 65535 4098",
                           "getsockopt " + handle + " 65535 4097", "getpeername " + handle,
                           "closesocket " + handle}));
}

TEST_F(FailingCallsTest, OrderOfFetchingADatagram) {
  Watched socket(module);
  bindUdp(socket);
  const std::string handle = handleOf(socket);
  socket.then.DataArrival = [&](std::int32_t) {
    Variant text = Text();
    socket->PeekData(text);
    Variant data, varType = Variant::missing(), maxLen = 9;
    socket->GetData(data, varType, maxLen);
  };
  calls.clearLines();
  network.datagramPeer("10.0.0.7", 99)
      .send({simulated::addressOf("192.168.1.20"), static_cast<std::uint16_t>(socket->LocalPort())},
            "hello");
  settle();
  Lines reads = calls.linesOf({"recv", "recvfrom"});
  ASSERT_GE(reads.size(), 3u);
  reads.resize(3);
  EXPECT_EQ(reads, Lines({"recvfrom " + handle + " 5 2", "recvfrom " + handle + " 5 0",
                          "recv " + handle + " 1 0"}));
  EXPECT_EQ(calls.linesOf({"ioctlsocket"})[0], "ioctlsocket " + handle + " 1074030207");
}

// ---- making a socket

TEST_F(FailingCallsTest, WithoutASocketATcpInstanceStaysInError) {
  const char* const report = "Error 10024 CEventSocket.SocketExists: Too many open files.";
  calls.fail("socket", 10024);
  Watched connecting(module), binding(module), listening(module);
  connecting->Connect(u"10.0.0.5", 80);
  binding->Bind();
  listening->Listen();
  calls.heal("socket");
  for (Watched* each : {&connecting, &binding, &listening}) {
    Watched& socket = *each;
    EXPECT_EQ(socket.log, Lines({report}));
    EXPECT_EQ(socket->State(), sckError);
    EXPECT_EQ(socket->SocketHandle(), -1);
    socket->CloseSck();
    EXPECT_EQ(socket->State(), sckError) << "closing needs a socket";
    EXPECT_EQ(raised([&] { socket->Connect(); }), wrongState("Connect"));
    EXPECT_EQ(raised([&] { socket->Bind(); }), wrongState("Bind"));
    EXPECT_EQ(raised([&] { socket->Listen(); }), wrongState("Listen"));
  }
  EXPECT_EQ(module.lngWindowHandle(), 0);
}

TEST_F(FailingCallsTest, WithoutASocketADatagramInstanceGetsOutBySendData) {
  Watched socket(module);
  socket->Protocol(ProtocolUDP);
  socket->RemoteHost(u"10.0.0.5");
  socket->RemotePort(7);
  calls.fail("socket", 10055);
  socket->SendData(u"lost");
  EXPECT_EQ(socket.log,
            Lines({"Error 10055 CEventSocket.SocketExists: No buffer space available."}));
  EXPECT_EQ(socket->State(), sckError);
  calls.heal("socket");
  socket->SendData(u"sent");
  EXPECT_EQ(socket->State(), sckOpen);
  EXPECT_EQ(calls.count("sendto"), 1);
}

TEST_F(FailingCallsTest, TheSystemsOwnLimitOfSockets) {
  network.settings.maximumSockets = 0;
  Watched socket(module);
  connectFar(socket);
  EXPECT_EQ(socket.log, Lines({"Error 10024 CEventSocket.SocketExists: Too many open files."}));
}

TEST_F(FailingCallsTest, AnOptionThatCannotBeReadIsRaisedAndTheSocketKept) {
  for (const int nth : {1, 2}) {
    Watched socket(module);
    calls.fail("getsockopt", 10042, nth);
    EXPECT_EQ(raised([&] { connectFar(socket); }),
              "10042 CEventSocket.ProcessOptions: Bad protocol option.");
    EXPECT_EQ(socket->State(), sckClosed);
    EXPECT_NE(socket->SocketHandle(), -1);
    EXPECT_FALSE(module.IsSocketRegistered(socket->SocketHandle()));
    EXPECT_EQ(socket.log, Lines());
    trace.clear();
    socket->CloseSck();
    EXPECT_EQ(socket->SocketHandle(), -1);
    EXPECT_EQ(trace[2], "WARNING lngWindowHandle is ZERO");
  }
}

TEST_F(FailingCallsTest, ADatagramSocketNeedsItsMaximumAndNoBroadcast) {
  Watched socket(module);
  socket->Protocol(ProtocolUDP);
  calls.fail("getsockopt", 10042);
  EXPECT_EQ(raised([&] { socket->Bind(); }),
            "10042 CEventSocket.ProcessOptions: Bad protocol option.");
  calls.heal("getsockopt");
  socket->CloseSck();
  calls.fail("setsockopt", 10042);
  socket->Bind();
  EXPECT_EQ(socket->State(), sckOpen) << "the result of SO_BROADCAST is ignored";
}

TEST_F(FailingCallsTest, ASelectionThatIsRefusedIsRaised) {
  Watched socket(module);
  calls.fail("WSAAsyncSelect", 10050);
  EXPECT_EQ(raised([&] { connectFar(socket); }),
            "10050 modEventSocket.RegisterSocket: Network is down.");
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(socket.log, Lines());
  socket->CloseSck();
  EXPECT_EQ(socket->SocketHandle(), -1);
}

TEST_F(FailingCallsTest, WithoutAWindowNoSocketIsRegistered) {
  Watched socket(module);
  calls.fail("CreateWindowExA");
  EXPECT_EQ(raised([&] { connectFar(socket); }), "7 modEventSocket.RegisterSocket: Out of memory");
  EXPECT_EQ(socket->State(), sckClosed);
  calls.heal("CreateWindowExA");
  socket->CloseSck();
}

// ---- the machine's own name

TEST_F(FailingCallsTest, WithoutAName) {
  const Watched socket(module);
  calls.fail("gethostname", 10050);
  const char* const error = "10050 CEventSocket.GetLocalHostName: Network is down.";
  EXPECT_EQ(raised([&] { socket->LocalHostName(); }), error);
  EXPECT_EQ(raised([&] { socket->LocalIP(); }), error);
  EXPECT_EQ(raised([&] { socket->Bind(); }), error);
  EXPECT_EQ(raised([&] { socket->Listen(); }), error);
  EXPECT_EQ(socket->State(), sckClosed);
  socket->Bind(0, u"127.0.0.1");
  EXPECT_EQ(socket->State(), sckOpen) << "an address that is given needs no name";
}

TEST_F(FailingCallsTest, WithoutAnAddressOfTheName) {
  const Watched socket(module);
  calls.fail("gethostbyname", 11004);
  const char* const error =
      "11004 CEventSocket.GetLocalIP: Valid name, no data record of requested type.";
  EXPECT_EQ(raised([&] { socket->LocalIP(); }), error);
  EXPECT_EQ(raised([&] { socket->Bind(); }), error);
  EXPECT_EQ(raised([&] { connectFar(socket); }), error);
  EXPECT_EQ(socket->State(), sckClosed) << "a raise, before the state changed";
  EXPECT_EQ(calls.count("bind"), 0);
}

TEST_F(FailingCallsTest, TheNameFillsTheWholeBuffer) {
  network.settings.machineName = std::string(255, 'n');
  const Watched socket(module);
  EXPECT_EQ(socket->LocalHostName(), Text(255, u'n'));
}

// ---- binding and listening

TEST_F(FailingCallsTest, ABindThatFailsIsRaised) {
  Watched socket(module);
  calls.fail("bind", 10013);
  const char* const error = "10013 CEventSocket.BindInternal: Permission denied.";
  EXPECT_EQ(raised([&] { socket->Bind(80); }), error);
  EXPECT_EQ(raised([&] { socket->Listen(); }), error);
  EXPECT_EQ(raised([&] { connectFar(socket); }), error);
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(socket->LocalPort(), 0);
  EXPECT_EQ(socket.log, Lines());
}

TEST_F(FailingCallsTest, APortThatCannotBeReadIsRaised) {
  Watched socket(module);
  calls.fail("getsockname", 10014);
  EXPECT_EQ(raised([&] { socket->Bind(); }), "10014 CEventSocket.BindInternal: Bad address.");
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(socket->LocalPort(), 0);
  socket->CloseSck();
  socket->Bind(40002);
  EXPECT_EQ(socket->LocalPort(), 40002) << "which is not asked for";
}

TEST_F(FailingCallsTest, AListenThatFailsIsRaisedAndLeavesTheState) {
  Watched socket(module);
  calls.fail("listen", 10055);
  const char* const error = "10055 CEventSocket.Listen: No buffer space available.";
  EXPECT_EQ(raised([&] { socket->Listen(); }), error);
  EXPECT_EQ(socket->State(), sckClosed);
  socket->CloseSck();
  socket->Bind();
  EXPECT_EQ(raised([&] { socket->Listen(); }), error);
  EXPECT_EQ(socket->State(), sckOpen);
  calls.heal("listen");
  socket->Listen();
  EXPECT_EQ(socket->State(), sckListening);
}

// ---- connecting

TEST_F(FailingCallsTest, AConnectThatWouldBlockGoesOn) {
  Watched socket(module);
  calls.fail("connect", 10035);
  connectFar(socket);
  EXPECT_EQ(socket->State(), sckConnecting);
  EXPECT_EQ(socket.log, Lines());
}

TEST_F(FailingCallsTest, ConnectRaises10049AndStaysConnecting) {
  Watched socket(module);
  calls.fail("connect", 10049);
  EXPECT_EQ(raised([&] { connectFar(socket); }),
            "10049 CEventSocket.ConnectToIP: Cannot assign requested address.");
  EXPECT_EQ(socket->State(), sckConnecting);
  EXPECT_EQ(socket.log, Lines());
}

TEST_F(FailingCallsTest, ConnectReportsEveryOtherError) {
  for (const std::int32_t error : {10013, 10022, 10038, 10048, 10050, 10051, 10055, 10056, 10061}) {
    Watched socket(module);
    calls.fail("connect", error);
    EXPECT_EQ(raised([&] { connectFar(socket); }), "nothing");
    EXPECT_EQ(socket.log, Lines({"Error " + std::to_string(error) +
                                 " CEventSocket.ConnectToIP: " + toUtf8(WinsockErrorText(error))}));
    EXPECT_EQ(socket->State(), sckError);
  }
}

TEST_F(FailingCallsTest, BehindALookUp10049ReachesNobody) {
  Watched socket(module);
  calls.fail("connect", 10049);
  socket->Connect(u"far.example", 80);
  settle();
  EXPECT_EQ(socket->State(), sckConnecting);
  EXPECT_EQ(socket.log, Lines());
}

TEST_F(FailingCallsTest, BehindALookUpABindThatFailsLeavesTheHostResolved) {
  Watched socket(module);
  calls.fail("bind", 10048);
  socket->Connect(u"far.example", 80);
  settle();
  EXPECT_EQ(socket->State(), sckHostResolved);
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(raised([&] { socket->Connect(); }), wrongState("Connect"));
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(FailingCallsTest, APeerThatCannotBeNamedIsPassedOver) {
  Watched socket(module);
  calls.fail("getpeername", 10057);
  socket->Connect(u"10.0.0.5", 80);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  EXPECT_EQ(socket.log, Lines({"Connect"}));
  EXPECT_EQ(socket->RemotePort(), 80);
  EXPECT_EQ(socket->RemoteHostIP(), u"");
  EXPECT_EQ(socket->RemoteHost(), u"10.0.0.5");
}

TEST_F(FailingCallsTest, AReportsHandlerMayLetGoWithinTheCall) {
  for (const char* const call : {"socket", "connect", "WSAAsyncGetHostByName"}) {
    Watched socket(module);
    socket.then.Error = [&](const SocketErrorArguments& arguments) {
      arguments.CancelDisplay = false;
      socket.socket.reset();
    };
    CEventSocket* const raw = socket.socket.get();
    calls.fail(call, 10050);
    raw->Connect(call == std::string("connect") ? u"10.0.0.5" : u"far.example", 80);
    calls.heal(call);
    EXPECT_FALSE(socket.socket);
    EXPECT_EQ(module.InstanceCount(), 0);
  }
  EXPECT_EQ(dialogs.boxes.size(), 3u);
}

// ---- look-ups

TEST_F(FailingCallsTest, WithoutMemoryForALookUp) {
  for (const char* const call : {"GlobalAlloc", "GlobalLock"}) {
    Watched socket(module);
    calls.fail(call);
    calls.clearLines();
    trace.clear();
    EXPECT_EQ(raised([&] { socket->Connect(u"far.example", 80); }),
              "7 CEventSocket.ResolveIfHostname: Out of memory");
    calls.heal(call);
    EXPECT_EQ(socket->State(), sckError);
    EXPECT_EQ(socket.log, Lines()) << "raised, not reported";
    EXPECT_EQ(calls.linesOf({"GlobalFree"}),
              call == std::string("GlobalLock") ? Lines({"GlobalFree block"}) : Lines());
    EXPECT_EQ(calls.linesOf({"GlobalUnlock", "WSAAsyncGetHostByName"}), Lines());
    EXPECT_NE(std::find(trace.begin(), trace.end(), "Error trying to allocate memory"),
              trace.end());
    calls.clearLines();
    socket->CloseSck();
    EXPECT_EQ(calls.linesOf({"GlobalFree"}), Lines()) << "nothing is left to free";
    EXPECT_EQ(socket->State(), sckClosed);
  }
  EXPECT_EQ(machine.memory.blocks(), 0u);
}

TEST_F(FailingCallsTest, ALookUpThatDoesNotBeginIsReported) {
  Watched socket(module);
  calls.fail("WSAAsyncGetHostByName", 10055);
  socket->Connect(u"far.example", 80);
  EXPECT_EQ(socket.log,
            Lines({"Error 10055 CEventSocket.ResolveIfHostname: No buffer space available."}));
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_EQ(calls.linesOf({"GlobalFree"}), Lines({"GlobalFree 0"}));
  EXPECT_EQ(machine.memory.blocks(), 1u) << "the block stays";
  EXPECT_EQ(module.thunk().resolveTable().count(), 0);
  calls.clearLines();
  socket->CloseSck();
  EXPECT_EQ(calls.linesOf({"WSACancelAsyncRequest", "GlobalFree"}), Lines());
}

TEST_F(FailingCallsTest, EachLookUpLeavesItsBlock) {
  Watched socket(module);
  for (std::size_t round = 1; round <= 3; ++round) {
    socket->Connect(u"far.example", 80);
    ASSERT_TRUE(pumpTo(socket, sckConnected));
    socket->CloseSck();
    EXPECT_EQ(machine.memory.blocks(), round);
  }
}

// ---- closing

TEST_F(FailingCallsTest, ASocketThatCannotBeClosedIsRaisedAndKept) {
  Watched socket(module);
  connectFar(socket);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  const std::int32_t handle = socket->SocketHandle();
  calls.fail("closesocket", 10050);
  EXPECT_EQ(raised([&] { socket->CloseSck(); }),
            "10050 CEventSocket.DestroySocket: Network is down.");
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_EQ(socket->SocketHandle(), handle);
  EXPECT_TRUE(module.IsSocketRegistered(handle));
  EXPECT_EQ(socket->RemoteHostIP(), u"10.0.0.5") << "nothing is executed behind a raise";
  EXPECT_NE(socket->LocalPort(), 0);
  calls.heal("closesocket");
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
  EXPECT_EQ(socket.log, Lines({"Connect"}));
}

TEST_F(FailingCallsTest, AnEndThatCannotCloseBreaksOffThere) {
  Watched socket(module);
  socket->Bind();
  const std::int32_t handle = socket->SocketHandle();
  calls.fail("closesocket", 10050);
  socket.socket.reset();
  calls.heal("closesocket");
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_EQ(calls.count("WSACleanup"), 0);
  notify(handle, 1, 10054);
  settle();
  EXPECT_EQ(bench->sockets().closesocket(handle), 0);
  module.UnregisterSocket(handle);
  module.FinalizeProcesses();
}

// ---- accepting

TEST_F(FailingCallsTest, AnAcceptThatFailsReachesNobody) {
  Watched listener(module);
  listener->Listen();
  calls.fail("accept", 10050);
  network.connectFrom("10.0.0.9", "192.168.1.20",
                      static_cast<std::uint16_t>(listener->LocalPort()));
  settle();
  EXPECT_EQ(calls.count("accept"), 1);
  EXPECT_EQ(listener.log, Lines());
  EXPECT_EQ(listener->State(), sckListening);
  EXPECT_EQ(raised([&] { listener->WndProc(0, WM_SOCKET_EVENT, 0, 8); }),
            "10050 CEventSocket.PostSocket: Network is down.");
}

TEST_F(FailingCallsTest, ACallerThatCannotBeNamedIsNobody) {
  Watched listener(module), server(module);
  listener->RemotePort(1234);
  listener->RemoteHost(u"of.the.listener");
  listener->Listen();
  calls.fail("getpeername", 10057);
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    EXPECT_EQ(listener->RemotePort(), 0);
    EXPECT_EQ(listener->RemoteHostIP(), u"");
    EXPECT_EQ(listener->RemoteHost(), u"");
    server->RemotePort(5);
    server->RemoteHost(u"x");
    server->Accept(request);
  };
  network.connectFrom("10.0.0.9", "192.168.1.20",
                      static_cast<std::uint16_t>(listener->LocalPort()));
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(server->RemotePort(), 0);
  EXPECT_EQ(server->RemoteHostIP(), u"");
  EXPECT_EQ(server->RemoteHost(), u"");
  EXPECT_EQ(listener->RemotePort(), 1234);
  EXPECT_EQ(listener->RemoteHost(), u"of.the.listener");
}

TEST_F(FailingCallsTest, ATakerThatCannotNameItsEndKeepsTheHandle) {
  Watched listener(module), server(module);
  listener->Listen();
  std::string error;
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    calls.fail("getsockname", 10038);
    error = raised([&] { server->Accept(request); });
    calls.heal("getsockname");
    EXPECT_FALSE(module.IsAcceptRegistered(request)) << "the holding instance was taken before";
  };
  simulated::RemoteStream& caller = network.connectFrom(
      "10.0.0.9", "192.168.1.20", static_cast<std::uint16_t>(listener->LocalPort()));
  ASSERT_TRUE(pumpUntil([&] { return !error.empty(); }));
  EXPECT_EQ(error, "10038 CEventSocket.Accept: Socket operation on nonsocket.");
  EXPECT_EQ(server->State(), sckClosed);
  EXPECT_EQ(server->SocketHandle(), listener.request);
  settle();
  EXPECT_FALSE(caller.peerClosed());
  server->CloseSck();
  settle();
  EXPECT_TRUE(caller.peerClosed());
}

TEST_F(FailingCallsTest, AHoldingInstanceThatCannotBeMadeReachesNobodyAndLeavesNothing) {
  Watched listener(module);
  listener->Listen();
  calls.fail("getsockopt", 10042);
  simulated::RemoteStream& caller = network.connectFrom(
      "10.0.0.9", "192.168.1.20", static_cast<std::uint16_t>(listener->LocalPort()));
  settle();
  EXPECT_EQ(listener.log, Lines());
  EXPECT_EQ(listener->State(), sckListening);
  EXPECT_EQ(bench->openSockets(), 1) << "the instance's end has closed the connection";
  EXPECT_TRUE(caller.peerClosed() || caller.error() != 0);
  EXPECT_EQ(module.AcceptCollectionCount(), 0u) << "made before it";
  calls.heal("getsockopt");
  network.connectFrom("10.0.0.9", "192.168.1.20",
                      static_cast<std::uint16_t>(listener->LocalPort()));
  settle();
  EXPECT_EQ(listener.log, Lines({"ConnectionRequest"}));
}

// ---- data

class FailingDataTest : public FarPeerTest {
 protected:
  std::string handle() const { return std::to_string(socket->SocketHandle()); }
};

TEST_F(FailingDataTest, ASendThatFailsIsReportedAndTheRestKept) {
  calls.fail("send", 10053, 1);
  socket->SendData(u"hello");
  EXPECT_EQ(watched->log, Lines({"Error 10053 CEventSocket.SendBufferedData: Software caused "
                                 "connection abort."}));
  EXPECT_EQ(socket->State(), sckError);
  calls.clearLines();
  notify(socket->SocketHandle(), 2);
  settle();
  EXPECT_EQ(calls.linesOf({"send"}), Lines()) << "FD_WRITE needs a connected socket";
  EXPECT_EQ(raised([&] { socket->SendData(u"x"); }), wrongProtocolOrState("SendData"));
  socket->CloseSck();
  EXPECT_EQ(socket->State(), sckClosed);
}

TEST_F(FailingDataTest, AFullSocketFromTheStartRaisesNoProgress) {
  calls.fail("send", 10035, 1);
  socket->SendData(u"hello");
  EXPECT_EQ(watched->log, Lines());
  EXPECT_EQ(socket->State(), sckConnected);
  socket->SendData(u" there");
  EXPECT_EQ(calls.linesOf({"send"}).size(), 1u) << "what finds others waiting only follows them";
  notify(socket->SocketHandle(), 2);
  settle();
  EXPECT_EQ(watched->log, Lines({"SendProgress 11 0", "SendComplete"}));
  EXPECT_EQ(peer->received(), "hello there");
}

TEST_F(FailingDataTest, AnErrorBehindAPartKeepsTheRest) {
  Lines atError;
  watched->then.Error = [&](const SocketErrorArguments&) { atError = watched->log; };
  calls.fail("send", 10054, 2);
  socket->SendData(Bytes(20000, 1));
  EXPECT_EQ(watched->log, Lines({"Error 10054 CEventSocket.SendBufferedData: Connection reset by "
                                 "peer."}))
      << "no progress is told";
  EXPECT_EQ(calls.linesOf({"send"}),
            Lines({"send " + handle() + " 8192 0", "send " + handle() + " 8192 0"}));
}

TEST_F(FailingDataTest, AHandlersNestedSendThatFailsIsReportedByTheOuterLoopToo) {
  watched->then.SendProgress = [&](std::int32_t, std::int32_t) {
    watched->then.SendProgress = {};
    calls.fail("send", 10054);
    socket->SendData(u"second");
  };
  socket->SendData(u"first");
  const std::string report = "Error 10054 CEventSocket.SendBufferedData: Connection reset by peer.";
  EXPECT_EQ(watched->log, Lines({"SendProgress 5 0", report, "SendComplete", report}));
  calls.heal("send");
}

TEST_F(FailingDataTest, AReadThatFailsLeavesAnErrorWithoutAnEvent) {
  for (const std::int32_t error : {10054, 10035}) {
    SCOPED_TRACE(error);
    calls.fail("recv", error);
    trace.clear();
    EXPECT_EQ(raised([&] { socket->WndProc(0, WM_SOCKET_EVENT, 0, 1); }),
              std::to_string(error) +
                  " CEventSocket.RecvDataToBuffer: " + toUtf8(WinsockErrorText(error)));
    EXPECT_EQ(socket->State(), sckError);
    EXPECT_EQ(trace.back(), "STATE: sckError");
    EXPECT_EQ(watched->log, Lines());
    calls.heal("recv");
    socket->CloseSck();
    socket->Connect();
    ASSERT_TRUE(pumpTo(*watched, sckConnected));
    watched->log.clear();
  }
}

TEST_F(FailingDataTest, ARaiseOfAReadReachesNobodyInADispatch) {
  calls.fail("recv", 10054);
  peer->send("hello");
  settle();
  EXPECT_EQ(socket->State(), sckError);
  EXPECT_EQ(watched->log, Lines());
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(FailingDataTest, AReadIsAsLongAsTheSystemsBuffer) {
  peer->send("hello");
  settle();
  EXPECT_EQ(calls.linesOf({"recv"}), Lines({"recv " + handle() + " 8192 0"}));
}

class FailingDatagramTest : public FailingCallsTest {
 protected:
  void SetUp() override {
    bindUdp(*watched);
    (*watched)->RemoteHost(u"10.0.0.7");
    (*watched)->RemotePort(99);
  }
  void TearDown() override {
    calls.heal("ioctlsocket");
    watched.reset();
    FailingCallsTest::TearDown();
  }
  void sendHere(std::string_view bytes) {
    network.datagramPeer("10.0.0.7", 99)
        .send({simulated::addressOf("192.168.1.20"),
               static_cast<std::uint16_t>((*watched)->LocalPort())},
              bytes);
  }
  std::unique_ptr<Watched> watched = std::make_unique<Watched>(module);
};

TEST_F(FailingDatagramTest, ADatagramThatIsRefusedIsReportedAndGone) {
  Watched& socket = *watched;
  calls.fail("sendto", 10065, 1);
  socket->SendData(u"lost");
  EXPECT_EQ(socket.log, Lines({"Error 10065 CEventSocket.SendBufferedDataUDP: No route to host."}));
  EXPECT_EQ(socket->State(), sckError);
  socket->CloseSck();
  socket->SendData(u"kept");
  settle();
  const auto& received = network.datagramPeer("10.0.0.7", 99).received();
  ASSERT_TRUE(received.size() == 1 || received.empty());
}

TEST_F(FailingDatagramTest, ALookUpsErrorsAreTwo) {
  Watched& socket = *watched;
  socket->RemoteHost(u"far.example");
  calls.fail("gethostbyname", 11002);
  EXPECT_EQ(raised([&] { socket->SendData(u"x"); }),
            "40014 CEventSocket.SendBufferedDataUDP: Invalid argument");
  calls.fail("gethostbyname", 10047);
  EXPECT_EQ(raised([&] { socket->SendData(u"x"); }),
            "10047 CEventSocket.SendBufferedDataUDP: Address family not supported by protocol "
            "family.");
  EXPECT_EQ(calls.count("sendto"), 0);
  EXPECT_EQ(socket->State(), sckOpen);
}

TEST_F(FailingDatagramTest, WhatCannotBeCountedIsNothing) {
  Watched& socket = *watched;
  calls.fail("ioctlsocket", 10050);
  sendHere("hello");
  calls.clearLines();
  settle();
  EXPECT_EQ(socket.log, Lines());
  EXPECT_EQ(calls.linesOf({"recv"}), Lines({"recv " + handleOf(socket) + " 1 0"}))
      << "dropped in any case";
  EXPECT_EQ(socket->BytesReceived(), 0);
  Variant data = u"before";
  EXPECT_EQ(socket->GetData(data), 0);
  EXPECT_EQ(data, Variant(u"before"));
}

TEST_F(FailingDatagramTest, AReadThatFailsIsRaisedBehindTheStoring) {
  Watched& socket = *watched;
  std::string error;
  Variant text = u"before";
  socket.then.DataArrival = [&](std::int32_t) {
    calls.fail("recvfrom", 10054);
    error = raised([&] { socket->GetData(text); });
    calls.heal("recvfrom");
  };
  socket->RemoteHost(u"before");
  sendHere("hello");
  ASSERT_TRUE(pumpUntil([&] { return !error.empty(); }));
  EXPECT_EQ(error, "10054 CEventSocket.RecvData: Connection reset by peer.");
  EXPECT_EQ(text.type(), VariantType::String);
  EXPECT_EQ(text.get<Text>()->size(), 5u) << "so many were asked for";
  EXPECT_EQ(socket->RemoteHost(), u"") << "emptied even so";
  EXPECT_EQ(socket->State(), sckOpen);
}

}  // namespace
}  // namespace zev::socket_bench
