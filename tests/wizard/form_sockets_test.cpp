#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "simulated/bench.h"
#include "state/socket_array.h"
#include "wizard/setup.h"

namespace zev {
namespace {

using simulated::MachineTest;
using test::raisedBy;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int32_t noSuchElement = 340;
constexpr std::int32_t alreadyLoaded = 360;
constexpr std::int32_t designTimeControl = 362;

/// The wizard on a machine with a server for its sockets. The transcript holds every call.
class FormSockets : public MachineTest {
 protected:
  FormSockets() {
    machine.network().server("10.0.0.5", 80);
    show();
  }

  void show() {
    setup = std::make_unique<zev::Setup>(platform());
    platform().application.Show(setup->form1());
  }
  void startAnew() {
    setup.reset();
    machine.startProgram();
    show();
  }

  SocketArray& WS() { return setup->form1().WS; }
  std::vector<std::string> callsOf(std::string_view operation) {
    std::vector<std::string> found;
    for (const auto& event : log.events()) {
      if (event["event"] == "call" && event["name"] == operation)
        found.push_back(event["arguments"].dump());
    }
    return found;
  }
  simulated::StreamServer& server() { return machine.network().server("10.0.0.5", 80); }
  void connect(std::int32_t index) {
    connectSocket(WS()(index), u"10.0.0.5", 80);
    ASSERT_TRUE(waitUntilConnected(setup->program(), index, 1000));
  }
  void letEventsRun() {
    machine.network().advance(1000);
    setup->program().DoEvents();
  }
  void cancel() {
    person.answers.push_back(BoxAnswer::Yes);
    EXPECT_TRUE(platform().application.Unload(setup->form1()));
  }

  std::unique_ptr<zev::Setup> setup;
};

TEST_F(FormSockets, CarriesElement0FromLoadToUnload) {
  EXPECT_EQ(machine.calls("WSAStartup"), 1u);
  EXPECT_EQ(WS().UBound(), 0);
  EXPECT_EQ(WS()(0).State(), sckClosed);
  EXPECT_EQ(machine.calls("CreateWindowExA"), 0u);
  cancel();
  EXPECT_EQ(machine.calls("WSACleanup"), 1u);
  EXPECT_EQ(machine.calls("VirtualFree"), 1u);
  EXPECT_EQ(raisedBy([&] { WS()(0); }), noSuchElement);
}

TEST_F(FormSockets, LoadsFurtherElementsWithAPassAndAPause) {
  const int passes = person.passes;
  const std::uint64_t before = machine.clock();
  loadSocket(setup->program(), 1);
  EXPECT_EQ(person.passes, passes + 1);
  EXPECT_EQ(machine.clock() - before, 300u);
  EXPECT_EQ(WS().UBound(), 1);
  EXPECT_EQ(machine.calls("WSAStartup"), 1u) << "one service for all";
}

TEST_F(FormSockets, RefusesElementsThatAreThereOrNotThere) {
  WS().Load(2);
  EXPECT_EQ(raisedBy([&] { WS().Load(2); }), alreadyLoaded);
  EXPECT_EQ(raisedBy([&] { WS().Load(0); }), alreadyLoaded);
  EXPECT_EQ(raisedBy([&] { WS().Unload(1); }), noSuchElement);
  EXPECT_EQ(raisedBy([&] { WS().Unload(0); }), designTimeControl);
  EXPECT_EQ(raisedBy([&] { WS()(1); }), noSuchElement);
  EXPECT_EQ(WS().UBound(), 2);
}

TEST_F(FormSockets, TellsTheElementThatAnEventBelongsTo) {
  std::vector<std::string> told;
  WS().WS_Connect = [&](std::int32_t index) { told.push_back("connect " + std::to_string(index)); };
  WS().WS_DataArrival = [&](std::int32_t index, std::int32_t bytes) {
    told.push_back("data " + std::to_string(index) + " " + std::to_string(bytes));
  };
  WS().WS_Error = [&](std::int32_t index, const SocketErrorArguments& error) {
    told.push_back("error " + std::to_string(index) + " " + std::to_string(error.Number));
  };
  WS().Load(1);
  connect(1);
  server().connection(0).send("hello");
  letEventsRun();
  EXPECT_THAT(told, ElementsAre("connect 1", "data 1 5"));
  EXPECT_EQ(WS()(0).State(), sckClosed);
  server().refuse();
  connectSocket(WS()(0), u"10.0.0.5", 80);
  letEventsRun();
  EXPECT_THAT(told, ElementsAre("connect 1", "data 1 5", "error 0 10061"));
  EXPECT_EQ(WS()(1).State(), sckConnected);
}

TEST_F(FormSockets, UsesAnElementAgain) {
  connect(0);
  connect(0);
  EXPECT_EQ(server().connections(), 2u);
  machine.network().advance(1000);
  EXPECT_TRUE(server().connection(0).peerClosed());
  EXPECT_FALSE(server().connection(1).peerClosed());
}

TEST_F(FormSockets, WaitsNoLongerThanItsLimit) {
  server().neverAnswer();
  connectSocket(WS()(0), u"10.0.0.5", 80);
  const std::uint64_t before = machine.clock();
  EXPECT_FALSE(waitUntilConnected(setup->program(), 0, 500));
  EXPECT_GE(machine.clock() - before, 500u);
  EXPECT_LE(machine.clock() - before, 502u);
  EXPECT_EQ(WS()(0).State(), sckConnecting);
}

TEST_F(FormSockets, ACancelUnloadsTheSecondElementBeforeTheFirst) {
  WS().Load(1);
  WS().Load(2);
  for (const std::int32_t index : {0, 1, 2}) connect(index);
  const auto handle = [&](std::int32_t index) {
    return std::to_string(WS()(index).SocketHandle());
  };
  const std::vector<std::string> expected = {"[" + handle(2) + "]", "[" + handle(1) + "]",
                                             "[" + handle(0) + "]"};
  cancel();
  EXPECT_EQ(callsOf("closesocket"), expected);
  EXPECT_EQ(machine.calls("DestroyWindow"), 1u);
}

TEST_F(FormSockets, ACancelLeavesElementsAboveTheSecondToTheForm) {
  WS().Load(1);
  WS().Load(2);
  WS().Load(3);
  for (const std::int32_t index : {3, 2, 1}) connect(index);
  const auto handle = [&](std::int32_t index) {
    return std::to_string(WS()(index).SocketHandle());
  };
  const std::vector<std::string> expected = {"[" + handle(2) + "]", "[" + handle(1) + "]",
                                             "[" + handle(3) + "]"};
  cancel();
  EXPECT_EQ(callsOf("closesocket"), expected);
}

TEST_F(FormSockets, ARefusedCancelUnloadsNothing) {
  WS().Load(1);
  person.answers.push_back(BoxAnswer::No);
  EXPECT_FALSE(platform().application.Unload(setup->form1()));
  EXPECT_EQ(WS().UBound(), 1);
}

TEST_F(FormSockets, TheEndOfTheProgramLeavesAnEventProcedureFromTheTopOfTheLoop) {
  WS().WS_Connect = [](std::int32_t) { Application::End(); };
  connectSocket(WS()(0), u"10.0.0.5", 80);
  machine.network().advance(1000);
  EXPECT_THROW(setup->program().DoEvents(), ProgramEnd);
}

TEST_F(FormSockets, ARunTimeErrorOfAnEventProcedureReachesNobody) {
  WS().WS_Connect = [](std::int32_t) { throw RuntimeError(ErrorNumber::Overflow); };
  connectSocket(WS()(0), u"10.0.0.5", 80);
  letEventsRun();
  EXPECT_EQ(WS()(0).State(), sckConnected);
}

TEST_F(FormSockets, AnElementMayUnloadItselfInItsOwnEvent) {
  WS().Load(1);
  WS().WS_Connect = [&](std::int32_t index) { WS().Unload(index); };
  connectSocket(WS()(1), u"10.0.0.5", 80);
  letEventsRun();
  EXPECT_EQ(WS().UBound(), 0);
  machine.network().advance(1000);
  EXPECT_TRUE(server().connection(0).peerClosed());
}

TEST_F(FormSockets, AMachineWithoutSocketsStillShowsTheWizard) {
  machine.network().settings.startUpError = 10091;
  startAnew();
  EXPECT_TRUE(setup->form1().Visible);
  EXPECT_THAT(person.boxes, IsEmpty());
  EXPECT_EQ(WS().UBound(), 0);
  EXPECT_EQ(raisedBy([&] { WS()(0); }), noSuchElement);
  cancel();
}

TEST_F(FormSockets, AMachineWithoutMemoryForTheRoutingStillShowsTheWizard) {
  simulated::Fault fault;
  fault.call = "VirtualAlloc";
  machine.setFaults({fault});
  startAnew();
  EXPECT_TRUE(setup->form1().Visible);
  EXPECT_EQ(machine.calls("WSAStartup"), 0u);
  cancel();
}

}  // namespace
}  // namespace zev
