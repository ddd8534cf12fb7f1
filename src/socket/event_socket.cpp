#include "socket/event_socket.h"

#include <utility>

namespace zev {
namespace {

bool isPort(std::int32_t port) { return port >= 0 && port <= highestPort; }

TextView nameOf(SocketState state) {
  switch (state) {
    case sckClosed:
      return u"sckClosed";
    case sckOpen:
      return u"sckOpen";
    case sckListening:
      return u"sckListening";
    case sckResolvingHost:
      return u"sckResolvingHost";
    case sckHostResolved:
      return u"sckHostResolved";
    case sckConnecting:
      return u"sckConnecting";
    case sckConnected:
      return u"sckConnected";
    case sckClosing:
      return u"sckClosing";
    case sckError:
      return u"sckError";
  }
  return {};
}

}  // namespace

// ---- life

std::shared_ptr<CEventSocket> CEventSocket::create(modEventSocket& module) {
  auto socket = std::make_shared<CEventSocket>(Key{}, module);
  socket->pointer_ = module.instances().add(socket);
  return socket;
}

CEventSocket::CEventSocket(Key, modEventSocket& module)
    : module_(module), sockets_(module.services().sockets) {
  module_.InitiateProcesses();
}

/// Forgotten by the routing after its socket's entry, so that its place serves another one while
/// the window stays; nothing can enter it any more in any case.
CEventSocket::~CEventSocket() {
  ignoringErrors([&] { terminate(); });
  module_.instanceEnded(pointer_);
}

/// A failure ends it where it stands; whoever dropped the instance does not hear of it.
void CEventSocket::terminate() {
  CancelResolves();
  if (!acceptClass_) DestroySocket();
  module_.FinalizeProcesses();
}

void CEventSocket::setState(SocketState state) {
  state_ = state;
  module_.trace().line(u"STATE: ", nameOf(state));
}

/// Keeps itself alive, since the event's procedure may let go of the last reference. A box follows
/// only if that procedure asks for one.
void CEventSocket::Report(std::int32_t number, TextView source) {
  const auto alive = shared_from_this();
  setState(sckError);
  Text description = WinsockErrorText(number);
  const Text from(source);
  const Text helpFile;
  bool cancelDisplay = true;
  if (number > INT16_MAX) throw RuntimeError(ErrorNumber::Overflow);
  raiseEvent(events.Error, SocketErrorArguments{static_cast<std::int16_t>(number), description, 0,
                                                from, helpFile, 0, cancelDisplay});
  if (!cancelDisplay) {
    module_.services().dialogs.MsgBox(WinsockErrorText(number), box_style::plain, from);
  }
}

// ---- properties

void CEventSocket::RemotePort(std::int32_t lngPort) {
  constexpr TextView source = u"CEventSocket.RemotePort";
  if (protocol_ == ProtocolTCP && state_ != sckClosed) raiseInvalidState(source);
  if (!isPort(lngPort)) raiseArgumentOutOfRange(source);
  remotePort_ = lngPort;
}

void CEventSocket::RemoteHost(Text strHost) {
  if (protocol_ == ProtocolTCP && state_ != sckClosed) {
    raiseInvalidState(u"CEventSocket.RemoteHost");
  }
  remoteHost_ = std::move(strHost);
}

void CEventSocket::LocalPort(std::int32_t lngPort) {
  constexpr TextView source = u"CEventSocket.LocalPort";
  if (state_ != sckClosed) raiseInvalidState(source);
  if (!isPort(lngPort)) raiseArgumentOutOfRange(source);
  localPort_ = lngPort;
}

Text CEventSocket::LocalHostName() const { return GetLocalHostName(); }

Text CEventSocket::LocalIP() const {
  return state_ == sckOpen || state_ == sckListening ? localIp_ : GetLocalIP();
}

void CEventSocket::Protocol(SocketProtocol enmProtocol) {
  if (state_ != sckClosed) raiseInvalidState(u"CEventSocket.Protocol");
  protocol_ = enmProtocol;
}

// ---- the system's socket

/// Makes the system's socket if there is none yet. False after its failure was reported.
bool CEventSocket::SocketExists() {
  if (socketHandle_ != winsock::noSocket) return true;
  const bool stream = protocol_ == ProtocolTCP;
  const std::int32_t made =
      sockets_.socket(winsock::internet, stream ? winsock::stream : winsock::datagram,
                      stream ? winsock::tcp : winsock::udp);
  if (made == winsock::noSocket) {
    const std::int32_t reason = lastError();
    module_.trace().line(u"ERROR trying to create socket");
    Report(reason, u"CEventSocket.SocketExists");
    return false;
  }
  socketHandle_ = made;
  module_.trace().line(u"OK Created socket: ", made);
  ProcessOptions();
  return module_.RegisterSocket(socketHandle_, pointer_, true);
}

/// Any protocol but TCP counts as UDP here.
void CEventSocket::ProcessOptions() {
  if (protocol_ == ProtocolTCP) {
    recvChunkSize_ = optionOf(winsock::receiveBufferSize);
    sendChunkSize_ = optionOf(winsock::sendBufferSize);
  } else {
    sockets_.setsockopt(socketHandle_, winsock::socketLevel, winsock::broadcast, 1);
    sendChunkSize_ = recvChunkSize_ = optionOf(winsock::maximumMessage);
  }
  module_.trace().line(u"Winsock buffer size for sends: ", sendChunkSize_);
  module_.trace().line(u"Winsock buffer size for receives: ", recvChunkSize_);
}

std::int32_t CEventSocket::optionOf(std::int32_t option) {
  std::int32_t value = 0;
  if (sockets_.getsockopt(socketHandle_, winsock::socketLevel, option, value) == winsock::failed) {
    raiseWinsockError(lastError(), u"CEventSocket.ProcessOptions");
  }
  return value;
}

/// A socket that the system refuses to close stays registered, and the instance is in error.
void CEventSocket::DestroySocket() {
  if (socketHandle_ == winsock::noSocket) return;
  if (sockets_.closesocket(socketHandle_) == winsock::failed) {
    const std::int32_t reason = lastError();
    setState(sckError);
    raiseWinsockError(reason, u"CEventSocket.DestroySocket");
  }
  module_.trace().line(u"OK Destroyed socket ", socketHandle_);
  module_.UnregisterSocket(socketHandle_);
  socketHandle_ = winsock::noSocket;
}

/// Nothing happens without a socket. What was waiting in either direction is lost.
void CEventSocket::CloseSck() {
  if (socketHandle_ == winsock::noSocket) return;
  setState(sckClosing);
  CancelResolves();
  DestroySocket();
  boundLocalPort_ = 0;
  remoteHostIp_.clear();
  recvBuffer_.clear();
  sendBuffer_.clear();
  sendChunkSize_ = recvChunkSize_ = 0;
  setState(sckClosed);
}

}  // namespace zev
