#include "simulated/instrumented_sockets.h"

#include <utility>

namespace zev::simulated {
namespace {

template <typename Number>
std::int64_t number(Number value) {
  return static_cast<std::int64_t>(value);
}

/// A call that gives `failure` when a fault strikes it.
template <typename Forward, typename Result>
Result observed(Instrumentation& instrumentation, std::string_view name, Arguments arguments,
                Forward forward, Result failure, Result success) {
  return instrumentation.perform(
      {name}, arguments, forward, [&](std::int32_t) { return failure; }, [&] { return success; });
}

}  // namespace

// ---- sockets

template <typename Forward, typename Result>
Result InstrumentedSockets::call(std::string_view name, Arguments arguments, Forward forward,
                                 Result failure, Result success) {
  injected_ = 0;
  return instrumentation_.perform(
      {name}, arguments, forward,
      [&](std::int32_t code) {
        injected_ = code;
        return failure;
      },
      [&] { return success; });
}

template <typename Forward>
std::int32_t InstrumentedSockets::call(std::string_view name, Arguments arguments,
                                       Forward forward) {
  return call(name, arguments, forward, winsock::failed, std::int32_t{0});
}

std::int32_t InstrumentedSockets::WSAStartup(std::uint16_t versionWanted) {
  return instrumentation_.perform(
      {"WSAStartup"}, {number(versionWanted)}, [&] { return sockets_.WSAStartup(versionWanted); },
      [](std::int32_t code) { return code; }, [] { return std::int32_t{0}; });
}

std::int32_t InstrumentedSockets::WSACleanup() {
  return call("WSACleanup", {}, [&] { return sockets_.WSACleanup(); });
}

std::int32_t InstrumentedSockets::WSAGetLastError() {
  return injected_ != 0 ? injected_ : sockets_.WSAGetLastError();
}

std::int32_t InstrumentedSockets::WSAAsyncSelect(std::int32_t socket, WindowHandle window,
                                                 std::uint32_t message, std::int32_t mask) {
  return call("WSAAsyncSelect", {socket, number(window), number(message), mask},
              [&] { return sockets_.WSAAsyncSelect(socket, window, message, mask); });
}

std::int32_t InstrumentedSockets::WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message,
                                                        TextView name, void* buffer,
                                                        std::int32_t length) {
  return call(
      "WSAAsyncGetHostByName", {number(window), number(message), name, length},
      [&] { return sockets_.WSAAsyncGetHostByName(window, message, name, buffer, length); },
      std::int32_t{0}, std::int32_t{1});
}

std::int32_t InstrumentedSockets::WSACancelAsyncRequest(std::int32_t lookUp) {
  return call("WSACancelAsyncRequest", {lookUp},
              [&] { return sockets_.WSACancelAsyncRequest(lookUp); });
}

std::int32_t InstrumentedSockets::socket(std::int32_t family, std::int32_t type,
                                         std::int32_t protocol) {
  return call("socket", {family, type, protocol},
              [&] { return sockets_.socket(family, type, protocol); });
}

std::int32_t InstrumentedSockets::closesocket(std::int32_t socket) {
  return call("closesocket", {socket}, [&] { return sockets_.closesocket(socket); });
}

std::int32_t InstrumentedSockets::connect(std::int32_t socket, const SocketAddress& address) {
  return call("connect", {socket}, [&] { return sockets_.connect(socket, address); });
}

std::int32_t InstrumentedSockets::bind(std::int32_t socket, const SocketAddress& address) {
  return call("bind", {socket}, [&] { return sockets_.bind(socket, address); });
}

std::int32_t InstrumentedSockets::listen(std::int32_t socket, std::int32_t backlog) {
  return call("listen", {socket, backlog}, [&] { return sockets_.listen(socket, backlog); });
}

std::int32_t InstrumentedSockets::accept(std::int32_t socket, SocketAddress& peer) {
  return call("accept", {socket}, [&] { return sockets_.accept(socket, peer); });
}

std::int32_t InstrumentedSockets::getpeername(std::int32_t socket, SocketAddress& address) {
  return call("getpeername", {socket}, [&] { return sockets_.getpeername(socket, address); });
}

std::int32_t InstrumentedSockets::getsockname(std::int32_t socket, SocketAddress& address) {
  return call("getsockname", {socket}, [&] { return sockets_.getsockname(socket, address); });
}

std::int32_t InstrumentedSockets::getsockopt(std::int32_t socket, std::int32_t level,
                                             std::int32_t option, std::int32_t& value) {
  return call("getsockopt", {socket, level, option},
              [&] { return sockets_.getsockopt(socket, level, option, value); });
}

std::int32_t InstrumentedSockets::setsockopt(std::int32_t socket, std::int32_t level,
                                             std::int32_t option, std::int32_t value) {
  return call("setsockopt", {socket, level, option, value},
              [&] { return sockets_.setsockopt(socket, level, option, value); });
}

std::int32_t InstrumentedSockets::ioctlsocket(std::int32_t socket, std::int32_t command,
                                              std::int32_t& argument) {
  return call("ioctlsocket", {socket, command},
              [&] { return sockets_.ioctlsocket(socket, command, argument); });
}

std::int32_t InstrumentedSockets::send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                       std::int32_t flags) {
  return call(
      "send", {socket, flags}, [&] { return sockets_.send(socket, bytes, flags); }, winsock::failed,
      static_cast<std::int32_t>(bytes.size()));
}

std::int32_t InstrumentedSockets::sendto(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                         std::int32_t flags, const SocketAddress& receiver) {
  return call(
      "sendto", {socket, flags}, [&] { return sockets_.sendto(socket, bytes, flags, receiver); },
      winsock::failed, static_cast<std::int32_t>(bytes.size()));
}

std::int32_t InstrumentedSockets::recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                                       std::int32_t flags) {
  return call("recv", {socket, flags}, [&] { return sockets_.recv(socket, bytes, flags); });
}

std::int32_t InstrumentedSockets::recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes,
                                           std::int32_t flags, SocketAddress& sender) {
  return call("recvfrom", {socket, flags},
              [&] { return sockets_.recvfrom(socket, bytes, flags, sender); });
}

std::int32_t InstrumentedSockets::gethostname(char* buffer, std::int32_t size) {
  return call("gethostname", {size}, [&] { return sockets_.gethostname(buffer, size); });
}

const HostRecord* InstrumentedSockets::gethostbyname(TextView name) {
  return call(
      "gethostbyname", {name}, [&] { return sockets_.gethostbyname(name); },
      static_cast<const HostRecord*>(nullptr), static_cast<const HostRecord*>(nullptr));
}

std::int32_t InstrumentedSockets::inet_addr(TextView text) {
  return call("inet_addr", {text}, [&] { return sockets_.inet_addr(text); });
}

const char* InstrumentedSockets::inet_ntoa(std::int32_t address) {
  return call(
      "inet_ntoa", {address}, [&] { return sockets_.inet_ntoa(address); },
      static_cast<const char*>(nullptr), static_cast<const char*>(nullptr));
}

// ---- windows

WindowHandle InstrumentedMessageWindows::CreateWindowExA(TextView className, TextView caption) {
  return observed(
      instrumentation_, "CreateWindowExA", {className, caption},
      [&] { return windows_.CreateWindowExA(className, caption); }, WindowHandle{0},
      WindowHandle{0});
}

bool InstrumentedMessageWindows::DestroyWindow(WindowHandle window) {
  return observed(
      instrumentation_, "DestroyWindow", {number(window)},
      [&] { return windows_.DestroyWindow(window); }, false, true);
}

std::uintptr_t InstrumentedMessageWindows::GetWindowLongA(WindowHandle window, std::int32_t index) {
  return observed(
      instrumentation_, "GetWindowLongA", {number(window), index},
      [&] { return windows_.GetWindowLongA(window, index); }, std::uintptr_t{0}, std::uintptr_t{0});
}

std::uintptr_t InstrumentedMessageWindows::SetWindowLongA(WindowHandle window, std::int32_t index,
                                                          std::uintptr_t procedure) {
  return observed(
      instrumentation_, "SetWindowLongA", {number(window), index, number(procedure)},
      [&] { return windows_.SetWindowLongA(window, index, procedure); }, std::uintptr_t{0},
      std::uintptr_t{1});
}

std::intptr_t InstrumentedMessageWindows::CallWindowProcA(std::uintptr_t procedure,
                                                          const WindowMessage& message) {
  return windows_.CallWindowProcA(procedure, message);
}

bool InstrumentedMessageWindows::entersMachineCode() const { return windows_.entersMachineCode(); }

void InstrumentedMessageWindows::standIn(std::uintptr_t address, MessageRoutine* routine) {
  windows_.standIn(address, routine);
}

void InstrumentedMessageWindows::dropBeforeDispatch(
    WindowHandle window, std::function<bool(const WindowMessage&)> drops) {
  windows_.dropBeforeDispatch(window, std::move(drops));
}

// ---- memory and libraries

std::uint8_t* InstrumentedKernel::VirtualAlloc(std::size_t size, std::uint32_t type,
                                               std::uint32_t protection) {
  return observed(
      instrumentation_, "VirtualAlloc", {number(size), number(type), number(protection)},
      [&] { return kernel_.VirtualAlloc(size, type, protection); },
      static_cast<std::uint8_t*>(nullptr), static_cast<std::uint8_t*>(nullptr));
}

bool InstrumentedKernel::VirtualLock(std::uint8_t* address, std::size_t size) {
  return observed(
      instrumentation_, "VirtualLock", {number(size)},
      [&] { return kernel_.VirtualLock(address, size); }, false, true);
}

bool InstrumentedKernel::VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) {
  return observed(
      instrumentation_, "VirtualFree", {number(size), number(type)},
      [&] { return kernel_.VirtualFree(address, size, type); }, false, true);
}

GlobalHandle InstrumentedKernel::GlobalAlloc(std::uint32_t flags, std::size_t size) {
  return observed(
      instrumentation_, "GlobalAlloc", {number(flags), number(size)},
      [&] { return kernel_.GlobalAlloc(flags, size); }, GlobalHandle{0}, GlobalHandle{0});
}

void* InstrumentedKernel::GlobalLock(GlobalHandle block) {
  return observed(
      instrumentation_, "GlobalLock", {number(block)}, [&] { return kernel_.GlobalLock(block); },
      static_cast<void*>(nullptr), static_cast<void*>(nullptr));
}

bool InstrumentedKernel::GlobalUnlock(GlobalHandle block) {
  return observed(
      instrumentation_, "GlobalUnlock", {number(block)},
      [&] { return kernel_.GlobalUnlock(block); }, false, true);
}

GlobalHandle InstrumentedKernel::GlobalFree(GlobalHandle block) {
  return observed(
      instrumentation_, "GlobalFree", {number(block)}, [&] { return kernel_.GlobalFree(block); },
      block, GlobalHandle{0});
}

std::uintptr_t InstrumentedKernel::ProcAddress(std::string_view library,
                                               std::string_view function) {
  return observed(
      instrumentation_, "GetProcAddress", {},
      [&] { return kernel_.ProcAddress(library, function); }, std::uintptr_t{0}, std::uintptr_t{0});
}

std::string InstrumentedKernel::toAnsi(TextView text) { return kernel_.toAnsi(text); }

Text InstrumentedKernel::fromAnsi(std::string_view bytes) { return kernel_.fromAnsi(bytes); }

}  // namespace zev::simulated
