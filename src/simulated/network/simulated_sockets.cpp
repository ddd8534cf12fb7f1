#include "simulated/network/simulated_sockets.h"

#include <algorithm>
#include <utility>

#include "code_page/code_page.h"
#include "simulated/network/datagram_socket.h"
#include "simulated/network/look_ups.h"
#include "simulated/network/stream_socket.h"

namespace zev::simulated {

namespace error = winsock::error;

namespace {

constexpr std::int32_t interrupted = 10004;          // WSAEINTR
constexpr std::int32_t typeNotSupported = 10044;     // WSAESOCKTNOSUPPORT
constexpr std::int32_t versionNotSupported = 10092;  // WSAVERNOTSUPPORTED
constexpr std::int32_t handleStep = 4;
constexpr std::uint32_t namesCodePage = 1252;

std::string_view textOf(std::span<const std::uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// 0 if a socket of that kind can be made.
std::int32_t refusalOf(std::int32_t family, std::int32_t type, std::int32_t protocol) {
  if (family != winsock::internet) return error::familyNotSupported;
  if (type != winsock::stream && type != winsock::datagram) return typeNotSupported;
  const std::int32_t usual = type == winsock::stream ? winsock::tcp : winsock::udp;
  return protocol == 0 || protocol == usual ? 0 : error::protocolNotSupported;
}

}  // namespace

SimulatedSockets::SimulatedSockets(SimulatedNetwork& network, MessageQueue& queue)
    : network_(network), queue_(queue), lookUps_(std::make_shared<LookUps>(network, queue)) {}

// ---- the frame of every call

/// The result of a call that only succeeds or fails.
std::int32_t SimulatedSockets::result(std::int32_t error) {
  if (error == 0) return 0;
  lastError_ = error;
  return winsock::failed;
}

bool SimulatedSockets::started() { return starts_ > 0 || result(error::notStarted) == 0; }

std::shared_ptr<LocalSocket> SimulatedSockets::find(std::int32_t handle) {
  if (!started()) return nullptr;
  const auto found = sockets_.find(handle);
  if (found != sockets_.end()) return found->second;
  result(error::notSocket);
  return nullptr;
}

std::int32_t SimulatedSockets::with(std::int32_t handle, const Operation& operation) {
  const std::shared_ptr<LocalSocket> socket = find(handle);
  return socket == nullptr ? winsock::failed : result(operation(*socket));
}

/// The same for an operation that waits, if the socket does.
std::int32_t SimulatedSockets::waitingWith(std::int32_t handle, const Operation& operation) {
  return with(handle, [&](LocalSocket& socket) {
    std::int32_t error = operation(socket);
    while (error == error::wouldBlock && socket.blocks()) {
      if (!network_.advanceToNext()) return interrupted;
      error = operation(socket);
    }
    return error;
  });
}

std::int32_t SimulatedSockets::nextHandle() { return lastHandle_ += handleStep; }

// ---- the service

std::int32_t SimulatedSockets::WSAStartup(std::uint16_t versionWanted) {
  if (network_.settings.startUpError != 0) return network_.settings.startUpError;
  if ((versionWanted & 0xFF) == 0) return versionNotSupported;
  ++starts_;
  return 0;
}

std::int32_t SimulatedSockets::WSACleanup() {
  if (!started()) return winsock::failed;
  if (network_.settings.cleanUpError != 0) return result(network_.settings.cleanUpError);
  if (--starts_ > 0) return 0;
  lookUps_->cancelAll();
  sockets_.clear();
  return 0;
}

// ---- the selection

std::int32_t SimulatedSockets::WSAAsyncSelect(std::int32_t socket, WindowHandle window,
                                              std::uint32_t message, std::int32_t mask) {
  return with(socket, [&](LocalSocket& each) {
    if (mask != 0 && queue_.GetWindowLongA(window, windowProcedureIndex) == 0) {
      return error::invalidArgument;
    }
    each.select({window, message, mask});
    return 0;
  });
}

// ---- sockets

std::shared_ptr<LocalSocket> SimulatedSockets::make(std::int32_t type) {
  const std::int32_t handle = nextHandle();
  std::shared_ptr<LocalSocket> made;
  if (type == winsock::datagram) {
    made = std::make_shared<DatagramSocket>(network_, queue_, handle);
  } else {
    made = std::make_shared<StreamSocket>(network_, queue_, handle);
  }
  return sockets_[handle] = made;
}

std::int32_t SimulatedSockets::socket(std::int32_t family, std::int32_t type,
                                      std::int32_t protocol) {
  if (!started()) return winsock::noSocket;
  const std::int32_t refusal = refusalOf(family, type, protocol);
  if (refusal != 0) return result(refusal);
  if (sockets_.size() >= network_.settings.maximumSockets) return result(error::tooManyFiles);
  return make(type)->handle();
}

std::int32_t SimulatedSockets::closesocket(std::int32_t socket) {
  return with(socket, [&](LocalSocket&) {
    sockets_.erase(socket);
    endRest();
    return 0;
  });
}

/// There is room again.
void SimulatedSockets::endRest() {
  for (const std::int32_t handle : std::exchange(resting_, {})) {
    const auto listener = sockets_.find(handle);
    if (listener != sockets_.end()) listener->second->acceptAgain();
  }
}

std::int32_t SimulatedSockets::connect(std::int32_t socket, const SocketAddress& address) {
  return with(socket, [&](LocalSocket& each) {
    if (address.family != winsock::internet) return error::familyNotSupported;
    const std::int32_t error = each.connect(toEndpoint(address));
    if (error != error::wouldBlock || !each.blocks()) return error;
    while (each.connecting()) {
      if (!network_.advanceToNext()) return interrupted;
    }
    return each.connectError();
  });
}

std::int32_t SimulatedSockets::bind(std::int32_t socket, const SocketAddress& address) {
  return with(socket, [&](LocalSocket& each) {
    if (address.family != winsock::internet) return error::familyNotSupported;
    return each.bind(toEndpoint(address));
  });
}

std::int32_t SimulatedSockets::listen(std::int32_t socket, std::int32_t backlog) {
  return with(socket, [&](LocalSocket& each) { return each.listen(backlog); });
}

std::int32_t SimulatedSockets::accept(std::int32_t socket, SocketAddress& peer) {
  const std::shared_ptr<LocalSocket> listener = find(socket);
  std::shared_ptr<StreamEnd> end;
  const auto next = [&](LocalSocket& each) { return each.accept(end); };
  if (listener == nullptr) return winsock::noSocket;
  if (sockets_.size() >= network_.settings.maximumSockets) {
    resting_.push_back(socket);
    return result(error::tooManyFiles);
  }
  if (waitingWith(socket, next) != 0) return winsock::noSocket;
  peer = toSocketAddress(end->remote());
  const auto made = std::make_shared<StreamSocket>(network_, queue_, nextHandle());
  sockets_[made->handle()] = made;
  made->become(std::move(end), *listener);
  return made->handle();
}

std::int32_t SimulatedSockets::getpeername(std::int32_t socket, SocketAddress& address) {
  Endpoint endpoint;
  const auto ask = [&](LocalSocket& each) { return each.peerName(endpoint); };
  if (with(socket, ask) != 0) return winsock::failed;
  address = toSocketAddress(endpoint);
  return 0;
}

std::int32_t SimulatedSockets::getsockname(std::int32_t socket, SocketAddress& address) {
  Endpoint endpoint;
  const auto ask = [&](LocalSocket& each) { return each.ownName(endpoint); };
  if (with(socket, ask) != 0) return winsock::failed;
  address = toSocketAddress(endpoint);
  return 0;
}

std::int32_t SimulatedSockets::getsockopt(std::int32_t socket, std::int32_t level,
                                          std::int32_t option, std::int32_t& value) {
  return with(socket, [&](LocalSocket& each) {
    if (level != winsock::socketLevel) return error::invalidArgument;
    return each.getOption(option, value);
  });
}

std::int32_t SimulatedSockets::setsockopt(std::int32_t socket, std::int32_t level,
                                          std::int32_t option, std::int32_t value) {
  return with(socket, [&](LocalSocket& each) {
    if (level != winsock::socketLevel) return error::invalidArgument;
    return each.setOption(option, value);
  });
}

std::int32_t SimulatedSockets::ioctlsocket(std::int32_t socket, std::int32_t command,
                                           std::int32_t& argument) {
  return with(socket, [&](LocalSocket& each) {
    if (command != winsock::bytesWaiting) return error::invalidArgument;
    argument = static_cast<std::int32_t>(each.waiting());
    return 0;
  });
}

// ---- data

std::int32_t SimulatedSockets::send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                    std::int32_t flags) {
  std::size_t taken = 0;
  const std::int32_t failure = waitingWith(socket, [&](LocalSocket& each) {
    return flags != 0 ? error::operationNotSupported : each.send(textOf(bytes), taken);
  });
  return failure != 0 ? failure : static_cast<std::int32_t>(taken);
}

std::int32_t SimulatedSockets::shutdown(std::int32_t socket, std::int32_t how) {
  return with(socket, [&](LocalSocket& each) {
    return how == winsock::sendingEnd ? each.endSending() : error::invalidArgument;
  });
}

std::int32_t SimulatedSockets::sendto(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                      std::int32_t flags, const SocketAddress& receiver) {
  std::size_t taken = 0;
  const std::int32_t failure = waitingWith(socket, [&](LocalSocket& each) {
    if (flags != 0) return error::operationNotSupported;
    if (receiver.family != winsock::internet) return error::familyNotSupported;
    return each.sendTo(textOf(bytes), toEndpoint(receiver), taken);
  });
  return failure != 0 ? failure : static_cast<std::int32_t>(taken);
}

std::int32_t SimulatedSockets::recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                                    std::int32_t flags) {
  SocketAddress sender;
  return recvfrom(socket, bytes, flags, sender);
}

std::int32_t SimulatedSockets::recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes,
                                        std::int32_t flags, SocketAddress& sender) {
  std::size_t count = 0;
  Endpoint from;
  const std::int32_t failure = waitingWith(socket, [&](LocalSocket& each) {
    if ((flags & ~winsock::peek) != 0) return error::operationNotSupported;
    return each.receive(bytes, flags == winsock::peek, from, count);
  });
  if (from.port != 0) sender = toSocketAddress(from);
  return failure != 0 ? failure : static_cast<std::int32_t>(count);
}

// ---- names

std::int32_t SimulatedSockets::WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message,
                                                     TextView name, void* buffer,
                                                     std::int32_t length) {
  if (!started()) return 0;
  const bool hasWindow = queue_.GetWindowLongA(window, windowProcedureIndex) != 0;
  if (!hasWindow || buffer == nullptr || length < 0) {
    result(error::invalidArgument);
    return 0;
  }
  return lookUps_->begin(
      {window, message, toCodePage(name, namesCodePage), buffer, static_cast<std::size_t>(length)});
}

std::int32_t SimulatedSockets::WSACancelAsyncRequest(std::int32_t lookUp) {
  if (!started()) return winsock::failed;
  return result(lookUps_->cancel(lookUp) ? 0 : error::invalidArgument);
}

std::int32_t SimulatedSockets::gethostname(char* buffer, std::int32_t size) {
  if (!started()) return winsock::failed;
  const std::string& name = network_.settings.machineName;
  if (buffer == nullptr || size <= static_cast<std::int32_t>(name.size())) {
    return result(error::badAddress);
  }
  std::copy_n(name.c_str(), name.size() + 1, buffer);
  return 0;
}

const HostRecord* SimulatedSockets::gethostbyname(TextView name) {
  if (!started()) return nullptr;
  network_.advance(network_.settings.lookUpTime);
  const Found found = network_.find(toCodePage(name, namesCodePage));
  if (result(found.error) != 0) return nullptr;
  record_ = std::make_unique<std::uint64_t[]>(hostRecordSize(found) / sizeof(std::uint64_t) + 1);
  writeHostRecord(found, record_.get());
  return reinterpret_cast<const HostRecord*>(record_.get());
}

std::int32_t SimulatedSockets::inet_addr(TextView text) {
  if (!started()) return winsock::failed;
  const auto address = parseAddress(toCodePage(text, namesCodePage));
  return address ? *address : winsock::failed;
}

const char* SimulatedSockets::inet_ntoa(std::int32_t address) {
  if (!started()) return nullptr;
  dotted_ = dotted(address);
  return dotted_.c_str();
}

}  // namespace zev::simulated
