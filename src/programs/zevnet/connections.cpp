#include "programs/zevnet/connections.h"

#include <algorithm>

namespace zev::netcat {
namespace {

constexpr std::size_t longestStreamPiece = 65536;

}  // namespace

Connection& Connections::add() {
  connections_.push_back(std::make_unique<Connection>(module_, terminal_, wishes_.timeout));
  if (inputEnded_ && wishes_.close) connections_.back()->closeWhenSent();
  return *connections_.back();
}

bool Connections::wantsInput() const {
  return !inputEnded_ && !none() &&
         std::all_of(connections_.begin(), connections_.end(),
                     [](const auto& each) { return each->stands() && !each->waits(); });
}

std::size_t Connections::longestPiece() const { return longestStreamPiece; }

void Connections::takeInput(BytesView piece) {
  for (const auto& each : connections_) each->send(piece);
}

void Connections::endInput() {
  inputEnded_ = true;
  if (!wishes_.close) return;
  for (const auto& each : connections_) each->closeWhenSent();
}

void Connections::settle() {
  for (const auto& each : connections_) {
    if (each->isOver()) end(*each);
  }
  dropEnded();
}

int Connections::patience() const {
  int shortest = -1;
  for (const auto& each : connections_) shortest = earlier(shortest, each->patience());
  return shortest;
}

void Connections::end() {
  for (const auto& each : connections_) end(*each);
  dropEnded();
}

/// What the input still has nobody will ever get; with others to follow it is theirs.
void Connections::end(Connection& connection) {
  InputRest unread{0, true};
  if (connection.hasBegun() && !inputEnded_ && !wishes_.keep) {
    terminal_.holdInput();
    unread = terminal_.restOfInput();
  }
  connection.end(unread, wishes_.close);
}

void Connections::dropEnded() {
  for (const auto& each : connections_) {
    if (!each->ended()) continue;
    failed_ = failed_ || each->failed();
    earlierTraffic_ += each->traffic();
  }
  std::erase_if(connections_, [](const auto& each) { return each->ended(); });
}

std::uint64_t Connections::traffic() const {
  std::uint64_t sum = earlierTraffic_;
  for (const auto& each : connections_) sum += each->traffic();
  return sum;
}

// ---- listening

Listener::Listener(modEventSocket& module, Terminal& terminal, const Wishes& wishes)
    : Connections(module, terminal, wishes), listener_(CEventSocket::create(module)) {
  listener_->events.ConnectionRequest = [this](std::int32_t requestID) { take(requestID); };
}

void Listener::begin() {
  listener_->Bind(wishes_.port, fromUtf8(wishes_.address));
  listener_->Listen();
  terminal_.tell("listening on " + toUtf8(listener_->LocalIP()) + " " +
                 std::to_string(listener_->LocalPort()));
}

void Listener::take(std::int32_t requestID) {
  taken_ = true;
  if (!wishes_.keep) listener_->CloseSck();
  add().accept(requestID);
}

}  // namespace zev::netcat
