#include <numeric>

#include "socket/socket_fixture.h"
#include "socket/variant_values.h"

// Bytes over a connection: sending, arriving, fetching.
namespace zev::socket_bench {
namespace {

class DataTest : public ConnectedTest {
 protected:
  CEventSocket& near() { return *client->socket; }
  CEventSocket& far() { return *server->socket; }

  /// Sends bytes to the far end and waits until all that it has are so many.
  void deliver(const std::string& bytes) {
    const std::int32_t before = far().BytesReceived();
    near().SendData(bytesOf(bytes));
    ASSERT_TRUE(pumpUntil(
        [&] { return far().BytesReceived() == before + static_cast<std::int32_t>(bytes.size()); }));
    settle();
    client->log.clear();
    server->log.clear();
  }
  std::string restOfFar() {
    Variant data;
    far().GetData(data);
    return textOf(*data.get<Bytes>());
  }
};

// ---- SendData

TEST_F(DataTest, AllNumberTypesArriveInTheirMemoryForm) {
  for (const Variant& number : numbers) {
    near().SendData(number);
    ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() > 0; }));
    Variant target = blankOf(number);
    const std::int32_t size = far().BytesReceived();
    EXPECT_EQ(far().GetData(target), size) << typeName(number);
    EXPECT_EQ(target, number) << typeName(number);
    EXPECT_EQ(far().BytesReceived(), 0);
  }
}

TEST_F(DataTest, ALongGoesLowByteFirst) {
  near().SendData(std::int32_t{0x01020304});
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 4; }));
  EXPECT_EQ(restOfFar(), "\x04\x03\x02\x01");
}

TEST_F(DataTest, EveryByteTravelsInArraysAndTexts) {
  Bytes every(256);
  std::iota(every.begin(), every.end(), std::uint8_t{0});
  near().SendData(every);
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 256; }));
  Variant text = Text();
  EXPECT_EQ(far().GetData(text), 256);
  EXPECT_EQ(text.get<Text>()->size(), 256u);
  far().SendData(text);
  ASSERT_TRUE(pumpUntil([&] { return near().BytesReceived() == 256; }));
  Variant back;
  EXPECT_EQ(near().GetData(back), 256);
  EXPECT_EQ(back, Variant(every));
}

TEST_F(DataTest, TextsPassThroughTheCodePage) {
  const Text text = u"Gr\u00FC\u00DFe";
  near().SendData(text);
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 5; }));
  const std::string bytes = restOfFar();
  EXPECT_EQ(bytes, bench->kernel().toAnsi(text));
  EXPECT_EQ(bytes,
            "Gr\xFC\xDF"
            "e");
}

TEST_F(DataTest, WhatThePageCannotTellBecomesItsDefaultCharacter) {
  near().SendData(u"a\u4E2Db");
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 3; }));
  EXPECT_EQ(restOfFar(), "a?b");
}

TEST_F(DataTest, NothingIsSentOfNothing) {
  calls.clearLines();
  near().SendData(u"");
  near().SendData(Bytes());
  settle();
  EXPECT_EQ(calls.linesOf({"send"}), Lines());
  EXPECT_EQ(client->log, Lines());
  EXPECT_EQ(server->log, Lines());
}

TEST_F(DataTest, OtherTypesAreRefused) {
  for (const Variant& value : {Variant(), Variant(Variant::Null()), Variant(Variant::Object()),
                               Variant(std::vector<std::int32_t>{1}), Variant::missing()}) {
    EXPECT_EQ(raised([&] { near().SendData(value); }), unsupported("SendData")) << typeName(value);
  }
  EXPECT_EQ(near().State(), sckConnected);
  EXPECT_EQ(calls.linesOf({"send"}), Lines());
}

TEST_F(DataTest, OnePieceRaisesProgressAndThenComplete) {
  near().SendData(u"hello");
  EXPECT_EQ(client->log, Lines({"SendProgress 5 0", "SendComplete"})) << "within the call";
  EXPECT_EQ(calls.linesOf({"send"}),
            Lines({"send " + std::to_string(near().SocketHandle()) + " 5 0"}));
}

TEST_F(DataTest, EachSendDataTellsOfItsOwn) {
  near().SendData(u"hello");
  near().SendData(std::uint8_t{1});
  EXPECT_EQ(client->log,
            Lines({"SendProgress 5 0", "SendComplete", "SendProgress 1 0", "SendComplete"}));
}

TEST_F(DataTest, MuchTravelsWholeAndInOrder) {
  Bytes much(3'000'000);
  std::uint32_t random = 1;
  for (std::uint8_t& each : much) {
    random = random * 1664525 + 1013904223;
    each = static_cast<std::uint8_t>(random >> 24);
  }
  std::int32_t sent = 0;
  client->then.SendProgress = [&](std::int32_t bytes, std::int32_t remaining) {
    sent += bytes;
    EXPECT_EQ(sent + remaining, 3'000'000);
  };
  Bytes came;
  server->then.DataArrival = [&](std::int32_t bytes) {
    EXPECT_EQ(bytes, far().BytesReceived());
    Variant data;
    EXPECT_EQ(far().GetData(data), bytes);
    came.insert(came.end(), data.get<Bytes>()->begin(), data.get<Bytes>()->end());
  };
  near().SendData(much);
  ASSERT_TRUE(pumpUntil([&] { return came.size() == much.size(); })) << came.size();
  EXPECT_TRUE(came == much);
  EXPECT_EQ(sent, 3'000'000);
  EXPECT_EQ(client->log.back(), "SendComplete");
  EXPECT_EQ(std::count(client->log.begin(), client->log.end(), "SendComplete"), 1);
}

TEST_F(DataTest, NoPieceIsLongerThanTheSystemsBuffer) {
  std::int32_t size = 0;
  ASSERT_EQ(bench->sockets().getsockopt(near().SocketHandle(), winsock::socketLevel,
                                        winsock::sendBufferSize, size),
            0);
  // What a test can know is the size that the connection had when it was made.
  std::int32_t told = 0;
  for (const std::string& line : trace) {
    const std::string start = "Winsock buffer size for sends: ";
    if (line.starts_with(start)) told = std::max(told, std::stoi(line.substr(start.size())));
  }
  ASSERT_GT(told, 0);
  calls.clearLines();
  server->then.DataArrival = [&](std::int32_t) { restOfFar(); };
  near().SendData(Bytes(static_cast<std::size_t>(told) * 3));
  ASSERT_TRUE(pumpUntil([&] { return client->has("SendComplete"); }));
  for (const std::string& line : calls.linesOf({"send"})) {
    std::int32_t handle = 0, length = 0;
    ASSERT_EQ(std::sscanf(line.c_str(), "send %d %d", &handle, &length), 2) << line;
    EXPECT_LE(length, told);
  }
  EXPECT_GE(calls.linesOf({"send"}).size(), 3u);
}

// ---- handlers that send

TEST_F(DataTest, AHandlerOfProgressMaySend) {
  client->then.SendProgress = [&](std::int32_t, std::int32_t) {
    client->then.SendProgress = {};
    near().SendData(u"second");
  };
  near().SendData(u"first");
  EXPECT_EQ(client->log,
            Lines({"SendProgress 5 0", "SendProgress 6 0", "SendComplete", "SendComplete"}));
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 11; }));
  EXPECT_EQ(restOfFar(), "firstsecond");
}

TEST_F(DataTest, AHandlerOfCompleteMaySend) {
  int rounds = 3;
  client->then.SendComplete = [&] {
    if (rounds-- > 0) near().SendData(u"again");
  };
  near().SendData(u"first");
  EXPECT_EQ(client->log,
            Lines({"SendProgress 5 0", "SendComplete", "SendProgress 5 0", "SendComplete",
                   "SendProgress 5 0", "SendComplete", "SendProgress 5 0", "SendComplete"}));
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 20; }));
  EXPECT_EQ(restOfFar(), "firstagainagainagain");
}

TEST_F(DataTest, AHandlerOfProgressMayClose) {
  client->then.SendProgress = [&](std::int32_t, std::int32_t) { near().CloseSck(); };
  near().SendData(u"last");
  EXPECT_EQ(client->log, Lines({"SendProgress 4 0", "SendComplete"}));
  EXPECT_EQ(near().State(), sckClosed);
  ASSERT_TRUE(pumpUntil([&] { return server->has("CloseSck"); }));
  EXPECT_EQ(server->log, Lines({"DataArrival 4", "CloseSck"}));
}

TEST_F(DataTest, HandlersMayLetGoWithinSendData) {
  client->then.SendProgress = [&](std::int32_t, std::int32_t) { client->socket.reset(); };
  const auto raw = client->socket.get();
  raw->SendData(u"last");
  EXPECT_EQ(client->log, Lines({"SendProgress 4 0", "SendComplete"}));
  EXPECT_FALSE(client->socket);
  ASSERT_TRUE(pumpUntil([&] { return server->has("CloseSck"); }));
}

TEST_F(DataTest, AnErrorOfASendersHandlerReachesTheCaller) {
  client->then.SendComplete = [] { throw RuntimeError(ErrorNumber::TypeMismatch); };
  EXPECT_NE(raised([&] { near().SendData(u"x"); }), "nothing");
  client->then.SendComplete = {};
  near().SendData(u"y");
  ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() == 2; }));
}

TEST_F(DataTest, HandlersMayAnswerEachOther) {
  server->then.DataArrival = [&](std::int32_t) {
    Variant number = std::int32_t{0};
    if (far().GetData(number) == 4) far().SendData(*number.get<std::int32_t>() + 1);
  };
  client->then.DataArrival = [&](std::int32_t) {
    Variant number = std::int32_t{0};
    if (near().GetData(number) == 4 && *number.get<std::int32_t>() < 50) near().SendData(number);
  };
  near().SendData(std::int32_t{1});
  ASSERT_TRUE(pumpUntil(
      [&] { return std::count(client->log.begin(), client->log.end(), "DataArrival 4") == 49; }));
}

// ---- arriving

TEST_F(DataTest, DataArrivalTellsAllThatWaits) {
  near().SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return server->has("DataArrival 3"); }));
  near().SendData(u"defgh");
  ASSERT_TRUE(pumpUntil([&] { return server->has("DataArrival 8"); }));
  EXPECT_EQ(far().BytesReceived(), 8);
  EXPECT_EQ(restOfFar(), "abcdefgh");
}

TEST_F(DataTest, AnErrorOfAnArrivalsHandlerReachesNobodyAndLosesNothing) {
  server->then.DataArrival = [](std::int32_t) { throw RuntimeError(ErrorNumber::Overflow); };
  near().SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return server->has("DataArrival 3"); }));
  EXPECT_EQ(far().State(), sckConnected);
  near().SendData(u"d");
  ASSERT_TRUE(pumpUntil([&] { return server->has("DataArrival 4"); }));
}

TEST_F(DataTest, AnArrivalsHandlerMayCloseOrLetGo) {
  server->then.DataArrival = [&](std::int32_t) {
    far().CloseSck();
    EXPECT_EQ(far().BytesReceived(), 0);
    server->socket.reset();
  };
  near().SendData(u"abc");
  ASSERT_TRUE(pumpUntil([&] { return !server->socket; }));
  ASSERT_TRUE(pumpUntil([&] { return near().State() != sckConnected; }));
}

TEST_F(DataTest, BehindThePeersClosingDataIsRefusedAndThrownAway) {
  deliver("abc");
  near().CloseSck();
  ASSERT_TRUE(pumpTo(*server, sckClosing));
  EXPECT_EQ(far().BytesReceived(), 3);
  Variant text = Text();
  EXPECT_EQ(raised([&] { far().GetData(text); }), wrongProtocolOrState("GetData"));
  EXPECT_EQ(raised([&] { far().PeekData(text); }), wrongProtocolOrState("PeekData"));
  EXPECT_EQ(raised([&] { far().SendData(text); }), wrongProtocolOrState("SendData"));
  far().CloseSck();
  EXPECT_EQ(far().BytesReceived(), 0);
}

// ---- GetData: types

TEST_F(DataTest, ATextTargetGetsEverythingAsText) {
  deliver("hello");
  Variant text = Text();
  EXPECT_EQ(far().GetData(text), 5);
  EXPECT_EQ(text, Variant(u"hello"));
  EXPECT_EQ(far().BytesReceived(), 0);
}

TEST_F(DataTest, AnEmptyTargetGetsBytes) {
  deliver("hello");
  Variant data;
  EXPECT_EQ(far().GetData(data), 5);
  EXPECT_EQ(data, Variant(bytesOf("hello")));
}

TEST_F(DataTest, AMissingTypeStaysMissing) {
  deliver("hello");
  Variant data, varType = Variant::missing();
  EXPECT_EQ(far().GetData(data, varType), 5);
  EXPECT_EQ(data.type(), VariantType::ByteArray);
}

TEST_F(DataTest, TheTypeAskedForCountsForAnEmptyTarget) {
  for (const Variant& number : numbers) {
    near().SendData(number);
    ASSERT_TRUE(pumpUntil([&] { return far().BytesReceived() > 0; }));
    Variant target, varType = typeOf(number);
    EXPECT_GT(far().GetData(target, varType), 0);
    EXPECT_EQ(target, number) << typeName(number);
    EXPECT_EQ(varType, typeOf(number));
  }
  deliver("abc");
  Variant text, varType = 8;
  EXPECT_EQ(far().GetData(text, varType), 3);
  EXPECT_EQ(text, Variant(u"abc"));
  deliver("abc");
  Variant bytes, arrayType = 8209;
  EXPECT_EQ(far().GetData(bytes, arrayType), 3);
  EXPECT_EQ(bytes, Variant(bytesOf("abc")));
}

TEST_F(DataTest, TheTargetsOwnTypeHasTheLastWord) {
  for (const Variant& number : numbers) {
    deliver("ABCDEFGH");
    Variant target = blankOf(number), varType = 8;
    const std::int32_t size = far().GetData(target, varType);
    EXPECT_EQ(target.type(), number.type());
    EXPECT_EQ(varType, typeOf(number)) << "written back";
    EXPECT_EQ(far().BytesReceived(), 8 - size);
    restOfFar();
  }
  deliver("AB");
  Variant text = u"before", varType = 2;
  EXPECT_EQ(far().GetData(text, varType), 2);
  EXPECT_EQ(text, Variant(u"AB"));
  EXPECT_EQ(varType, Variant(8));
  deliver("AB");
  Variant bytes = Bytes{9}, another = 2;
  EXPECT_EQ(far().GetData(bytes, another), 2);
  EXPECT_EQ(bytes, Variant(bytesOf("AB")));
  EXPECT_EQ(another, Variant(8209));
}

TEST_F(DataTest, OtherTypesRaiseAndTakeNothing) {
  deliver("ABCDEFGH");
  for (const std::int32_t type : {0, 1, 9, 10, 12, 13, 8195, 8200, 8192, -1, 18}) {
    Variant target, varType = type;
    EXPECT_EQ(raised([&] { far().GetData(target, varType); }), unsupported("RecvData")) << type;
    EXPECT_EQ(raised([&] { far().PeekData(target, varType); }), unsupported("RecvData")) << type;
    EXPECT_EQ(target, Variant());
  }
  for (Variant target : {Variant(Variant::Null()), Variant(Variant::Object()),
                         Variant(std::vector<std::int32_t>{1})}) {
    const Variant before = target;
    Variant varType = 8;
    EXPECT_EQ(raised([&] { far().GetData(target, varType); }), unsupported("RecvData"));
    EXPECT_EQ(target, before);
  }
  EXPECT_EQ(restOfFar(), "ABCDEFGH");
}

TEST_F(DataTest, ANumberNeedsAllItsBytes) {
  for (const Variant& number : numbers) {
    const auto size = static_cast<std::int32_t>(
        number.type() == VariantType::Byte                                               ? 1
        : number.type() == VariantType::Integer || number.type() == VariantType::Boolean ? 2
        : number.type() == VariantType::Long || number.type() == VariantType::Single     ? 4
                                                                                         : 8);
    if (size > 1) deliver(std::string(static_cast<std::size_t>(size - 1), 'x'));
    Variant target = number, emptyTarget, varType = typeOf(number);
    EXPECT_EQ(far().GetData(target), 0);
    EXPECT_EQ(target, number) << "untouched";
    EXPECT_EQ(far().GetData(emptyTarget, varType), 0);
    EXPECT_EQ(emptyTarget, Variant()) << "untouched";
    EXPECT_EQ(far().BytesReceived(), size - 1);
    deliver("xy");
    EXPECT_EQ(far().GetData(target), size);
    EXPECT_EQ(far().BytesReceived(), 1) << "the next one stays";
    EXPECT_EQ(restOfFar(), "y");
  }
}

// ---- GetData: maxLen

struct MaxLenRow {
  const char* what;
  Variant maxLen;
  std::int32_t result;
  const char* fetched;
  Variant behind;  ///< of maxLen
};

TEST_F(DataTest, MaxLenSaysHowMany) {
  const MaxLenRow rows[] = {
      {"missing", Variant::missing(), 6, "abcdef", Variant::missing()},
      {"fewer", 2, 2, "ab", 2},
      {"all", 6, 6, "abcdef", 6},
      {"more", 7, 6, "abcdef", 7},
      {"many more", INT32_MAX, 6, "abcdef", INT32_MAX},
      {"more than any buffer holds", 1e10, 6, "abcdef", 1e10},
      {"that in a text", u"1e10", 6, "abcdef", u"1e10"},
      {"of another number type", std::int16_t{3}, 3, "abc", std::int16_t{3}},
      {"a number in a text", u"4", 4, "abcd", u"4"},
      {"no number", u"four", 6, "abcdef", 6},
      {"Null", Variant::Null(), 6, "abcdef", 6},
      {"an object", Variant::Object(), 6, "abcdef", 6},
      {"a date", Date{2}, 6, "abcdef", 6},
      {"bytes", Bytes{2}, 6, "abcdef", 6},
  };
  for (const MaxLenRow& row : rows) {
    deliver("abcdef");
    Variant text = Text(), bytes, varType = Variant::missing(), maxLen = row.maxLen;
    EXPECT_EQ(far().PeekData(bytes, varType, maxLen), row.result) << row.what;
    EXPECT_EQ(bytes, Variant(bytesOf(row.fetched))) << row.what;
    EXPECT_EQ(maxLen, row.behind) << row.what;
    maxLen = row.maxLen;
    EXPECT_EQ(far().GetData(text, varType, maxLen), row.result) << row.what;
    EXPECT_EQ(text, Variant(fromUtf8(row.fetched))) << row.what;
    EXPECT_EQ(maxLen, row.behind) << row.what;
    EXPECT_EQ(restOfFar(), std::string("abcdef").substr(static_cast<std::size_t>(row.result)))
        << row.what;
  }
}

TEST_F(DataTest, AMaxLenOf0GivesAnEmptyArrayAndNoError) {
  deliver("abcdef");
  for (const Variant& none : {Variant(0), Variant(), Variant(false), Variant(u"0")}) {
    for (Variant target : {Variant(), Variant(u"before"), Variant(Bytes{1})}) {
      Variant varType = Variant::missing(), maxLen = none;
      EXPECT_EQ(far().GetData(target, varType, maxLen), 0);
      EXPECT_EQ(target, Variant(Bytes()));
      Variant peeked = u"before", maxLenOfPeek = none;
      EXPECT_EQ(far().PeekData(peeked, varType, maxLenOfPeek), 0);
      EXPECT_EQ(peeked, Variant(Bytes()));
    }
  }
  EXPECT_EQ(restOfFar(), "abcdef");
}

TEST_F(DataTest, ANegativeMaxLenIsRefused) {
  deliver("abcdef");
  for (const Variant& negative : {Variant(-1), Variant(INT32_MIN), Variant(u"-5"), Variant(true),
                                  Variant(-0.5), Variant(Currency{-1})}) {
    Variant target = Text(), varType = Variant::missing(), maxLen = negative;
    EXPECT_EQ(raised([&] { far().GetData(target, varType, maxLen); }), outOfRange("GetData"));
    EXPECT_EQ(raised([&] { far().PeekData(target, varType, maxLen); }), outOfRange("PeekData"));
    Variant number = std::int32_t{5};
    EXPECT_EQ(raised([&] { far().GetData(number, varType, maxLen); }), outOfRange("GetData"))
        << "also where the amount does not count";
    EXPECT_EQ(target, Variant(u""));
  }
  EXPECT_EQ(restOfFar(), "abcdef");
}

TEST_F(DataTest, MaxLenDoesNotCountForNumbers) {
  deliver("abcdef");
  Variant number = std::int32_t{0}, varType = Variant::missing(), maxLen = 1;
  EXPECT_EQ(far().GetData(number, varType, maxLen), 4);
  EXPECT_EQ(restOfFar(), "ef");
}

TEST_F(DataTest, NothingThereIsAnEmptyArray) {
  for (const Variant& most : {Variant::missing(), Variant(0), Variant(5), Variant(u"no number")}) {
    Variant target = u"before", varType = Variant::missing(), maxLen = most;
    EXPECT_EQ(far().GetData(target, varType, maxLen), 0);
    EXPECT_EQ(target, Variant(Bytes()));
    Variant peeked = u"before";
    maxLen = most;
    EXPECT_EQ(far().PeekData(peeked, varType, maxLen), 0);
    EXPECT_EQ(peeked, Variant(Bytes()));
  }
  Variant target, varType = Variant::missing(), maxLen = u"no number";
  far().GetData(target, varType, maxLen);
  EXPECT_EQ(maxLen, Variant(0)) << "the amount at hand is written back";
}

// ---- PeekData

TEST_F(DataTest, PeekingTwiceGivesTheSame) {
  deliver("ABCDEFGH");
  for (int round = 0; round < 2; ++round) {
    Variant text = Text();
    EXPECT_EQ(far().PeekData(text), 8);
    EXPECT_EQ(text, Variant(u"ABCDEFGH"));
    for (const Variant& number : numbers) {
      Variant target = blankOf(number), emptyTarget, varType = typeOf(number);
      const std::int32_t size = far().PeekData(target);
      EXPECT_GT(size, 0);
      EXPECT_EQ(far().PeekData(emptyTarget, varType), size);
      EXPECT_EQ(emptyTarget, target);
    }
  }
  EXPECT_EQ(restOfFar(), "ABCDEFGH");
}

TEST_F(DataTest, PeekGivesWhatGetGives) {
  deliver("ABCDEFGHABCDEFGH");
  Variant peeked = 0.0, got = 0.0;
  far().PeekData(peeked);
  far().GetData(got);
  EXPECT_EQ(peeked, got);
  EXPECT_EQ(far().BytesReceived(), 8);
}

TEST_F(DataTest, APeekWritesTheTypeBack) {
  deliver("ABCD");
  Variant number = std::int32_t{0}, varType = 8;
  EXPECT_EQ(far().PeekData(number, varType), 4);
  EXPECT_EQ(varType, Variant(3));
}

}  // namespace
}  // namespace zev::socket_bench
