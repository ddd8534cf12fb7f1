#include <array>
#include <cstring>
#include <utility>

#include "socket/event_socket.h"

namespace zev {
namespace {

constexpr std::int32_t connectDestination = 0;  ///< the only one that a look-up serves
constexpr std::int32_t notAnAddress = -1;       ///< of inet_addr
constexpr std::int32_t noAddress = 1;           ///< stands for an address that is not known
constexpr std::int32_t lowestRemotePort = 1;
constexpr std::int32_t hostNameSize = 256;
constexpr std::int32_t listenBacklog = 5;

Text lookUpKey(std::int32_t lookUp) { return join(u"R", decimal(lookUp)); }

/// First address of a host record.
std::int32_t firstAddress(const HostRecord& record) {
  std::int32_t address = 0;
  std::memcpy(&address, record.addresses[0], sizeof address);
  return address;
}

/// The four bytes in memory order.
Text dottedText(std::int32_t address) {
  std::array<std::uint8_t, sizeof address> bytes;
  std::memcpy(bytes.data(), &address, sizeof address);
  return join(decimal(bytes[0]), u".", decimal(bytes[1]), u".", decimal(bytes[2]), u".",
              decimal(bytes[3]));
}

SocketAddress addressRecord(std::int32_t port, std::int32_t address) {
  SocketAddress record;
  record.port = htons(UnsignedToInteger(port));
  record.address = address;
  return record;
}

}  // namespace

// ---- connecting

/// Of datagrams there is nothing to connect: the remote end is kept for sending, and the socket is
/// open at once.
void CEventSocket::Connect(const Variant& host, const Variant& port) {
  if (state_ != sckClosed) raiseInvalidState(u"CEventSocket.Connect");
  storeRemoteEnd(host, port);
  if (!SocketExists()) return;
  if (isUdp()) {
    if (BindInternal()) setState(sckOpen);
    return;
  }
  const std::int32_t address = ResolveIfHostname(remoteHost_, connectDestination);
  if (address != noAddress) ConnectToIP(address, 0);
}

void CEventSocket::storeRemoteEnd(const Variant& host, const Variant& port) {
  constexpr TextView source = u"CEventSocket.Connect";
  if (!host.isMissing()) remoteHost_ = toText(host);
  if (port.isMissing()) return;
  if (!isNumeric(port)) raiseUnsupportedVariant(source);
  const double number = toDouble(port);
  if (number < lowestRemotePort || number > highestPort) raiseArgumentOutOfRange(source);
  remotePort_ = toLong(port);
}

/// `errorCode` is that of the look-up before, and is reported as this call's own. The end of the
/// connecting comes as a notification.
void CEventSocket::ConnectToIP(std::int32_t address, std::int32_t errorCode) {
  constexpr TextView source = u"CEventSocket.ConnectToIP";
  if (errorCode != 0) return Report(errorCode, source);
  if (!BindInternal()) return;
  module_.trace().line(u"OK Connecting to: ", remoteHost_);
  setState(sckConnecting);
  if (sockets_.connect(socketHandle_, addressRecord(remotePort_, address)) != winsock::failed) {
    return;
  }
  const std::int32_t reason = lastError();
  if (reason == winsock::error::wouldBlock) return;
  if (reason == winsock::error::addressNotAvailable) raiseWinsockError(reason, source);
  Report(reason, source);
}

// ---- look-ups

/// The address of a dotted text; of a name `noAddress`, and the look-up runs.
std::int32_t CEventSocket::ResolveIfHostname(const Text& host, std::int32_t destination) {
  constexpr TextView source = u"CEventSocket.ResolveIfHostname";
  const std::int32_t address = sockets_.inet_addr(host);
  if (address != notAnAddress) return address;
  setState(sckResolvingHost);
  if (!AllocateResolveBuffer()) {
    module_.trace().line(u"Error trying to allocate memory");
    setState(sckError);
    raiseOutOfMemory(source);
  }
  const std::int32_t lookUp = module_.ResolveHostAsync(host, resolveBufferPointer_, pointer_);
  if (lookUp == 0) {
    const std::int32_t reason = lastError();
    FreeResolveBuffer();
    Report(reason, source);
    return noAddress;
  }
  module_.trace().line(u"Resolving host ", host, u" with handle ", lookUp);
  rememberLookUp(lookUp, destination);
  return noAddress;
}

/// The system may give the handle of an earlier look-up again whose key is still there.
void CEventSocket::rememberLookUp(std::int32_t lookUp, std::int32_t destination) {
  const Text key = lookUpKey(lookUp);
  if (pendingResolves_.contains(key)) pendingResolves_.Remove(key);
  pendingResolves_.Add(destination, key);
  runningLookUp_ = lookUp;
}

/// A look-up that is done late, after another state or another look-up has begun, changes nothing.
void CEventSocket::PostHostResolved(std::int32_t lookUp, std::int32_t errorCode) {
  if (state_ != sckResolvingHost || lookUp != runningLookUp_) return;
  runningLookUp_ = 0;
  const std::int32_t destination = pendingResolves_.Item(lookUpKey(lookUp));
  pendingResolves_.Remove(lookUpKey(lookUp));
  std::int32_t address = noAddress;
  if (errorCode == 0) {
    setState(sckHostResolved);
    address = firstAddress(*static_cast<const HostRecord*>(resolveBufferPointer_));
  }
  FreeResolveBuffer();
  if (destination == connectDestination) ConnectToIP(address, errorCode);
}

bool CEventSocket::AllocateResolveBuffer() {
  Kernel& kernel = module_.services().kernel;
  resolveBufferHandle_ = kernel.GlobalAlloc(0, resolveBufferSize);
  if (resolveBufferHandle_ == 0) return false;
  resolveBufferPointer_ = kernel.GlobalLock(resolveBufferHandle_);
  if (resolveBufferPointer_ == nullptr) {
    kernel.GlobalFree(std::exchange(resolveBufferHandle_, 0));
    return false;
  }
  kernel.GlobalUnlock(resolveBufferHandle_);
  return true;
}

/// The block itself stays: a look-up cannot be stopped, and one that is done late must not write
/// into memory that others have by then.
void CEventSocket::FreeResolveBuffer() {
  if (resolveBufferHandle_ == 0) return;
  resolveBufferHandle_ = 0;
  resolveBufferPointer_ = nullptr;
  module_.services().kernel.GlobalFree(resolveBufferHandle_);
}

/// What is handed on are the destinations, not the look-ups: they run on, and their completions
/// meet another state. The items stay.
void CEventSocket::CancelResolves() {
  for (const std::int32_t destination : pendingResolves_) {
    sockets_.WSACancelAsyncRequest(destination);
    module_.UnregisterResolution(destination);
  }
  FreeResolveBuffer();
  runningLookUp_ = 0;
}

// ---- binding

void CEventSocket::Bind(const Variant& port, const Variant& address) {
  if (state_ != sckClosed) raiseInvalidState(u"CEventSocket.Bind");
  if (BindInternal(port, address)) setState(sckOpen);
}

/// An open socket is bound already. False if no socket can be made, which was reported then; all
/// else is raised.
bool CEventSocket::BindInternal(const Variant& port, const Variant& address) {
  if (state_ == sckOpen) return true;
  const std::int32_t wanted = portToBind(port);
  const Text given = address.isMissing() ? Text() : toText(address);
  const Address local = HostToAddress(given.empty() ? GetLocalIP() : given);
  if (local.error != 0) raiseInvalidArgument(u"CEventSocket.BindInternal");
  if (!SocketExists()) return false;
  bindTo(wanted, local);
  return true;
}

std::int32_t CEventSocket::portToBind(const Variant& port) const {
  constexpr TextView source = u"CEventSocket.BindInternal";
  if (port.isMissing()) return localPort_;
  if (!isNumeric(port)) raiseUnsupportedVariant(source);
  const double number = toDouble(port);
  if (number < 0 || number > highestPort) raiseArgumentOutOfRange(source);
  return toLong(port);
}

void CEventSocket::bindTo(std::int32_t port, const Address& address) {
  if (sockets_.bind(socketHandle_, addressRecord(port, address.value)) == winsock::failed) {
    raiseWinsockError(lastError(), u"CEventSocket.BindInternal");
  }
  module_.trace().line(u"OK Bind HOST: ", address.text, u" PORT: ", port);
  localIp_ = address.text;
  takeBoundPort(port);
}

/// For port 0 the system has chosen one, which is asked for; the property keeps saying 0.
void CEventSocket::takeBoundPort(std::int32_t port) {
  if (port != 0) {
    localPort_ = port;
    return;
  }
  const std::int32_t chosen = QueryBoundPort(socketHandle_);
  if (chosen == winsock::failed) {
    raiseWinsockError(lastError(), u"CEventSocket.BindInternal");
  }
  boundLocalPort_ = chosen;
}

void CEventSocket::Listen() {
  constexpr TextView source = u"CEventSocket.Listen";
  if (state_ != sckClosed && state_ != sckOpen) raiseInvalidState(source);
  if (!SocketExists() || !BindInternal()) return;
  if (sockets_.listen(socketHandle_, listenBacklog) == winsock::failed) {
    raiseWinsockError(lastError(), source);
  }
  setState(sckListening);
}

// ---- addresses

CEventSocket::Address CEventSocket::HostToAddress(const Text& text) const {
  if (text.empty()) return {noAddress, {}, winsock::error::familyNotSupported};
  const std::int32_t address = sockets_.inet_addr(text);
  if (address != notAnAddress) return {address, text};
  const HostRecord* const record = sockets_.gethostbyname(text);
  if (record == nullptr) return {noAddress, {}, lastError()};
  const std::int32_t first = firstAddress(*record);
  return {first, dottedText(first)};
}

Text CEventSocket::GetLocalHostName() const {
  std::array<char, hostNameSize> name{};
  if (sockets_.gethostname(name.data(), hostNameSize) == winsock::failed) {
    raiseWinsockError(lastError(), u"CEventSocket.GetLocalHostName");
  }
  name.back() = '\0';
  return module_.StringFromPointer(name.data());
}

Text CEventSocket::GetLocalIP() const {
  const HostRecord* const record = sockets_.gethostbyname(GetLocalHostName());
  if (record == nullptr) raiseWinsockError(lastError(), u"CEventSocket.GetLocalIP");
  return dottedText(firstAddress(*record));
}

std::int32_t CEventSocket::QueryBoundPort(std::int32_t socket) const {
  SocketAddress record;
  if (sockets_.getsockname(socket, record) == winsock::failed) return winsock::failed;
  return IntegerToUnsigned(ntohs(record.port));
}

bool CEventSocket::GetPeerInfo(std::int32_t socket, std::int32_t& port, Text& address, Text& host) {
  SocketAddress record;
  if (sockets_.getpeername(socket, record) == winsock::failed) {
    port = 0;
    address.clear();
    host.clear();
    return false;
  }
  ReadAddressRecord(record, port, address);
  return true;
}

/// Whatever was known of the peer's name is gone, wherever the address goes to.
void CEventSocket::ReadAddressRecord(const SocketAddress& record, std::int32_t& port,
                                     Text& address) {
  port = IntegerToUnsigned(ntohs(record.port));
  address = module_.StringFromPointer(sockets_.inet_ntoa(record.address));
  remoteHost_.clear();
}

}  // namespace zev
