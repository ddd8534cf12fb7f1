#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/message_queue.h"
#include "platform/sockets.h"
#include "posix/descriptors.h"
#include "posix/look_ups.h"
#include "posix/selection.h"
#include "posix/socket_table.h"

namespace zev::posix {

/// The sockets of a POSIX system. Whoever waits for the poller hands on what it tells; the
/// notifications go to the queue.
class PosixSockets final : public Sockets {
 public:
  /// Names cross to the system through `codePage`. Queue and poller are borrowed. Throws
  /// std::system_error if the system has no room.
  PosixSockets(MessageQueue& queue, Poller& poller, std::uint32_t codePage,
               LookUps::Resolver resolver);

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

  /// What the poller tells of a socket.
  void notice(std::int32_t socket, std::uint32_t events) { selection_.notice(socket, events); }
  /// Posts what became of sockets that the poller does not tell of, since they only stay ready.
  void examineAgain() { selection_.examineAgain(); }
  /// Milliseconds after which there is to be another look; -1 if none is needed.
  int nextLook() const { return selection_.restLeft(); }
  /// Fills in and posts the look-ups that have ended.
  void finishLookUps();

  std::size_t openSockets() const { return table_.size(); }

 private:
  struct Request {
    WindowHandle window = 0;
    std::uint32_t message = 0;
    void* buffer = nullptr;
    std::size_t length = 0;
  };

  std::int32_t fail(std::int32_t error);
  std::int32_t failSystem();
  bool started();
  OpenSocket* find(std::int32_t socket);
  OpenSocket* findForTransfer(std::int32_t socket, std::int32_t flags);
  std::int32_t adopt(Descriptor descriptor, bool stream);
  std::string systemName(TextView name) const;

  std::int32_t connectStream(OpenSocket& socket, const SocketAddress& address);
  std::int32_t connectDatagram(OpenSocket& socket, const SocketAddress& address);
  bool isReserved(const SocketAddress& address);
  std::int32_t failAccepting(OpenSocket& listener, int error);
  std::int32_t take(OpenSocket& listener, Descriptor connection);
  std::int32_t transmit(OpenSocket& socket, std::span<const std::uint8_t> bytes, std::int32_t flags,
                        const SocketAddress* receiver);
  std::int32_t failSending(OpenSocket& socket);
  std::int32_t receive(OpenSocket& socket, std::span<std::uint8_t> bytes, std::int32_t flags,
                       SocketAddress* sender);
  std::int32_t receiveStream(OpenSocket& socket, std::span<std::uint8_t> bytes, std::int32_t flags);
  std::int32_t receiveDatagram(OpenSocket& socket, std::span<std::uint8_t> bytes,
                               std::int32_t flags, SocketAddress* sender);
  std::int32_t failReading(OpenSocket& socket, int error);
  void finish(const Request& request, const LookUps::Answer& answer);

  MessageQueue& queue_;
  Poller& poller_;
  const std::uint32_t codePage_;
  const LookUps::Resolver resolver_;
  SocketTable table_;
  Selection selection_{queue_, poller_, table_};
  LookUps lookUps_;
  std::map<std::int32_t, Request> requests_;
  int starts_ = 0;
  std::int32_t lastError_ = 0;
  std::vector<std::uint8_t> record_;  ///< the answer of gethostbyname
  std::string dotted_;                ///< the answer of inet_ntoa
};

}  // namespace zev::posix
