#pragma once

#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"
#include "simulated/instrumentation.h"

namespace zev::simulated {

/// The sockets under observation. A call that fails by injection gives -1 (a look-up nothing), and
/// the number is the reason that WSAGetLastError tells; WSAStartup gives the number itself.
class InstrumentedSockets final : public Sockets {
 public:
  /// Borrows both, as do the other classes below.
  InstrumentedSockets(Sockets& sockets, Instrumentation& instrumentation)
      : sockets_(sockets), instrumentation_(instrumentation) {}

  std::int32_t WSAStartup(std::uint16_t versionWanted) override;
  std::int32_t WSACleanup() override;
  std::int32_t WSAGetLastError() override;
  std::int32_t WSAAsyncSelect(std::int32_t socket, WindowHandle window, std::uint32_t message,
                              std::int32_t mask) override;
  std::int32_t WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message, TextView name,
                                     void* buffer, std::int32_t length) override;
  std::int32_t WSACancelAsyncRequest(std::int32_t lookUp) override;
  std::int32_t socket(std::int32_t family, std::int32_t type, std::int32_t protocol) override;
  std::int32_t closesocket(std::int32_t socket) override;
  std::int32_t connect(std::int32_t socket, const SocketAddress& address) override;
  std::int32_t bind(std::int32_t socket, const SocketAddress& address) override;
  std::int32_t listen(std::int32_t socket, std::int32_t backlog) override;
  std::int32_t accept(std::int32_t socket, SocketAddress& peer) override;
  std::int32_t getpeername(std::int32_t socket, SocketAddress& address) override;
  std::int32_t getsockname(std::int32_t socket, SocketAddress& address) override;
  std::int32_t getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t& value) override;
  std::int32_t setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                          std::int32_t value) override;
  std::int32_t ioctlsocket(std::int32_t socket, std::int32_t command,
                           std::int32_t& argument) override;
  std::int32_t send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                    std::int32_t flags) override;
  std::int32_t sendto(std::int32_t socket, std::span<const std::uint8_t> bytes, std::int32_t flags,
                      const SocketAddress& receiver) override;
  std::int32_t recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                    std::int32_t flags) override;
  std::int32_t recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes, std::int32_t flags,
                        SocketAddress& sender) override;
  std::int32_t gethostname(char* buffer, std::int32_t size) override;
  const HostRecord* gethostbyname(TextView name) override;
  std::int32_t inet_addr(TextView text) override;
  const char* inet_ntoa(std::int32_t address) override;

 private:
  template <typename Forward, typename Result>
  Result call(std::string_view name, Arguments arguments, Forward forward, Result failure,
              Result success);
  template <typename Forward>
  std::int32_t call(std::string_view name, Arguments arguments, Forward forward);

  Sockets& sockets_;
  Instrumentation& instrumentation_;
  std::int32_t injected_ = 0;  ///< reason of the last call, if that failed by injection
};

/// The hidden windows under observation; failures as of the system.
class InstrumentedMessageWindows final : public MessageWindows {
 public:
  InstrumentedMessageWindows(MessageWindows& windows, Instrumentation& instrumentation)
      : windows_(windows), instrumentation_(instrumentation) {}

  WindowHandle CreateWindowExA(TextView className, TextView caption) override;
  bool DestroyWindow(WindowHandle window) override;
  std::uintptr_t GetWindowLongA(WindowHandle window, std::int32_t index) override;
  std::uintptr_t SetWindowLongA(WindowHandle window, std::int32_t index,
                                std::uintptr_t procedure) override;
  std::intptr_t CallWindowProcA(std::uintptr_t procedure, const WindowMessage& message) override;
  bool entersMachineCode() const override;
  void standIn(std::uintptr_t address, MessageRoutine* routine) override;
  void dropBeforeDispatch(WindowHandle window,
                          std::function<bool(const WindowMessage&)> drops) override;

 private:
  MessageWindows& windows_;
  Instrumentation& instrumentation_;
};

/// Memory and libraries of the process under observation. A call that fails by injection gives
/// null, 0 or false.
class InstrumentedKernel final : public Kernel {
 public:
  InstrumentedKernel(Kernel& kernel, Instrumentation& instrumentation)
      : kernel_(kernel), instrumentation_(instrumentation) {}

  std::uint8_t* VirtualAlloc(std::size_t size, std::uint32_t type,
                             std::uint32_t protection) override;
  bool VirtualLock(std::uint8_t* address, std::size_t size) override;
  bool VirtualFree(std::uint8_t* address, std::size_t size, std::uint32_t type) override;
  GlobalHandle GlobalAlloc(std::uint32_t flags, std::size_t size) override;
  void* GlobalLock(GlobalHandle block) override;
  bool GlobalUnlock(GlobalHandle block) override;
  GlobalHandle GlobalFree(GlobalHandle block) override;
  std::uintptr_t ProcAddress(std::string_view library, std::string_view function) override;
  std::string toAnsi(TextView text) override;
  Text fromAnsi(std::string_view bytes) override;

 private:
  Kernel& kernel_;
  Instrumentation& instrumentation_;
};

}  // namespace zev::simulated
