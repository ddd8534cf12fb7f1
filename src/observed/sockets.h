#pragma once

#include <optional>
#include <utility>

#include "observed/observed.h"
#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"

namespace zev::observed {

/// A call that fails by injection gives -1 (a look-up nothing); its number is what WSAGetLastError
/// tells until a call that was passed on fails. WSAStartup gives the number itself.
class Sockets : public Observed<zev::Sockets> {
 public:
  using Observed::Observed;

  std::int32_t WSAStartup(std::uint16_t versionWanted) override {
    return withCode({"WSAStartup"}, &Service::WSAStartup, versionWanted);
  }
  std::int32_t WSACleanup() override { return made({"WSACleanup"}, &Service::WSACleanup); }
  std::int32_t WSAGetLastError() override {
    return injected_ ? *injected_ : next_.WSAGetLastError();
  }
  std::int32_t WSAAsyncSelect(std::int32_t socket, WindowHandle window, std::uint32_t message,
                              std::int32_t mask) override {
    return made({"WSAAsyncSelect"}, &Service::WSAAsyncSelect, socket, window, message, mask);
  }
  std::int32_t WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message, TextView name,
                                     void* buffer, std::int32_t length) override {
    return shaped({"WSAAsyncGetHostByName"}, &Service::WSAAsyncGetHostByName, Shape<>{0, 1}, window,
                  message, name, buffer, length);
  }
  std::int32_t WSACancelAsyncRequest(std::int32_t lookUp) override {
    return made({"WSACancelAsyncRequest"}, &Service::WSACancelAsyncRequest, lookUp);
  }
  std::int32_t socket(std::int32_t family, std::int32_t type, std::int32_t protocol) override {
    return made({"socket"}, &Service::socket, family, type, protocol);
  }
  std::int32_t closesocket(std::int32_t socket) override {
    return made({"closesocket"}, &Service::closesocket, socket);
  }
  std::int32_t connect(std::int32_t socket, const SocketAddress& address) override {
    return made({"connect"}, &Service::connect, socket, address);
  }
  std::int32_t bind(std::int32_t socket, const SocketAddress& address) override {
    return made({"bind"}, &Service::bind, socket, address);
  }
  std::int32_t listen(std::int32_t socket, std::int32_t backlog) override {
    return made({"listen"}, &Service::listen, socket, backlog);
  }
  std::int32_t accept(std::int32_t socket, SocketAddress& peer) override {
    return made({"accept"}, &Service::accept, socket, peer);
  }
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override {
    return made({"getpeername"}, &Service::getpeername, socket, address);
  }
  std::int32_t getsockname(std::int32_t socket, SocketAddress& address) override {
    return made({"getsockname"}, &Service::getsockname, socket, address);
  }
  std::int32_t getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t& value) override {
    return made({"getsockopt"}, &Service::getsockopt, socket, level, option, value);
  }
  std::int32_t setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t value) override {
    return made({"setsockopt"}, &Service::setsockopt, socket, level, option, value);
  }
  std::int32_t ioctlsocket(std::int32_t socket, std::int32_t command,
                           std::int32_t& argument) override {
    return made({"ioctlsocket"}, &Service::ioctlsocket, socket, command, argument);
  }
  std::int32_t send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                    std::int32_t flags) override {
    return shaped({"send"}, &Service::send, allOf(bytes), socket, bytes, flags);
  }
  std::int32_t shutdown(std::int32_t socket, std::int32_t how) override {
    return made({"shutdown"}, &Service::shutdown, socket, how);
  }
  std::int32_t sendto(std::int32_t socket, std::span<const std::uint8_t> bytes, std::int32_t flags,
                      const SocketAddress& receiver) override {
    return shaped({"sendto"}, &Service::sendto, allOf(bytes), socket, bytes, flags, receiver);
  }
  std::int32_t recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                    std::int32_t flags) override {
    return made({"recv"}, &Service::recv, socket, bytes, flags);
  }
  std::int32_t recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes, std::int32_t flags,
                        SocketAddress& sender) override {
    return made({"recvfrom"}, &Service::recvfrom, socket, bytes, flags, sender);
  }
  std::int32_t gethostname(char* buffer, std::int32_t size) override {
    return made({"gethostname"}, &Service::gethostname, buffer, size);
  }
  const HostRecord* gethostbyname(TextView name) override {
    return shaped({"gethostbyname"}, &Service::gethostbyname, Shape<const HostRecord*>{}, name);
  }
  std::int32_t inet_addr(TextView text) override {
    return made({"inet_addr"}, &Service::inet_addr, text);
  }
  const char* inet_ntoa(std::int32_t address) override {
    return shaped({"inet_ntoa"}, &Service::inet_ntoa, Shape<const char*>{}, address);
  }

 private:
  /// What a failing call gives, and one that is done without the deed.
  template <typename Result = std::int32_t>
  struct Shape {
    Result failed{};
    Result done{};
  };
  static Shape<> allOf(std::span<const std::uint8_t> bytes) {
    return {winsock::failed, static_cast<std::int32_t>(bytes.size())};
  }

  template <typename Result, typename... Parameters, typename... Given>
  Result shaped(const Operation& operation, Result (Service::*forward)(Parameters...),
                Shape<Result> shape, Given&&... given) {
    bool passed = true;
    const auto fail = [&](std::int32_t code) {
      passed = false;
      injected_ = code;
      return shape.failed;
    };
    const Result result = pass(
        operation, forward, fail, [&] { return shape.done; }, given...);
    if (passed && result == shape.failed) injected_.reset();
    return result;
  }
  template <typename... Parameters, typename... Given>
  std::int32_t made(const Operation& operation, std::int32_t (Service::*forward)(Parameters...),
                    Given&&... given) {
    return shaped(operation, forward, Shape<>{winsock::failed, 0}, given...);
  }

  std::optional<std::int32_t> injected_;  ///< the reason of a failure that was made here
};

/// A call that fails by injection gives 0 or false.
class MessageWindows : public Observed<zev::MessageWindows> {
 public:
  using Observed::Observed;

  WindowHandle CreateWindowExA(TextView className, TextView caption) override {
    return withNothing({"CreateWindowExA"}, &Service::CreateWindowExA, className, caption);
  }
  bool DestroyWindow(WindowHandle window) override {
    return withNothing({"DestroyWindow"}, &Service::DestroyWindow, window);
  }
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override {
    return withNothing({"GetWindowLongA"}, &Service::GetWindowLongA, window, index);
  }
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override {
    return pass(
        {"SetWindowLongA"}, &Service::SetWindowLongA, giveNothing<std::uintptr_t>,
        [] { return std::uintptr_t{1}; }, window, index, procedure);
  }
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override {
    return withNothing(
        {"CallWindowProcA"}, [&] { return next_.CallWindowProcA(procedure, message); }, procedure,
        message.window, message.message, message.wParam, message.lParam);
  }
  bool entersMachineCode() const override { return next_.entersMachineCode(); }
  void standIn(std::uintptr_t address, MessageRoutine* routine) override {
    next_.standIn(address, routine);
  }
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override {
    next_.dropBeforeDispatch(window, std::move(drops));
  }
};

/// A call that fails by injection gives null, 0 or false; GlobalFree the block. ProcAddress is
/// matched by library and function, "user32!SetWindowLongA".
class Kernel : public Observed<zev::Kernel> {
 public:
  using Observed::Observed;

  std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                             std::uint32_t protection) override {
    return withNothing({"VirtualAlloc"}, &Service::VirtualAlloc, size, type, protection);
  }
  bool VirtualLock(std::uint8_t* address, std::size_t size) override {
    return withNothing({"VirtualLock"}, &Service::VirtualLock, address, size);
  }
  bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) override {
    return withNothing({"VirtualFree"}, &Service::VirtualFree, address, size, type);
  }
  GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) override {
    return withNothing({"GlobalAlloc"}, &Service::GlobalAlloc, flags, size);
  }
  void* GlobalLock(GlobalHandle block) override {
    return withNothing({"GlobalLock"}, &Service::GlobalLock, block);
  }
  bool GlobalUnlock(GlobalHandle block) override {
    return withNothing({"GlobalUnlock"}, &Service::GlobalUnlock, block);
  }
  GlobalHandle GlobalFree(GlobalHandle block) override {
    return pass(
        {"GlobalFree"}, &Service::GlobalFree, [&](std::int32_t) { return block; },
        [] { return GlobalHandle{0}; }, block);
  }
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override {
    const Text entry = join(fromUtf8(library), u"!", fromUtf8(function));
    return withNothing({"GetProcAddress", {}, entry}, &Service::ProcAddress, library, function);
  }
  std::string toAnsi(TextView text) override { return next_.toAnsi(text); }
  Text fromAnsi(std::string_view bytes) override { return next_.fromAnsi(bytes); }
};

}  // namespace zev::observed
