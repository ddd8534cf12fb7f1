#pragma once

#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/message_queue.h"
#include "simulated/network/simulated_network.h"
#include "simulated/network/simulated_sockets.h"

namespace zev::simulated {

inline constexpr std::int32_t everyEvent = 59;
inline constexpr std::uint32_t eventMessage = 0x801;

/// A machine on a network, with one process that has sockets and a window for their notifications.
class NetworkTest : public testing::Test, public MessageRoutine {
 protected:
  NetworkTest() {
    constexpr std::uintptr_t procedure = 0x401000;
    queue.standIn(procedure, this);
    queue.SetWindowLongA(window, windowProcedureIndex, procedure);
    EXPECT_EQ(sockets.WSAStartup(winsock::version), 0);
  }

  // ---- calls

  std::int32_t lastError() { return sockets.WSAGetLastError(); }
  std::int32_t tcp() { return sockets.socket(winsock::internet, winsock::stream, 0); }
  std::int32_t udp() { return sockets.socket(winsock::internet, winsock::datagram, 0); }
  std::int32_t select(std::int32_t socket, std::int32_t mask = everyEvent) {
    return sockets.WSAAsyncSelect(socket, window, eventMessage, mask);
  }
  static SocketAddress at(std::string_view address, std::uint16_t port) {
    return toSocketAddress({addressOf(address), port});
  }
  std::uint16_t portOf(std::int32_t socket) {
    SocketAddress address;
    EXPECT_EQ(sockets.getsockname(socket, address), 0);
    return toEndpoint(address).port;
  }
  std::int32_t send(std::int32_t socket, std::string_view text) {
    return sockets.send(socket, bytesOf(text), 0);
  }
  std::int32_t sendTo(std::int32_t socket, std::string_view text, const SocketAddress& receiver) {
    return sockets.sendto(socket, bytesOf(text), 0, receiver);
  }
  std::optional<std::string> receive(std::int32_t socket, std::size_t most = 65536) {
    std::vector<std::uint8_t> bytes(most);
    const std::int32_t count = sockets.recv(socket, bytes, 0);
    if (count < 0) return std::nullopt;
    return std::string(bytes.begin(), bytes.begin() + count);
  }
  /// A selected socket that has begun to connect.
  std::int32_t connecting(std::string_view address, std::uint16_t port) {
    const std::int32_t socket = tcp();
    EXPECT_EQ(select(socket), 0);
    EXPECT_EQ(sockets.connect(socket, at(address, port)), winsock::failed);
    EXPECT_EQ(lastError(), winsock::error::wouldBlock);
    return socket;
  }
  /// A selected socket that is connected; what was posted so far is forgotten.
  std::int32_t connected(std::string_view address, std::uint16_t port) {
    const std::int32_t socket = connecting(address, port);
    pass(1000);
    EXPECT_EQ(events(), (std::vector<std::string>{"connect", "write"}));
    heard.clear();
    return socket;
  }
  /// A selected listener on a port of the machine.
  std::int32_t listening(std::uint16_t port, std::int32_t backlog = 5) {
    const std::int32_t socket = tcp();
    EXPECT_EQ(select(socket), 0);
    EXPECT_EQ(sockets.bind(socket, at("0.0.0.0", port)), 0);
    EXPECT_EQ(sockets.listen(socket, backlog), 0);
    return socket;
  }

  // ---- time and notifications

  /// Moves the clock and dispatches what was posted.
  void pass(std::uint64_t milliseconds) {
    network.advance(milliseconds);
    while (queue.dispatch()) {
    }
  }
  /// The notifications that came: the event, and the error behind a blank if there is one.
  std::vector<std::string> events() {
    pass(0);
    std::vector<std::string> found;
    for (const WindowMessage& each : heard) found.push_back(nameOf(each));
    return found;
  }
  using Events = std::vector<std::string>;

  std::intptr_t enter(const WindowMessage& message) override {
    heard.push_back(message);
    return 0;
  }

  SimulatedNetwork network;
  MessageQueue queue;
  WindowHandle window = queue.CreateWindowExA(u"STATIC", u"SOCKET_WINDOW");
  SimulatedSockets sockets{network, queue};
  std::vector<WindowMessage> heard;

 private:
  static std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
  }
  static std::string nameOf(const WindowMessage& message) {
    static const std::map<std::uint32_t, std::string> names = {
        {1, "read"}, {2, "write"}, {8, "accept"}, {16, "connect"}, {32, "close"}};
    const auto words = static_cast<std::uint32_t>(message.lParam);
    const auto name = names.find(words & 0xFFFF);
    const std::string event = name == names.end() ? "?" : name->second;
    return words >> 16 == 0 ? event : event + " " + std::to_string(words >> 16);
  }
};

}  // namespace zev::simulated
