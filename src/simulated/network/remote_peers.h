#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "simulated/network/port_table.h"

namespace zev::simulated {

class SimulatedNetwork;

/// The far end of a connection, as a test or a scenario plays it. It reads what comes, unless told
/// otherwise. What it does travels with the connection's latency.
class RemoteStream {
 public:
  static constexpr std::size_t bufferSize = 8192;  ///< of each way, in bytes

  /// Sends bytes; what finds no room goes out when there is some.
  void send(std::string_view bytes);
  /// All that has been read so far.
  const std::string& received() const { return received_; }
  /// The same, and forgets it.
  std::string take();
  /// Called whenever more has been read.
  void onReceived(std::function<void(RemoteStream&)> action) { onReceived_ = std::move(action); }

  /// Sends nothing more after what was sent, and goes on reading (a half-close).
  void finish();
  /// Lets go of the connection. What it has not read makes this a reset.
  void close();
  /// Breaks the connection.
  void reset();
  /// Reads nothing more, so that the sender's buffers fill up; and reads again.
  void stopReading() { reading_ = false; }
  /// Reads again: first all that has waited meanwhile.
  void goOnReading();
  /// Is gone without a word: nothing goes out or comes in any more.
  void vanish();

  /// Whether the connection has come about.
  bool connected() const { return end_ != nullptr; }
  /// Why a connection did not come about or broke; 0 if neither.
  std::int32_t error() const { return end_ == nullptr ? error_ : end_->error(); }
  /// Whether the machine's end has closed, all that it sent being read.
  bool peerClosed() const { return end_ != nullptr && end_->finished() && end_->waiting() == 0; }
  /// Bytes that have come and that it has not read.
  std::size_t unread() const { return end_ == nullptr ? 0 : end_->waiting(); }
  /// Both ends; throws std::logic_error before the connection has come about.
  const Endpoint& local() const { return end().local(); }
  const Endpoint& remote() const { return end().remote(); }

  /// Of the network: what came of connecting.
  void began(std::shared_ptr<StreamEnd> end);
  void failed(std::int32_t error) { error_ = error; }

 private:
  StreamEnd& end() const;
  void changed();
  void read();
  void write();

  std::shared_ptr<StreamEnd> end_;
  std::int32_t error_ = 0;
  std::string outgoing_;
  std::string received_;
  std::function<void(RemoteStream&)> onReceived_;
  bool reading_ = true;
  bool finishing_ = false;
  bool closing_ = false;
  bool gone_ = false;
};

/// A server for streams on one port of one host. It accepts whoever comes, unless told otherwise.
class StreamServer final : public PortOwner {
 public:
  /// Lets in whoever comes, or turns them away with 10061. Connections that stand are left alone.
  void accept() { answer_ = 0; }
  void refuse() { answer_ = winsock::error::refused; }
  /// Lets whoever comes wait until the network's connectTime is over.
  void neverAnswer() { answer_ = winsock::error::timedOut; }
  /// Lets whoever comes fail with that number.
  void fail(std::int32_t error) { answer_ = error; }

  /// The connections so far, in the order in which they came, the closed ones included.
  std::size_t connections() const { return streams_.size(); }
  /// The far end of one of them, owned here; std::out_of_range if there are fewer.
  RemoteStream& connection(std::size_t index) const { return *streams_.at(index); }
  /// Called for every connection that comes.
  void onConnection(std::function<void(RemoteStream&)> action) {
    onConnection_ = std::move(action);
  }

  std::int32_t admits() override { return answer_; }
  void arrived(std::shared_ptr<StreamEnd> end) override;
  using PortOwner::arrived;

 private:
  std::int32_t answer_ = 0;
  std::vector<std::unique_ptr<RemoteStream>> streams_;
  std::function<void(RemoteStream&)> onConnection_;
};

/// Who sends and gets datagrams on one port of one host.
class DatagramPeer final : public PortOwner {
 public:
  /// Borrows the network.
  DatagramPeer(SimulatedNetwork& network, const Endpoint& endpoint)
      : network_(network), endpoint_(endpoint) {}

  /// Sends a datagram from its own port; it is lost if nobody has the other one.
  void send(const Endpoint& to, std::string_view bytes);
  /// All that came, with their senders.
  const std::vector<Datagram>& received() const { return received_; }
  /// Called for every datagram that comes.
  void onReceived(std::function<void(DatagramPeer&, const Datagram&)> action) {
    onReceived_ = std::move(action);
  }

  void arrived(const Datagram& datagram) override;
  using PortOwner::arrived;

 private:
  SimulatedNetwork& network_;
  Endpoint endpoint_;
  std::vector<Datagram> received_;
  std::function<void(DatagramPeer&, const Datagram&)> onReceived_;
};

}  // namespace zev::simulated
