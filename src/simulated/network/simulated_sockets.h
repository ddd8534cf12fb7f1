#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>

#include "platform/message_queue.h"
#include "platform/sockets.h"
#include "simulated/network/local_socket.h"
#include "simulated/network/look_ups.h"

namespace zev::simulated {

/// The sockets of one process of the machine. Notifications are posted to the queue. A call of a
/// socket that was never selected, and a blocking look-up, move the network's clock until they are
/// done; a call that would wait for ever fails with 10004. Handles are never used again.
class SimulatedSockets : public Sockets {
 public:
  /// Borrows both.
  SimulatedSockets(SimulatedNetwork& network, MessageQueue& queue);

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

  /// Starts that have not been taken back.
  int starts() const { return starts_; }
  std::size_t openSockets() const { return sockets_.size(); }
  /// Look-ups that run.
  std::size_t runningLookUps() const { return lookUps_->running(); }

 private:
  using Operation = std::function<std::int32_t(LocalSocket& socket)>;

  std::int32_t result(std::int32_t error);
  bool started();
  std::shared_ptr<LocalSocket> find(std::int32_t handle);
  std::int32_t with(std::int32_t handle, const Operation& operation);
  std::int32_t waitingWith(std::int32_t handle, const Operation& operation);
  std::shared_ptr<LocalSocket> make(std::int32_t type);
  std::int32_t nextHandle();
  void endRest();

  SimulatedNetwork& network_;
  MessageQueue& queue_;
  std::shared_ptr<LookUps> lookUps_;
  std::map<std::int32_t, std::shared_ptr<LocalSocket>> sockets_;
  std::vector<std::int32_t> resting_;  ///< listeners that have a caller and no room for it
  std::int32_t lastHandle_ = 0x60;
  std::int32_t lastError_ = 0;
  int starts_ = 0;
  std::unique_ptr<std::uint64_t[]> record_;  ///< of the last blocking look-up
  std::string dotted_;                       ///< of the last inet_ntoa
};

}  // namespace zev::simulated
