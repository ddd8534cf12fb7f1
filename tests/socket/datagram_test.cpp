#include "socket/socket_fixture.h"
#include "socket/variant_values.h"

// Datagrams: sending, the one event for each, fetching within it.
namespace zev::socket_bench {
namespace {

class DatagramTest : public SocketTest {
 protected:
  void SetUp() override {
    bindUdp(*receiver);
    (*sender)->Protocol(ProtocolUDP);
    aimAt(*sender, *receiver);
  }
  void TearDown() override {
    sender.reset();
    receiver.reset();
    SocketTest::TearDown();
  }

  CEventSocket& from() { return *sender->socket; }
  CEventSocket& to() { return *receiver->socket; }

  /// Sends a datagram; what the receiver's handler does with it is `within`.
  void deliver(const std::string& bytes, std::function<void()> within) {
    bool ran = false;
    receiver->then.DataArrival = [&](std::int32_t total) {
      ran = true;
      EXPECT_EQ(total, static_cast<std::int32_t>(bytes.size()));
      within();
    };
    from().SendData(bytesOf(bytes));
    EXPECT_TRUE(pumpUntil([&] { return ran; }));
    receiver->then.DataArrival = {};
    settle();
  }

  std::unique_ptr<Watched> receiver = std::make_unique<Watched>(module);
  std::unique_ptr<Watched> sender = std::make_unique<Watched>(module);
};

const char* const tooLong = "10040 CEventSocket.RecvData: Message too long.";

// ---- SendData

TEST_F(DatagramTest, SendingOpensAndBindsTheSocket) {
  from().SendData(u"hello");
  EXPECT_EQ(from().State(), sckOpen);
  EXPECT_GT(from().LocalPort(), 0);
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 5"); }));
  settle();
  EXPECT_EQ(sender->log, Lines()) << "neither progress nor completion";
  EXPECT_EQ(receiver->log, Lines({"DataArrival 5"}));
}

TEST_F(DatagramTest, NothingIsSentOfNothingYetTheSocketOpens) {
  for (const Variant& nothing : {Variant(u""), Variant(Bytes())}) {
    Watched socket(module);
    socket->Protocol(ProtocolUDP);
    socket->SendData(nothing);
    EXPECT_EQ(socket->State(), sckOpen);
    EXPECT_GT(socket->LocalPort(), 0);
  }
  settle();
  EXPECT_EQ(calls.count("sendto"), 0);
  EXPECT_EQ(receiver->log, Lines());
}

TEST_F(DatagramTest, AnotherTypeIsRefusedBehindTheOpening) {
  for (const Variant& value : {Variant(), Variant(Variant::Null()), Variant(Variant::Object()),
                               Variant(std::vector<std::int32_t>{1})}) {
    Watched socket(module);
    socket->Protocol(ProtocolUDP);
    EXPECT_EQ(raised([&] { socket->SendData(value); }), unsupported("SendData"));
    EXPECT_EQ(socket->State(), sckOpen);
  }
  EXPECT_EQ(calls.count("sendto"), 0);
}

TEST_F(DatagramTest, OneSendDataIsOneDatagram) {
  from().SendData(u"hello");
  calls.clearLines();
  const Bytes much(30000, 7);
  from().SendData(much);
  EXPECT_EQ(calls.linesOf({"sendto"}).size(), 1u);
  EXPECT_EQ(calls.linesOf({"send"}), Lines());
  EXPECT_EQ(calls.linesOf({"bind", "socket"}), Lines()) << "bound once";
}

TEST_F(DatagramTest, WithoutARemoteHostItRaises10047) {
  from().RemoteHost(u"");
  EXPECT_EQ(raised([&] { from().SendData(u"lost"); }),
            "10047 CEventSocket.SendBufferedDataUDP: Address family not supported by protocol "
            "family.");
  EXPECT_EQ(from().State(), sckOpen);
  aimAt(*sender, *receiver);
  from().SendData(u"kept");
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 4"); }));
  EXPECT_EQ(receiver->log, Lines({"DataArrival 4"})) << "what was refused is gone";
}

TEST_F(DatagramTest, AHostThatIsNotFoundRaises40014) {
  from().RemoteHost(u"nobody.invalid");
  EXPECT_EQ(raised([&] { from().SendData(u"lost"); }),
            "40014 CEventSocket.SendBufferedDataUDP: Invalid argument");
  aimAt(*sender, *receiver);
  from().SendData(u"kept");
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 4"); }));
}

TEST_F(DatagramTest, TheHostIsLookedUpByName) {
  Watched local(module);
  local->Protocol(ProtocolUDP);
  local->Bind(0, u"127.0.0.1");
  Watched other(module);
  other->Protocol(ProtocolUDP);
  other->Bind(0, u"127.0.0.1");
  other->RemoteHost(u"localhost");
  other->RemotePort(local->LocalPort());
  other->SendData(u"x");
  EXPECT_TRUE(pumpUntil([&] { return local.has("DataArrival 1"); }));
  EXPECT_EQ(other->RemoteHost(), u"localhost");
}

TEST_F(DatagramTest, TheRemoteEndMayChangeWhileOpen) {
  Watched second(module);
  bindUdp(second);
  from().SendData(u"one");
  aimAt(*sender, second);
  from().SendData(u"seven 7");
  ASSERT_TRUE(pumpUntil([&] { return second.has("DataArrival 7"); }));
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 3"); }));
}

TEST_F(DatagramTest, ARefusedDatagramIsReported) {
  from().SendData(Bytes(70000));
  EXPECT_EQ(sender->log,
            Lines({"Error 10040 CEventSocket.SendBufferedDataUDP: Message too long."}));
  EXPECT_EQ(from().State(), sckError);
  EXPECT_EQ(raised([&] { from().SendData(u"x"); }),
            "10022 CEventSocket.BindInternal: Invalid argument.")
      << "it binds the socket at hand again";
  EXPECT_EQ(from().State(), sckError);
  from().CloseSck();
  from().SendData(u"x");
  EXPECT_EQ(from().State(), sckOpen);
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 1"); }));
  EXPECT_EQ(receiver->log, Lines({"DataArrival 1"})) << "nothing waited in the buffer";
}

TEST_F(DatagramTest, TheErrorsHandlerMayCloseAndSendAnew) {
  sender->then.Error = [&](const SocketErrorArguments&) {
    from().CloseSck();
    from().SendData(u"after all");
  };
  from().SendData(Bytes(70000));
  EXPECT_EQ(from().State(), sckOpen);
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 9"); }));
}

// ---- fetching

TEST_F(DatagramTest, FetchingTellsTheSender) {
  to().RemoteHost(u"before");
  to().RemotePort(1);
  deliver("hello", [&] {
    EXPECT_EQ(to().BytesReceived(), 5);
    EXPECT_EQ(to().RemotePort(), 1) << "not before it is read";
    Variant text = Text();
    EXPECT_EQ(to().GetData(text), 5);
    EXPECT_EQ(text, Variant(u"hello"));
    EXPECT_EQ(to().BytesReceived(), 0);
  });
  EXPECT_EQ(to().RemotePort(), from().LocalPort());
  EXPECT_EQ(to().RemoteHostIP(), from().LocalIP());
  EXPECT_EQ(to().RemoteHost(), u"");
}

TEST_F(DatagramTest, AReplyNeedsTheHostSet) {
  deliver("hello", [&] {
    Variant data;
    to().GetData(data);
    EXPECT_EQ(raised([&] { to().SendData(u"reply"); }),
              "10047 CEventSocket.SendBufferedDataUDP: Address family not supported by protocol "
              "family.");
    to().RemoteHost(to().RemoteHostIP());
    to().SendData(u"reply!");
  });
  EXPECT_TRUE(pumpUntil([&] { return sender->has("DataArrival 6"); }));
}

TEST_F(DatagramTest, NumbersArriveInTheirMemoryForm) {
  for (const Variant& number : numbers) {
    Variant target = blankOf(number);
    std::int32_t size = 0;
    receiver->then.DataArrival = [&](std::int32_t total) {
      size = total;
      Variant peeked, varType = typeOf(number);
      EXPECT_EQ(to().PeekData(peeked, varType), total);
      EXPECT_EQ(peeked, number);
      EXPECT_EQ(to().GetData(target), total);
    };
    from().SendData(number);
    ASSERT_TRUE(pumpUntil([&] { return size != 0; }));
    EXPECT_EQ(target, number);
  }
}

TEST_F(DatagramTest, EmptyTargetsTakeTheTypeAskedFor) {
  for (const Variant& number : numbers) {
    Variant target, varType = typeOf(number);
    receiver->then.DataArrival = [&](std::int32_t total) {
      EXPECT_EQ(to().GetData(target, varType), total);
    };
    from().SendData(number);
    ASSERT_TRUE(pumpUntil([&] { return target.type() != VariantType::Empty; }));
    EXPECT_EQ(target, number);
  }
  deliver("abc", [&] {
    Variant bytes;
    EXPECT_EQ(to().GetData(bytes), 3);
    EXPECT_EQ(bytes, Variant(bytesOf("abc")));
  });
  deliver("abc", [&] {
    Variant text, varType = 8;
    EXPECT_EQ(to().GetData(text, varType), 3);
    EXPECT_EQ(text, Variant(u"abc"));
  });
}

TEST_F(DatagramTest, TheTargetsTypeHasTheLastWord) {
  deliver("abcd", [&] {
    Variant number = std::int32_t{0}, varType = 8;
    EXPECT_EQ(to().GetData(number, varType), 4);
    EXPECT_EQ(number, Variant(std::int32_t{0x64636261}));
    EXPECT_EQ(varType, Variant(3));
  });
}

TEST_F(DatagramTest, ANumberOfAShortDatagramIsLeftAlone) {
  deliver("abc", [&] {
    Variant number = std::int32_t{77};
    EXPECT_EQ(to().GetData(number), 0);
    EXPECT_EQ(number, Variant(std::int32_t{77}));
    EXPECT_EQ(to().BytesReceived(), 3) << "it still waits";
    Variant text = Text();
    EXPECT_EQ(to().GetData(text), 3);
  });
}

TEST_F(DatagramTest, ANumberOfALongDatagramIsStoredAndRaises10040) {
  deliver("abcdef", [&] {
    Variant number = std::int32_t{0};
    EXPECT_EQ(raised([&] { to().GetData(number); }), tooLong);
    EXPECT_EQ(number, Variant(std::int32_t{0x64636261}));
    EXPECT_EQ(to().BytesReceived(), 0) << "the rest is lost";
  });
  EXPECT_EQ(to().RemotePort(), from().LocalPort()) << "the sender is known even so";
}

TEST_F(DatagramTest, OtherTypesRaise) {
  deliver("abcdef", [&] {
    Variant target, varType = 9;
    EXPECT_EQ(raised([&] { to().GetData(target, varType); }), unsupported("RecvData"));
    Variant null = Variant::Null();
    EXPECT_EQ(raised([&] { to().GetData(null); }), unsupported("RecvData"));
    EXPECT_EQ(to().BytesReceived(), 6);
  });
}

TEST_F(DatagramTest, AShortMaxLenGivesTheFrontAndRaises10040) {
  deliver("abcdef", [&] {
    Variant text = Text(), varType = Variant::missing(), maxLen = 4;
    EXPECT_EQ(raised([&] { to().GetData(text, varType, maxLen); }), tooLong);
    EXPECT_EQ(text, Variant(u"abcd"));
    EXPECT_EQ(to().BytesReceived(), 0);
  });
}

TEST_F(DatagramTest, AMaxLenOf0DropsTheDatagramAndRaises10040) {
  for (const bool peek : {false, true}) {
    deliver("abcdef", [&] {
      Variant text = u"before", varType = Variant::missing(), maxLen = 0;
      EXPECT_EQ(raised([&] {
                  peek ? to().PeekData(text, varType, maxLen) : to().GetData(text, varType, maxLen);
                }),
                tooLong);
      EXPECT_EQ(text, Variant(Bytes()));
      EXPECT_EQ(to().BytesReceived(), 0);
    });
  }
}

TEST_F(DatagramTest, OtherMaxLensCountAsForConnections) {
  struct Row {
    Variant maxLen;
    Variant behind;
  };
  const Row rows[] = {{6, 6},
                      {7, 7},
                      {u"6", u"6"},
                      {u"no number", 6},
                      {Variant::Null(), 6},
                      {Variant::missing(), Variant::missing()}};
  for (const Row& row : rows) {
    deliver("abcdef", [&] {
      Variant text = Text(), varType = Variant::missing(), maxLen = row.maxLen;
      EXPECT_EQ(to().PeekData(text, varType, maxLen), 6);
      EXPECT_EQ(maxLen, row.behind);
      maxLen = row.maxLen;
      EXPECT_EQ(to().GetData(text, varType, maxLen), 6);
      EXPECT_EQ(text, Variant(u"abcdef"));
      EXPECT_EQ(maxLen, row.behind);
    });
  }
}

TEST_F(DatagramTest, ANegativeMaxLenIsRefusedAndTakesNothing) {
  deliver("abcdef", [&] {
    Variant text = Text(), varType = Variant::missing(), maxLen = -1;
    EXPECT_EQ(raised([&] { to().GetData(text, varType, maxLen); }), outOfRange("GetData"));
    EXPECT_EQ(raised([&] { to().PeekData(text, varType, maxLen); }), outOfRange("PeekData"));
    EXPECT_EQ(to().BytesReceived(), 6);
  });
}

TEST_F(DatagramTest, PeekingTwiceGivesTheSameAndTellsTheSender) {
  deliver("abcdef", [&] {
    for (int round = 0; round < 2; ++round) {
      Variant text = Text();
      EXPECT_EQ(to().PeekData(text), 6);
      EXPECT_EQ(text, Variant(u"abcdef"));
      EXPECT_EQ(to().RemotePort(), from().LocalPort());
    }
    EXPECT_EQ(to().BytesReceived(), 6);
    Variant data;
    EXPECT_EQ(to().GetData(data), 6);
  });
}

TEST_F(DatagramTest, WithNothingWaitingTheCallEndsQuietly) {
  Variant text = u"before", varType = 9, maxLen = -1;
  EXPECT_EQ(to().GetData(text), 0);
  EXPECT_EQ(to().GetData(text, varType, maxLen), 0);
  EXPECT_EQ(to().PeekData(text, varType, maxLen), 0);
  EXPECT_EQ(text, Variant(u"before"));
  EXPECT_EQ(varType, Variant(9));
  EXPECT_EQ(maxLen, Variant(-1));
}

TEST_F(DatagramTest, FetchingNeedsAnOpenSocket) {
  Watched socket(module);
  socket->Protocol(ProtocolUDP);
  Variant data;
  EXPECT_EQ(raised([&] { socket->GetData(data); }), wrongProtocolOrState("GetData"));
  EXPECT_EQ(raised([&] { socket->PeekData(data); }), wrongProtocolOrState("PeekData"));
  EXPECT_EQ(socket->BytesReceived(), 0);
}

// ---- datagrams that wait

TEST_F(DatagramTest, WhatIsNotFetchedIsLost) {
  deliver("abcdef", [] {});
  EXPECT_EQ(to().BytesReceived(), 0);
  EXPECT_EQ(receiver->log, Lines({"DataArrival 6"}));
}

TEST_F(DatagramTest, WhatWasPeekedIsLostAsWell) {
  deliver("abcdef", [&] {
    Variant data;
    to().PeekData(data);
  });
  EXPECT_EQ(to().BytesReceived(), 0);
}

TEST_F(DatagramTest, ADatagramBehindAFetchedOneLosesItsContent) {
  Lines fetched;
  receiver->then.DataArrival = [&](std::int32_t) {
    Variant text = Text();
    to().GetData(text);
    fetched.push_back(toUtf8(*text.get<Text>()));
  };
  from().SendData(u"1");
  from().SendData(u"22");
  from().SendData(u"333");
  settle();
  EXPECT_EQ(fetched, Lines({"1", "333"}));
  EXPECT_EQ(receiver->log, Lines({"DataArrival 1", "DataArrival 3"}));
}

TEST_F(DatagramTest, DatagramsThatNobodyFetchesAreAllTold) {
  from().SendData(u"1");
  from().SendData(u"22");
  from().SendData(u"333");
  settle();
  EXPECT_EQ(receiver->log, Lines({"DataArrival 1", "DataArrival 2", "DataArrival 3"}));
}

TEST_F(DatagramTest, OneByteIsDroppedBehindEveryArrival) {
  from().SendData(u"abc");
  calls.clearLines();
  settle();
  const std::string handle = std::to_string(to().SocketHandle());
  const Lines lines = calls.linesOf({"ioctlsocket", "recv", "recvfrom"});
  ASSERT_GE(lines.size(), 2u);
  EXPECT_EQ(lines[0], "ioctlsocket " + handle + " 1074030207");
  EXPECT_EQ(lines[1], "recv " + handle + " 1 0");
}

TEST_F(DatagramTest, TheHandlerMayClose) {
  deliver("abcdef", [&] { to().CloseSck(); });
  EXPECT_EQ(to().State(), sckClosed);
}

TEST_F(DatagramTest, TheHandlerMayLetGo) {
  bool ran = false;
  receiver->then.DataArrival = [&](std::int32_t) {
    receiver->socket.reset();
    ran = true;
  };
  from().SendData(u"x");
  ASSERT_TRUE(pumpUntil([&] { return ran; }));
  EXPECT_EQ(module.InstanceCount(), 1);
}

TEST_F(DatagramTest, AnErrorOfTheHandlerReachesNobodyAndTheDatagramIsDropped) {
  receiver->then.DataArrival = [&](std::int32_t) { throw RuntimeError(ErrorNumber::Overflow); };
  from().SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return !receiver->log.empty(); }));
  EXPECT_EQ(to().State(), sckOpen);
  EXPECT_EQ(to().BytesReceived(), 0) << "as behind every arrival";
  from().SendData(u"defg");
  ASSERT_TRUE(pumpUntil([&] { return receiver->has("DataArrival 4"); }));
}

TEST_F(DatagramTest, ADatagramOfNoBytesIsDroppedUnseen) {
  bindUdp(*sender);
  SocketAddress address;
  address.port = htons(UnsignedToInteger(to().LocalPort()));
  address.address = bench->sockets().inet_addr(to().LocalIP());
  EXPECT_EQ(bench->sockets().sendto(from().SocketHandle(), {}, 0, address), 0);
  settle();
  EXPECT_EQ(receiver->log, Lines());
  from().SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return !receiver->log.empty(); }));
  EXPECT_EQ(receiver->log, Lines({"DataArrival 3"}));
}

}  // namespace
}  // namespace zev::socket_bench
