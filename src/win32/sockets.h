#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/sockets.h"

namespace zev::win32 {

/// The sockets of Windows. Their library is loaded with the first start. Where it is missing a
/// start fails with 10091.
class Win32Sockets : public Sockets {
 public:
  /// Borrows the name of the library.
  explicit Win32Sockets(const char* library = "ws2_32.dll") : library_(library) {}
  /// Makes the WSACleanup calls that are still due.
  ~Win32Sockets() override;
  Win32Sockets(const Win32Sockets&) = delete;
  Win32Sockets& operator=(const Win32Sockets&) = delete;

  std::int32_t WSAStartup(std::uint16_t versionWanted) override;
  std::int32_t WSACleanup() override;
  std::int32_t WSAGetLastError() override { return lastError_; }
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
  std::int32_t shutdown(std::int32_t socket, std::int32_t how) override;
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

 protected:
  /// The system's own `accept`; the reason of a failure goes to `error`.
  virtual std::int32_t takeConnection(std::int32_t socket, SocketAddress& peer,
                                      std::int32_t& error);

 private:
  struct Calls;
  /// What WSAAsyncSelect was asked for.
  struct Selected {
    WindowHandle window = 0;
    std::uint32_t message = 0;
    std::int32_t mask = 0;
  };

  /// Makes a call of the library and gives its result. If that is `failure`, the reason is kept.
  /// Without a start the call is not made and the result is `failure`.
  template <typename Answer, typename Function, typename... Arguments>
  Answer ask(Answer failure, Function* Calls::*call, Arguments... arguments);
  std::int32_t handOut(std::uintptr_t socket);
  std::int32_t selectNow(std::int32_t socket, const Selected& selected);
  void rest(std::int32_t listener);
  void endRest();
  struct RestTimer;

  const char* library_;
  std::shared_ptr<const Calls> calls_;
  std::int32_t starts_ = 0;
  std::int32_t lastError_ = 0;
  HostRecord record_;
  std::map<std::int32_t, Selected> selected_;
  std::vector<std::int32_t> resting_;  ///< listeners that have a caller and no room for it
  WindowHandle timerWindow_ = 0;       ///< whose timer ends the rest; 0 while none runs
};

}  // namespace zev::win32
