#pragma once

#include <memory>
#include <optional>

#include "programs/zevnet/failure.h"
#include "programs/zevnet/limit.h"
#include "programs/zevnet/terminal.h"
#include "socket/event_socket.h"

namespace zev::netcat {

/// One TCP connection: what comes goes to standard output, how it ends is told.
class Connection {
 public:
  /// Both are borrowed. `timeout`: seconds that the connection may take to come about, and its peer
  /// to close after the last byte.
  Connection(modEventSocket& module, Terminal& terminal, double timeout);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Throws RuntimeError for what the socket raises.
  void connect(const std::string& host, std::int32_t port);
  /// Takes a connection over, within ConnectionRequest.
  void accept(std::int32_t requestID);

  /// Whether bytes can be sent and come, now.
  bool stands() const { return socket_->State() == sckConnected; }
  /// Whether it came about.
  bool hasBegun() const { return !peer_.empty(); }
  /// Whether some bytes have not gone out yet.
  bool waits() const { return sent_ < given_; }
  /// Adds bytes to those that wait; `waits` tells when all are out.
  void send(BytesView bytes);
  /// Closes as soon as everything has gone out and the peer, who reads the end then, has closed as
  /// well: what it sends behind a socket that is closed already would be answered by a reset, which
  /// can cost it what it has not read yet.
  void closeWhenSent() { closeWhenSent_ = true; }

  /// Whether it is to be ended. From the top of the loop, after a dispatch.
  bool isOver();
  /// Milliseconds until it is over in any case; -1 for never.
  int patience() const { return limit_ ? limit_->left() : -1; }
  /// Closes it and tells how it ended. `unread` is what is left of the input that should have gone
  /// out; if `wholeInput` is wanted, more of it that may come is lost as well.
  void end(const InputRest& unread, bool wholeInput);
  /// Whether end() was called; whether anything that was told was an error; bytes in both
  /// directions.
  bool ended() const { return ended_; }
  bool failed() const { return failure_ || loss_; }
  std::uint64_t traffic() const { return sent_ + received_; }

 private:
  void followEvents();
  void begun(const char* how);
  void takeArrived();
  void endSending();
  void giveUp();
  void fail(Failure failure);
  std::optional<Failure> unreportedFailure() const;
  void countLost(const InputRest& unread, bool wholeInput);
  void tellEnd();

  modEventSocket& module_;
  Terminal& terminal_;
  std::shared_ptr<CEventSocket> socket_;
  const double timeout_;
  std::optional<Limit> limit_;  ///< while the peer is waited for
  std::string peer_;            ///< address and port, once the connection stands
  std::uint64_t given_ = 0;     ///< bytes to send
  std::uint64_t sent_ = 0;      ///< of those
  std::uint64_t received_ = 0;
  bool closeWhenSent_ = false;
  bool sendingEnded_ = false;
  bool peerClosed_ = false;
  std::optional<Failure> loss_;  ///< input that has not gone out
  bool ended_ = false;
  std::optional<Failure> failure_;
};

}  // namespace zev::netcat
