#include "socket/scripted_network.h"
#include "support/table.h"

// Every member and every notification in every state.
namespace zev::socket_bench {
namespace {

const char* const stateNames[] = {"closed",     "open",      "listening", "resolving",
                                  "connecting", "connected", "closing",   "error"};

class StateTest : public ScriptedTest {
 protected:
  StateTest() {
    network.addHost("slow.example", {"10.0.0.5"});
    network.server("10.0.0.5", 80);
    network.server("10.0.0.6", 80).refuse();
  }

  /// A socket in that state.
  std::unique_ptr<Watched> inState(const std::string& state, const std::string& protocol) {
    auto made = std::make_unique<Watched>(module);
    Watched& socket = *made;
    if (protocol == "UDP") socket->Protocol(ProtocolUDP);
    protocol == "UDP" ? reachWithDatagrams(socket, state) : reach(socket, state);
    EXPECT_EQ(socket->State(), numberOf(state));
    socket.log.clear();
    calls.clearLines();
    trace.clear();
    return made;
  }

  void reach(Watched& socket, const std::string& state) {
    if (state == "open") socket->Bind();
    if (state == "listening") socket->Listen();
    if (state == "resolving") socket->Connect(u"slow.example", 80);
    if (state == "connecting") socket->Connect(u"10.0.0.5", 80);
    if (state == "error") {
      socket->Connect(u"10.0.0.6", 80);
      EXPECT_TRUE(pumpTo(socket, sckError));
    }
    if (state != "connected" && state != "closing") return;
    socket->Connect(u"10.0.0.5", 80);
    EXPECT_TRUE(pumpTo(socket, sckConnected));
    settle();
    if (state == "connected") return;
    simulated::StreamServer& far = network.server("10.0.0.5", 80);
    far.connection(far.connections() - 1).finish();
    EXPECT_TRUE(pumpTo(socket, sckClosing));
  }

  void reachWithDatagrams(Watched& socket, const std::string& state) {
    if (state != "closed") socket->Bind();
    settle();
    if (state != "error") return;
    socket->RemoteHost(u"10.0.0.5");
    socket->RemotePort(7);
    socket->SendData(Bytes(70000));
  }

  static std::int32_t numberOf(const std::string& state) {
    static const std::map<std::string, std::int32_t> numbers = {
        {"closed", 0},     {"open", 1},      {"listening", 2}, {"resolving", 4},
        {"connecting", 6}, {"connected", 7}, {"closing", 8},   {"error", 9}};
    return numbers.at(state);
  }

  /// Uses a member of the socket.
  void use(CEventSocket& socket, const std::string& operation) {
    Variant data;
    std::int32_t request = 0x7FFFFF0;
    const std::map<std::string, std::function<void()>> operations = {
        {"RemotePort", [&] { socket.RemotePort(80); }},
        {"RemoteHost", [&] { socket.RemoteHost(u"10.0.0.5"); }},
        {"LocalPort", [&] { socket.LocalPort(0); }},
        {"Tag", [&] { socket.Tag(u"x"); }},
        {"Protocol", [&] { socket.Protocol(ProtocolTCP); }},
        {"Connect", [&] { socket.Connect(u"10.0.0.5", 80); }},
        {"Bind", [&] { socket.Bind(); }},
        {"Listen", [&] { socket.Listen(); }},
        {"Accept", [&] { socket.Accept(request); }},
        {"CloseSck", [&] { socket.CloseSck(); }},
        {"SendData",
         [&] {
           if (socket.Protocol() == ProtocolUDP) {
             socket.RemoteHost(u"10.0.0.5");
             socket.RemotePort(80);
           }
           socket.SendData(u"x");
         }},
        {"GetData", [&] { socket.GetData(data); }},
        {"PeekData", [&] { socket.PeekData(data); }},
    };
    operations.at(operation)();
  }
};

/// What the row says of that state.
std::string expectation(const test::Row& row, const std::string& state) {
  const std::string operation = row.word("operation");
  if (row.is(state, "ok")) return "nothing";
  switch (row.number(state)) {
    case 40020:
      return wrongState(operation);
    case 40006:
      return wrongProtocolOrState(operation);
    case 10045:
      return "10045 CEventSocket.Listen: Operation not supported.";
    default:
      return "10022 CEventSocket.BindInternal: Invalid argument.";
  }
}

TEST_F(StateTest, MembersRaiseWhatTheTableSays) {
  for (const test::Row& row : test::Table::read("socket/state_rules.tsv")) {
    for (const std::string state : stateNames) {
      if (row.isNone(state)) continue;
      const auto socket = inState(state, row.word("protocol"));
      EXPECT_EQ(raised([&] { use(*socket->socket, row.word("operation")); }),
                expectation(row, state))
          << row.where() << ", " << state;
      const bool refused = !row.is(state, "ok") && row.word("operation") != "Listen" &&
                           row.word("operation") != "SendData";
      if (refused) {
        EXPECT_EQ((*socket)->State(), numberOf(state)) << row.where() << ", " << state;
        EXPECT_EQ(calls.lines(), Lines()) << row.where() << ", " << state;
      }
    }
  }
}

TEST_F(StateTest, TheStateOfARefusedPropertyIsLookedAtBeforeItsValue) {
  const auto socket = inState("open", "TCP");
  EXPECT_EQ(raised([&] { (*socket)->RemotePort(-1); }), wrongState("RemotePort"));
  EXPECT_EQ(raised([&] { (*socket)->LocalPort(-1); }), wrongState("LocalPort"));
  const auto datagrams = inState("open", "UDP");
  EXPECT_EQ(raised([&] { (*datagrams)->RemotePort(65536); }), outOfRange("RemotePort"));
}

TEST_F(StateTest, CloseSckLeadsToClosedFromEveryStateWithoutAnEvent) {
  for (const std::string protocol : {"TCP", "UDP"}) {
    for (const std::string state : stateNames) {
      if (protocol == "UDP" && state != "open" && state != "error") continue;
      const auto socket = inState(state, protocol);
      const bool hasSocket = (*socket)->SocketHandle() != -1;
      (*socket)->CloseSck();
      EXPECT_EQ((*socket)->State(), sckClosed);
      EXPECT_EQ((*socket)->SocketHandle(), -1);
      EXPECT_EQ((*socket)->LocalPort(), 0);
      EXPECT_EQ((*socket)->RemoteHostIP(), u"");
      settle();
      EXPECT_EQ(socket->log, Lines()) << state;
      if (!hasSocket) continue;
      EXPECT_EQ(std::count(trace.begin(), trace.end(), "STATE: sckClosing"), 1) << state;
      EXPECT_EQ(trace.back(), "STATE: sckClosed");
    }
  }
}

TEST_F(StateTest, LocalIpIsTheFieldInTwoStatesOnly) {
  for (const std::string state : stateNames) {
    const auto socket = inState(state, "TCP");
    EXPECT_EQ((*socket)->LocalIP(), u"192.168.1.20");
    EXPECT_EQ(calls.count("gethostbyname") > 0 && !calls.linesOf({"gethostbyname"}).empty(),
              state != "open" && state != "listening")
        << state;
  }
}

TEST_F(StateTest, NotificationsActInTheStateOfTheTableOnly) {
  for (const test::Row& row : test::Table::read("socket/notification_rules.tsv")) {
    const std::string protocol = row.word("protocol");
    for (const std::string state : stateNames) {
      if (protocol == "UDP" && state != "open" && state != "error") continue;
      if (state == "closed" || state == row.word("acts_in")) continue;
      const auto socket = inState(state, protocol);
      notify((*socket)->SocketHandle(), row.number("number"));
      machine.queue.dispatch();
      EXPECT_EQ(trace, Lines({row.quoted("trace_omitted")})) << row.where() << ", " << state;
      EXPECT_EQ(socket->log, Lines());
      EXPECT_EQ(calls.lines(), Lines());
      EXPECT_EQ((*socket)->State(), numberOf(state));
    }
  }
}

TEST_F(StateTest, NotificationsActInTheirState) {
  for (const test::Row& row : test::Table::read("socket/notification_rules.tsv")) {
    const auto socket = inState(row.word("acts_in"), row.word("protocol"));
    if (row.is("event", "FD_WRITE")) continue;  // needs something that waits; elsewhere
    notify((*socket)->SocketHandle(), row.number("number"));
    machine.queue.dispatch();
    ASSERT_FALSE(trace.empty()) << row.where();
    EXPECT_EQ(trace[0], row.quoted("trace_acting") + std::to_string((*socket)->SocketHandle()));
    EXPECT_FALSE(calls.lines().empty() && (*socket)->State() == numberOf(row.word("acts_in")))
        << row.where();
  }
}

TEST_F(StateTest, UnknownEventsAreIgnoredEverywhere) {
  for (const std::string state : stateNames) {
    if (state == "closed") continue;
    const auto socket = inState(state, "TCP");
    for (const std::int32_t event : {0, 3, 4, 64, 17, 65535}) {
      notify((*socket)->SocketHandle(), event);
      machine.queue.dispatch();
    }
    EXPECT_EQ(socket->log, Lines()) << state;
    EXPECT_EQ(calls.lines(), Lines()) << state;
    EXPECT_EQ((*socket)->State(), numberOf(state));
  }
}

TEST_F(StateTest, ErrorCodesAreReportedInEveryState) {
  for (const std::string state : stateNames) {
    if (state == "closed") continue;
    for (const std::int32_t event : {1, 2, 8, 16, 32, 4}) {
      const auto socket = inState(state, "TCP");
      notify((*socket)->SocketHandle(), event, 10054);
      machine.queue.dispatch();
      EXPECT_EQ(socket->log,
                Lines({"Error 10054 CEventSocket.PostSocket: Connection reset by peer."}))
          << state;
      EXPECT_EQ((*socket)->State(), sckError);
      EXPECT_EQ(trace, Lines({"STATE: sckError"}));
      EXPECT_EQ(calls.lines(), Lines());
    }
  }
}

TEST_F(StateTest, ALookUpsEndCountsInResolvingOnly) {
  for (const std::string state : stateNames) {
    if (state == "closed" || state == "resolving") continue;
    const auto socket = inState(state, "TCP");
    EXPECT_EQ((*socket)->WndProc(0, WM_RESOLVE_DONE, 1, 0), 0);
    EXPECT_EQ((*socket)->WndProc(0, WM_RESOLVE_DONE, 1, 11001 << 16), 0);
    EXPECT_EQ(socket->log, Lines()) << state;
    EXPECT_EQ(calls.lines(), Lines()) << state;
    EXPECT_EQ((*socket)->State(), numberOf(state));
  }
}

TEST_F(StateTest, StatesHaveTheNumbersOfTheTable) {
  const std::map<std::string, std::int32_t> states = {{"sckClosed", sckClosed},
                                                      {"sckOpen", sckOpen},
                                                      {"sckListening", sckListening},
                                                      {"sckResolvingHost", sckResolvingHost},
                                                      {"sckHostResolved", sckHostResolved},
                                                      {"sckConnecting", sckConnecting},
                                                      {"sckConnected", sckConnected},
                                                      {"sckClosing", sckClosing},
                                                      {"sckError", sckError}};
  const test::Table table = test::Table::read("socket/states.tsv");
  EXPECT_EQ(table.size(), states.size());
  for (const test::Row& row : table) {
    EXPECT_EQ(states.at(row.word("name")), row.number("number")) << row.where();
  }
}

}  // namespace
}  // namespace zev::socket_bench
