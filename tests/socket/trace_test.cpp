#include "socket/scripted_network.h"

// The lines that tell of each step.
namespace zev::socket_bench {
namespace {

class TraceTest : public ScriptedTest {
 protected:
  static std::string handleOf(const Watched& socket) {
    return std::to_string(socket->SocketHandle());
  }
  std::string window() const { return std::to_string(module.lngWindowHandle()); }
  std::string block() const {
    return std::to_string(reinterpret_cast<std::uintptr_t>(module.thunk().ThunkBlock()));
  }
  /// The lines so far, forgotten; without those of FD_WRITE for a socket that has nothing to send.
  Lines take() {
    Lines lines = std::exchange(trace, {});
    std::erase(lines, "WARNING: Omitting FD_WRITE");
    return lines;
  }
  /// Lines of a new socket that is the first one.
  Lines making(const Watched& socket, const std::string& sizeOfSends,
               const std::string& sizeOfReceives) const {
    const std::string handle = handleOf(socket);
    return {"OK Created socket: " + handle,
            "Winsock buffer size for sends: " + sizeOfSends,
            "Winsock buffer size for receives: " + sizeOfReceives,
            "OK Created socket collection",
            "OK Created winsock message window " + window(),
            "OK Registered events from socket " + handle};
  }
};

TEST_F(TraceTest, AConnectionByName) {
  network.settings.sendBuffer = 5000;
  network.settings.receiveBuffer = 6000;
  network.addHost("far.example", {"10.0.0.5"});
  simulated::StreamServer& far = network.server("10.0.0.5", 80);
  std::string ended;
  {
    Watched socket(module);
    EXPECT_EQ(take(), Lines({"OK Subclass memory allocated at: " + block(),
                             "OK Winsock service initiated"}));
    ended = block();
    socket->Connect(u"far.example", 80);
    Lines began = take();
    ASSERT_FALSE(began.empty());
    EXPECT_TRUE(began.back().starts_with("Resolving host far.example with handle "))
        << began.back();
    EXPECT_GT(std::stoi(began.back().substr(39)), 0);
    began.pop_back();
    EXPECT_EQ(began, making(socket, "5000", "6000") + Lines({"STATE: sckResolvingHost"}));

    ASSERT_TRUE(pumpTo(socket, sckConnected));
    settle();
    const std::string handle = handleOf(socket);
    EXPECT_EQ(take(), Lines({"STATE: sckHostResolved", "OK Bind HOST: 192.168.1.20 PORT: 0",
                             "OK Connecting to: far.example", "STATE: sckConnecting",
                             "FD_CONNECT " + handle, "STATE: sckConnected"}));

    socket->SendData(Bytes(7000));
    EXPECT_EQ(take()[0], "OK Bytes sent: 5000");
    settle();
    EXPECT_EQ(far.connection(0).received().size(), 7000u);
    trace.clear();
    socket->SendData(u"hello");
    EXPECT_EQ(take(), Lines({"OK Bytes sent: 5", "OK Finished SENDING"}));

    far.connection(0).send("answer");
    settle();
    EXPECT_EQ(take(), Lines({"FD_READ " + handle}));
    Variant text = Text(), varType = Variant::missing(), maxLen = 4;
    socket->GetData(text, varType, maxLen);
    EXPECT_EQ(take(), Lines({"OK Bytes obtained from buffer: 4"}));

    far.connection(0).finish();
    settle();
    EXPECT_EQ(take(), Lines({"FD_CLOSE " + handle, "STATE: sckClosing"}));
    const std::string old = window();
    socket->CloseSck();
    EXPECT_EQ(take(), Lines({"STATE: sckClosing", "OK Destroyed socket " + handle,
                             "OK Destroyed socket collection",
                             "OK Destroyed winsock message window " + old, "STATE: sckClosed"}));
  }
  EXPECT_EQ(take(),
            Lines({"OK Winsock service finalized", "OK Freed subclass memory at: " + ended}));
}

TEST_F(TraceTest, AListenerAndItsCallers) {
  Watched listener(module), server(module);
  take();
  listener->Listen();
  EXPECT_EQ(take(), making(listener, "8192", "8192") +
                        Lines({"OK Bind HOST: 192.168.1.20 PORT: 0", "STATE: sckListening"}));
  const auto port = static_cast<std::uint16_t>(listener->LocalPort());
  network.connectFrom("10.0.0.9", "192.168.1.20", port);
  ASSERT_TRUE(pumpUntil([&] { return listener.request != -1; }));
  const std::string refused = std::to_string(listener.request);
  EXPECT_EQ(take(),
            Lines({"FD_ACCEPT " + handleOf(listener), "OK Accepted socket: " + refused,
                   "OK Created accept collection", "Winsock buffer size for sends: 8192",
                   "Winsock buffer size for receives: 8192", "STATE: sckConnected",
                   "OK Closed accepted socket: " + refused, "OK Destroyed accept collection"}));

  listener.then.ConnectionRequest = [&](std::int32_t request) {
    take();
    server->Accept(request);
  };
  network.connectFrom("10.0.0.9", "192.168.1.20", port);
  ASSERT_TRUE(pumpTo(server, sckConnected));
  EXPECT_EQ(take(),
            Lines({"Winsock buffer size for sends: 8192", "Winsock buffer size for receives: 8192",
                   "OK Destroyed accept collection", "STATE: sckConnected"}));
}

TEST_F(TraceTest, AListenerWithoutRoomTellsOfItOnce) {
  Watched listener(module), other(module);
  other->Bind(0, u"127.0.0.1");
  listener->Listen();
  machine.setFull(true);
  take();
  const auto port = static_cast<std::uint16_t>(listener->LocalPort());
  network.connectFrom("10.0.0.9", "192.168.1.20", port);
  network.connectFrom("10.0.0.8", "192.168.1.20", port);
  settle();
  EXPECT_EQ(take(), Lines({"FD_ACCEPT " + handleOf(listener),
                           "ERROR trying to accept: Too many open files."}));
  EXPECT_EQ(listener->State(), sckListening);
  EXPECT_EQ(listener.log, Lines());
  machine.setFull(false);
  other->CloseSck();
  settle();
  EXPECT_EQ(listener.log, Lines({"ConnectionRequest", "ConnectionRequest"}));
}

TEST_F(TraceTest, ADatagramSocket) {
  Watched socket(module);
  take();
  socket->Protocol(ProtocolUDP);
  socket->Bind(40003, u"127.0.0.1");
  EXPECT_EQ(take(), making(socket, "65507", "65507") +
                        Lines({"OK Bind HOST: 127.0.0.1 PORT: 40003", "STATE: sckOpen"}));
  network.datagramPeer("10.0.0.7", 99).send({simulated::addressOf("127.0.0.1"), 40003}, "x");
  settle();
  EXPECT_EQ(take(), Lines({"FD_READ " + handleOf(socket)}));
}

TEST_F(TraceTest, ASocketThatCannotBeMade) {
  Watched socket(module);
  take();
  calls.fail("socket", 10024);
  socket->Bind();
  EXPECT_EQ(take(), Lines({"ERROR trying to create socket", "STATE: sckError"}));
}

TEST_F(TraceTest, EventsThatCannotBeRegistered) {
  Watched socket(module);
  take();
  calls.fail("WSAAsyncSelect", 10050);
  EXPECT_NE(raised([&] { socket->Bind(); }), "nothing");
  EXPECT_EQ(take().back(), "ERROR trying to register events from socket " + handleOf(socket));
}

TEST_F(TraceTest, AServiceThatDoesNotStart) {
  calls.fail("WSAStartup", 10091);
  EXPECT_EQ(raised([&] { Watched socket(module); }),
            "10091 modEventSocket.InitiateProcesses: Network subsystem is unavailable.");
  EXPECT_EQ(take().back(), "ERROR trying to initiate winsock service");
  calls.heal("WSAStartup");
  EXPECT_EQ(bench->sockets().WSAStartup(winsock::version), 0);
  module.FinalizeProcesses();
}

TEST_F(TraceTest, ALookUpThatFails) {
  Watched socket(module);
  socket->Connect(u"nobody.invalid", 80);
  take();
  ASSERT_TRUE(pumpTo(socket, sckError));
  settle();
  EXPECT_EQ(take(), Lines({"STATE: sckError"})) << "no name was resolved";
}

TEST_F(TraceTest, NoMemoryForALookUp) {
  Watched socket(module);
  calls.fail("GlobalAlloc");
  EXPECT_NE(raised([&] { socket->Connect(u"far.example", 80); }), "nothing");
  const Lines lines = take();
  EXPECT_EQ(
      Lines(lines.end() - 3, lines.end()),
      Lines({"STATE: sckResolvingHost", "Error trying to allocate memory", "STATE: sckError"}));
}

TEST_F(TraceTest, AFullSendBuffer) {
  simulated::StreamServer& far = network.server("10.0.0.5", 80);
  Watched socket(module);
  socket->Connect(u"10.0.0.5", 80);
  ASSERT_TRUE(pumpTo(socket, sckConnected));
  settle();
  far.connection(0).stopReading();
  take();
  socket->SendData(Bytes(100000));
  Lines lines = take();
  EXPECT_EQ(lines.back(), "WARNING: Send buffer full, waiting...");
  far.connection(0).goOnReading();
  ASSERT_TRUE(pumpUntil([&] { return socket.has("SendComplete"); }));
  lines = take();
  EXPECT_EQ(lines.front(), "FD_WRITE " + handleOf(socket));
  EXPECT_EQ(std::count(lines.begin(), lines.end(), "OK Finished SENDING"), 1);
}

TEST_F(TraceTest, WithoutAReaderNothingIsPutTogether) {
  module.trace().setReader({});
  {
    Watched socket(module);
    socket->Bind();
  }
  EXPECT_EQ(trace, Lines());
}

}  // namespace
}  // namespace zev::socket_bench
