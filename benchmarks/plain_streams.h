#pragma once

#include <cstddef>
#include <cstdint>
#include <thread>
#include <vector>

#include "posix/descriptors.h"

namespace zev::benchmarks {

/// What goes over a set of connections in one trial.
struct Load {
  std::size_t streams = 1;
  std::size_t bytesEach = 0;
  std::size_t total() const { return streams * bytesEach; }
};

/// One end of connections, whose work is measured. All loopback. What fails throws.
class StreamEnd {
 public:
  virtual ~StreamEnd() = default;
  virtual std::uint16_t port() const = 0;
  /// Takes so many connections that others have begun.
  virtual void accept(std::size_t streams) = 0;
  /// Reads until all that the load says is there, and forgets it.
  virtual void receive(const Load& load) = 0;
  /// Hands everything to the system, in pieces as long as its own buffer was
  /// when the connection was taken.
  virtual void send(const Load& load) = 0;
};

/// A plain loop: descriptors that do not block, an epoll set, and one buffer.
class PlainStreams final : public StreamEnd {
 public:
  PlainStreams();
  std::uint16_t port() const override;
  void accept(std::size_t streams) override;
  void receive(const Load& load) override;
  void send(const Load& load) override;

 private:
  posix::Descriptor listener_;
  std::vector<posix::Descriptor> streams_;
  std::size_t receiveChunk_ = 0;  ///< the system's buffer of a new connection
  std::size_t sendChunk_ = 0;
  std::vector<std::uint8_t> buffer_;
};

/// The other end, on a thread of its own: plain loops as well, the same for whoever is measured.
class StreamPeer {
 public:
  StreamPeer(std::uint16_t port, std::size_t streams);
  StreamPeer(const StreamPeer&) = delete;
  StreamPeer& operator=(const StreamPeer&) = delete;
  ~StreamPeer();

  void beginToSend(const Load& load);
  void beginToReceive(const Load& load);
  /// Waits until it is through.
  void join() { thread_.join(); }

 private:
  std::vector<posix::Descriptor> streams_;
  std::vector<std::uint8_t> buffer_;
  std::thread thread_;
};

}  // namespace zev::benchmarks
