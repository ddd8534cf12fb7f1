#pragma once

#include <memory>
#include <optional>

#include "programs/zevnet/conversation.h"
#include "programs/zevnet/failure.h"
#include "programs/zevnet/zevnet.h"
#include "socket/event_socket.h"

namespace zev::netcat {

/// Datagrams: each piece of standard input is one, to the host or, listening, to whoever sent the
/// last one. What comes goes to standard output, whoever sends it.
class Datagrams final : public Conversation {
 public:
  Datagrams(modEventSocket& module, Terminal& terminal, const Wishes& wishes);
  ~Datagrams() override { socket_->events = {}; }

  void begin() override;
  bool wantsInput() const override { return !inputEnded_ && !receiver_.empty(); }
  std::size_t longestPiece() const override;
  void takeInput(BytesView piece) override;
  void endInput() override { inputEnded_ = true; }
  void settle() override;
  bool over() const override { return over_; }
  void end() override;
  bool failed() const override { return failure_.has_value(); }
  std::uint64_t traffic() const override { return sent_ + received_; }

 private:
  bool listens() const { return wishes_.listen; }
  void takeArrived();
  void takeOne();

  Terminal& terminal_;
  const Wishes& wishes_;
  std::shared_ptr<CEventSocket> socket_;
  Text receiver_;  ///< name or address; empty while there is none
  std::int32_t receiverPort_ = 0;
  std::uint64_t sent_ = 0;
  std::uint64_t received_ = 0;
  bool inputEnded_ = false;
  bool over_ = false;
  std::optional<Failure> failure_;
};

}  // namespace zev::netcat
