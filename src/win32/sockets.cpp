// The sockets' header comes before all that could bring in the system's.
#include "win32/winsock_api.h"
// Then what it is used for.
#include "win32/sockets.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <utility>

#include "win32/ansi.h"
#include "win32/system_library.h"

namespace zev::win32 {
namespace {

// Records cross the calls as they are.
static_assert(sizeof(HostRecord) == sizeof(hostent));
static_assert(offsetof(HostRecord, name) == offsetof(hostent, h_name));
static_assert(offsetof(HostRecord, aliases) == offsetof(hostent, h_aliases));
static_assert(offsetof(HostRecord, addressType) == offsetof(hostent, h_addrtype));
static_assert(offsetof(HostRecord, addressLength) == offsetof(hostent, h_length));
static_assert(offsetof(HostRecord, addresses) == offsetof(hostent, h_addr_list));
static_assert(sizeof(SocketAddress) == sizeof(sockaddr_in));
static_assert(offsetof(SocketAddress, family) == offsetof(sockaddr_in, sin_family));
static_assert(offsetof(SocketAddress, port) == offsetof(sockaddr_in, sin_port));
static_assert(offsetof(SocketAddress, address) == offsetof(sockaddr_in, sin_addr));

/// How long a listener rests before the next try, if no socket is closed meanwhile.
constexpr UINT restMilliseconds = 250;

constexpr int addressSize = sizeof(SocketAddress);

/// Widened with its sign, so that `noSocket` stays the system's invalid socket.
SOCKET socketOf(std::int32_t socket) {
  return static_cast<SOCKET>(static_cast<std::intptr_t>(socket));
}

const sockaddr* addressOf(const SocketAddress& address) {
  return reinterpret_cast<const sockaddr*>(&address);
}

sockaddr* addressOf(SocketAddress& address) { return reinterpret_cast<sockaddr*>(&address); }

const char* bytesOf(std::span<const std::uint8_t> bytes) {
  return reinterpret_cast<const char*>(bytes.data());
}

char* bytesOf(std::span<std::uint8_t> bytes) { return reinterpret_cast<char*>(bytes.data()); }

/// The calls count in `int`: of more bytes than that they are offered the beginning.
int sizeOf(std::span<const std::uint8_t> bytes) {
  constexpr std::size_t most = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(bytes.size(), most));
}

}  // namespace

/// The library's functions.
struct Win32Sockets::Calls {
  explicit Calls(const char* name) : library(name) {}

  template <typename Function>
  Function* find(const char* name) {
    const auto found = library.find<Function>(name);
    complete = complete && found != nullptr;
    return found;
  }

  SystemLibrary library;
  bool complete = true;

  decltype(::WSAStartup)* startup = find<decltype(::WSAStartup)>("WSAStartup");
  decltype(::WSACleanup)* cleanup = find<decltype(::WSACleanup)>("WSACleanup");
  decltype(::WSAGetLastError)* lastError = find<decltype(::WSAGetLastError)>("WSAGetLastError");
  decltype(::WSAAsyncSelect)* select = find<decltype(::WSAAsyncSelect)>("WSAAsyncSelect");
  decltype(::WSAAsyncGetHostByName)* lookUp =
      find<decltype(::WSAAsyncGetHostByName)>("WSAAsyncGetHostByName");
  decltype(::WSACancelAsyncRequest)* cancel =
      find<decltype(::WSACancelAsyncRequest)>("WSACancelAsyncRequest");
  decltype(::socket)* socket = find<decltype(::socket)>("socket");
  decltype(::closesocket)* closesocket = find<decltype(::closesocket)>("closesocket");
  decltype(::connect)* connect = find<decltype(::connect)>("connect");
  decltype(::bind)* bind = find<decltype(::bind)>("bind");
  decltype(::listen)* listen = find<decltype(::listen)>("listen");
  decltype(::accept)* accept = find<decltype(::accept)>("accept");
  decltype(::getpeername)* getpeername = find<decltype(::getpeername)>("getpeername");
  decltype(::getsockname)* getsockname = find<decltype(::getsockname)>("getsockname");
  decltype(::getsockopt)* getsockopt = find<decltype(::getsockopt)>("getsockopt");
  decltype(::setsockopt)* setsockopt = find<decltype(::setsockopt)>("setsockopt");
  decltype(::ioctlsocket)* ioctlsocket = find<decltype(::ioctlsocket)>("ioctlsocket");
  decltype(::send)* send = find<decltype(::send)>("send");
  decltype(::shutdown)* shutdown = find<decltype(::shutdown)>("shutdown");
  decltype(::sendto)* sendto = find<decltype(::sendto)>("sendto");
  decltype(::recv)* recv = find<decltype(::recv)>("recv");
  decltype(::recvfrom)* recvfrom = find<decltype(::recvfrom)>("recvfrom");
  decltype(::gethostname)* gethostname = find<decltype(::gethostname)>("gethostname");
  decltype(::gethostbyname)* gethostbyname = find<decltype(::gethostbyname)>("gethostbyname");
  decltype(::inet_addr)* inet_addr = find<decltype(::inet_addr)>("inet_addr");
  decltype(::inet_ntoa)* inet_ntoa = find<decltype(::inet_ntoa)>("inet_ntoa");
};

/// All calls go through here. Before the service is started none reaches the library; the error of
/// one that fails is kept, since any later call could change it.
template <typename Answer, typename Function, typename... Arguments>
Answer Win32Sockets::ask(Answer failure, Function* Calls::*call, Arguments... arguments) {
  if (starts_ == 0) {
    lastError_ = winsock::error::notStarted;
    return failure;
  }
  const Answer answer = (calls_.get()->*call)(arguments...);
  if (answer == failure) lastError_ = calls_->lastError();
  return answer;
}

// ---- the service

/// Ends the service as often as it was started, which is how the system counts.
Win32Sockets::~Win32Sockets() {
  while (starts_ > 0 && Win32Sockets::WSACleanup() == 0) {
  }
}

/// A library that lacks one of the functions counts as a machine without a network.
std::int32_t Win32Sockets::WSAStartup(std::uint16_t versionWanted) {
  if (calls_ == nullptr) calls_ = std::make_shared<const Calls>(library_);
  if (!calls_->complete) return WSASYSNOTREADY;
  WSADATA told{};
  const std::int32_t error = calls_->startup(versionWanted, &told);
  if (error == 0) ++starts_;
  return error;
}

std::int32_t Win32Sockets::WSACleanup() {
  const std::int32_t answer = ask(SOCKET_ERROR, &Calls::cleanup);
  if (answer == 0 && --starts_ == 0) {
    selected_.clear();
    endRest();
  }
  return answer;
}

// ---- notifications

/// What was asked for is kept, to be asked for again when a rest ends.
std::int32_t Win32Sockets::WSAAsyncSelect(std::int32_t socket, WindowHandle window,
                                          std::uint32_t message, std::int32_t mask) {
  const Selected selected{window, message, mask};
  const std::int32_t answer = selectNow(socket, selected);
  if (answer == 0) selected_[socket] = selected;
  return answer;
}

std::int32_t Win32Sockets::selectNow(std::int32_t socket, const Selected& selected) {
  return ask(SOCKET_ERROR, &Calls::select, socketOf(socket),
             reinterpret_cast<HWND>(selected.window), selected.message, selected.mask);
}

/// Ends the rest when some time has passed. The system enters it from the loop that dispatches, and
/// the timer's number is the address of the sockets.
struct Win32Sockets::RestTimer {
  static void CALLBACK passed(HWND, UINT, UINT_PTR number, DWORD) {
    reinterpret_cast<Win32Sockets*>(number)->endRest();
  }
};

/// The system would report the waiting connection again and again, so none is reported until there
/// may be room.
void Win32Sockets::rest(std::int32_t listener) {
  const auto found = selected_.find(listener);
  if (found == selected_.end() || (found->second.mask & winsock::fdAccept) == 0) return;
  Selected other = found->second;
  other.mask &= ~winsock::fdAccept;
  selectNow(listener, other);
  resting_.push_back(listener);
  if (timerWindow_ != 0) return;
  timerWindow_ = other.window;
  ::SetTimer(reinterpret_cast<HWND>(timerWindow_), reinterpret_cast<UINT_PTR>(this),
             restMilliseconds, RestTimer::passed);
}

/// Gives every listener back what it had asked for; one that was closed meanwhile is passed over.
void Win32Sockets::endRest() {
  if (timerWindow_ == 0) return;
  ::KillTimer(reinterpret_cast<HWND>(std::exchange(timerWindow_, 0)),
              reinterpret_cast<UINT_PTR>(this));
  for (const std::int32_t listener : std::exchange(resting_, {})) {
    const auto found = selected_.find(listener);
    if (found != selected_.end()) selectNow(listener, found->second);
  }
}

/// Handles of look-ups have 16 bits, since they travel in a wParam.
std::int32_t Win32Sockets::WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message,
                                                 TextView name, void* buffer, std::int32_t length) {
  const HANDLE lookUp =
      ask<HANDLE>(nullptr, &Calls::lookUp, reinterpret_cast<HWND>(window), message,
                  ansiArgument(name).c_str(), static_cast<char*>(buffer), length);
  return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(lookUp));
}

std::int32_t Win32Sockets::WSACancelAsyncRequest(std::int32_t lookUp) {
  return ask(SOCKET_ERROR, &Calls::cancel,
             reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(lookUp)));
}

// ---- sockets and their addresses

/// The system's sockets are as wide as pointers but small. One that is not cannot be named to the
/// callers.
std::int32_t Win32Sockets::handOut(std::uintptr_t socket) {
  constexpr std::uintptr_t largest = std::numeric_limits<std::int32_t>::max();
  if (socket == INVALID_SOCKET) return winsock::noSocket;
  if (socket <= largest) return static_cast<std::int32_t>(socket);
  calls_->closesocket(socket);
  lastError_ = winsock::error::tooManyFiles;
  return winsock::noSocket;
}

std::int32_t Win32Sockets::socket(std::int32_t family, std::int32_t type, std::int32_t protocol) {
  return handOut(ask(INVALID_SOCKET, &Calls::socket, family, type, protocol));
}

/// A closed socket makes room, so listeners that rest try again.
std::int32_t Win32Sockets::closesocket(std::int32_t socket) {
  const std::int32_t answer = ask(SOCKET_ERROR, &Calls::closesocket, socketOf(socket));
  if (answer != 0) return answer;
  selected_.erase(socket);
  endRest();
  return answer;
}

std::int32_t Win32Sockets::connect(std::int32_t socket, const SocketAddress& address) {
  return ask(SOCKET_ERROR, &Calls::connect, socketOf(socket), addressOf(address), addressSize);
}

std::int32_t Win32Sockets::bind(std::int32_t socket, const SocketAddress& address) {
  return ask(SOCKET_ERROR, &Calls::bind, socketOf(socket), addressOf(address), addressSize);
}

std::int32_t Win32Sockets::listen(std::int32_t socket, std::int32_t backlog) {
  return ask(SOCKET_ERROR, &Calls::listen, socketOf(socket), backlog);
}

/// The error is set once more after the rest has begun, whose own calls change it.
std::int32_t Win32Sockets::accept(std::int32_t socket, SocketAddress& peer) {
  std::int32_t error = 0;
  const std::int32_t accepted = takeConnection(socket, peer, error);
  if (accepted != winsock::noSocket) return accepted;
  lastError_ = error;
  if (error == winsock::error::tooManyFiles || error == winsock::error::noBuffers) {
    rest(socket);
    lastError_ = error;
  }
  return winsock::noSocket;
}

std::int32_t Win32Sockets::takeConnection(std::int32_t socket, SocketAddress& peer,
                                          std::int32_t& error) {
  int size = addressSize;
  const std::int32_t accepted =
      handOut(ask(INVALID_SOCKET, &Calls::accept, socketOf(socket), addressOf(peer), &size));
  if (accepted == winsock::noSocket) error = lastError_;
  return accepted;
}

std::int32_t Win32Sockets::getpeername(std::int32_t socket, SocketAddress& address) {
  int size = addressSize;
  return ask(SOCKET_ERROR, &Calls::getpeername, socketOf(socket), addressOf(address), &size);
}

std::int32_t Win32Sockets::getsockname(std::int32_t socket, SocketAddress& address) {
  int size = addressSize;
  return ask(SOCKET_ERROR, &Calls::getsockname, socketOf(socket), addressOf(address), &size);
}

// ---- options

std::int32_t Win32Sockets::getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                      std::int32_t& value) {
  int size = sizeof value;
  return ask(SOCKET_ERROR, &Calls::getsockopt, socketOf(socket), level, option,
             reinterpret_cast<char*>(&value), &size);
}

std::int32_t Win32Sockets::setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                      std::int32_t value) {
  return ask(SOCKET_ERROR, &Calls::setsockopt, socketOf(socket), level, option,
             reinterpret_cast<const char*>(&value), static_cast<int>(sizeof value));
}

std::int32_t Win32Sockets::ioctlsocket(std::int32_t socket, std::int32_t command,
                                       std::int32_t& argument) {
  auto value = static_cast<u_long>(argument);
  const std::int32_t answer =
      ask(SOCKET_ERROR, &Calls::ioctlsocket, socketOf(socket), command, &value);
  argument = static_cast<std::int32_t>(value);
  return answer;
}

// ---- data

std::int32_t Win32Sockets::send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                std::int32_t flags) {
  return ask(SOCKET_ERROR, &Calls::send, socketOf(socket), bytesOf(bytes), sizeOf(bytes), flags);
}

/// The system knows three directions, the contract one.
std::int32_t Win32Sockets::shutdown(std::int32_t socket, std::int32_t how) {
  if (starts_ != 0 && how != winsock::sendingEnd) {
    lastError_ = winsock::error::invalidArgument;
    return winsock::failed;
  }
  return ask(SOCKET_ERROR, &Calls::shutdown, socketOf(socket), how);
}

std::int32_t Win32Sockets::sendto(std::int32_t socket, std::span<const std::uint8_t> bytes,
                                  std::int32_t flags, const SocketAddress& receiver) {
  return ask(SOCKET_ERROR, &Calls::sendto, socketOf(socket), bytesOf(bytes), sizeOf(bytes), flags,
             addressOf(receiver), addressSize);
}

std::int32_t Win32Sockets::recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                                std::int32_t flags) {
  return ask(SOCKET_ERROR, &Calls::recv, socketOf(socket), bytesOf(bytes), sizeOf(bytes), flags);
}

std::int32_t Win32Sockets::recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes,
                                    std::int32_t flags, SocketAddress& sender) {
  int size = addressSize;
  return ask(SOCKET_ERROR, &Calls::recvfrom, socketOf(socket), bytesOf(bytes), sizeOf(bytes), flags,
             addressOf(sender), &size);
}

// ---- names

std::int32_t Win32Sockets::gethostname(char* buffer, std::int32_t size) {
  return ask(SOCKET_ERROR, &Calls::gethostname, buffer, size);
}

const HostRecord* Win32Sockets::gethostbyname(TextView name) {
  const hostent* const found =
      ask<hostent*>(nullptr, &Calls::gethostbyname, ansiArgument(name).c_str());
  if (found == nullptr) return nullptr;
  record_ = {found->h_name, found->h_aliases, found->h_addrtype, found->h_length,
             found->h_addr_list};
  return &record_;
}

std::int32_t Win32Sockets::inet_addr(TextView text) {
  const auto none = static_cast<unsigned long>(INADDR_NONE);
  return static_cast<std::int32_t>(ask(none, &Calls::inet_addr, ansiArgument(text).c_str()));
}

const char* Win32Sockets::inet_ntoa(std::int32_t address) {
  return ask<char*>(nullptr, &Calls::inet_ntoa, std::bit_cast<in_addr>(address));
}

}  // namespace zev::win32
