#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "posix/machine.h"
#include "posix/peer.h"

namespace zev::posix {

namespace ws = winsock;

inline constexpr std::int32_t allEvents = 59;
inline constexpr std::uint32_t eventMessage = 2049;
inline constexpr std::uint32_t lookUpMessage = 2048;

/// A notification as it was dispatched.
struct Told {
  std::int32_t socket = 0;
  std::int32_t event = 0;
  std::int32_t error = 0;
  bool operator==(const Told&) const = default;
};

inline std::ostream& operator<<(std::ostream& stream, const Told& told) {
  return stream << "{" << told.socket << ", event " << told.event << ", error " << told.error
                << "}";
}

/// A machine with one window, which keeps what it is told.
class OnTheMachine : public testing::Test, private MessageRoutine {
 protected:
  explicit OnTheMachine(LookUps::Resolver resolver = lookUp)
      : machine(std::make_unique<Machine>(Machine::Settings{1252, std::move(resolver)})) {
    window = newWindow();
    EXPECT_EQ(sockets().WSAStartup(ws::version), 0);
  }
  ~OnTheMachine() override {
    // The routine goes before the machine does.
    machine.reset();
  }

  PosixSockets& sockets() { return machine->sockets(); }
  WindowQueue& windows() { return machine->windows(); }

  WindowHandle newWindow() {
    const WindowHandle created = windows().CreateWindowExA(u"STATIC", u"");
    windows().SetWindowLongA(created, windowProcedureIndex, procedure_);
    windows().standIn(procedure_, this);
    return created;
  }

  /// Dispatches until the condition holds; false after five seconds.
  bool pumpUntil(const std::function<bool()>& holds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > end) return false;
      machine->dispatch(20);
    }
    return true;
  }
  /// Dispatches all that comes until nothing has come for a while.
  void settle() {
    while (machine->dispatch(60)) continue;
  }

  bool wasTold(std::int32_t socket, std::int32_t event) const {
    for (const Told& each : told) {
      if (each.socket == socket && each.event == event) return true;
    }
    return false;
  }
  /// What a socket was told since the last call, in order.
  std::vector<Told> takeTold() { return std::exchange(told, {}); }

  std::int32_t newSocket(std::int32_t type = ws::stream) {
    const std::int32_t socket = sockets().socket(ws::internet, type, 0);
    EXPECT_GT(socket, 0) << sockets().WSAGetLastError();
    return socket;
  }
  void select(std::int32_t socket, std::int32_t mask = allEvents) {
    EXPECT_EQ(sockets().WSAAsyncSelect(socket, window, eventMessage, mask), 0);
  }
  static SocketAddress loopback(std::uint16_t port) {
    SocketAddress address;
    address.port = htons(port);
    address.address = static_cast<std::int32_t>(htonl(INADDR_LOOPBACK));
    return address;
  }
  std::uint16_t portOf(std::int32_t socket) {
    SocketAddress address;
    EXPECT_EQ(sockets().getsockname(socket, address), 0);
    return ntohs(address.port);
  }
  std::int32_t newListener() {
    const std::int32_t socket = newSocket();
    EXPECT_EQ(sockets().bind(socket, loopback(0)), 0);
    select(socket);
    EXPECT_EQ(sockets().listen(socket, 5), 0);
    return socket;
  }
  /// A selected socket that is connected to a peer, everything told so far forgotten.
  std::int32_t newConnection(std::unique_ptr<Peer>& peer) {
    const Peer listener = Peer::listening();
    const std::int32_t socket = newSocket();
    select(socket);
    EXPECT_EQ(sockets().connect(socket, loopback(listener.port())), ws::failed);
    EXPECT_EQ(sockets().WSAGetLastError(), ws::error::wouldBlock);
    peer = std::make_unique<Peer>(listener.accept());
    EXPECT_TRUE(pumpUntil([&] { return wasTold(socket, ws::fdWrite); }));
    told.clear();
    return socket;
  }
  std::int32_t newDatagramSocket() {
    const std::int32_t socket = newSocket(ws::datagram);
    EXPECT_EQ(sockets().bind(socket, loopback(0)), 0);
    select(socket);
    EXPECT_TRUE(pumpUntil([&] { return wasTold(socket, ws::fdWrite); }));
    told.clear();
    return socket;
  }

  /// What `recv` gives; the error number in brackets if it fails.
  std::string receive(std::int32_t socket, std::size_t size, std::int32_t flags = 0) {
    std::vector<std::uint8_t> bytes(size);
    const std::int32_t count = sockets().recv(socket, bytes, flags);
    if (count < 0) return "[" + std::to_string(sockets().WSAGetLastError()) + "]";
    return {bytes.begin(), bytes.begin() + count};
  }
  std::int32_t send(std::int32_t socket, std::string_view text) {
    return sockets().send(socket, bytesOf(text), 0);
  }
  static std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  std::int32_t lastError() { return sockets().WSAGetLastError(); }

  std::unique_ptr<Machine> machine;
  WindowHandle window = 0;
  std::vector<Told> told;
  std::vector<WindowMessage> others;
  /// Called with each notification behind its noting.
  std::function<void(const Told&)> onTold;

 private:
  std::intptr_t enter(const WindowMessage& message) override {
    if (message.message != eventMessage) {
      others.push_back(message);
      return 0;
    }
    const auto lParam = static_cast<std::uint32_t>(message.lParam);
    told.push_back({static_cast<std::int32_t>(message.wParam),
                    static_cast<std::int32_t>(lParam & 0xFFFF),
                    static_cast<std::int32_t>(lParam >> 16)});
    const auto call = onTold;  // which may put another one in its place
    if (call) call(Told(told.back()));
    return 0;
  }

  static constexpr std::uintptr_t procedure_ = 0x4000;
};

}  // namespace zev::posix
