#include "socket/scripted_network.h"

// What a handler may do, tried within every event: the component goes on, nothing is left over,
// and nothing that has ended is entered.
namespace zev::socket_bench {
namespace {

constexpr const char* events[] = {"Connect",           "CloseSck",     "DataArrival", "Error",
                                  "ConnectionRequest", "SendProgress", "SendComplete"};

class HandlersTest : public ScriptedTest {
 protected:
  HandlersTest() {
    network.server("10.0.0.5", 80);
    network.server("10.0.0.6", 80).refuse();
  }
  void TearDown() override {
    others.clear();
    subject.reset();
    ScriptedTest::TearDown();
  }

  /// Runs the action whenever that event comes.
  void within(const std::string& event, const std::function<void()>& action) {
    SocketEvents& then = subject->then;
    const auto run = [this, action] {
      ++runs;
      action();
    };
    if (event == "Connect") then.Connect = run;
    if (event == "CloseSck") then.CloseSck = run;
    if (event == "DataArrival") then.DataArrival = [run](std::int32_t) { run(); };
    if (event == "Error") then.Error = [run](const SocketErrorArguments&) { run(); };
    if (event == "ConnectionRequest") then.ConnectionRequest = [run](std::int32_t) { run(); };
    if (event == "SendProgress") then.SendProgress = [run](std::int32_t, std::int32_t) { run(); };
    if (event == "SendComplete") then.SendComplete = run;
  }

  /// Makes that event come to the subject.
  void cause(const std::string& event) {
    Watched& socket = *subject;
    if (event == "ConnectionRequest") {
      socket->Listen();
      network.connectFrom("10.0.0.9", "192.168.1.20",
                          static_cast<std::uint16_t>(socket->LocalPort()));
      return settle();
    }
    socket->Connect(event == "Error" ? u"10.0.0.6" : u"10.0.0.5", 80);
    settle();
    if (event == "Connect" || event == "Error") return;
    simulated::StreamServer& far = network.server("10.0.0.5", 80);
    simulated::RemoteStream& peer = far.connection(far.connections() - 1);
    if (event == "CloseSck") peer.finish();
    if (event == "DataArrival") peer.send("hello");
    if (event.starts_with("Send")) {
      const auto raw = socket.socket.get();
      ignoringErrors([&] { raw->SendData(u"hello"); });
    }
    settle();
  }

  /// Tries an action within every event, each with a subject of its own.
  void tryWithin(const std::function<void()>& action) {
    for (const std::string event : events) {
      SCOPED_TRACE(event);
      others.clear();
      subject = std::make_unique<Watched>(module);
      runs = 0;
      within(event, action);
      cause(event);
      EXPECT_GE(runs, 1);
      if (subject->socket != nullptr) {
        subject->then = {};
        ignoringErrors([&] { subject->socket->CloseSck(); });
      }
      settle();
    }
  }

  std::unique_ptr<Watched> subject;
  std::vector<std::unique_ptr<Watched>> others;
  int runs = 0;
};

TEST_F(HandlersTest, MayClose) {
  tryWithin([&] {
    (*subject)->CloseSck();
    EXPECT_EQ((*subject)->State(), sckClosed);
  });
}

TEST_F(HandlersTest, MayLetGoOfTheSocket) {
  tryWithin([&] { subject->socket.reset(); });
}

TEST_F(HandlersTest, MayCloseAndLetGo) {
  tryWithin([&] {
    if (subject->socket != nullptr) (*subject)->CloseSck();
    subject->socket.reset();
  });
}

TEST_F(HandlersTest, MayRaiseAnError) {
  tryWithin([&] { throw RuntimeError(ErrorNumber::TypeMismatch); });
  EXPECT_NO_THROW(module.rethrowEscaped());
}

TEST_F(HandlersTest, MayMakeOtherSockets) {
  tryWithin([&] {
    for (int count = 0; count < 20; ++count) {
      others.push_back(std::make_unique<Watched>(module));
      (*others.back())->Bind();
    }
  });
}

TEST_F(HandlersTest, MayEndOtherSockets) {
  for (const std::string event : events) {
    SCOPED_TRACE(event);
    subject = std::make_unique<Watched>(module);
    for (int count = 0; count < 10; ++count) {
      others.push_back(std::make_unique<Watched>(module));
      (*others.back())->Bind();
    }
    runs = 0;
    within(event, [&] { others.clear(); });
    cause(event);
    EXPECT_GE(runs, 1);
  }
}

TEST_F(HandlersTest, MayDispatchMessages) {
  tryWithin([&] { settle(); });
}

TEST_F(HandlersTest, MayCloseWithinANestedDispatch) {
  tryWithin([&] {
    notify((*subject)->SocketHandle(), 1, 10054);
    subject->then = {};
    subject->then.Error = [&](const SocketErrorArguments&) { (*subject)->CloseSck(); };
    settle();
    EXPECT_EQ((*subject)->State(), sckClosed);
  });
}

TEST_F(HandlersTest, MayCloseAndConnectAnew) {
  tryWithin([&] {
    subject->then = {};
    (*subject)->CloseSck();
    (*subject)->Connect(u"10.0.0.5", 80);
    EXPECT_EQ((*subject)->State(), sckConnecting);
  });
}

TEST_F(HandlersTest, MayCloseAndListen) {
  tryWithin([&] {
    subject->then = {};
    (*subject)->CloseSck();
    (*subject)->Listen();
    EXPECT_EQ((*subject)->State(), sckListening);
  });
}

TEST_F(HandlersTest, MayReplaceTheProcedures) {
  tryWithin([&] {
    subject->socket->events = {};
    subject->then = {};
  });
}

TEST_F(HandlersTest, MayAcceptOnAnotherInstance) {
  others.push_back(std::make_unique<Watched>(module));
  Watched& listener = *others.back();
  listener->Listen();
  for (const std::string event : events) {
    SCOPED_TRACE(event);
    subject = std::make_unique<Watched>(module);
    Watched server(module);
    runs = 0;
    listener.then.ConnectionRequest = [&](std::int32_t request) { server->Accept(request); };
    within(event, [&] {
      if (server->State() != sckClosed) return;
      network.connectFrom("10.0.0.9", "192.168.1.20",
                          static_cast<std::uint16_t>(listener->LocalPort()));
      settle();
      EXPECT_EQ(server->State(), sckConnected);
    });
    cause(event);
    EXPECT_GE(runs, 1);
  }
}

TEST_F(HandlersTest, EndOfTheProgramReachesTheTopOfTheLoop) {
  for (const std::string event : events) {
    if (event.starts_with("Send")) continue;  // raised within the caller's own SendData
    SCOPED_TRACE(event);
    subject = std::make_unique<Watched>(module);
    within(event, [] { throw ProgramEnd{EndKind::Exit}; });
    cause(event);
    EXPECT_THROW(module.rethrowEscaped(), ProgramEnd);
    subject->then = {};
  }
}

TEST_F(HandlersTest, AnErrorsBoxComesBehindWhateverTheHandlerDid) {
  network.server("10.0.0.6", 80).refuse();
  const std::function<void(Watched&)> actions[] = {
      [](Watched& socket) { socket->CloseSck(); },
      [](Watched& socket) { socket.socket.reset(); },
      [&](Watched&) { settle(); },
  };
  std::size_t boxes = 0;
  for (const auto& action : actions) {
    Watched socket(module);
    socket.then.Error = [&](const SocketErrorArguments& arguments) {
      arguments.CancelDisplay = false;
      action(socket);
    };
    socket->Connect(u"10.0.0.6", 80);
    settle();
    EXPECT_EQ(dialogs.boxes.size(), ++boxes);
  }
  Watched raising(module);
  raising.then.Error = [&](const SocketErrorArguments& arguments) {
    arguments.CancelDisplay = false;
    throw RuntimeError(ErrorNumber::TypeMismatch);
  };
  raising->Connect(u"10.0.0.6", 80);
  settle();
  EXPECT_EQ(dialogs.boxes.size(), boxes) << "a raise ends the dispatch";
}

TEST_F(HandlersTest, EveryReportsBoxHasItsOwnSourceAsTitle) {
  network.failName("lost.example", 11001);
  Watched socket(module);
  socket.then.Error = [](const SocketErrorArguments& arguments) {
    arguments.CancelDisplay = false;
  };
  socket->Connect(u"lost.example", 80);
  settle();
  socket->CloseSck();
  calls.fail("WSAAsyncGetHostByName", 10055);
  socket->Connect(u"lost.example", 80);
  socket->CloseSck();
  calls.fail("socket", 10024);
  socket->Bind();
  Lines titles;
  for (const auto& box : dialogs.boxes) titles.push_back(toUtf8(box.title));
  EXPECT_EQ(titles, Lines({"CEventSocket.ConnectToIP", "CEventSocket.ResolveIfHostname",
                           "CEventSocket.SocketExists"}));
}

}  // namespace
}  // namespace zev::socket_bench
