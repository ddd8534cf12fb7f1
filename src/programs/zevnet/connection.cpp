#include "programs/zevnet/connection.h"

#include <utility>
#include <vector>

namespace zev::netcat {

Connection::Connection(modEventSocket& module, Terminal& terminal, double timeout)
    : module_(module),
      terminal_(terminal),
      socket_(CEventSocket::create(module)),
      timeout_(timeout) {
  followEvents();
}

Connection::~Connection() { socket_->events = {}; }

void Connection::followEvents() {
  SocketEvents& events = socket_->events;
  events.Connect = [this] { begun("connected to "); };
  events.DataArrival = [this](std::int32_t) { takeArrived(); };
  events.CloseSck = [this] { peerClosed_ = true; };
  // Comes before each SendComplete, too, with nothing remaining.
  events.SendProgress = [this](std::int32_t, std::int32_t remaining) {
    sent_ = given_ - static_cast<std::uint64_t>(remaining);
  };
  events.Error = [this](const SocketErrorArguments& error) {
    fail({error.Number, toUtf8(error.Description), toUtf8(error.Source)});
  };
}

void Connection::connect(const std::string& host, std::int32_t port) {
  terminal_.tell("connecting to " + host + " " + std::to_string(port));
  limit_.emplace(timeout_);
  socket_->Connect(fromUtf8(host), port);
}

void Connection::accept(std::int32_t requestID) {
  try {
    socket_->Accept(requestID);
  } catch (const RuntimeError& error) {
    return fail(Failure(error));
  }
  begun("connected from ");
}

void Connection::begun(const char* how) {
  limit_.reset();
  peer_ = toUtf8(socket_->RemoteHostIP()) + " " + std::to_string(socket_->RemotePort());
  terminal_.tell(how + peer_);
}

void Connection::send(BytesView bytes) {
  given_ += bytes.size();
  if (!stands()) return;
  try {
    socket_->SendData(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
  } catch (const RuntimeError& error) {
    fail(Failure(error));
  }
}

void Connection::takeArrived() {
  Variant data;
  try {
    socket_->GetData(data);
  } catch (const RuntimeError& error) {
    return fail(Failure(error));
  }
  const auto bytes = data.take<std::vector<std::uint8_t>>();
  received_ += bytes.size();
  terminal_.write(bytes);
}

/// The first failure counts.
void Connection::fail(Failure failure) {
  if (!failure_) failure_ = std::move(failure);
}

/// What was raised inside a notification, where nobody hears of it, shows by the state alone.
std::optional<Failure> Connection::unreportedFailure() const {
  const std::int32_t reason = module_.services().sockets.WSAGetLastError();
  const auto because = [&](const char* source) { return Failure(reason, source); };
  switch (socket_->State()) {
    case sckError:
      return because("CEventSocket.RecvDataToBuffer");
    case sckHostResolved:
      return because("CEventSocket.BindInternal");
    case sckConnecting:
      if (reason == winsock::error::addressNotAvailable) return because("CEventSocket.ConnectToIP");
      return {};
    default:
      return {};
  }
}

void Connection::giveUp() { fail({winsock::error::timedOut, "zevnet"}); }

bool Connection::isOver() {
  if (ended_) return false;
  if (closeWhenSent_ && stands() && !waits() && !sendingEnded_) endSending();
  if (limit_ && limit_->over()) giveUp();
  if (!failure_) failure_ = unreportedFailure();
  return failure_ || peerClosed_;
}

/// The component's sockets end both directions only.
void Connection::endSending() {
  sendingEnded_ = true;
  limit_.emplace(timeout_);
  Sockets& sockets = module_.services().sockets;
  if (sockets.shutdown(socket_->SocketHandle(), winsock::sendingEnd) != winsock::failed) return;
  fail({sockets.WSAGetLastError(), "zevnet"});
}

void Connection::end(const InputRest& unread, bool wholeInput) {
  if (std::exchange(ended_, true)) return;
  try {
    socket_->CloseSck();
  } catch (const RuntimeError& error) {
    fail(Failure(error));
  }
  if (hasBegun()) countLost(unread, wholeInput);
  tellEnd();
}

void Connection::countLost(const InputRest& unread, bool wholeInput) {
  const std::uint64_t lost = given_ - sent_ + unread.bytes;
  const auto lose = [this](const std::string& what) {
    loss_.emplace(winsock::error::connectionAborted, what, "zevnet");
  };
  if (lost != 0) return lose(std::to_string(lost) + " bytes were not sent.");
  if (unread.known) return;
  if (wholeInput) return lose("The input was not read to its end.");
  if (!failure_) terminal_.tell("the input was not read to its end");
}

void Connection::tellEnd() {
  if (failure_) terminal_.tell(failure_->what());
  if (loss_) terminal_.tell(loss_->what());
  if (!hasBegun()) return;
  terminal_.tell("closed " + peer_ + ": sent " + std::to_string(sent_) + " bytes, received " +
                 std::to_string(received_) + " bytes");
}

}  // namespace zev::netcat
