// Sockets, windows and kernel under observation.

#include <bit>
#include <string>
#include <vector>

#include "observed/sockets.h"
#include "simulated/bench.h"

namespace zev::observed {
namespace {

using simulated::Event;
using test::raisedBy;
using Effect = Fault::Effect;

SocketAddress addressOf(std::uint8_t first, std::uint8_t last, std::uint8_t port) {
  const std::uint8_t bytes[16] = {winsock::internet, 0, 0, port, first, 0, 0, last};
  return std::bit_cast<SocketAddress>(bytes);
}

class ObservedSockets : public simulated::MachineTest {
 protected:
  ObservedSockets() {
    EXPECT_EQ(sockets().WSAStartup(winsock::version), 0);
    socket = sockets().socket(winsock::internet, winsock::stream, winsock::tcp);
  }

  zev::Sockets& sockets() { return platform().sockets; }
  void fault(const char* call, Effect effect, std::int32_t code, Text match = {}) {
    machine.setFaults({{call, std::nullopt, std::move(match), effect, code}});
  }
  std::int32_t failingBind() {
    fault("bind", Effect::Error, winsock::error::addressInUse);
    const std::int32_t result = sockets().bind(socket, SocketAddress());
    machine.setFaults({});
    return result;
  }

  std::int32_t socket = winsock::noSocket;
};

TEST_F(ObservedSockets, TheReasonIsThatOfTheLastCallThatFailed) {
  EXPECT_EQ(failingBind(), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::addressInUse);
  EXPECT_NE(sockets().inet_addr(u"10.0.0.5"), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::addressInUse)
      << "nothing has failed since";
  EXPECT_EQ(sockets().closesocket(9999), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::notSocket);
  EXPECT_EQ(failingBind(), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::addressInUse);
}

TEST_F(ObservedSockets, AnInjectedReasonCanBeNone) {
  EXPECT_EQ(sockets().closesocket(9999), winsock::failed);
  fault("bind", Effect::Error, 0);
  EXPECT_EQ(sockets().bind(socket, SocketAddress()), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), 0);
}

TEST_F(ObservedSockets, EachKindOfCallFailsInItsOwnShape) {
  fault("WSAStartup", Effect::Error, 10091);
  EXPECT_EQ(sockets().WSAStartup(winsock::version), 10091);
  fault("gethostbyname", Effect::Error, winsock::error::hostNotFound);
  EXPECT_EQ(sockets().gethostbyname(u"localhost"), nullptr);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::hostNotFound);
  fault("WSAAsyncGetHostByName", Effect::Error, winsock::error::noBuffers);
  EXPECT_EQ(sockets().WSAAsyncGetHostByName(1, 2, u"localhost", nullptr, 0), 0);
  fault("inet_ntoa", Effect::Error, 1);
  EXPECT_EQ(sockets().inet_ntoa(0), nullptr);
  fault("VirtualAlloc", Effect::Error, 8);
  EXPECT_EQ(platform().kernel.VirtualAlloc(1, commitPages, readWriteExecute), nullptr);
  fault("GlobalFree", Effect::Error, 6);
  EXPECT_EQ(platform().kernel.GlobalFree(7), 7u);
  fault("CreateWindowExA", Effect::Error, 8);
  EXPECT_EQ(platform().messageWindows.CreateWindowExA(u"STATIC", u""), 0u);
  fault("CallWindowProcA", Effect::Error, 8);
  EXPECT_EQ(platform().messageWindows.CallWindowProcA(1, {}), 0);
}

TEST_F(ObservedSockets, IgnoredCallsReportSuccessAndDoNothing) {
  const std::uint8_t bytes[3] = {};
  fault("send", Effect::Ignore, 0);
  EXPECT_EQ(sockets().send(socket, bytes, 0), 3) << "all of the bytes";
  fault("closesocket", Effect::Ignore, 0);
  EXPECT_EQ(sockets().closesocket(socket), 0);
  machine.setFaults({});
  EXPECT_EQ(sockets().closesocket(socket), 0) << "it was still there";
}

TEST_F(ObservedSockets, AddressesAreToldAndMatched) {
  fault("connect", Effect::Error, winsock::error::refused, u"10.0.0.5");
  EXPECT_EQ(sockets().connect(socket, addressOf(10, 5, 80)), winsock::failed);
  EXPECT_EQ(sockets().WSAGetLastError(), winsock::error::refused);
  const std::vector<Event> calls = log.of("call");
  EXPECT_EQ(calls.back()["arguments"].dump(), "[" + std::to_string(socket) + R"(,"10.0.0.5:80"])");
  fault("connect", Effect::Raise, 5, u"10.0.0.6");
  EXPECT_EQ(raisedBy([&] { sockets().connect(socket, addressOf(10, 6, 80)); }), 5);
}

TEST(ShownAddress, TellsAnotherFamily) {
  SocketAddress address = addressOf(127, 1, 7);
  EXPECT_EQ(shownAddress(address), u"127.0.0.1:7");
  address.family = 23;
  EXPECT_EQ(shownAddress(address), u"family 23 127.0.0.1:7");
}

TEST_F(ObservedSockets, EntriesAreMatchedByLibraryAndFunction) {
  zev::Kernel& kernel = platform().kernel;
  fault("GetProcAddress", Effect::Error, 127, u"user32!CallWindowProcA");
  EXPECT_EQ(kernel.ProcAddress("user32", "CallWindowProcA"), 0u);
  EXPECT_NE(kernel.ProcAddress("user32", "SetWindowLongA"), 0u);
}

// ---- faults one by one

/// Keeps the names of the calls that it hears of.
class Names final : public Listener {
 public:
  bool listens() const override { return wanted; }
  void called(const Operation& operation, Arguments, const Outcome& outcome) override {
    heard.emplace_back(operation.name);
    last = outcome;
  }

  bool wanted = true;
  std::vector<std::string> heard;
  Outcome last;
};

class OneOperation : public testing::Test {
 protected:
  std::int32_t call(std::string_view name) {
    return watch.perform(
        {name}, {}, [] { return 1; }, [](std::int32_t code) { return code; }, [] { return 0; });
  }
  static Fault failure(const char* name, std::int32_t code, std::optional<std::uint32_t> nth = {}) {
    return {.call = name, .nth = nth, .code = code};
  }

  Names names;
  Instrumentation watch{names};
};

TEST_F(OneOperation, TakesFaultsInThePlaceOfTheFormerOnes) {
  watch.setFaults({failure("bind", 7), failure("listen", 7)});
  watch.setFaults({failure("BIND", 8, 2)});
  EXPECT_EQ(call("bind"), 1);
  EXPECT_EQ(call("bind"), 8);
  EXPECT_EQ(call("listen"), 1);
}

TEST_F(OneOperation, IsCountedByItsOwnFaultsAlone) {
  watch.setFaults({failure("listen", 7, 2), failure("bind", 8, 2)});
  EXPECT_EQ(call("listen"), 1);
  EXPECT_EQ(call("bind"), 1);
  EXPECT_EQ(call("listen"), 7);
  EXPECT_EQ(call("bind"), 8);
}

TEST_F(OneOperation, ThatNobodyKnowsIsRefused) {
  EXPECT_THROW(watch.setFaults({failure("bound", 7)}), std::invalid_argument);
  EXPECT_THROW(call("bound"), std::logic_error);
}

TEST_F(OneOperation, IsToldOnlyToWhoListens) {
  names.wanted = false;
  call("bind");
  names.wanted = true;
  call("listen");
  EXPECT_EQ(names.heard, std::vector<std::string>{"listen"});
  EXPECT_EQ(std::get<std::int64_t>(names.last), 1);
  EXPECT_EQ(watch.calls("bind"), 1u);
}

}  // namespace
}  // namespace zev::observed
