#include "component_streams.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace zev::benchmarks {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Nothing that lasts so long without a message will ever end.
constexpr int patience = 60'000;

}  // namespace

ComponentStreams::ComponentStreams()
    : module_(SocketServices{machine_.sockets(), machine_.windows(), machine_.kernel(), dialogs_}),
      listener_(CEventSocket::create(module_)) {
  listener_->events.ConnectionRequest = [this](std::int32_t request) { take(request); };
  listener_->Bind(0, u"127.0.0.1");
  listener_->Listen();
}

std::uint16_t ComponentStreams::port() const {
  return static_cast<std::uint16_t>(listener_->LocalPort());
}

void ComponentStreams::take(std::int32_t request) {
  const std::size_t number = streams_.size();
  const auto socket = CEventSocket::create(module_);
  streams_.push_back({socket});
  CEventSocket* const stream = socket.get();
  socket->events.DataArrival = [this, stream](std::int32_t) { arrived(*stream); };
  socket->events.SendComplete = [this, number] { complete_.push_back(number); };
  socket->Accept(request);
}

void ComponentStreams::arrived(CEventSocket& socket) {
  if (!fetches_) return;
  socket.GetData(arrived_);
  fetched_ += arrived_.get<Bytes>()->size();
}

void ComponentStreams::dispatch() {
  if (!machine_.dispatch(patience)) throw std::runtime_error("the component stands still");
}

void ComponentStreams::accept(std::size_t streams) {
  while (streams_.size() < streams) dispatch();
  sendChunk_ = sendChunk();
}

void ComponentStreams::receive(const Load& load) {
  fetched_ = 0;
  while (fetched_ < load.total()) dispatch();
  if (fetched_ > load.total()) throw std::runtime_error("more bytes than were sent");
}

std::size_t ComponentStreams::sendChunk() {
  std::int32_t size = 0;
  machine_.sockets().getsockopt(streams_.front().socket->SocketHandle(), winsock::socketLevel,
                                winsock::sendBufferSize, size);
  return static_cast<std::size_t>(size);
}

void ComponentStreams::send(const Load& load) {
  const std::size_t most = std::min(sendChunk_, load.bytesEach);
  const Variant piece = Bytes(most, 's');
  const Variant rest = Bytes(load.bytesEach % most, 's');
  complete_.clear();
  for (std::size_t i = 0; i < streams_.size(); ++i) {
    streams_[i].left = load.bytesEach;
    complete_.push_back(i);
  }
  for (std::size_t busy = streams_.size(); busy != 0;) {
    while (complete_.empty()) dispatch();
    for (const std::size_t i : std::exchange(complete_, {})) {
      Stream& stream = streams_[i];
      if (stream.left == 0) {
        --busy;
        continue;
      }
      const std::size_t size = std::min(stream.left, most);
      stream.left -= size;
      stream.socket->SendData(size == most ? piece : rest);
    }
  }
}

// ---- the first stream alone

void ComponentStreams::sendAtOnce(const Variant& bytes) {
  complete_.clear();
  streams_.front().socket->SendData(bytes);
  while (complete_.empty()) dispatch();
}

void ComponentStreams::letWait(std::size_t count) {
  fetches_ = false;
  const CEventSocket& socket = *streams_.front().socket;
  while (static_cast<std::size_t>(socket.BytesReceived()) < count) dispatch();
  fetches_ = true;
}

std::size_t ComponentStreams::fetchInPieces(std::size_t most) {
  CEventSocket& socket = *streams_.front().socket;
  std::size_t fetched = 0;
  while (socket.BytesReceived() != 0) {
    Variant type = Variant::missing();
    Variant length = static_cast<std::int32_t>(most);
    socket.GetData(arrived_, type, length);
    fetched += arrived_.get<Bytes>()->size();
  }
  return fetched;
}

}  // namespace zev::benchmarks
