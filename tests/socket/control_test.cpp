#include "socket/socket_control.h"

#include "socket/socket_fixture.h"

// The control around a socket: members and events passed on, stored properties, its looks.
namespace zev::socket_bench {
namespace {

/// A control whose events are recorded.
class WatchedControl : public Recorder {
 public:
  std::unique_ptr<Socket> control;

  explicit WatchedControl(modEventSocket& module) : control(std::make_unique<Socket>(module)) {
    watch(control->events);
  }
  Socket* operator->() const { return control.get(); }
};

class ControlTest : public SocketTest {
 protected:
  /// A control that listens, one that connects to it, and one that takes the connection.
  void connectControls(WatchedControl& listener, WatchedControl& client, WatchedControl& server) {
    listener->Listen();
    listener.then.ConnectionRequest = [&](std::int32_t request) { server->Accept(request); };
    client->Connect(listener->LocalIP(), listener->LocalPort());
    ASSERT_TRUE(pumpUntil(
        [&] { return client->State() == sckConnected && server->State() == sckConnected; }));
  }
};

// ---- forwarding

TEST_F(ControlTest, CreatesOneSocketAndStartsTheService) {
  const WatchedControl control(module);
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_EQ(calls.count("WSAStartup"), 1);
  EXPECT_EQ(control->State(), sckClosed);
  EXPECT_EQ(control->SocketHandle(), -1);
}

TEST_F(ControlTest, ForwardsProperties) {
  const WatchedControl control(module);
  control->RemotePort(80);
  control->RemoteHost(u"host.example");
  control->LocalPort(4711);
  control->Tag(u"mine");
  control->Protocol(ProtocolUDP);
  EXPECT_EQ(control->RemotePort(), 80);
  EXPECT_EQ(control->RemoteHost(), u"host.example");
  EXPECT_EQ(control->RemoteHostIP(), u"");
  EXPECT_EQ(control->LocalPort(), 4711);
  EXPECT_EQ(control->Tag(), u"mine");
  EXPECT_EQ(control->Protocol(), ProtocolUDP);
  EXPECT_EQ(control->BytesReceived(), 0);
  const Watched plain(module);
  EXPECT_EQ(control->LocalHostName(), plain->LocalHostName());
  EXPECT_EQ(control->LocalIP(), plain->LocalIP());
}

TEST_F(ControlTest, ErrorsGoUpUnchanged) {
  const WatchedControl control(module);
  EXPECT_EQ(raised([&] { control->RemotePort(-1); }), outOfRange("RemotePort"));
  EXPECT_EQ(raised([&] { control->LocalPort(65536); }), outOfRange("LocalPort"));
  EXPECT_EQ(raised([&] { control->Connect(u"127.0.0.1", 0); }), outOfRange("Connect"));
  EXPECT_EQ(raised([&] { control->Connect(u"127.0.0.1", u"http"); }), unsupported("Connect"));
  EXPECT_EQ(raised([&] { control->Bind(u"http"); }), unsupported("BindInternal"));
  EXPECT_EQ(raised([&] { control->SendData(u"x"); }), wrongProtocolOrState("SendData"));
  Variant data;
  EXPECT_EQ(raised([&] { control->GetData(data); }), wrongProtocolOrState("GetData"));
  EXPECT_EQ(raised([&] { control->PeekData(data); }), wrongProtocolOrState("PeekData"));
  control->Bind();
  std::int32_t request = 5;
  EXPECT_EQ(raised([&] { control->Bind(); }), wrongState("Bind"));
  EXPECT_EQ(raised([&] { control->Connect(); }), wrongState("Connect"));
  EXPECT_EQ(raised([&] { control->Accept(request); }), wrongState("Accept"));
  EXPECT_EQ(raised([&] { control->RemotePort(1); }), wrongState("RemotePort"));
  EXPECT_EQ(raised([&] { control->RemoteHost(u"x"); }), wrongState("RemoteHost"));
  EXPECT_EQ(raised([&] { control->LocalPort(1); }), wrongState("LocalPort"));
  EXPECT_EQ(raised([&] { control->Protocol(ProtocolUDP); }), wrongState("Protocol"));
  control->Listen();
  EXPECT_EQ(raised([&] { control->Listen(); }), wrongState("Listen"));
}

TEST_F(ControlTest, MissingArgumentsStayMissing) {
  WatchedControl control(module);
  control->RemoteHost(u"127.0.0.1");
  control->RemotePort(9);
  control->Connect();
  EXPECT_EQ(control->RemoteHost(), u"127.0.0.1");
  EXPECT_EQ(control->State(), sckConnecting);
  control->CloseSck();
  control->LocalPort(0);
  control->Bind();
  EXPECT_EQ(control->State(), sckOpen);
  EXPECT_NE(control->LocalPort(), 0);
}

TEST_F(ControlTest, CarriesAConversation) {
  WatchedControl listener(module), client(module), server(module);
  ASSERT_NO_FATAL_FAILURE(connectControls(listener, client, server));
  EXPECT_EQ(client.log, Lines({"Connect"}));
  EXPECT_EQ(listener.log, Lines({"ConnectionRequest"}));
  EXPECT_NE(server->SocketHandle(), -1);
  EXPECT_EQ(server->RemoteHostIP(), client->RemoteHostIP());

  client->SendData(std::int32_t{0x44434241});
  EXPECT_EQ(client.log, Lines({"Connect", "SendProgress 4 0", "SendComplete"}));
  ASSERT_TRUE(pumpUntil([&] { return server.has("DataArrival 4"); }));
  EXPECT_EQ(server->BytesReceived(), 4);

  Variant text = Text(), varType = 3, maxLen = u"no number";
  EXPECT_EQ(server->PeekData(text, varType, maxLen), 4);
  EXPECT_EQ(text, Variant(u"ABCD"));
  EXPECT_EQ(varType, Variant(8)) << "by reference";
  EXPECT_EQ(maxLen, Variant(4)) << "by reference";
  Variant bytes, shortMax = 1, missing = Variant::missing();
  EXPECT_EQ(server->GetData(bytes, missing, shortMax), 1);
  EXPECT_EQ(bytes, Variant(bytesOf("A")));
  Variant number, integer = 2;
  EXPECT_EQ(server->PeekData(number, integer), 2);
  EXPECT_EQ(number, Variant(std::int16_t{0x4342}));
  Variant rest, byte = 17;
  EXPECT_EQ(server->GetData(rest, byte), 1);
  EXPECT_EQ(rest, Variant(std::uint8_t{0x42}));
  Variant last;
  EXPECT_EQ(server->PeekData(last), 2);
  EXPECT_EQ(server->GetData(last), 2);

  client->CloseSck();
  ASSERT_TRUE(pumpUntil([&] { return server.has("CloseSck"); }));
  EXPECT_EQ(server->State(), sckClosing);
}

// ---- events

TEST_F(ControlTest, TheErrorStaysByReferenceThroughBothLevels) {
  WatchedControl bound(module), control(module);
  bound->Bind();
  control.then.Error = [](const SocketErrorArguments& arguments) {
    arguments.Description = u"changed";
    arguments.CancelDisplay = false;
  };
  control->Connect(bound->LocalIP(), bound->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return control->State() == sckError; }));
  EXPECT_EQ(control.log, Lines({"Error 10061 CEventSocket.PostSocket: Connection refused."}));
  ASSERT_EQ(dialogs.boxes.size(), 1u);
  EXPECT_EQ(dialogs.boxes[0].text, u"Connection refused.");
  EXPECT_EQ(dialogs.boxes[0].style, 0);
  EXPECT_EQ(dialogs.boxes[0].title, u"CEventSocket.PostSocket");
}

TEST_F(ControlTest, WithoutProceduresEventsGoNowhere) {
  Socket listener(module), client(module);
  listener.Listen();
  client.Connect(listener.LocalIP(), listener.LocalPort());
  EXPECT_TRUE(pumpUntil([&] { return client.State() == sckClosing; }));
  EXPECT_TRUE(dialogs.boxes.empty());
}

TEST_F(ControlTest, EndingAConnectedControlClosesWithoutAnEvent) {
  WatchedControl listener(module), client(module), server(module);
  ASSERT_NO_FATAL_FAILURE(connectControls(listener, client, server));
  client.log.clear();
  client.control.reset();
  EXPECT_EQ(client.log, Lines());
  EXPECT_EQ(calls.count("closesocket"), 1);
  ASSERT_TRUE(pumpUntil([&] { return server.has("CloseSck"); }));
}

TEST_F(ControlTest, AHandlerMayEndItsControl) {
  WatchedControl listener(module), client(module), server(module);
  ASSERT_NO_FATAL_FAILURE(connectControls(listener, client, server));
  client.log.clear();
  client.then.SendProgress = [&](std::int32_t, std::int32_t) { client.control.reset(); };
  client->SendData(u"hello");
  EXPECT_EQ(client.log, Lines({"SendProgress 5 0"})) << "a control that has gone raises nothing";
  EXPECT_EQ(module.InstanceCount(), 2);

  server.then.DataArrival = [&](std::int32_t) { server.control.reset(); };
  ASSERT_TRUE(pumpUntil([&] { return server.control == nullptr; }));
  settle();
  EXPECT_EQ(server.log, Lines({"DataArrival 5"}));
  listener.then.ConnectionRequest = [&](std::int32_t) { listener.control.reset(); };
  Watched last(module);
  last->Connect(listener->LocalIP(), listener->LocalPort());
  ASSERT_TRUE(pumpUntil([&] { return listener.control == nullptr; }));
}

TEST_F(ControlTest, EachElementOfAnArrayRaisesItsOwnEvents) {
  Watched listener(module), server(module), other(module);
  listener->Listen();
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    (server->State() == sckClosed ? server : other)->Accept(request);
  };
  std::vector<std::unique_ptr<WatchedControl>> WS;
  Lines form;
  for (int index = 0; index < 2; ++index) {
    WS.push_back(std::make_unique<WatchedControl>(module));
    WS.back()->then.Connect = [&form, index] {
      form.push_back("Connect " + std::to_string(index));
    };
    WS.back()->then.DataArrival = [&form, index](std::int32_t bytes) {
      form.push_back("DataArrival " + std::to_string(index) + ' ' + std::to_string(bytes));
    };
    (*WS.back())->Connect(listener->LocalIP(), listener->LocalPort());
    ASSERT_TRUE(pumpUntil([&] { return (*WS.back())->State() == sckConnected; }));
    settle();
  }
  other->SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return form.size() == 3; }));
  settle();
  EXPECT_EQ(form, Lines({"Connect 0", "Connect 1", "DataArrival 1 3"}));
  EXPECT_EQ((*WS[0])->BytesReceived(), 0);
  EXPECT_EQ((*WS[0])->State(), sckConnected);
}

TEST_F(ControlTest, AHostReusesAnElement) {
  Watched listener(module), server(module);
  listener->Listen();
  WatchedControl element(module);
  listener.then.ConnectionRequest = [&](std::int32_t request) {
    server->CloseSck();
    server->Accept(request);
  };
  for (int round = 0; round < 3; ++round) {
    if (element->State() != sckClosed) element->CloseSck();
    element->RemoteHost(listener->LocalIP());
    element->RemotePort(listener->LocalPort());
    element->Connect();
    ASSERT_TRUE(pumpUntil([&] { return element->State() == sckConnected; })) << round;
    settle();
  }
}

// ---- stored properties

struct StoredRow {
  const char16_t* key;
  Variant value;
};

TEST_F(ControlTest, DefaultsAreNotStored) {
  const Socket control(module);
  PropertyBag bag;
  control.UserControl_WriteProperties(bag);
  EXPECT_TRUE(bag.contents().empty());
}

TEST_F(ControlTest, AnEmptyBagGivesTheDefaultsOfTheTable) {
  Socket control(module);
  control.LocalPort(1);
  control.Protocol(ProtocolUDP);
  control.RemoteHost(u"x");
  control.RemotePort(2);
  control.Tag(u"y");
  control.UserControl_ReadProperties(PropertyBag());
  EXPECT_EQ(control.LocalPort(), 0);
  EXPECT_EQ(control.Protocol(), 0);
  EXPECT_EQ(control.RemoteHost(), u"");
  EXPECT_EQ(control.RemotePort(), 0);
  EXPECT_EQ(control.Tag(), u"");
}

TEST_F(ControlTest, AValueAtItsDefaultIsTakenOutOfTheBag) {
  Socket control(module);
  PropertyBag bag;
  control.Tag(u"mine");
  control.UserControl_WriteProperties(bag);
  control.Tag(u"");
  control.UserControl_WriteProperties(bag);
  EXPECT_TRUE(bag.contents().empty());
}

TEST_F(ControlTest, APortOfTheSystemsChoiceIsStored) {
  Socket control(module);
  control.Bind();
  PropertyBag bag;
  control.UserControl_WriteProperties(bag);
  ASSERT_EQ(bag.contents().size(), 1u);
  EXPECT_EQ(bag.contents()[0].first, u"LocalPort");
  EXPECT_EQ(bag.contents()[0].second, Variant(control.LocalPort()));
}

TEST_F(ControlTest, StoredValuesFollowTheRulesOfTheMembers) {
  const StoredRow rows[] = {{u"LocalPort", 65536}, {u"LocalPort", -1}, {u"RemotePort", 65536}};
  for (const StoredRow& row : rows) {
    Socket control(module);
    PropertyBag bag;
    bag.WriteProperty(row.key, row.value, 0);
    bag.WriteProperty(u"Tag", u"behind", u"");
    EXPECT_EQ(raised([&] { control.UserControl_ReadProperties(bag); }),
              outOfRange(toUtf8(row.key)));
    EXPECT_EQ(control.Tag(), u"") << "the first that is refused ends the reading";
  }
}

TEST_F(ControlTest, PropertiesInFrontOfARefusedOneAreTaken) {
  Socket control(module);
  PropertyBag bag;
  bag.WriteProperty(u"LocalPort", 5, 0);
  bag.WriteProperty(u"Protocol", 77, 0);
  bag.WriteProperty(u"RemoteHost", u"host.example", u"");
  bag.WriteProperty(u"RemotePort", 65536, 0);
  EXPECT_EQ(raised([&] { control.UserControl_ReadProperties(bag); }), outOfRange("RemotePort"));
  EXPECT_EQ(control.LocalPort(), 5);
  EXPECT_EQ(control.Protocol(), 77) << "not examined";
  EXPECT_EQ(control.RemoteHost(), u"host.example");
}

// ---- looks

TEST_F(ControlTest, AnySizeIs420By420) {
  Socket control(module);
  EXPECT_EQ(control.Width(), 420);
  EXPECT_EQ(control.Height(), 420);
  for (const auto& [width, height] :
       {std::pair{0, 0}, {1, 5000}, {420, 421}, {-3, 17}, {INT32_MAX, INT32_MIN}}) {
    control.UserControl_Resize(width, height);
    EXPECT_EQ(control.Width(), 420);
    EXPECT_EQ(control.Height(), 420);
  }
}

std::uint32_t numberAt(const Bytes& bytes, std::size_t place, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t index = size; index-- > 0;) number = number << 8 | bytes[place + index];
  return number;
}

TEST_F(ControlTest, ThePictureIsABitmapFileOf28By28In24Bits) {
  const Bytes file = Socket::picture();
  ASSERT_EQ(file.size(), 54u + 28 * 28 * 3);
  EXPECT_EQ(file[0], 'B');
  EXPECT_EQ(file[1], 'M');
  EXPECT_EQ(numberAt(file, 2, 4), file.size());
  EXPECT_EQ(numberAt(file, 6, 4), 0u);
  EXPECT_EQ(numberAt(file, 10, 4), 54u);
  EXPECT_EQ(numberAt(file, 14, 4), 40u);
  EXPECT_EQ(numberAt(file, 18, 4), 28u);
  EXPECT_EQ(numberAt(file, 22, 4), 28u);
  EXPECT_EQ(numberAt(file, 26, 2), 1u);
  EXPECT_EQ(numberAt(file, 28, 2), 24u);
  EXPECT_EQ(numberAt(file, 30, 4), 0u) << "not compressed";
  EXPECT_EQ(numberAt(file, 34, 4), 28u * 28 * 3);
}

TEST_F(ControlTest, ThePictureIsAnEmblemWithinAGreyFrame) {
  const Bytes file = Socket::picture();
  const auto pixel = [&](std::size_t x, std::size_t y) {
    return numberAt(file, 54 + (y * 28 + x) * 3, 3);
  };
  const auto isGrey = [](std::uint32_t colour) {
    return (colour & 0xFF) == (colour >> 8 & 0xFF) && (colour & 0xFF) == colour >> 16;
  };
  for (std::size_t place = 0; place < 28; ++place) {
    for (const std::uint32_t each :
         {pixel(place, 0), pixel(place, 27), pixel(0, place), pixel(27, place)}) {
      EXPECT_EQ(each, pixel(0, 0));
      EXPECT_TRUE(isGrey(each));
    }
  }
  int ofEmblem = 0;
  for (std::size_t y = 1; y < 27; ++y) {
    for (std::size_t x = 1; x < 27; ++x) ofEmblem += isGrey(pixel(x, y)) ? 0 : 1;
  }
  EXPECT_GT(ofEmblem, 50);
  EXPECT_NE(pixel(1, 1), pixel(0, 0));
}

}  // namespace
}  // namespace zev::socket_bench
