#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "simulated/network/simulated_kernel.h"
#include "simulated/network/simulated_network.h"
#include "simulated/network/simulated_sockets.h"
#include "socket/event_socket.h"
#include "socket/socket_fixture.h"
#include "socket/targets.h"
#include "socket/watched_services.h"
#include "support/fake_dialogs.h"
#include "support/table.h"

namespace zev::socket_bench {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Lines = std::vector<std::string>;
using Arguments = Target::Arguments;

class ModuleTest : public testing::Test {
 protected:
  ModuleTest() {
    module.trace().setReader([this](const Text& line) { trace.push_back(toUtf8(line)); });
  }

  /// The service runs, and the lines so far are forgotten.
  void start() {
    module.InitiateProcesses();
    forgetLines();
  }
  void forgetLines() {
    calls.clearLines();
    trace.clear();
  }
  std::int32_t newSocket() {
    return sockets.socket(winsock::internet, winsock::datagram, winsock::udp);
  }
  InstancePointer add(const std::shared_ptr<Target>& target) {
    return module.instances().add(target);
  }
  std::string window() const { return std::to_string(module.lngWindowHandle()); }
  std::string block() const {
    return std::to_string(reinterpret_cast<std::uintptr_t>(module.thunk().ThunkBlock()));
  }
  void post(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) {
    queue.post({static_cast<WindowHandle>(module.lngWindowHandle()), message,
                static_cast<std::uint32_t>(wParam), lParam});
  }
  void dispatchAll() {
    while (queue.dispatch()) {
    }
  }
  Arguments notification(std::uint32_t message, std::int32_t wParam, std::int32_t lParam) const {
    return {module.lngWindowHandle(), static_cast<std::int32_t>(message), wParam, lParam};
  }

  simulated::SimulatedNetwork network;
  MessageQueue queue;
  simulated::SimulatedSockets sockets{network, queue};
  simulated::SimulatedKernel kernel;
  WatchedServices services{sockets, queue, kernel};
  Calls& calls = services.calls;
  test::FakeDialogs dialogs;
  Lines trace;
  modEventSocket module{
      SocketServices{services.sockets, services.windows, services.kernel, dialogs}};
};

// ---- the service

TEST_F(ModuleTest, TheFirstInstanceBuildsTheBlockAndStartsTheService) {
  EXPECT_EQ(module.InitiateProcesses(), 0);
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_TRUE(module.ServiceStarted());
  EXPECT_THAT(calls.linesOf({"VirtualAlloc", "WSAStartup", "CreateWindowExA"}),
              ElementsAre("VirtualAlloc 182 4096 64", "WSAStartup 257"));
  EXPECT_THAT(trace, ElementsAre("OK Subclass memory allocated at: " + block(),
                                 "OK Winsock service initiated"));
  EXPECT_EQ(module.lngWindowHandle(), 0);
  EXPECT_FALSE(module.SocketCollectionCount());
  EXPECT_FALSE(module.AcceptCollectionCount());
}

TEST_F(ModuleTest, LaterInstancesStartNothing) {
  start();
  EXPECT_EQ(module.InitiateProcesses(), 0);
  EXPECT_EQ(module.InitiateProcesses(), 0);
  EXPECT_EQ(module.InstanceCount(), 3);
  EXPECT_THAT(calls.lines(), IsEmpty());
  EXPECT_THAT(trace, IsEmpty());
}

TEST_F(ModuleTest, TheLastInstanceEndsTheService) {
  start();
  const std::string place = block();
  module.InitiateProcesses();
  EXPECT_EQ(module.FinalizeProcesses(), 0);
  EXPECT_THAT(calls.lines(), IsEmpty());
  EXPECT_TRUE(module.ServiceStarted());
  EXPECT_EQ(module.FinalizeProcesses(), 0);
  EXPECT_THAT(calls.lines(), ElementsAre("WSACleanup", "VirtualFree 0 32768"));
  EXPECT_THAT(trace,
              ElementsAre("OK Winsock service finalized", "OK Freed subclass memory at: " + place));
  EXPECT_EQ(module.InstanceCount(), 0);
  EXPECT_FALSE(module.ServiceStarted());
  EXPECT_EQ(module.thunk().ThunkBlock(), nullptr);
  EXPECT_EQ(sockets.starts(), 0);
  EXPECT_EQ(kernel.pages(), 0u);
}

TEST_F(ModuleTest, TheServiceStartsOnceAgainAfterTheLastInstance) {
  for (int round = 1; round <= 3; ++round) {
    module.InitiateProcesses();
    module.InitiateProcesses();
    EXPECT_EQ(calls.count("WSAStartup"), round);
    EXPECT_EQ(calls.count("VirtualAlloc"), round);
    module.FinalizeProcesses();
    module.FinalizeProcesses();
    EXPECT_EQ(calls.count("WSACleanup"), round);
    EXPECT_EQ(calls.count("VirtualFree"), round);
  }
}

TEST_F(ModuleTest, AStartThatFailsIsRaisedAndNotTriedAgain) {
  calls.fail("WSAStartup", 10091);
  EXPECT_EQ(raised([&] { module.InitiateProcesses(); }),
            "10091 modEventSocket.InitiateProcesses: Network subsystem is unavailable.");
  EXPECT_TRUE(module.ServiceStarted());
  EXPECT_NE(module.thunk().ThunkBlock(), nullptr);
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_EQ(trace.back(), "ERROR trying to initiate winsock service");
  calls.heal("WSAStartup");
  EXPECT_EQ(module.InitiateProcesses(), 0);
  EXPECT_EQ(module.InstanceCount(), 2);
  EXPECT_EQ(calls.count("WSAStartup"), 1);
  EXPECT_EQ(calls.count("VirtualAlloc"), 1);
}

TEST_F(ModuleTest, AStartThatFailsWithAnUnknownNumberHasATextAllTheSame) {
  calls.fail("WSAStartup", 1);
  EXPECT_EQ(raised([&] { module.InitiateProcesses(); }),
            "1 modEventSocket.InitiateProcesses: Unknown error.");
}

TEST_F(ModuleTest, WithoutMemoryForTheBlockTheServiceIsNotStarted) {
  calls.fail("VirtualAlloc");
  EXPECT_EQ(raised([&] { module.InitiateProcesses(); }),
            "7 modEventSocket.BuildThunk: Out of memory");
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_FALSE(module.ServiceStarted());
  EXPECT_EQ(calls.count("WSAStartup"), 0);
}

TEST_F(ModuleTest, ARefusedBlockIsToldToEachWhoAsksAndNothingElseBreaks) {
  calls.fail("VirtualAlloc");
  for (int tries = 0; tries < 2; ++tries) {
    EXPECT_EQ(raised([&] { CEventSocket::create(module); }),
              "7 modEventSocket.BuildThunk: Out of memory");
  }
  calls.heal("VirtualAlloc");
  const auto socket = CEventSocket::create(module);
  socket->Bind(0, u"127.0.0.1");
  EXPECT_EQ(socket->State(), sckOpen);
  EXPECT_EQ(calls.count("WSAStartup"), 1);
  socket->CloseSck();
  EXPECT_EQ(module.lngWindowHandle(), 0);
}

TEST_F(ModuleTest, AnEndThatFailsIsRaisedAndLeavesTheServiceStarted) {
  start();
  calls.fail("WSACleanup", 10050);
  EXPECT_EQ(raised([&] { module.FinalizeProcesses(); }),
            "10050 modEventSocket.FinalizeProcesses: Network is down.");
  EXPECT_EQ(module.InstanceCount(), 0);
  EXPECT_TRUE(module.ServiceStarted());
  EXPECT_NE(module.thunk().ThunkBlock(), nullptr);
  EXPECT_THAT(trace, IsEmpty());
  EXPECT_EQ(calls.count("VirtualFree"), 0);

  calls.heal("WSACleanup");
  module.InitiateProcesses();
  EXPECT_EQ(calls.count("WSAStartup"), 1);
  EXPECT_EQ(module.FinalizeProcesses(), 0);
  EXPECT_FALSE(module.ServiceStarted());
}

// ---- window and sockets

TEST_F(ModuleTest, TheFirstSocketMakesTheWindow) {
  start();
  const std::int32_t socket = newSocket();
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  EXPECT_TRUE(module.RegisterSocket(socket, pointer, true));
  const std::string handle = std::to_string(socket);
  EXPECT_THAT(calls.lines(), ElementsAre("CreateWindowExA STATIC SOCKET_WINDOW",
                                         "GetWindowLongA " + window() + " -4",
                                         "SetWindowLongA " + window() + " -4 " + block(),
                                         "WSAAsyncSelect " + handle + ' ' + window() + " 2049 59"));
  EXPECT_THAT(trace, ElementsAre("OK Created socket collection",
                                 "OK Created winsock message window " + window(),
                                 "OK Registered events from socket " + handle));
  EXPECT_GT(module.lngWindowHandle(), 0);
  EXPECT_EQ(module.thunk().SubclassedWindow(), static_cast<WindowHandle>(module.lngWindowHandle()));
  EXPECT_TRUE(module.IsSocketRegistered(socket));
  EXPECT_EQ(module.SocketCollectionCount(), 1u);
  EXPECT_EQ(module.thunk().socketTable().find(socket), pointer);
}

TEST_F(ModuleTest, LaterSocketsShareTheWindow) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(newSocket(), add(target), true);
  forgetLines();
  const std::int32_t socket = newSocket();
  calls.clearLines();
  module.RegisterSocket(socket, add(target), true);
  EXPECT_THAT(calls.lines(), ElementsAre("WSAAsyncSelect " + std::to_string(socket) + ' ' +
                                         window() + " 2049 59"));
  EXPECT_EQ(module.SocketCollectionCount(), 2u);
  EXPECT_EQ(queue.openWindows(), 1u);
}

TEST_F(ModuleTest, ASocketThatInheritsItsEventsAsksForNone) {
  start();
  const auto target = std::make_shared<Target>();
  EXPECT_TRUE(module.RegisterSocket(97, add(target), false));
  EXPECT_EQ(calls.count("WSAAsyncSelect"), 0);
  EXPECT_TRUE(module.IsSocketRegistered(97));
}

TEST_F(ModuleTest, TheLastSocketTakesTheWindowAway) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(97, add(target), false);
  module.RegisterSocket(98, add(target), false);
  const std::string handle = window();
  forgetLines();
  module.UnregisterSocket(97);
  EXPECT_THAT(calls.lines(), IsEmpty());
  EXPECT_FALSE(module.IsSocketRegistered(97));
  EXPECT_TRUE(module.IsSocketRegistered(98));
  EXPECT_EQ(module.thunk().socketTable().find(97), noInstance);
  module.UnregisterSocket(98);
  EXPECT_THAT(calls.lines(),
              ElementsAre("SetWindowLongA " + handle + " -4 0", "DestroyWindow " + handle));
  EXPECT_THAT(trace, ElementsAre("OK Destroyed socket collection",
                                 "OK Destroyed winsock message window " + handle));
  EXPECT_EQ(module.lngWindowHandle(), 0);
  EXPECT_FALSE(module.SocketCollectionCount());
  EXPECT_EQ(module.thunk().SubclassedWindow(), 0u);
  EXPECT_EQ(queue.openWindows(), 0u);
}

TEST_F(ModuleTest, WindowsComeAndGoUnderOneService) {
  start();
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  std::int32_t before = 0;
  for (std::int32_t round = 1; round <= 5; ++round) {
    module.RegisterSocket(round, pointer, false);
    module.RegisterSocket(round + 100, pointer, false);
    EXPECT_NE(module.lngWindowHandle(), before);
    before = module.lngWindowHandle();
    EXPECT_EQ(module.thunk().socketTable().count(), 2);
    EXPECT_THAT(module.thunk().socketTable().handles(), ElementsAre(round, round + 100));
    post(WM_SOCKET_EVENT, round + 100, 1);
    post(WM_SOCKET_EVENT, round, 2);
    dispatchAll();
    EXPECT_THAT(target->taken, ElementsAre(notification(WM_SOCKET_EVENT, round + 100, 1),
                                           notification(WM_SOCKET_EVENT, round, 2)));
    target->taken.clear();
    module.UnregisterSocket(round);
    module.UnregisterSocket(round + 100);
    EXPECT_EQ(module.thunk().socketTable().count(), 0);
  }
  EXPECT_EQ(calls.count("CreateWindowExA"), 5);
  EXPECT_EQ(calls.count("DestroyWindow"), 5);
  EXPECT_EQ(calls.count("VirtualAlloc"), 1);
  EXPECT_EQ(calls.count("WSAStartup"), 1);
}

TEST_F(ModuleTest, FreedSlotsAreReused) {
  start();
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  for (std::int32_t socket = 1; socket <= 3; ++socket) {
    module.RegisterSocket(socket, pointer, false);
  }
  module.UnregisterSocket(2);
  EXPECT_THAT(module.thunk().socketTable().handles(), ElementsAre(1, -1, 3));
  EXPECT_THAT(module.thunk().socketTable().objects(), ElementsAre(pointer, -1, pointer));
  module.RegisterSocket(4, pointer, false);
  EXPECT_THAT(module.thunk().socketTable().handles(), ElementsAre(1, 4, 3));
  EXPECT_EQ(module.thunk().socketTable().count(), 3);
}

TEST_F(ModuleTest, AHandleThatIsRegisteredTwiceKeepsItsFirstInstanceInTheTable) {
  start();
  const auto first = std::make_shared<Target>();
  const auto second = std::make_shared<Target>();
  const InstancePointer pointer = add(first);
  module.RegisterSocket(97, pointer, false);
  trace.clear();
  EXPECT_EQ(raised([&] { module.RegisterSocket(97, add(second), false); }).substr(0, 4), "457 ");
  EXPECT_THAT(trace, ElementsAre("WARNING: Async already registered!"));
  EXPECT_EQ(module.thunk().socketTable().find(97), pointer);
  EXPECT_EQ(module.thunk().socketTable().count(), 1);
  post(WM_SOCKET_EVENT, 97, 1);
  dispatchAll();
  EXPECT_EQ(first->taken.size(), 1u);
  EXPECT_THAT(second->taken, IsEmpty());
}

TEST_F(ModuleTest, UnregisteringAnUnknownSocketLeavesTheOthers) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(97, add(target), false);
  forgetLines();
  module.UnregisterSocket(98);
  EXPECT_EQ(module.SocketCollectionCount(), 1u);
  EXPECT_THAT(calls.lines(), IsEmpty());
  EXPECT_THAT(trace, IsEmpty());
}

TEST_F(ModuleTest, UnregisteringWithoutAnySocketFindsNoWindow) {
  start();
  module.UnregisterSocket(98);
  EXPECT_THAT(trace, ElementsAre("WARNING lngWindowHandle is ZERO"));
  EXPECT_THAT(calls.lines(), IsEmpty());
}

TEST_F(ModuleTest, AskingForASocketFindsNoneWithoutACollection) {
  EXPECT_FALSE(module.IsSocketRegistered(97));
  EXPECT_FALSE(module.IsAcceptRegistered(97));
}

TEST_F(ModuleTest, AWindowThatCannotBeMadeLeavesTheCollectionEmpty) {
  start();
  calls.fail("CreateWindowExA");
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  EXPECT_EQ(raised([&] { module.RegisterSocket(97, pointer, true); }),
            "7 modEventSocket.RegisterSocket: Out of memory");
  EXPECT_EQ(module.SocketCollectionCount(), 0u);
  EXPECT_EQ(module.lngWindowHandle(), 0);
  EXPECT_EQ(module.thunk().SubclassedWindow(), 0u);
  EXPECT_EQ(module.thunk().socketTable().count(), 0);
  EXPECT_EQ(calls.count("WSAAsyncSelect"), 0);
  EXPECT_THAT(trace, ElementsAre("OK Created socket collection"));

  calls.heal("CreateWindowExA");
  forgetLines();
  EXPECT_TRUE(module.RegisterSocket(98, pointer, false));
  EXPECT_THAT(calls.lines(), IsEmpty()) << "a window was tried again";
  EXPECT_EQ(module.SocketCollectionCount(), 1u);
  EXPECT_EQ(module.thunk().socketTable().find(98), pointer);

  module.UnregisterSocket(98);
  EXPECT_THAT(trace,
              ElementsAre("OK Destroyed socket collection", "WARNING lngWindowHandle is ZERO"));
  EXPECT_TRUE(module.RegisterSocket(99, pointer, false));
  EXPECT_EQ(calls.count("CreateWindowExA"), 2);
  EXPECT_GT(module.lngWindowHandle(), 0);
}

TEST_F(ModuleTest, EntriesThatCameWithoutAWindowDoNotOutliveTheService) {
  start();
  calls.fail("CreateWindowExA");
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  raised([&] { module.RegisterSocket(97, pointer, false); });
  for (std::int32_t socket = 98; socket <= 100; ++socket) {
    module.RegisterSocket(socket, pointer, false);
  }
  for (std::int32_t socket = 98; socket <= 100; ++socket) module.UnregisterSocket(socket);
  module.FinalizeProcesses();
  calls.heal("CreateWindowExA");
  module.InitiateProcesses();
  for (std::int32_t socket = 1; socket <= 3; ++socket) {
    module.RegisterSocket(socket, pointer, false);
    post(WM_SOCKET_EVENT, socket, 1);
    dispatchAll();
    EXPECT_EQ(target->taken.size(), static_cast<std::size_t>(socket));
  }
  EXPECT_THAT(module.thunk().socketTable().handles(), ElementsAre(1, 2, 3));
}

TEST_F(ModuleTest, AWindowThatCannotBeSubclassedIsUsedAllTheSame) {
  start();
  calls.fail("SetWindowLongA");
  const auto target = std::make_shared<Target>();
  EXPECT_TRUE(module.RegisterSocket(97, add(target), false));
  EXPECT_TRUE(module.IsSocketRegistered(97));
  EXPECT_GT(module.lngWindowHandle(), 0);
}

TEST_F(ModuleTest, AWindowThatCannotBeDestroyedKeepsItsHandle) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(97, add(target), false);
  const std::int32_t handle = module.lngWindowHandle();
  calls.fail("DestroyWindow");
  trace.clear();
  EXPECT_EQ(raised([&] { module.UnregisterSocket(97); }),
            "7 modEventSocket.DestroyWinsockMessageWindow: Out of memory");
  EXPECT_EQ(module.lngWindowHandle(), handle);
  EXPECT_FALSE(module.SocketCollectionCount());
  EXPECT_EQ(module.thunk().SubclassedWindow(), 0u);
  EXPECT_THAT(trace, ElementsAre("OK Destroyed socket collection"));

  calls.heal("DestroyWindow");
  module.RegisterSocket(98, add(target), false);
  EXPECT_NE(module.lngWindowHandle(), handle);
}

TEST_F(ModuleTest, EventsThatAreRefusedLeaveTheEntryOfTheTable) {
  start();
  const std::int32_t socket = newSocket();
  calls.fail("WSAAsyncSelect", 10022);
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  trace.clear();
  EXPECT_EQ(raised([&] { module.RegisterSocket(socket, pointer, true); }),
            "10022 modEventSocket.RegisterSocket: Invalid argument.");
  EXPECT_EQ(module.thunk().socketTable().find(socket), pointer);
  EXPECT_FALSE(module.IsSocketRegistered(socket));
  EXPECT_EQ(module.SocketCollectionCount(), 0u);
  EXPECT_GT(module.lngWindowHandle(), 0);
  EXPECT_EQ(trace.back(), "ERROR trying to register events from socket " + std::to_string(socket));
  post(WM_SOCKET_EVENT, socket, 1);
  dispatchAll();
  EXPECT_EQ(target->taken.size(), 1u);
}

// ---- routing

TEST_F(ModuleTest, NotificationsOfUnknownHandlesVanish) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(97, add(target), false);
  calls.clearLines();
  post(WM_SOCKET_EVENT, 98, 1);
  post(WM_SOCKET_EVENT, -1, 1);
  post(WM_RESOLVE_DONE, 97, 1);
  dispatchAll();
  EXPECT_THAT(target->taken, IsEmpty());
  EXPECT_THAT(calls.linesOf({"CallWindowProcA"}), IsEmpty()) << "the previous procedure was called";
}

TEST_F(ModuleTest, OtherMessagesGoOnToThePreviousProcedure) {
  start();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(97, add(target), false);
  calls.clearLines();
  post(1024, 97, 5);
  dispatchAll();
  EXPECT_THAT(calls.lines(),
              ElementsAre("CallWindowProcA " + std::to_string(MessageQueue::defaultProcedure) +
                          ' ' + window() + " 1024 97 5"));
}

TEST_F(ModuleTest, AReplacementTakesTheNotificationsOver) {
  start();
  const auto first = std::make_shared<Target>();
  const auto second = std::make_shared<Target>();
  module.RegisterSocket(97, add(first), false);
  module.ReplaceSocketObject(97, add(second));
  module.ReplaceSocketObject(98, add(first));
  post(WM_SOCKET_EVENT, 97, 1);
  dispatchAll();
  EXPECT_THAT(first->taken, IsEmpty());
  EXPECT_EQ(second->taken.size(), 1u);
  EXPECT_EQ(module.SocketCollectionCount(), 1u);
}

TEST_F(ModuleTest, SystemNotificationsReachTheInstance) {
  start();
  const std::int32_t socket = newSocket();
  const auto target = std::make_shared<Target>();
  module.RegisterSocket(socket, add(target), true);
  dispatchAll();
  EXPECT_THAT(target->taken, ElementsAre(notification(WM_SOCKET_EVENT, socket, winsock::fdWrite)));
}

// ---- look-ups

TEST_F(ModuleTest, ALookUpReachesItsInstance) {
  start();
  network.addHost("server.example", {"10.0.0.7"});
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  module.RegisterSocket(97, pointer, false);
  calls.clearLines();
  std::uint64_t buffer[128];
  const std::int32_t lookUp = module.ResolveHostAsync(u"server.example", buffer, pointer);
  EXPECT_NE(lookUp, 0);
  EXPECT_THAT(calls.lines(),
              ElementsAre("WSAAsyncGetHostByName " + window() + " 2048 server.example 1024"));
  EXPECT_EQ(module.thunk().resolveTable().find(lookUp), pointer);
  network.advance(1000);
  dispatchAll();
  ASSERT_EQ(target->taken.size(), 1u);
  EXPECT_EQ(target->taken[0].uMsg, 2048);
  EXPECT_EQ(target->taken[0].wParam, lookUp);
  EXPECT_EQ(HiWord(target->taken[0].lParam), 0);
  EXPECT_EQ(module.thunk().resolveTable().find(lookUp), pointer) << "the entry stays";
}

TEST_F(ModuleTest, ALookUpThatIsUnregisteredReachesNobody) {
  start();
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  module.RegisterSocket(97, pointer, false);
  std::uint64_t buffer[128];
  const std::int32_t lookUp = module.ResolveHostAsync(u"localhost", buffer, pointer);
  module.UnregisterResolution(lookUp);
  EXPECT_THAT(module.thunk().resolveTable().handles(), ElementsAre(-1));
  EXPECT_THAT(module.thunk().resolveTable().objects(), ElementsAre(-1));
  network.advance(1000);
  dispatchAll();
  EXPECT_THAT(target->taken, IsEmpty());
}

TEST_F(ModuleTest, ALookUpThatIsRefusedHasNoEntry) {
  start();
  calls.fail("WSAAsyncGetHostByName", 10055);
  std::uint64_t buffer[128];
  EXPECT_EQ(module.ResolveHostAsync(u"localhost", buffer, 1), 0);
  EXPECT_EQ(module.thunk().resolveTable().count(), 0);
}

TEST_F(ModuleTest, TheEndOfTheWindowClearsTheLookUps) {
  start();
  const auto target = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  module.RegisterSocket(97, pointer, false);
  std::uint64_t buffer[128];
  module.ResolveHostAsync(u"localhost", buffer, pointer);
  module.UnregisterSocket(97);
  EXPECT_EQ(module.thunk().resolveTable().count(), 0);
}

TEST_F(ModuleTest, AnInstanceThatEndedIsNotReachedByAnEntryThatStays) {
  start();
  auto target = std::make_shared<Target>();
  const auto other = std::make_shared<Target>();
  const InstancePointer pointer = add(target);
  module.RegisterSocket(97, add(other), false);
  std::uint64_t buffer[128];
  const std::int32_t lookUp = module.ResolveHostAsync(u"localhost", buffer, pointer);
  module.instanceEnded(pointer);
  const auto next = std::make_shared<Target>();
  EXPECT_NE(add(next), pointer) << "the pointer stands in a table still";
  post(WM_RESOLVE_DONE, lookUp, 0);
  dispatchAll();
  EXPECT_THAT(target->taken, IsEmpty());
  EXPECT_THAT(next->taken, IsEmpty());
  module.UnregisterSocket(97);
  EXPECT_EQ(module.instances().entries(), 2u);
}

// ---- accepted connections

TEST_F(ModuleTest, HoldsAcceptedConnectionsUntilTheyAreTaken) {
  start();
  const std::int32_t first = sockets.socket(winsock::internet, winsock::stream, winsock::tcp);
  const std::int32_t second = sockets.socket(winsock::internet, winsock::stream, winsock::tcp);
  module.RegisterAccept(first);
  EXPECT_EQ(trace.front(), "OK Created accept collection");
  EXPECT_EQ(module.InstanceCount(), 2);
  EXPECT_EQ(module.AcceptCollectionCount(), 1u);
  EXPECT_TRUE(module.IsAcceptRegistered(first));
  EXPECT_TRUE(module.IsSocketRegistered(first));
  EXPECT_FALSE(module.IsAcceptRegistered(second));
  EXPECT_EQ(module.GetAcceptObject(first)->SocketHandle(), first);
  EXPECT_EQ(module.GetAcceptObject(first)->State(), sckConnected);
  EXPECT_EQ(calls.count("WSAAsyncSelect"), 0) << "the events are inherited";

  trace.clear();
  module.RegisterAccept(second);
  EXPECT_EQ(module.AcceptCollectionCount(), 2u);
  EXPECT_EQ(module.GetAcceptObject(second)->SocketHandle(), second);
  EXPECT_EQ(std::count(trace.begin(), trace.end(), "OK Created accept collection"), 0);
  EXPECT_EQ(raised([&] { module.GetAcceptObject(second + 1); }).substr(0, 2), "5 ");

  trace.clear();
  module.UnregisterAccept(first);
  EXPECT_EQ(module.AcceptCollectionCount(), 1u);
  EXPECT_THAT(trace, IsEmpty());
  module.UnregisterAccept(second);
  EXPECT_FALSE(module.AcceptCollectionCount());
  EXPECT_THAT(trace, ElementsAre("OK Destroyed accept collection"));
  EXPECT_EQ(module.InstanceCount(), 1);
  EXPECT_EQ(calls.count("closesocket"), 0) << "who only held a connection must not close it";
  module.UnregisterSocket(first);
  module.UnregisterSocket(second);
}

TEST_F(ModuleTest, WithoutHeldConnectionsNoneIsFound) {
  start();
  EXPECT_FALSE(module.AcceptCollectionCount());
  EXPECT_EQ(raised([&] { module.GetAcceptObject(97); }).substr(0, 3), "91 ");
  EXPECT_EQ(raised([&] { module.UnregisterAccept(97); }).substr(0, 3), "91 ");
}

// ---- texts

TEST_F(ModuleTest, ReadsTextsUpToTheirEnd) {
  EXPECT_EQ(module.StringFromPointer("127.0.0.1"), u"127.0.0.1");
  EXPECT_EQ(module.StringFromPointer(""), u"");
  EXPECT_EQ(module.StringFromPointer("ab\0cd"), u"ab");
  EXPECT_EQ(module.StringFromPointer("\xE9\x80"), u"\u00E9\u20AC");
  EXPECT_EQ(module.StringFromPointer(nullptr), u"");
}

TEST_F(ModuleTest, PrintsNothingWithoutAReader) {
  module.trace().setReader({});
  module.InitiateProcesses();
  module.FinalizeProcesses();
  EXPECT_THAT(trace, IsEmpty());
}

TEST(WinsockErrorText, IsThatOfTheTable) {
  const test::Table table = test::Table::read("socket/winsock_errors.tsv");
  EXPECT_EQ(table.size(), 45u);
  for (const test::Row& row : table) {
    EXPECT_EQ(WinsockErrorText(row.number("number")), row.text("text")) << row.where();
  }
}

TEST(WinsockErrorText, KnowsNoOtherNumber) {
  std::map<std::int32_t, Text> known;
  for (const test::Row& row : test::Table::read("socket/winsock_errors.tsv")) {
    if (row.quoted("text") != "Unknown error.") known[row.number("number")] = row.text("text");
  }
  EXPECT_EQ(known.size(), 40u);
  for (std::int32_t number = -100; number < 12000; ++number) {
    const auto row = known.find(number);
    EXPECT_EQ(WinsockErrorText(number), row == known.end() ? u"Unknown error." : row->second)
        << number;
  }
  EXPECT_EQ(WinsockErrorText(2147483647), u"Unknown error.");
}

}  // namespace
}  // namespace zev::socket_bench
