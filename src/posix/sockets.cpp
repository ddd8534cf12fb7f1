#include "posix/sockets.h"

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

#include "code_page/code_page.h"
#include "posix/look_ups.h"
#include "posix/translation.h"

namespace zev::posix {
namespace {

namespace error = winsock::error;

constexpr std::int32_t versionNotSupported = 10092;
constexpr std::int32_t alreadyConnecting = 10037;
constexpr std::int32_t socketTypeNotSupported = 10044;

constexpr std::uint16_t majorVersionMask = 0xFF;
constexpr std::int32_t largestDatagram = 65507;
constexpr std::int32_t outOfBand = 1;  // MSG_OOB, the same here and there
constexpr std::int32_t dontRoute = 4;  // MSG_DONTROUTE
static_assert(outOfBand == MSG_OOB && winsock::peek == MSG_PEEK && dontRoute == MSG_DONTROUTE);

/// Where the queue of a listener is full, this system drops what comes and the peer tries again
/// after seconds, while Winsock refuses it at once. So the queue is long enough not to be full.
constexpr std::int32_t shortestBacklog = 1024;

struct Option {
  std::int32_t winsock;
  int system;
};
constexpr Option options[] = {
    {winsock::broadcast, SO_BROADCAST},
    {winsock::sendBufferSize, SO_SNDBUF},
    {winsock::receiveBufferSize, SO_RCVBUF},
};

const Option* findOption(std::int32_t number) {
  const auto found = std::find_if(std::begin(options), std::end(options),
                                  [&](const Option& each) { return each.winsock == number; });
  return found == std::end(options) ? nullptr : found;
}

template <std::size_t size>
bool contains(const int (&list)[size], int error) {
  return std::find(std::begin(list), std::end(list), error) != std::end(list);
}

/// Whether the error is how the network answered a connecting, and not a refusal of the call.
bool isOutcome(int error) {
  return contains({ECONNREFUSED, ECONNRESET, ETIMEDOUT, EHOSTUNREACH, ENETUNREACH, EHOSTDOWN},
                  error);
}

/// The connection is no more.
bool isBroken(int error) {
  return contains({ECONNRESET, EPIPE, ECONNABORTED, ETIMEDOUT, EHOSTUNREACH, ENETUNREACH, ENETDOWN,
                   ENETRESET, EHOSTDOWN, ECONNREFUSED},
                  error);
}

/// The system, or what it grants the process, has no room for one more socket.
bool isShortage(int error) { return contains({EMFILE, ENFILE, ENOBUFS, ENOMEM}, error); }

/// Makes a call again that a signal has interrupted.
template <typename Call>
auto uninterrupted(const Call& call) {
  auto result = call();
  while (result == -1 && errno == EINTR) result = call();
  return result;
}

constexpr int unknownRest = -1;

/// Reads, and tells how many bytes are left where the socket tells it.
ssize_t readStream(const OpenSocket& socket, std::span<std::uint8_t> bytes, int flags, int& rest) {
  const int descriptor = socket.descriptor.get();
  if (!socket.tellsRest) return ::recv(descriptor, bytes.data(), bytes.size(), flags);
  iovec piece{bytes.data(), bytes.size()};
  alignas(cmsghdr) std::array<std::uint8_t, CMSG_SPACE(sizeof rest)> told{};
  msghdr message{};
  message.msg_iov = &piece;
  message.msg_iovlen = 1;
  message.msg_control = told.data();
  message.msg_controllen = told.size();
  const ssize_t count = ::recvmsg(descriptor, &message, flags);
  const cmsghdr* const first = count > 0 ? CMSG_FIRSTHDR(&message) : nullptr;
  if (first != nullptr && first->cmsg_level == SOL_TCP && first->cmsg_type == TCP_CM_INQ) {
    std::memcpy(&rest, CMSG_DATA(first), sizeof rest);
  }
  return count;
}

/// What a read has left. Fewer bytes than asked for were all that were there. One whose buffer was
/// full may have left some: whoever reads so much is asked from then on. One byte may be the end.
Selection::Left leftBy(OpenSocket& socket, std::size_t room, int flags, int rest) {
  const bool peeked = (flags & winsock::peek) != 0;
  if (!peeked && room != 0) return Selection::Left::Nothing;
  if (!peeked && !socket.hungUp && !socket.urgent && rest > 1) return Selection::Left::More;
  if (!socket.tellsRest) {
    const int on = 1;
    ::setsockopt(socket.descriptor.get(), SOL_TCP, TCP_INQ, &on, sizeof on);
    socket.tellsRest = true;
  }
  return Selection::Left::Perhaps;
}

const sockaddr* general(const sockaddr_in& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}
sockaddr* general(sockaddr_in& address) { return reinterpret_cast<sockaddr*>(&address); }

/// Waits for the end of a connecting that a signal has interrupted.
int awaitConnection(int descriptor) {
  pollfd wait{descriptor, POLLOUT, 0};
  uninterrupted([&] { return ::poll(&wait, 1, -1); });
  int result = 0;
  socklen_t size = sizeof result;
  ::getsockopt(descriptor, SOL_SOCKET, SO_ERROR, &result, &size);
  return result;
}

/// 0 or errno. The first call behind a connecting that failed may only say so.
int connectTo(int descriptor, const SocketAddress& address) {
  const sockaddr_in receiver = toSystem(address);
  const auto call = [&] { return ::connect(descriptor, general(receiver), sizeof receiver); };
  if (call() == 0) return 0;
  if (errno == ECONNABORTED && call() == 0) return 0;
  return errno == EINTR ? awaitConnection(descriptor) : errno;
}

int bindTo(int descriptor, const SocketAddress& address) {
  const sockaddr_in local = toSystem(address);
  return ::bind(descriptor, general(local), sizeof local) == 0 ? 0 : errno;
}

/// Lets a port be bound that only connections of the past still hold.
void shareWithThePast(int descriptor) {
  const int on = 1;
  ::setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

}  // namespace

PosixSockets::PosixSockets(MessageQueue& queue, Poller& poller, std::uint32_t codePage,
                           LookUps::Resolver resolver)
    : queue_(queue),
      poller_(poller),
      codePage_(codePage),
      resolver_(std::move(resolver)),
      lookUps_(resolver_) {
  poller_.add(lookUps_.descriptor(), EPOLLIN, {Subject::lookUps, 0});
}

// ---- the service

std::int32_t PosixSockets::WSAStartup(std::uint16_t versionWanted) {
  if ((versionWanted & majorVersionMask) == 0) return versionNotSupported;
  ++starts_;
  return 0;
}

std::int32_t PosixSockets::WSACleanup() {
  if (!started()) return winsock::failed;
  if (--starts_ > 0) return 0;
  table_.removeAll();
  for (const auto& [lookUp, request] : requests_) lookUps_.forget(lookUp);
  requests_.clear();
  return 0;
}

std::int32_t PosixSockets::fail(std::int32_t error) {
  lastError_ = error;
  return winsock::failed;
}

std::int32_t PosixSockets::failSystem() { return fail(winsockError(errno)); }

bool PosixSockets::started() {
  if (starts_ == 0) fail(error::notStarted);
  return starts_ != 0;
}

OpenSocket* PosixSockets::find(std::int32_t socket) {
  if (!started()) return nullptr;
  OpenSocket* const found = table_.find(socket);
  if (found == nullptr) fail(error::notSocket);
  return found;
}

std::string PosixSockets::systemName(TextView name) const {
  return toCodePage(beforeNul(name), codePage_);
}

// ---- opening and closing

std::int32_t PosixSockets::socket(std::int32_t family, std::int32_t type, std::int32_t protocol) {
  if (!started()) return winsock::noSocket;
  if (family != winsock::internet) return fail(error::familyNotSupported);
  const bool stream = type == winsock::stream;
  if (!stream && type != winsock::datagram) return fail(socketTypeNotSupported);
  const int kind = (stream ? SOCK_STREAM : SOCK_DGRAM) | SOCK_CLOEXEC;
  const int descriptor = ::socket(AF_INET, kind, protocol);
  return descriptor < 0 ? failSystem() : adopt(Descriptor(descriptor), stream);
}

std::int32_t PosixSockets::adopt(Descriptor descriptor, bool stream) {
  const OpenSocket* const added = table_.add(std::move(descriptor), stream);
  return added == nullptr ? fail(error::tooManyFiles) : added->handle;
}

std::int32_t PosixSockets::closesocket(std::int32_t socket) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  table_.remove(*open);
  selection_.endRest();
  return 0;
}

// ---- connecting and being connected

std::int32_t PosixSockets::connect(std::int32_t socket, const SocketAddress& address) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (address.family != winsock::internet) return fail(error::familyNotSupported);
  if (!isDestination(address)) return fail(error::addressNotAvailable);
  return open->stream ? connectStream(*open, address) : connectDatagram(*open, address);
}

/// On a selected socket even an end that is known at once is told by FD_CONNECT, as Winsock does
/// it; the call fails with 10035 all the same.
std::int32_t PosixSockets::connectStream(OpenSocket& socket, const SocketAddress& address) {
  switch (socket.phase) {
    case Phase::listening:
      return fail(error::invalidArgument);
    case Phase::connecting:
      return fail(alreadyConnecting);
    case Phase::connected:
      return fail(error::alreadyConnected);
    case Phase::idle:
      break;
  }
  selection_.connecting(socket);
  const int result = connectTo(socket.descriptor.get(), address);
  const bool runs = result == 0 || result == EINPROGRESS || isOutcome(result);
  if (runs) socket.named = true;
  if (socket.nonBlocking && runs) {
    if (isOutcome(result)) selection_.connected(socket, winsockError(result));
    return fail(error::wouldBlock);
  }
  socket.phase = result == 0 ? Phase::connected : Phase::idle;
  if (result == 0) return 0;
  // What is bound to the machine itself has no way to others.
  return fail(result == EINVAL ? error::addressNotAvailable : winsockError(result));
}

std::int32_t PosixSockets::connectDatagram(OpenSocket& socket, const SocketAddress& address) {
  const int result = connectTo(socket.descriptor.get(), address);
  if (result != 0) return fail(winsockError(result));
  socket.named = true;
  socket.phase = Phase::connected;
  return 0;
}

/// A port that a connection of the past holds is free; one that an open socket was bound to is not,
/// which the system does not tell from each other once both are ready to share.
std::int32_t PosixSockets::bind(std::int32_t socket, const SocketAddress& address) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (address.family != winsock::internet) return fail(error::familyNotSupported);
  const int descriptor = open->descriptor.get();
  int result = bindTo(descriptor, address);
  if (open->stream && (result == 0 || (result == EADDRINUSE && !isReserved(address)))) {
    shareWithThePast(descriptor);
    if (result != 0) result = bindTo(descriptor, address);
  }
  if (result != 0) return fail(winsockError(result));
  open->named = true;
  open->reserves = getsockname(socket, open->local) == 0;
  return 0;
}

bool PosixSockets::isReserved(const SocketAddress& address) {
  return std::any_of(table_.begin(), table_.end(), [&](const OpenSocket& each) {
    const bool holds = each.handle != winsock::noSocket && each.stream && each.reserves;
    return holds && overlap(each.local, address);
  });
}

/// At least shortestBacklog connections may wait, however few are asked for.
std::int32_t PosixSockets::listen(std::int32_t socket, std::int32_t backlog) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (!open->stream) return fail(error::operationNotSupported);
  if (open->phase == Phase::connected) return fail(error::alreadyConnected);
  if (!open->named) return fail(error::invalidArgument);
  if (::listen(open->descriptor.get(), std::max(backlog, shortestBacklog)) != 0) {
    return failSystem();
  }
  open->phase = Phase::listening;
  return 0;
}

/// A table without a place counts as a lack of descriptors, before a connection is taken that could
/// not be named.
std::int32_t PosixSockets::accept(std::int32_t socket, SocketAddress& peer) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::noSocket;
  if (!open->stream) return fail(error::operationNotSupported);
  if (open->phase != Phase::listening) return fail(error::invalidArgument);
  if (table_.full()) return failAccepting(*open, EMFILE);
  sockaddr_in from{};
  socklen_t size = sizeof from;
  const int flags = SOCK_CLOEXEC | (open->nonBlocking ? SOCK_NONBLOCK : 0);
  Descriptor connection(uninterrupted(
      [&] { return ::accept4(open->descriptor.get(), general(from), &size, flags); }));
  if (connection.get() < 0) return failAccepting(*open, errno);
  selection_.accepted(*open);
  peer = fromSystem(from);
  return take(*open, std::move(connection));
}

/// Without room the listener rests; after any other failure the next connection may be told of.
std::int32_t PosixSockets::failAccepting(OpenSocket& listener, int error) {
  if (isShortage(error)) {
    selection_.rest(listener);
  } else {
    selection_.accepted(listener);
  }
  return fail(winsockError(error));
}

/// The accepted socket gets the events of its listener, or is closed again if the system refuses
/// that.
std::int32_t PosixSockets::take(OpenSocket& listener, Descriptor connection) {
  OpenSocket* const accepted = table_.find(adopt(std::move(connection), true));
  if (accepted == nullptr) return winsock::noSocket;
  accepted->named = true;
  accepted->phase = Phase::connected;
  if (selection_.inherit(*accepted, listener)) return accepted->handle;
  const std::int32_t result = failSystem();
  table_.remove(*accepted);
  return result;
}

// ---- asking and setting

std::int32_t PosixSockets::getpeername(std::int32_t socket, SocketAddress& address) {
  const OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  sockaddr_in peer{};
  socklen_t size = sizeof peer;
  if (::getpeername(open->descriptor.get(), general(peer), &size) != 0) return failSystem();
  address = fromSystem(peer);
  return 0;
}

std::int32_t PosixSockets::getsockname(std::int32_t socket, SocketAddress& address) {
  const OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (!open->named) return fail(error::invalidArgument);
  sockaddr_in local{};
  socklen_t size = sizeof local;
  if (::getsockname(open->descriptor.get(), general(local), &size) != 0) return failSystem();
  address = fromSystem(local);
  return 0;
}

std::int32_t PosixSockets::getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                      std::int32_t& value) {
  const OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (level != winsock::socketLevel) return fail(error::invalidArgument);
  if (option == winsock::maximumMessage && !open->stream) {
    value = largestDatagram;
    return 0;
  }
  const Option* const known = findOption(option);
  if (known == nullptr) return fail(error::badProtocolOption);
  socklen_t size = sizeof value;
  const int descriptor = open->descriptor.get();
  const int result = ::getsockopt(descriptor, SOL_SOCKET, known->system, &value, &size);
  return result == 0 ? 0 : failSystem();
}

std::int32_t PosixSockets::setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                      std::int32_t value) {
  const OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (level != winsock::socketLevel) return fail(error::invalidArgument);
  const Option* const known = findOption(option);
  if (known == nullptr) return fail(error::badProtocolOption);
  const int descriptor = open->descriptor.get();
  const int result = ::setsockopt(descriptor, SOL_SOCKET, known->system, &value, sizeof value);
  return result == 0 ? 0 : failSystem();
}

std::int32_t PosixSockets::ioctlsocket(std::int32_t socket, std::int32_t command,
                                       std::int32_t& argument) {
  const OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (command != winsock::bytesWaiting) return fail(error::invalidArgument);
  return ::ioctl(open->descriptor.get(), FIONREAD, &argument) == 0 ? 0 : failSystem();
}

// ---- sending

std::int32_t PosixSockets::shutdown(std::int32_t socket, std::int32_t how) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  if (how != winsock::sendingEnd) return fail(error::invalidArgument);
  if (!open->stream || open->phase != Phase::connected) return fail(error::notConnected);
  if (::shutdown(open->descriptor.get(), SHUT_WR) != 0) return failSystem();
  open->silent = true;
  return 0;
}

/// The socket of a transfer: one that is there, and connected if it has to be.
OpenSocket* PosixSockets::findForTransfer(std::int32_t socket, std::int32_t flags) {
  constexpr std::int32_t known = outOfBand | winsock::peek | dontRoute;
  OpenSocket* const open = find(socket);
  if (open == nullptr) return nullptr;
  const bool able = !open->stream || open->phase == Phase::connected;
  if (able && (flags & ~known) == 0) return open;
  fail(able ? error::operationNotSupported : error::notConnected);
  return nullptr;
}

std::int32_t PosixSockets::send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                std::int32_t flags) {
  OpenSocket* const open = findForTransfer(socket, flags);
  if (open == nullptr) return winsock::failed;
  if (open->phase != Phase::connected) return fail(error::notConnected);
  return transmit(*open, bytes, flags, nullptr);
}

std::int32_t PosixSockets::sendto(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                  std::int32_t flags, const SocketAddress& receiver) {
  OpenSocket* const open = findForTransfer(socket, flags);
  if (open == nullptr) return winsock::failed;
  if (open->stream) return transmit(*open, bytes, flags, nullptr);
  if (receiver.family != winsock::internet) return fail(error::familyNotSupported);
  if (!isDestination(receiver)) return fail(error::addressNotAvailable);
  return transmit(*open, bytes, flags, &receiver);
}

std::int32_t PosixSockets::transmit(OpenSocket& socket, std::span<const std::uint8_t> bytes,
                                    std::int32_t flags, const SocketAddress* receiver) {
  if (socket.silent) return fail(error::shutDown);
  const sockaddr_in to = toSystem(receiver == nullptr ? SocketAddress() : *receiver);
  const auto call = [&] {
    return ::sendto(socket.descriptor.get(), bytes.data(), bytes.size(), flags | MSG_NOSIGNAL,
                    receiver == nullptr ? nullptr : general(to),
                    receiver == nullptr ? 0 : sizeof to);
  };
  ssize_t count = uninterrupted(call);
  // That is what became of a datagram before: this one has not gone out yet.
  if (count < 0 && errno == ECONNREFUSED && !socket.stream) count = uninterrupted(call);
  if (count < 0) return failSending(socket);
  socket.named = true;
  return static_cast<std::int32_t>(count);
}

/// A connection that turns out to be broken keeps the reason that was known first.
std::int32_t PosixSockets::failSending(OpenSocket& socket) {
  const int result = errno;
  const std::int32_t number = winsockError(result);
  if (result == EAGAIN) selection_.full(socket);
  if (!socket.stream || !isBroken(result)) return fail(number);
  selection_.ended(socket, number);
  return fail(socket.failure);
}

// ---- receiving

std::int32_t PosixSockets::recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                                std::int32_t flags) {
  OpenSocket* const open = findForTransfer(socket, flags);
  return open == nullptr ? winsock::failed : receive(*open, bytes, flags, nullptr);
}

std::int32_t PosixSockets::recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes,
                                    std::int32_t flags, SocketAddress& sender) {
  OpenSocket* const open = findForTransfer(socket, flags);
  return open == nullptr ? winsock::failed : receive(*open, bytes, flags, &sender);
}

std::int32_t PosixSockets::receive(OpenSocket& socket, std::span<std::uint8_t> bytes,
                                   std::int32_t flags, SocketAddress* sender) {
  if (!socket.named) return fail(error::invalidArgument);
  return socket.stream ? receiveStream(socket, bytes, flags)
                       : receiveDatagram(socket, bytes, flags, sender);
}

/// An end counts only where bytes were asked for: of none the system always reads none.
std::int32_t PosixSockets::receiveStream(OpenSocket& socket, std::span<std::uint8_t> bytes,
                                         std::int32_t flags) {
  int rest = unknownRest;
  const ssize_t count = uninterrupted([&] { return readStream(socket, bytes, flags, rest); });
  if (count < 0) return failReading(socket, errno);
  const bool end = count == 0 && !bytes.empty();
  if (end) selection_.ended(socket, 0);
  selection_.read(socket,
                  leftBy(socket, bytes.size() - static_cast<std::size_t>(count), flags, rest));
  if (end && socket.failure != 0) return fail(socket.failure);
  return static_cast<std::int32_t>(count);
}

/// A datagram that is too long is cut and its rest is lost, which the call reports as a failure;
/// the sender is told all the same.
std::int32_t PosixSockets::receiveDatagram(OpenSocket& socket, std::span<std::uint8_t> bytes,
                                           std::int32_t flags, SocketAddress* sender) {
  sockaddr_in from{};
  iovec piece{bytes.data(), bytes.size()};
  msghdr message{};
  message.msg_name = &from;
  message.msg_namelen = sizeof from;
  message.msg_iov = &piece;
  message.msg_iovlen = 1;
  const ssize_t count =
      uninterrupted([&] { return ::recvmsg(socket.descriptor.get(), &message, flags); });
  if (count < 0) return failReading(socket, errno);
  selection_.read(socket, Selection::Left::Perhaps);
  if (sender != nullptr) *sender = fromSystem(from);
  if ((message.msg_flags & MSG_TRUNC) != 0) return fail(error::messageTooLong);
  return static_cast<std::int32_t>(count);
}

/// A read that fails answers FD_READ as well: else it would never be posted again.
std::int32_t PosixSockets::failReading(OpenSocket& socket, int error) {
  const std::int32_t number = winsockError(error);
  if (!socket.stream) {
    selection_.read(socket, error == EAGAIN ? Selection::Left::Nothing : Selection::Left::Perhaps);
    // Nobody was there to take a datagram that went out.
    return fail(error == ECONNREFUSED ? error::connectionReset : number);
  }
  if (isBroken(error)) selection_.ended(socket, number);
  selection_.read(socket, Selection::Left::Nothing);
  return fail(isBroken(error) ? socket.failure : number);
}

// ---- selecting

/// Events need a window that can get them; to end them none is needed.
std::int32_t PosixSockets::WSAAsyncSelect(std::int32_t socket, WindowHandle window,
                                          std::uint32_t message, std::int32_t mask) {
  OpenSocket* const open = find(socket);
  if (open == nullptr) return winsock::failed;
  const bool receivable = queue_.GetWindowLongA(window, windowProcedureIndex) != 0;
  if (mask != 0 && !receivable) return fail(error::invalidArgument);
  return selection_.select(*open, window, message, mask) ? 0 : failSystem();
}

// ---- names

std::int32_t PosixSockets::WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message,
                                                 TextView name, void* buffer, std::int32_t length) {
  if (!started()) return 0;
  const bool receivable = queue_.GetWindowLongA(window, windowProcedureIndex) != 0;
  if (!receivable || buffer == nullptr || length < 0) {
    fail(error::invalidArgument);
    return 0;
  }
  const std::int32_t lookUp = lookUps_.start(systemName(name));
  if (lookUp == 0) {
    fail(error::noBuffers);
    return 0;
  }
  requests_[lookUp] = {window, message, buffer, static_cast<std::size_t>(length)};
  return lookUp;
}

std::int32_t PosixSockets::WSACancelAsyncRequest(std::int32_t lookUp) {
  if (!started()) return winsock::failed;
  if (requests_.erase(lookUp) == 0) return fail(error::invalidArgument);
  lookUps_.forget(lookUp);
  return 0;
}

/// A look-up that was cancelled meanwhile has no request any more, and its answer is dropped.
void PosixSockets::finishLookUps() {
  for (const LookUps::Answer& each : lookUps_.take()) {
    const auto node = requests_.extract(each.handle);
    if (!node.empty()) finish(node.mapped(), each);
  }
}

/// A record that does not fit the caller's buffer is an error, and nothing of it is written.
void PosixSockets::finish(const Request& request, const LookUps::Answer& answer) {
  constexpr int errorShift = 16;
  const std::size_t size = recordSize(answer.host);
  std::int32_t number = answer.host.error;
  if (number == 0 && size > request.length) number = error::noBuffers;
  if (number == 0) writeRecord(answer.host, request.buffer);
  const std::uint32_t lParam = static_cast<std::uint32_t>(number) << errorShift;
  queue_.post({request.window, request.message, static_cast<std::uintptr_t>(answer.handle),
               static_cast<std::intptr_t>(lParam)});
}

std::int32_t PosixSockets::gethostname(char* buffer, std::int32_t size) {
  if (!started()) return winsock::failed;
  const std::string name = ownName();
  if (size < 0 || name.size() >= static_cast<std::size_t>(size)) return fail(error::badAddress);
  std::memcpy(buffer, name.c_str(), name.size() + 1);
  return 0;
}

const HostRecord* PosixSockets::gethostbyname(TextView name) {
  if (!started()) return nullptr;
  const Host host = resolver_(systemName(name));
  if (host.error != 0) {
    fail(host.error);
    return nullptr;
  }
  record_.resize(recordSize(host));
  writeRecord(host, record_.data());
  return reinterpret_cast<const HostRecord*>(record_.data());
}

std::int32_t PosixSockets::inet_addr(TextView text) {
  if (!started()) return winsock::failed;
  return static_cast<std::int32_t>(::inet_addr(systemName(text).c_str()));
}

const char* PosixSockets::inet_ntoa(std::int32_t address) {
  if (!started()) return nullptr;
  std::array<char, INET_ADDRSTRLEN> text{};
  const auto bytes = static_cast<in_addr_t>(address);
  dotted_ = ::inet_ntop(AF_INET, &bytes, text.data(), text.size());
  return dotted_.c_str();
}

}  // namespace zev::posix
