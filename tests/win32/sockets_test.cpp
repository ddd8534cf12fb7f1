#include "win32/winsock_api.h"
// Then what is tested.
#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "socket/bench.h"
#include "win32/kernel.h"
#include "win32/sockets.h"

namespace zev::win32 {
namespace {

namespace error = winsock::error;

constexpr std::uint32_t socketEvent = WM_USER + 1;
constexpr std::uint32_t lookUpDone = WM_USER + 2;
constexpr std::int32_t allEvents =
    winsock::fdRead | winsock::fdWrite | winsock::fdAccept | winsock::fdConnect | winsock::fdClose;
constexpr int longest = 5000;  // milliseconds that anything may take

/// Notes the messages of the test's window.
class Listener final : public MessageRoutine {
 public:
  std::intptr_t enter(const WindowMessage& message) override {
    if (message.message == socketEvent || message.message == lookUpDone) seen.push_back(message);
    return 0;
  }

  std::vector<WindowMessage> seen;
};

/// Sockets of a system that has no room for connections.
class FullSockets final : public Win32Sockets {
 public:
  bool full = true;
  int tries = 0;

 protected:
  std::int32_t takeConnection(std::int32_t socket, SocketAddress& peer,
                              std::int32_t& reason) override {
    ++tries;
    if (!full) return Win32Sockets::takeConnection(socket, peer, reason);
    reason = error::tooManyFiles;
    return winsock::noSocket;
  }
};

class SocketsTest : public testing::Test {
 protected:
  SocketsTest() {
    constexpr std::uintptr_t code = 0x00C0DE10;
    bench_->windows().standIn(code, &routine_);
    window_ = bench_->windows().CreateWindowExA(u"STATIC", u"");
    bench_->windows().SetWindowLongA(window_, windowProcedureIndex, code);
    EXPECT_EQ(sockets_.WSAStartup(winsock::version), 0);
  }

  /// The next message of the window; nothing if none comes.
  std::optional<WindowMessage> next() {
    while (routine_.seen.empty() && bench_->pump(longest)) {
    }
    if (routine_.seen.empty()) return std::nullopt;
    const WindowMessage message = routine_.seen.front();
    routine_.seen.erase(routine_.seen.begin());
    return message;
  }

  std::int32_t makeStream() {
    return sockets_.socket(winsock::internet, winsock::stream, winsock::tcp);
  }

  std::int32_t makeDatagram() {
    return sockets_.socket(winsock::internet, winsock::datagram, winsock::udp);
  }

  SocketAddress loopback(std::uint16_t networkPort = 0) {
    return {winsock::internet, networkPort, sockets_.inet_addr(u"127.0.0.1"), {}};
  }

  SocketAddress bound(std::int32_t socket) {
    EXPECT_EQ(sockets_.bind(socket, loopback()), 0);
    SocketAddress address;
    EXPECT_EQ(sockets_.getsockname(socket, address), 0);
    return address;
  }

  void select(std::int32_t socket) {
    EXPECT_EQ(sockets_.WSAAsyncSelect(socket, window_, socketEvent, allEvents), 0);
  }

  void expectEvent(std::int32_t socket, std::int32_t event) {
    const std::optional<WindowMessage> message = next();
    ASSERT_TRUE(message.has_value()) << "no event " << event;
    EXPECT_EQ(message->wParam, static_cast<std::uintptr_t>(socket));
    EXPECT_EQ(message->lParam, event);
  }

  using Event = std::pair<std::int32_t, std::int32_t>;

  /// The next events, whose order between sockets is open.
  std::multiset<Event> nextEvents(std::size_t count) {
    std::multiset<Event> events;
    for (std::size_t each = 0; each < count; ++each) {
      const std::optional<WindowMessage> message = next();
      if (!message) break;
      events.insert(
          {static_cast<std::int32_t>(message->wParam), static_cast<std::int32_t>(message->lParam)});
    }
    return events;
  }

  void expectFailure(std::int32_t answer, std::int32_t reason) {
    EXPECT_EQ(answer, winsock::failed);
    EXPECT_EQ(sockets_.WSAGetLastError(), reason);
  }

  Listener routine_;
  std::unique_ptr<socket_bench::Bench> bench_ = socket_bench::makeBench();
  Sockets& sockets_ = bench_->sockets();
  WindowHandle window_ = 0;
};

/// Every call, with a socket that is none.
std::vector<std::int32_t> answersOfAll(Sockets& sockets) {
  constexpr std::int32_t none = 4;
  SocketAddress address;
  std::int32_t value = 0;
  std::uint8_t byte = 0;
  char name[8];
  return {sockets.WSACleanup(),
          sockets.WSAAsyncSelect(none, 0, socketEvent, allEvents),
          sockets.WSACancelAsyncRequest(1),
          sockets.socket(winsock::internet, winsock::stream, winsock::tcp),
          sockets.closesocket(none),
          sockets.connect(none, address),
          sockets.bind(none, address),
          sockets.listen(none, 5),
          sockets.accept(none, address),
          sockets.getpeername(none, address),
          sockets.getsockname(none, address),
          sockets.getsockopt(none, winsock::socketLevel, winsock::broadcast, value),
          sockets.setsockopt(none, winsock::socketLevel, winsock::broadcast, 1),
          sockets.ioctlsocket(none, winsock::bytesWaiting, value),
          sockets.send(none, {&byte, 1}, 0),
          sockets.sendto(none, {&byte, 1}, 0, address),
          sockets.recv(none, {&byte, 1}, 0),
          sockets.recvfrom(none, {&byte, 1}, 0, address),
          sockets.gethostname(name, sizeof name),
          sockets.inet_addr(u"127.0.0.1")};
}

void expectAllToFail(Sockets& sockets) {
  for (const std::int32_t answer : answersOfAll(sockets)) EXPECT_EQ(answer, winsock::failed);
  char buffer[1024];
  EXPECT_EQ(sockets.WSAAsyncGetHostByName(0, lookUpDone, u"localhost", buffer, sizeof buffer), 0);
  EXPECT_EQ(sockets.gethostbyname(u"localhost"), nullptr);
  EXPECT_EQ(sockets.inet_ntoa(0x0100007F), nullptr);
  EXPECT_EQ(sockets.WSAGetLastError(), error::notStarted);
}

TEST(SocketsWithoutALibrary, CannotStartAndFail) {
  Win32Sockets sockets("zev-no-such-library.dll");
  EXPECT_EQ(sockets.WSAStartup(winsock::version), 10091);
  expectAllToFail(sockets);
}

TEST(SocketsWithoutALibrary, TakeNoOtherOneForIt) {
  Win32Sockets sockets("kernel32.dll");
  EXPECT_EQ(sockets.WSAStartup(winsock::version), 10091);
}

TEST(SocketsWithoutAStart, Fail) {
  Win32Sockets sockets;
  expectAllToFail(sockets);
}

TEST_F(SocketsTest, FailBehindTheLastCleanup) {
  EXPECT_EQ(sockets_.WSAStartup(winsock::version), 0);
  EXPECT_EQ(sockets_.WSACleanup(), 0);
  EXPECT_NE(makeStream(), winsock::noSocket);
  EXPECT_EQ(sockets_.WSACleanup(), 0);
  expectAllToFail(sockets_);
  EXPECT_EQ(bench_->openSockets(), 0);
}

TEST_F(SocketsTest, RefuseAVersionThatIsNone) { EXPECT_EQ(sockets_.WSAStartup(0), 10092); }

TEST_F(SocketsTest, KeepTheReasonOfTheLastFailure) {
  expectFailure(sockets_.closesocket(0x7FFFFFF0), error::notSocket);
  const std::int32_t socket = makeStream();
  EXPECT_NE(socket, winsock::noSocket);
  SetLastError(1);
  EXPECT_EQ(sockets_.WSAGetLastError(), error::notSocket);
  EXPECT_EQ(sockets_.closesocket(socket), 0);
}

TEST_F(SocketsTest, CarryBytesBothWays) {
  const std::int32_t listener = makeStream();
  const SocketAddress place = bound(listener);
  EXPECT_EQ(sockets_.listen(listener, 5), 0);
  select(listener);
  const std::int32_t client = makeStream();
  select(client);
  expectFailure(sockets_.connect(client, place), error::wouldBlock);
  const std::multiset<Event> wanted = {
      {listener, winsock::fdAccept}, {client, winsock::fdConnect}, {client, winsock::fdWrite}};
  EXPECT_EQ(nextEvents(wanted.size()), wanted);
  SocketAddress peer;
  const std::int32_t server = sockets_.accept(listener, peer);
  ASSERT_NE(server, winsock::noSocket);
  SocketAddress own;
  EXPECT_EQ(sockets_.getsockname(client, own), 0);
  EXPECT_EQ(own.port, peer.port);
  EXPECT_EQ(own.address, peer.address);
  expectEvent(server, winsock::fdWrite);
  const std::vector<std::uint8_t> sent = {0, 1, 254, 255};
  EXPECT_EQ(sockets_.send(client, sent, 0), 4);
  expectEvent(server, winsock::fdRead);
  std::int32_t waiting = 0;
  EXPECT_EQ(sockets_.ioctlsocket(server, winsock::bytesWaiting, waiting), 0);
  EXPECT_EQ(waiting, 4);
  std::vector<std::uint8_t> got(8);
  EXPECT_EQ(sockets_.recv(server, got, 0), 4);
  got.resize(4);
  EXPECT_EQ(got, sent);
  EXPECT_EQ(sockets_.closesocket(client), 0);
  expectEvent(server, winsock::fdClose);
  EXPECT_EQ(bench_->openSockets(), 2);
}

TEST_F(SocketsTest, TellOfARefusedConnection) {
  const std::int32_t closed = makeStream();
  const SocketAddress place = bound(closed);
  const std::int32_t client = makeStream();
  select(client);
  expectFailure(sockets_.connect(client, place), error::wouldBlock);
  expectEvent(client, winsock::fdConnect | (error::refused << 16));
}

TEST_F(SocketsTest, TellTheSenderOfADatagramAndLoseItsRest) {
  const std::int32_t receiver = makeDatagram();
  const std::int32_t sender = makeDatagram();
  const SocketAddress to = bound(receiver);
  const SocketAddress from = bound(sender);
  const std::vector<std::uint8_t> bytes = {1, 2, 3};
  for (int count = 0; count < 2; ++count) EXPECT_EQ(sockets_.sendto(sender, bytes, 0, to), 3);
  select(receiver);
  std::uint8_t few[2] = {};
  SocketAddress told;
  expectFailure(sockets_.recvfrom(receiver, few, 0, told), error::messageTooLong);
  EXPECT_EQ(few[1], 2);
  EXPECT_EQ(told.port, from.port);
  std::uint8_t all[8] = {};
  told = {};
  EXPECT_EQ(sockets_.recvfrom(receiver, all, winsock::peek, told), 3);
  EXPECT_EQ(sockets_.recvfrom(receiver, all, 0, told), 3);
  EXPECT_EQ(told.port, from.port);
  EXPECT_EQ(told.address, from.address);
  expectFailure(sockets_.recvfrom(receiver, all, 0, told), error::wouldBlock);
}

TEST_F(SocketsTest, HaveOptions) {
  const std::int32_t stream = makeStream();
  const std::int32_t datagram = makeDatagram();
  std::int32_t value = 0;
  EXPECT_EQ(sockets_.getsockopt(stream, winsock::socketLevel, winsock::sendBufferSize, value), 0);
  EXPECT_GT(value, 0);
  value = 0;
  EXPECT_EQ(sockets_.getsockopt(stream, winsock::socketLevel, winsock::receiveBufferSize, value),
            0);
  EXPECT_GT(value, 0);
  EXPECT_EQ(sockets_.getsockopt(datagram, winsock::socketLevel, winsock::maximumMessage, value), 0);
  EXPECT_GT(value, 65000);
  EXPECT_EQ(sockets_.setsockopt(datagram, winsock::socketLevel, winsock::broadcast, 1), 0);
  EXPECT_EQ(sockets_.getsockopt(datagram, winsock::socketLevel, winsock::broadcast, value), 0);
  EXPECT_EQ(value, 1);
}

TEST_F(SocketsTest, SpellAddresses) {
  EXPECT_EQ(sockets_.inet_addr(u"127.0.0.1"), 0x0100007F);
  EXPECT_EQ(sockets_.inet_addr(u"1.0.0.0"), 1);
  EXPECT_EQ(sockets_.inet_addr(u"255.255.255.255"), -1);
  EXPECT_EQ(sockets_.inet_addr(u"localhost"), -1);
  EXPECT_STREQ(sockets_.inet_ntoa(0x0100007F), "127.0.0.1");
  EXPECT_STREQ(sockets_.inet_ntoa(-1), "255.255.255.255");
}

void expectLoopback(const HostRecord& record) {
  EXPECT_NE(record.name, nullptr);
  EXPECT_NE(record.aliases, nullptr);
  EXPECT_EQ(record.addressType, winsock::internet);
  ASSERT_EQ(record.addressLength, 4);
  ASSERT_NE(record.addresses[0], nullptr);
  std::int32_t address = 0;
  std::memcpy(&address, record.addresses[0], sizeof address);
  EXPECT_EQ(address, 0x0100007F);
}

TEST_F(SocketsTest, LookHostsUp) {
  const HostRecord* const record = sockets_.gethostbyname(u"localhost");
  ASSERT_NE(record, nullptr);
  expectLoopback(*record);
  EXPECT_EQ(sockets_.gethostbyname(u"no-such-host.invalid"), nullptr);
  EXPECT_EQ(sockets_.WSAGetLastError(), error::hostNotFound);
  char name[256] = {};
  EXPECT_EQ(sockets_.gethostname(name, sizeof name), 0);
  EXPECT_STRNE(name, "");
}

TEST_F(SocketsTest, LookHostsUpWhileOthersWork) {
  alignas(HostRecord) char buffer[1024] = {};
  const std::int32_t lookUp =
      sockets_.WSAAsyncGetHostByName(window_, lookUpDone, u"localhost", buffer, sizeof buffer);
  ASSERT_NE(lookUp, 0);
  const std::optional<WindowMessage> done = next();
  ASSERT_TRUE(done.has_value());
  EXPECT_EQ(done->message, lookUpDone);
  EXPECT_EQ(done->wParam, static_cast<std::uintptr_t>(lookUp));
  EXPECT_EQ(HIWORD(done->lParam), 0);
  HostRecord record;
  std::memcpy(&record, buffer, sizeof record);
  expectLoopback(record);
}

TEST_F(SocketsTest, TellOfAHostThatIsNotThere) {
  alignas(HostRecord) char buffer[1024] = {};
  const std::int32_t lookUp = sockets_.WSAAsyncGetHostByName(
      window_, lookUpDone, u"no-such-host.invalid", buffer, sizeof buffer);
  ASSERT_NE(lookUp, 0);
  const std::optional<WindowMessage> done = next();
  ASSERT_TRUE(done.has_value());
  EXPECT_EQ(done->wParam, static_cast<std::uintptr_t>(lookUp));
  EXPECT_EQ(HIWORD(done->lParam), error::hostNotFound);
}

// ---- the kernel beside them

TEST(KernelTest, GivesPagesThatCanBeWritten) {
  Win32Kernel kernel;
  std::uint8_t* const pages = kernel.VirtualAlloc(182, commitPages, readWriteExecute);
  ASSERT_NE(pages, nullptr);
  EXPECT_EQ(pages[181], 0);
  kernel.VirtualLock(pages, 182);
  MEMORY_BASIC_INFORMATION page{};
  ASSERT_NE(VirtualQuery(pages, &page, sizeof page), 0u);
  EXPECT_EQ(page.Protect, entersMachineCode ? readWriteExecute : DWORD{PAGE_READWRITE});
  pages[181] = 0xC3;
  EXPECT_TRUE(kernel.VirtualFree(pages, 0, releasePages));
  EXPECT_FALSE(kernel.VirtualFree(pages, 0, releasePages));
}

TEST(KernelTest, GivesBlocks) {
  Win32Kernel kernel;
  const GlobalHandle block = kernel.GlobalAlloc(0, 1024);
  ASSERT_NE(block, 0u);
  void* const address = kernel.GlobalLock(block);
  ASSERT_NE(address, nullptr);
  std::memset(address, 7, 1024);
  kernel.GlobalUnlock(block);
  EXPECT_EQ(static_cast<std::uint8_t*>(address)[1023], 7);
  EXPECT_EQ(kernel.GlobalFree(block), 0u);
  EXPECT_EQ(kernel.GlobalFree(0), 0u);
}

TEST(KernelTest, FindsFunctionsOfLoadedLibraries) {
  Win32Kernel kernel;
  EXPECT_EQ(kernel.ProcAddress("user32", "CallWindowProcA"),
            reinterpret_cast<std::uintptr_t>(
                GetProcAddress(GetModuleHandleA("user32.dll"), "CallWindowProcA")));
  EXPECT_NE(kernel.ProcAddress("user32", "SetWindowLongA"), 0u);
  EXPECT_EQ(kernel.ProcAddress("user32", "NoSuchFunction"), 0u);
  EXPECT_EQ(kernel.ProcAddress("zev-no-such-library", "EbMode"), 0u);
}

TEST(KernelTest, TurnsTextsIntoBytesAndBack) {
  Win32Kernel kernel;
  EXPECT_EQ(kernel.toAnsi(Text(u"A\0c", 3)), std::string("A\0c", 3));
  EXPECT_EQ(kernel.fromAnsi(std::string("A\0c", 3)), Text(u"A\0c", 3));
  EXPECT_EQ(kernel.toAnsi(u"日"), "?");
}

TEST_F(SocketsTest, ARestEndsByItselfOnceThereIsRoom) {
  FullSockets ours;
  ASSERT_EQ(ours.WSAStartup(winsock::version), 0);
  const std::int32_t listener = ours.socket(winsock::internet, winsock::stream, winsock::tcp);
  EXPECT_EQ(ours.WSAAsyncSelect(listener, window_, socketEvent, allEvents), 0);
  EXPECT_EQ(ours.bind(listener, loopback()), 0);
  SocketAddress here, peer;
  EXPECT_EQ(ours.getsockname(listener, here), 0);
  EXPECT_EQ(ours.listen(listener, 5), 0);
  const std::int32_t caller = makeStream();
  EXPECT_EQ(sockets_.connect(caller, here), 0);
  expectEvent(listener, winsock::fdAccept);
  EXPECT_EQ(ours.accept(listener, peer), winsock::noSocket);
  EXPECT_EQ(ours.WSAGetLastError(), error::tooManyFiles);
  while (bench_->pump(100)) {
  }
  EXPECT_TRUE(routine_.seen.empty());
  ours.full = false;
  expectEvent(listener, winsock::fdAccept);
  EXPECT_EQ(ours.tries, 1);
  const std::int32_t accepted = ours.accept(listener, peer);
  EXPECT_NE(accepted, winsock::noSocket);
  ours.closesocket(accepted);
  ours.closesocket(listener);
  sockets_.closesocket(caller);
}

}  // namespace
}  // namespace zev::win32
