#include "programs/zevnet/datagrams.h"

#include <utility>
#include <vector>

namespace zev::netcat {
namespace {

/// What other tools read at once.
constexpr std::size_t longestDatagram = 8192;

}  // namespace

Datagrams::Datagrams(modEventSocket& module, Terminal& terminal, const Wishes& wishes)
    : terminal_(terminal),
      wishes_(wishes),
      socket_(CEventSocket::create(module)),
      receiver_(fromUtf8(wishes.host)),
      receiverPort_(wishes.port) {
  socket_->Protocol(ProtocolUDP);
  socket_->events.DataArrival = [this](std::int32_t) { takeArrived(); };
  socket_->events.Error = [this](const SocketErrorArguments& error) {
    failure_.emplace(error.Number, toUtf8(error.Description), toUtf8(error.Source));
  };
}

void Datagrams::begin() {
  if (listens()) {
    socket_->Bind(wishes_.port, fromUtf8(wishes_.address));
  } else {
    socket_->Connect(receiver_, receiverPort_);
  }
  if (socket_->State() != sckOpen) return;
  const std::string here = toUtf8(socket_->LocalIP()) + " " + std::to_string(socket_->LocalPort());
  terminal_.tell(listens() ? "listening on " + here
                           : "sending to " + wishes_.host + " " + std::to_string(receiverPort_) +
                                 " from " + here);
}

std::size_t Datagrams::longestPiece() const { return longestDatagram; }

/// Host and port anew each time: what arrives puts its sender in their place.
void Datagrams::takeInput(BytesView piece) {
  try {
    socket_->RemoteHost(receiver_);
    socket_->RemotePort(receiverPort_);
    socket_->SendData(std::vector<std::uint8_t>(piece.begin(), piece.end()));
  } catch (const RuntimeError& error) {
    failure_.emplace(error);
  }
  if (!failure_) sent_ += piece.size();
}

/// All that wait: behind the event the socket drops the next one.
void Datagrams::takeArrived() {
  try {
    while (socket_->BytesReceived() > 0) takeOne();
  } catch (const RuntimeError& error) {
    failure_.emplace(error);
  }
}

void Datagrams::takeOne() {
  Variant data;
  socket_->GetData(data);
  const auto bytes = data.take<std::vector<std::uint8_t>>();
  received_ += bytes.size();
  if (listens()) {
    receiver_ = socket_->RemoteHostIP();
    receiverPort_ = socket_->RemotePort();
  }
  terminal_.write(bytes);
}

void Datagrams::settle() {
  if (failure_ || (inputEnded_ && wishes_.close)) end();
}

void Datagrams::end() {
  if (std::exchange(over_, true)) return;
  socket_->CloseSck();
  if (failure_) terminal_.tell(failure_->what());
  terminal_.tell("closed: sent " + std::to_string(sent_) + " bytes, received " +
                 std::to_string(received_) + " bytes");
}

}  // namespace zev::netcat
