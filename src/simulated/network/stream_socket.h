#pragma once

#include <deque>

#include "simulated/network/local_socket.h"

namespace zev::simulated {

/// A socket of a connection, or one that listens for them. Is held by shared pointers, since what
/// comes of a connecting may come when it is gone.
class StreamSocket final : public LocalSocket, public std::enable_shared_from_this<StreamSocket> {
 public:
  StreamSocket(SimulatedNetwork& network, MessageQueue& queue, std::int32_t handle)
      : LocalSocket(network, queue, Transport::Stream, handle) {}
  ~StreamSocket() override;

  /// Becomes the socket of a connection that was accepted, selected as the listener is.
  void become(std::shared_ptr<StreamEnd> end, const LocalSocket& listener);

  std::int32_t peerName(Endpoint& endpoint) const override;
  std::int32_t setOption(std::int32_t option, std::int32_t value) override;
  std::int32_t connect(const Endpoint& to) override;
  bool connecting() const override { return state_ == State::Connecting; }
  std::int32_t connectError() const override { return connectError_; }
  std::int32_t listen(std::int32_t backlog) override;
  std::int32_t accept(std::shared_ptr<StreamEnd>& end) override;
  std::int32_t send(std::string_view bytes, std::size_t& taken) override;
  std::int32_t endSending() override;
  std::int32_t sendTo(std::string_view bytes, const Endpoint&, std::size_t& taken) override {
    return send(bytes, taken);
  }
  std::int32_t receive(std::span<std::uint8_t> into, bool peek, Endpoint& sender,
                       std::size_t& count) override;
  std::size_t waiting() const override;

  std::int32_t admits() override;
  void arrived(std::shared_ptr<StreamEnd> end) override;
  using PortOwner::arrived;

 private:
  enum class State { Idle, Connecting, Connected, Listening };

  void examine() override;
  void attach(std::shared_ptr<StreamEnd> end);
  void connected(std::int32_t error, std::shared_ptr<StreamEnd> end);
  std::int32_t refuseToConnect(const Endpoint& to) const;

  State state_ = State::Idle;
  std::shared_ptr<StreamEnd> end_;
  bool silent_ = false;  ///< sends nothing more
  std::int32_t connectError_ = 0;
  bool connectEnded_ = false;  ///< and nobody has been told
  std::size_t backlog_ = 0;
  std::deque<std::shared_ptr<StreamEnd>> arrivals_;
};

}  // namespace zev::simulated
