#pragma once

#include <memory>
#include <vector>

#include "programs/zevnet/connection.h"
#include "programs/zevnet/conversation.h"
#include "programs/zevnet/zevnet.h"

namespace zev::netcat {

/// The TCP connections of a conversation. Standard input goes to each of them; it is read while one
/// stands at least, and as fast as the slowest one takes it.
class Connections : public Conversation {
 public:
  Connections(modEventSocket& module, Terminal& terminal, const Wishes& wishes)
      : module_(module), terminal_(terminal), wishes_(wishes) {}

  bool wantsInput() const override;
  std::size_t longestPiece() const override;
  void takeInput(BytesView piece) override;
  void endInput() override;
  void settle() override;
  int patience() const override;
  void end() override;
  bool failed() const override { return failed_; }
  std::uint64_t traffic() const override;

 protected:
  Connection& add();
  bool none() const { return connections_.empty(); }

  modEventSocket& module_;
  Terminal& terminal_;
  const Wishes& wishes_;

 private:
  void end(Connection& connection);
  void dropEnded();

  std::vector<std::unique_ptr<Connection>> connections_;
  bool inputEnded_ = false;
  bool failed_ = false;
  std::uint64_t earlierTraffic_ = 0;  ///< of connections that have ended
};

/// Connects once.
class Caller final : public Connections {
 public:
  using Connections::Connections;
  void begin() override { add().connect(wishes_.host, wishes_.port); }
  bool over() const override { return none(); }
};

/// Takes the first connection, or all of them.
class Listener final : public Connections {
 public:
  Listener(modEventSocket& module, Terminal& terminal, const Wishes& wishes);
  ~Listener() override { listener_->events = {}; }
  void begin() override;
  bool over() const override { return taken_ && !wishes_.keep && none(); }

 private:
  void take(std::int32_t requestID);

  std::shared_ptr<CEventSocket> listener_;
  bool taken_ = false;
};

}  // namespace zev::netcat
