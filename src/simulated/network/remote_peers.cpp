#include "simulated/network/remote_peers.h"

#include <stdexcept>
#include <utility>

#include "simulated/network/simulated_network.h"

namespace zev::simulated {

// ---- RemoteStream

StreamEnd& RemoteStream::end() const {
  if (end_ == nullptr) throw std::logic_error("the connection has not come about");
  return *end_;
}

void RemoteStream::began(std::shared_ptr<StreamEnd> end) {
  end_ = std::move(end);
  end_->observe([this] { changed(); });
  end_->setSendBuffer(bufferSize);
  end_->setReceiveBuffer(bufferSize);
  changed();
}

void RemoteStream::changed() {
  if (reading_) read();
  write();
}

void RemoteStream::read() {
  const std::string bytes = end_->read(end_->waiting());
  received_ += bytes;
  if (!bytes.empty() && onReceived_) onReceived_(*this);
}

/// Sends what waits as far as there is room, and the end that may follow it.
void RemoteStream::write() {
  if (gone_ || end_ == nullptr) return;
  for (std::size_t sent = 1; sent > 0 && !outgoing_.empty() && !gone_;) {
    const std::string bytes = outgoing_.substr(0, end_->room());
    outgoing_.erase(0, bytes.size());
    sent = end_->send(bytes);
  }
  if (!outgoing_.empty() || gone_) return;
  if (closing_) {
    gone_ = true;
    end_->close();
  } else if (finishing_) {
    end_->finish();
  }
}

void RemoteStream::send(std::string_view bytes) {
  outgoing_ += bytes;
  write();
}

std::string RemoteStream::take() { return std::exchange(received_, {}); }

void RemoteStream::finish() {
  finishing_ = true;
  write();
}

void RemoteStream::close() {
  closing_ = true;
  write();
}

void RemoteStream::reset() {
  gone_ = true;
  end().reset();
}

void RemoteStream::goOnReading() {
  reading_ = true;
  if (end_ != nullptr && !gone_) changed();
}

void RemoteStream::vanish() {
  gone_ = true;
  end().vanish();
}

// ---- StreamServer

void StreamServer::arrived(std::shared_ptr<StreamEnd> end) {
  RemoteStream& stream = *streams_.emplace_back(std::make_unique<RemoteStream>());
  stream.began(std::move(end));
  if (onConnection_) onConnection_(stream);
}

// ---- DatagramPeer

void DatagramPeer::send(const Endpoint& to, std::string_view bytes) {
  network_.send(endpoint_, to, std::string(bytes));
}

void DatagramPeer::arrived(const Datagram& datagram) {
  received_.push_back(datagram);
  if (onReceived_) onReceived_(*this, datagram);
}

}  // namespace zev::simulated
