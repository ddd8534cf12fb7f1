#include "simulated/network/stream_socket.h"

#include <algorithm>
#include <utility>

namespace zev::simulated {

namespace error = winsock::error;

namespace {

constexpr std::int32_t alreadyConnecting = 10037;  // WSAEALREADY

}  // namespace

StreamSocket::~StreamSocket() {
  for (const auto& each : arrivals_) each->reset();
  if (end_ != nullptr) end_->close();
}

void StreamSocket::attach(std::shared_ptr<StreamEnd> end) {
  state_ = State::Connected;
  end_ = std::move(end);
  end_->observe([this] { examine(); });
  end_->setSendBuffer(sendBuffer());
  end_->setReceiveBuffer(receiveBuffer());
}

void StreamSocket::become(std::shared_ptr<StreamEnd> end, const LocalSocket& listener) {
  setLocal(end->local());
  attach(std::move(end));
  if (!listener.blocks()) select(listener.selection());
}

std::int32_t StreamSocket::peerName(Endpoint& endpoint) const {
  if (state_ != State::Connected) return error::notConnected;
  endpoint = end_->remote();
  return 0;
}

std::int32_t StreamSocket::setOption(std::int32_t option, std::int32_t value) {
  const std::int32_t error = LocalSocket::setOption(option, value);
  if (error == 0 && end_ != nullptr) {
    end_->setSendBuffer(sendBuffer());
    end_->setReceiveBuffer(receiveBuffer());
  }
  return error;
}

// ---- connecting

std::int32_t StreamSocket::refuseToConnect(const Endpoint& to) const {
  if (state_ == State::Connecting) return alreadyConnecting;
  if (state_ == State::Connected) return error::alreadyConnected;
  if (state_ == State::Listening) return error::invalidArgument;
  const bool nowhere = to.port == 0 || to.address == anyAddress || to.address == broadcastAddress;
  return nowhere ? error::addressNotAvailable : 0;
}

std::int32_t StreamSocket::connect(const Endpoint& to) {
  if (const std::int32_t refusal = refuseToConnect(to)) return refusal;
  if (const std::int32_t unbound = bindFor(to)) return unbound;
  if (local().address == anyAddress) {
    setLocal({network().senderFor(to.address), local().port});
  }
  state_ = State::Connecting;
  connectEnded_ = false;
  arm(winsock::fdConnect | winsock::fdWrite);
  network().connect(local(), to, receiveBuffer(),
                    [weak = weak_from_this()](std::int32_t error, auto end) {
                      if (const auto self = weak.lock()) {
                        self->connected(error, std::move(end));
                      } else if (end != nullptr) {
                        end->reset();
                      }
                    });
  return error::wouldBlock;
}

void StreamSocket::connected(std::int32_t error, std::shared_ptr<StreamEnd> end) {
  state_ = State::Idle;
  connectError_ = error;
  connectEnded_ = true;
  if (error == 0) attach(std::move(end));
  examine();
}

// ---- listening

std::int32_t StreamSocket::listen(std::int32_t backlog) {
  if (state_ == State::Connecting || state_ == State::Connected) return error::alreadyConnected;
  if (!isBound()) return error::invalidArgument;
  state_ = State::Listening;
  backlog_ = static_cast<std::size_t>(std::max(backlog, 1));
  return 0;
}

std::int32_t StreamSocket::admits() {
  return state_ == State::Listening && arrivals_.size() < backlog_ ? 0 : error::refused;
}

void StreamSocket::arrived(std::shared_ptr<StreamEnd> end) {
  end->setSendBuffer(sendBuffer());
  end->setReceiveBuffer(receiveBuffer());
  arrivals_.push_back(std::move(end));
  examine();
}

std::int32_t StreamSocket::accept(std::shared_ptr<StreamEnd>& end) {
  if (state_ != State::Listening) return error::invalidArgument;
  arm(winsock::fdAccept);
  if (arrivals_.empty()) return error::wouldBlock;
  end = std::move(arrivals_.front());
  arrivals_.pop_front();
  examine();
  return 0;
}

// ---- data

std::int32_t StreamSocket::send(std::string_view bytes, std::size_t& taken) {
  if (state_ != State::Connected) return error::notConnected;
  if (silent_) return error::shutDown;
  if (end_->error() != 0) return end_->error();
  taken = end_->send(bytes);
  if (taken > 0 || bytes.empty()) return 0;
  if (end_->error() != 0) return end_->error();
  arm(winsock::fdWrite);
  return error::wouldBlock;
}

std::int32_t StreamSocket::endSending() {
  if (state_ != State::Connected) return error::notConnected;
  silent_ = true;
  end_->finish();
  return 0;
}

std::int32_t StreamSocket::receive(std::span<std::uint8_t> into, bool peek, Endpoint& sender,
                                   std::size_t& count) {
  if (state_ != State::Connected) return error::notConnected;
  sender = end_->remote();
  arm(winsock::fdRead);
  const std::string bytes = end_->read(into.size(), peek);
  std::copy(bytes.begin(), bytes.end(), into.begin());
  count = bytes.size();
  const bool nothing = end_->waiting() == 0 && bytes.empty() && !into.empty();
  examine();
  if (!nothing || (end_->error() == 0 && end_->finished())) return 0;
  return end_->error() != 0 ? end_->error() : error::wouldBlock;
}

std::size_t StreamSocket::waiting() const { return end_ == nullptr ? 0 : end_->waiting(); }

// ---- events

void StreamSocket::examine() {
  if (connectEnded_ && isArmed(winsock::fdConnect)) {
    connectEnded_ = false;
    post(winsock::fdConnect, connectError_);
  }
  if (!arrivals_.empty()) post(winsock::fdAccept);
  if (state_ != State::Connected) return;
  const std::int32_t error = end_->error();
  if (error == 0 && end_->room() > 0) post(winsock::fdWrite);
  if (end_->waiting() > 0) post(winsock::fdRead);
  if (end_->waiting() == 0 && (error != 0 || end_->finished())) post(winsock::fdClose, error);
}

}  // namespace zev::simulated
