#pragma once

#include <memory>
#include <vector>

#include "plain_streams.h"
#include "posix/machine.h"
#include "socket/event_socket.h"
#include "support/fake_dialogs.h"

namespace zev::benchmarks {

/// The same with the sockets of the house, one instance a stream: what arrives is fetched whole as
/// an array of bytes, what is sent is given as one.
class ComponentStreams final : public StreamEnd {
 public:
  ComponentStreams();
  std::uint16_t port() const override;
  void accept(std::size_t streams) override;
  void receive(const Load& load) override;
  void send(const Load& load) override;

  void keepAtMost(std::size_t bytes) { module_.spareMemory().keepAtMost(bytes); }

  // ---- the first stream alone

  /// Gives so many bytes to one SendData, and waits until it is complete.
  void sendAtOnce(const Variant& bytes);
  /// Lets so many bytes arrive that nobody fetches.
  void letWait(std::size_t count);
  /// Fetches all that waits, so many bytes at a time; the amount.
  std::size_t fetchInPieces(std::size_t most);

 private:
  struct Stream {
    std::shared_ptr<CEventSocket> socket;
    std::size_t left = 0;  ///< bytes that have not been given to SendData
  };

  void take(std::int32_t request);
  void arrived(CEventSocket& socket);
  void dispatch();
  std::size_t sendChunk();

  posix::Machine machine_;
  test::FakeDialogs dialogs_;
  modEventSocket module_;
  std::shared_ptr<CEventSocket> listener_;
  std::vector<Stream> streams_;
  std::size_t sendChunk_ = 0;  ///< the system's buffer of a new connection
  bool fetches_ = true;
  Variant arrived_;  ///< whose memory serves again and again, as the plain loop's
  std::size_t fetched_ = 0;
  std::vector<std::size_t> complete_;  ///< streams that have nothing more to send
};

}  // namespace zev::benchmarks
