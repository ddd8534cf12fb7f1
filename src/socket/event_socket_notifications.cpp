#include <algorithm>
#include <array>

#include "socket/event_socket.h"

namespace zev {
namespace {

struct Notification {
  std::int32_t event;
  TextView acting;
  TextView omitted;
};

constexpr auto notifications = std::to_array<Notification>({
    {winsock::fdRead, u"FD_READ ", u"WARNING: Omitting FD_READ"},
    {winsock::fdWrite, u"FD_WRITE ", u"WARNING: Omitting FD_WRITE"},
    {winsock::fdAccept, u"FD_ACCEPT ", u"WARNING: Omitting FD_ACCEPT"},
    {winsock::fdConnect, u"FD_CONNECT ", u"WARNING: Omitting FD_CONNECT"},
    {winsock::fdClose, u"FD_CLOSE ", u"WARNING: Omitting FD_CLOSE"},
});

/// Runs what follows an event procedure, also if that raises something: this then goes on, and
/// errors behind it are of no account.
template <typename Event, typename Rest>
void inAnyCase(Event event, Rest rest) {
  try {
    event();
  } catch (...) {
    ignoringErrors(rest);
    throw;
  }
  rest();
}

const Notification* findNotification(std::int32_t event) {
  const auto row = std::find_if(notifications.begin(), notifications.end(),
                                [&](const Notification& each) { return each.event == event; });
  return row == notifications.end() ? nullptr : &*row;
}

}  // namespace

std::int32_t CEventSocket::WndProc(std::int32_t, std::int32_t uMsg, std::int32_t wParam,
                                   std::int32_t lParam) {
  if (uMsg == WM_RESOLVE_DONE) PostHostResolved(wParam, HiWord(lParam));
  if (uMsg == WM_SOCKET_EVENT) PostSocket(LoWord(lParam), HiWord(lParam));
  return 0;
}

void CEventSocket::PostSocket(std::int32_t event, std::int32_t errorCode) {
  if (errorCode != 0) return Report(errorCode, u"CEventSocket.PostSocket");
  const Notification* const notification = findNotification(event);
  if (notification == nullptr) return;
  if (!actsOn(event)) return module_.trace().line(notification->omitted);
  module_.trace().line(notification->acting, socketHandle_);
  dispatch(event);
}

/// Whether the state takes the notification; in any other it is ignored.
bool CEventSocket::actsOn(std::int32_t event) const {
  switch (event) {
    case winsock::fdRead:
      return isUdp() ? state_ == sckOpen : state_ == sckConnected;
    case winsock::fdWrite:
      return state_ == sckConnected && !sendBuffer_.empty();
    case winsock::fdAccept:
      return state_ == sckListening;
    case winsock::fdConnect:
      return state_ == sckConnecting;
    default:
      return state_ == sckConnected;
  }
}

void CEventSocket::dispatch(std::int32_t event) {
  switch (event) {
    case winsock::fdRead:
      return isUdp() ? onDatagram() : onRead();
    case winsock::fdWrite:
      return FlushSendBuffer();
    case winsock::fdAccept:
      return onAccept();
    case winsock::fdConnect:
      return onConnect();
    default:
      return onClose();
  }
}

void CEventSocket::onRead() {
  if (RecvDataToBuffer() >= 1) raiseEvent(events.DataArrival, recvBufferLength());
}

/// A datagram, or the rest of it, that the procedure has not fetched is lost.
void CEventSocket::onDatagram() {
  const std::int32_t waiting = PendingBytes();
  inAnyCase(
      [&] {
        if (waiting > 0) raiseEvent(events.DataArrival, waiting);
      },
      [&] { ClearPendingDatagram(); });
}

void CEventSocket::onConnect() {
  SocketAddress peer;
  if (sockets_.getpeername(socketHandle_, peer) != winsock::failed) {
    remotePort_ = IntegerToUnsigned(ntohs(peer.port));
    remoteHostIp_ = module_.StringFromPointer(sockets_.inet_ntoa(peer.address));
  }
  setState(sckConnected);
  raiseEvent(events.Connect);
}

/// The socket stays open: its owner closes it.
void CEventSocket::onClose() {
  setState(sckClosing);
  raiseEvent(events.CloseSck);
}

// ---- accepting: the listener

void CEventSocket::onAccept() {
  SocketAddress peer;
  const std::int32_t accepted = sockets_.accept(socketHandle_, peer);
  if (accepted == winsock::failed) {
    const std::int32_t reason = lastError();
    module_.trace().line(u"ERROR trying to accept: ", WinsockErrorText(reason));
    raiseWinsockError(reason, u"CEventSocket.PostSocket");
  }
  module_.trace().line(u"OK Accepted socket: ", accepted);
  module_.RegisterAccept(accepted);
  inAnyCase([&] { offerConnection(accepted); }, [&] { closeUnlessTaken(accepted); });
}

void CEventSocket::closeUnlessTaken(std::int32_t accepted) {
  if (!module_.IsAcceptRegistered(accepted)) return;
  sockets_.closesocket(accepted);
  module_.trace().line(u"OK Closed accepted socket: ", accepted);
  module_.UnregisterSocket(accepted);
  module_.UnregisterAccept(accepted);
}

/// While the procedure runs the listener shows who is calling.
void CEventSocket::offerConnection(std::int32_t socket) {
  const std::int32_t port = remotePort_;
  const Text address = remoteHostIp_;
  const Text host = remoteHost_;
  GetPeerInfo(socket, remotePort_, remoteHostIp_, remoteHost_);
  inAnyCase([&] { raiseEvent(events.ConnectionRequest, socket); },
            [&] {
              if (state_ != sckListening) return;
              remotePort_ = port;
              remoteHostIp_ = address;
              remoteHost_ = host;
            });
}

// ---- accepting: the instance that takes the connection, or holds it until somebody does

void CEventSocket::Accept(std::int32_t& requestID) {
  const auto alive = shared_from_this();
  constexpr TextView source = u"CEventSocket.Accept";
  if (state_ != sckClosed) raiseInvalidState(source);
  socketHandle_ = requestID;
  protocol_ = ProtocolTCP;
  ProcessOptions();
  if (module_.IsAcceptRegistered(requestID)) return takeAccepted(requestID);
  if (module_.IsSocketRegistered(requestID)) raiseWrongProtocolOrState(source);
  holdAccepted(requestID);
}

void CEventSocket::holdAccepted(std::int32_t requestID) {
  acceptClass_ = true;
  setState(sckConnected);
  module_.RegisterSocket(requestID, pointer_, false);
}

void CEventSocket::takeAccepted(std::int32_t requestID) {
  const std::shared_ptr<CEventSocket> holding = module_.GetAcceptObject(requestID);
  module_.UnregisterAccept(requestID);
  takeLocalEnd(requestID);
  GetPeerInfo(requestID, remotePort_, remoteHostIp_, remoteHost_);
  setState(sckConnected);
  takeWhatCame(*holding);
  module_.ReplaceSocketObject(requestID, pointer_);
  if (!recvBuffer_.empty()) raiseEvent(events.DataArrival, recvBufferLength());
  const bool stillOurs =
      socketHandle_ == requestID && (state_ == sckConnected || state_ == sckError);
  if (stillOurs && holding->State() == sckClosing) onClose();
}

void CEventSocket::takeLocalEnd(std::int32_t requestID) {
  SocketAddress local;
  if (sockets_.getsockname(requestID, local) == winsock::failed) {
    raiseWinsockError(lastError(), u"CEventSocket.Accept");
  }
  boundLocalPort_ = IntegerToUnsigned(ntohs(local.port));
  localIp_ = module_.StringFromPointer(sockets_.inet_ntoa(local.address));
}

void CEventSocket::takeWhatCame(CEventSocket& holding) {
  if (holding.BytesReceived() <= 0) return;
  Variant bytes = std::vector<std::uint8_t>();
  holding.GetData(bytes);
  recvBuffer_.append(*bytes.get<std::vector<std::uint8_t>>());
}

}  // namespace zev
