#include "simulated/network/stream_end.h"

#include <algorithm>
#include <utility>

namespace zev::simulated {

// ---- the two ends

Connection::Connection(Timeline& timeline, Terms terms, const Endpoint& first,
                       const Endpoint& second)
    : timeline_(timeline),
      terms_(terms),
      endpoints_{first, second},
      ends_{{{*this, 0}, {*this, 1}}} {}

std::array<std::shared_ptr<StreamEnd>, 2> Connection::make(Timeline& timeline, Terms terms,
                                                           const Endpoint& first,
                                                           const Endpoint& second) {
  const std::shared_ptr<Connection> connection(new Connection(timeline, terms, first, second));
  return {std::shared_ptr<StreamEnd>(connection, &connection->ends_[0]),
          std::shared_ptr<StreamEnd>(connection, &connection->ends_[1])};
}

const Endpoint& StreamEnd::local() const {
  return connection_.endpoints_[static_cast<std::size_t>(side_)];
}

const Endpoint& StreamEnd::remote() const { return other().local(); }

StreamEnd& StreamEnd::other() { return connection_.ends_[side_ == 0 ? 1 : 0]; }

const StreamEnd& StreamEnd::other() const { return connection_.ends_[side_ == 0 ? 1 : 0]; }

void StreamEnd::changed() {
  const std::function<void()> observer = changed_;  // which may be replaced meanwhile
  if (observer) observer();
}

// ---- sending

std::size_t StreamEnd::room() const {
  const std::size_t taken = unsent_.size() + inFlight_;
  return taken < sendBuffer_ ? sendBuffer_ - taken : 0;
}

std::size_t StreamEnd::send(std::string_view bytes) {
  if (finishing_ || error_ != 0) return 0;
  const std::size_t count = std::min(room(), bytes.size());
  unsent_.append(bytes.substr(0, count));
  pushOn();
  return count;
}

void StreamEnd::finish() {
  finishing_ = true;
  pushOn();
}

/// Room in the other end's receive buffer for what is not yet on its way.
std::size_t StreamEnd::window() const {
  const std::size_t taken = other().received_.size() + inFlight_;
  return taken < other().receiveBuffer_ ? other().receiveBuffer_ - taken : 0;
}

void StreamEnd::pushOn() {
  const std::size_t count = std::min(window(), unsent_.size());
  if (count > 0) {
    std::string bytes = unsent_.substr(0, count);
    unsent_.erase(0, count);
    inFlight_ += count;
    carry([bytes = std::move(bytes)](StreamEnd& receiver) { receiver.dataArrived(bytes); });
  }
  if (finishing_ && unsent_.empty() && !std::exchange(finishSent_, true)) {
    carry([](StreamEnd& receiver) { receiver.finishArrived(); });
  }
}

/// Takes something to the other end, after all that is on its way there. Without latency it is
/// there at once.
void StreamEnd::carry(std::function<void(StreamEnd&)> arrival) {
  if (vanished_) return;
  Timeline& timeline = connection_.timeline_;
  lastArrival_ = std::max(lastArrival_, timeline.now() + connection_.terms_.latency);
  if (lastArrival_ == timeline.now() && travelling_ == 0) return arrival(other());
  ++travelling_;
  timeline.after(lastArrival_ - timeline.now(),
                 [this, alive = connection_.shared_from_this(), arrival = std::move(arrival)] {
                   --travelling_;
                   arrival(other());
                 });
}

// ---- receiving

void StreamEnd::setReceiveBuffer(std::size_t bytes) {
  receiveBuffer_ = bytes;
  other().pushOn();
}

std::string StreamEnd::read(std::size_t most, bool peek) {
  const std::string bytes = received_.substr(0, most);
  if (!peek) {
    received_.erase(0, bytes.size());
    if (!bytes.empty()) other().pushOn();
  }
  return bytes;
}

void StreamEnd::dataArrived(const std::string& bytes) {
  if (vanished_) return other().waitForAnswer();
  other().inFlight_ -= std::min(other().inFlight_, bytes.size());
  if (closed_) return sendReset();
  if (error_ != 0) return;
  received_ += bytes;
  changed();
  other().changed();
}

void StreamEnd::finishArrived() {
  if (vanished_) return;
  finished_ = true;
  changed();
}

// ---- the end

void StreamEnd::close() {
  changed_ = nullptr;
  if (std::exchange(closed_, true)) return;
  if (error_ != 0) return;
  if (!received_.empty()) return sendReset();
  finish();
}

void StreamEnd::reset() {
  changed_ = nullptr;
  closed_ = true;
  sendReset();
}

void StreamEnd::sendReset() {
  unsent_.clear();
  finishing_ = true;
  finishSent_ = true;
  if (error_ != 0 || std::exchange(resetSent_, true)) return;
  carry([](StreamEnd& receiver) { receiver.breakOff(winsock::error::connectionReset); });
}

void StreamEnd::breakOff(std::int32_t error) {
  if (vanished_ || error_ != 0) return;
  error_ = error;
  unsent_.clear();
  changed();
}

/// Gives up when nobody has answered for as long as the connection's patience.
void StreamEnd::waitForAnswer() {
  if (std::exchange(givingUp_, true)) return;
  connection_.timeline_.after(connection_.terms_.patience,
                              [this, alive = connection_.shared_from_this()] {
                                breakOff(winsock::error::connectionAborted);
                              });
}

}  // namespace zev::simulated
