#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/message_queue.h"
#include "simulated/network/simulated_network.h"

namespace zev::simulated {

/// One socket of the machine, behind the calls: its address, its options and its selection.
/// Operations give 0 or an error number and never wait: what would have to fails with 10035.
class LocalSocket : public PortOwner {
 public:
  struct Selection {
    WindowHandle window = 0;
    std::uint32_t message = 0;
    std::int32_t mask = 0;
  };

  /// Borrows network and queue.
  LocalSocket(SimulatedNetwork& network, MessageQueue& queue, Transport transport,
              std::int32_t handle);
  ~LocalSocket() override;
  LocalSocket(const LocalSocket&) = delete;
  LocalSocket& operator=(const LocalSocket&) = delete;

  std::int32_t handle() const { return handle_; }

  // ---- the address

  /// Takes the address and the port: 10022 if the socket has one already, 10049 for an address that
  /// is not the machine's.
  std::int32_t bind(Endpoint wanted);
  std::int32_t ownName(Endpoint& endpoint) const;
  /// The other end; 10057 without a connection.
  virtual std::int32_t peerName(Endpoint& endpoint) const = 0;

  // ---- the selection

  /// From now on the events of the mask are posted to the window; those whose time has come already
  /// at once.
  void select(const Selection& selection);
  const Selection& selection() const { return selection_; }
  /// Whether the socket waits in its calls: until it has been selected.
  bool blocks() const { return blocks_; }

  // ---- options, those of the socket level

  std::int32_t getOption(std::int32_t option, std::int32_t& value) const;
  virtual std::int32_t setOption(std::int32_t option, std::int32_t value);

  // ---- connecting

  /// Begins to connect; of a datagram socket it sets the receiver, which is all there is to do.
  virtual std::int32_t connect(const Endpoint& to) = 0;
  /// Whether a connecting runs.
  virtual bool connecting() const { return false; }
  /// What came of the last connecting.
  virtual std::int32_t connectError() const { return 0; }
  /// Lets others connect; that many can wait to be accepted.
  virtual std::int32_t listen(std::int32_t) { return winsock::error::operationNotSupported; }
  /// The next connection that waits.
  virtual std::int32_t accept(std::shared_ptr<StreamEnd>&) {
    return winsock::error::operationNotSupported;
  }

  /// A connection that waits may be told of again.
  void acceptAgain() {
    arm(winsock::fdAccept);
    examine();
  }

  // ---- data

  /// Takes the first `taken` bytes of what is given.
  virtual std::int32_t send(std::string_view bytes, std::size_t& taken) = 0;
  /// Sends the end of the stream after what was sent.
  virtual std::int32_t endSending() { return winsock::error::notConnected; }
  virtual std::int32_t sendTo(std::string_view bytes, const Endpoint& to, std::size_t& taken) = 0;
  /// Fills the front of `into`.
  virtual std::int32_t receive(std::span<std::uint8_t> into, bool peek, Endpoint& sender,
                               std::size_t& count) = 0;
  /// Bytes that one receive() could get now.
  virtual std::size_t waiting() const = 0;

 protected:
  SimulatedNetwork& network() const { return network_; }
  const Endpoint& local() const { return local_; }
  bool isBound() const { return local_.port != 0; }
  /// Takes an address and a port if the socket has none.
  std::int32_t bindFor(const Endpoint& to);
  /// Has an address without having taken its port, as an accepted socket does.
  void setLocal(const Endpoint& local) { local_ = local; }
  std::size_t sendBuffer() const { return sendBuffer_; }
  std::size_t receiveBuffer() const { return receiveBuffer_; }
  bool broadcasts() const { return broadcasts_; }

  /// Posts an event, if it is wanted and has not been posted since it was armed last.
  void post(std::int32_t event, std::int32_t error = 0);
  void arm(std::int32_t events) { armed_ |= events; }
  bool isArmed(std::int32_t event) const { return (armed_ & selection_.mask & event) != 0; }
  /// Posts all events whose time has come.
  virtual void examine() = 0;

 private:
  SimulatedNetwork& network_;
  MessageQueue& queue_;
  Transport transport_;
  std::int32_t handle_;
  Endpoint local_;
  Endpoint taken_;  ///< the port that is to be given back
  Selection selection_;
  std::int32_t armed_ = 0;
  bool blocks_ = true;
  std::size_t sendBuffer_;
  std::size_t receiveBuffer_;
  std::size_t maximumMessage_;
  bool broadcasts_ = false;
};

}  // namespace zev::simulated
