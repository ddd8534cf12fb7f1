#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "simulated/network/address.h"
#include "simulated/network/timeline.h"

namespace zev::simulated {

class Connection;

/// One end of a connection. What it sends travels to the other end with the connection's latency,
/// in order, as far as there is room in the other end's receive buffer; acknowledgements take no
/// time. Bytes leave the send buffer when they arrive.
class StreamEnd {
 public:
  StreamEnd(Connection& connection, int side) : connection_(connection), side_(side) {}
  StreamEnd(const StreamEnd&) = delete;
  StreamEnd& operator=(const StreamEnd&) = delete;

  /// Its own address, and that of the other end.
  const Endpoint& local() const;
  const Endpoint& remote() const;
  /// From now on `changed` is called when there may be more to read, more room, or an end.
  void observe(std::function<void()> changed) { changed_ = std::move(changed); }

  /// Takes as many bytes as there is room for.
  std::size_t send(std::string_view bytes);
  /// Room in the send buffer.
  std::size_t room() const;
  /// How much is kept here until it arrives; what is in there already stays.
  void setSendBuffer(std::size_t bytes) { sendBuffer_ = bytes; }
  /// Nothing more will be sent after what was.
  void finish();

  /// Bytes that can be read.
  std::size_t waiting() const { return received_.size(); }
  /// The first bytes that wait, at most `most`. `peek` leaves them there.
  std::string read(std::size_t most, bool peek = false);
  /// How much may wait here before the other end has to stop.
  void setReceiveBuffer(std::size_t bytes);
  /// Nothing more will come after what waits.
  bool finished() const { return finished_; }
  /// Why the connection broke: 10054 if the other end has reset it, 10053 if it gave up, else 0.
  /// What had come before still waits.
  std::int32_t error() const { return error_; }

  /// Lets go of the end: what was sent still goes out, and what comes is answered by a reset. Bytes
  /// that nobody has read make it a reset.
  void close();
  /// Breaks the connection; what has not gone out is lost.
  void reset();
  /// From now on nothing goes out of this end and nothing comes in. The other end gives up, with
  /// 10053, when what it sends has had no answer for too long.
  void vanish() { vanished_ = true; }

 private:
  StreamEnd& other();
  const StreamEnd& other() const;
  void changed();
  std::size_t window() const;
  void pushOn();
  void carry(std::function<void(StreamEnd& receiver)> arrival);
  void sendReset();
  void dataArrived(const std::string& bytes);
  void finishArrived();
  void breakOff(std::int32_t error);
  void waitForAnswer();

  Connection& connection_;
  int side_;
  std::function<void()> changed_;

  std::string unsent_;  ///< what found no room in the receiver's buffer
  std::size_t inFlight_ = 0;
  std::size_t sendBuffer_ = 0;
  std::uint64_t lastArrival_ = 0;
  std::size_t travelling_ = 0;  ///< arrivals on their way
  bool finishing_ = false;
  bool finishSent_ = false;
  bool resetSent_ = false;
  bool givingUp_ = false;

  std::string received_;
  std::size_t receiveBuffer_ = 0;
  bool finished_ = false;
  std::int32_t error_ = 0;

  bool closed_ = false;
  bool vanished_ = false;
};

/// Two ends. It lives as long as somebody holds one of them or something is on its way.
class Connection : public std::enable_shared_from_this<Connection> {
 public:
  struct Terms {
    std::uint64_t latency = 0;   ///< milliseconds for one way
    std::uint64_t patience = 0;  ///< milliseconds without an answer until an end gives up
  };

  /// The ends of a new connection: who began it, and the other one. Borrows the timeline.
  static std::array<std::shared_ptr<StreamEnd>, 2> make(Timeline& timeline, Terms terms,
                                                        const Endpoint& first,
                                                        const Endpoint& second);

 private:
  friend class StreamEnd;
  Connection(Timeline& timeline, Terms terms, const Endpoint& first, const Endpoint& second);

  Timeline& timeline_;
  Terms terms_;
  std::array<Endpoint, 2> endpoints_;
  std::array<StreamEnd, 2> ends_;
};

}  // namespace zev::simulated
