#pragma once

#include <cstdint>
#include <span>

#include "platform/processes.h"

namespace zev {

/// Numbers of the Winsock interface, version 1.1.
namespace winsock {

inline constexpr std::uint16_t version = 0x101;
inline constexpr std::int32_t failed = -1;  ///< of every call that fails
inline constexpr std::int32_t noSocket = -1;

inline constexpr std::int16_t internet = 2;  ///< AF_INET, the one family
inline constexpr std::int32_t stream = 1;    ///< SOCK_STREAM
inline constexpr std::int32_t datagram = 2;  ///< SOCK_DGRAM
inline constexpr std::int32_t tcp = 6;       ///< IPPROTO_TCP
inline constexpr std::int32_t udp = 17;      ///< IPPROTO_UDP

inline constexpr std::int32_t socketLevel = 65535;       ///< SOL_SOCKET
inline constexpr std::int32_t broadcast = 32;            ///< SO_BROADCAST
inline constexpr std::int32_t sendBufferSize = 4097;     ///< SO_SNDBUF, bytes
inline constexpr std::int32_t receiveBufferSize = 4098;  ///< SO_RCVBUF, bytes
inline constexpr std::int32_t maximumMessage = 8195;     ///< SO_MAX_MSG_SIZE, bytes; datagrams only

inline constexpr std::int32_t bytesWaiting = 0x4004667F;  ///< FIONREAD
inline constexpr std::int32_t peek = 2;                   ///< MSG_PEEK
inline constexpr std::int32_t sendingEnd = 1;             ///< of shutdown: nothing more is sent

// Notifications of WSAAsyncSelect; each is one bit.
inline constexpr std::int32_t fdRead = 1;
inline constexpr std::int32_t fdWrite = 2;
inline constexpr std::int32_t fdAccept = 8;
inline constexpr std::int32_t fdConnect = 16;
inline constexpr std::int32_t fdClose = 32;

/// The lParam of a notification: an error number, or 0, in the upper word; in the lower one the
/// event, or the size of a host record.
constexpr std::intptr_t reply(std::int32_t error, std::uint32_t lowWord) {
  constexpr unsigned highWord = 16;
  return static_cast<std::intptr_t>((static_cast<std::uint32_t>(error) << highWord) | lowWord);
}

/// Error numbers that somebody compares with. All others only pass through.
namespace error {
inline constexpr std::int32_t accessDenied = 10013;
inline constexpr std::int32_t badAddress = 10014;
inline constexpr std::int32_t invalidArgument = 10022;
inline constexpr std::int32_t tooManyFiles = 10024;
inline constexpr std::int32_t wouldBlock = 10035;
inline constexpr std::int32_t notSocket = 10038;
inline constexpr std::int32_t destinationRequired = 10039;
inline constexpr std::int32_t messageTooLong = 10040;
inline constexpr std::int32_t badProtocolOption = 10042;
inline constexpr std::int32_t protocolNotSupported = 10043;
inline constexpr std::int32_t operationNotSupported = 10045;
inline constexpr std::int32_t familyNotSupported = 10047;
inline constexpr std::int32_t addressInUse = 10048;
inline constexpr std::int32_t addressNotAvailable = 10049;
inline constexpr std::int32_t networkDown = 10050;
inline constexpr std::int32_t networkUnreachable = 10051;
inline constexpr std::int32_t connectionAborted = 10053;
inline constexpr std::int32_t connectionReset = 10054;
inline constexpr std::int32_t noBuffers = 10055;
inline constexpr std::int32_t alreadyConnected = 10056;
inline constexpr std::int32_t notConnected = 10057;
inline constexpr std::int32_t shutDown = 10058;
inline constexpr std::int32_t timedOut = 10060;
inline constexpr std::int32_t refused = 10061;
inline constexpr std::int32_t noRoute = 10065;
inline constexpr std::int32_t notStarted = 10093;
inline constexpr std::int32_t hostNotFound = 11001;
inline constexpr std::int32_t tryAgain = 11002;
inline constexpr std::int32_t noRecovery = 11003;
inline constexpr std::int32_t noData = 11004;
}  // namespace error

}  // namespace winsock

/// An address of the internet family, as it crosses the calls: 16 bytes.
struct SocketAddress {
  std::int16_t family = winsock::internet;
  std::uint16_t port = 0;    ///< in network order
  std::int32_t address = 0;  ///< four bytes in network order, read as they lie in memory
  std::uint8_t zeros[8] = {};
};
static_assert(sizeof(SocketAddress) == 16);

/// What a look-up fills in; the system's own layout, in which pointers have the process's width
/// (12 bytes before the address list where they have four).
struct HostRecord {
  char* name = nullptr;
  char** aliases = nullptr;
  std::int16_t addressType = 0;
  std::int16_t addressLength = 0;
  char** addresses = nullptr;  ///< each one points to addressLength bytes; ended by null
};

/// The sockets of the system, as Winsock 1.1 has them. Failing calls give -1 and leave the reason
/// in WSAGetLastError, except where told otherwise. A socket that was selected does not block.
class Sockets {
 public:
  virtual ~Sockets() = default;

  /// 0 or an error number. Without a start that went well every other call fails with 10093.
  virtual std::int32_t WSAStartup(std::uint16_t versionWanted) = 0;
  /// Takes back one start; the last one ends the service and closes what is left open.
  virtual std::int32_t WSACleanup() = 0;
  /// Reason of the last call that failed.
  virtual std::int32_t WSAGetLastError() = 0;

  /// From now on the events of `mask` are posted to the window as `message`: wParam the socket,
  /// lParam the event in its low word and an error code in its high word. Each event is posted once
  /// and again only after the call that answers it: FD_READ after `recv` or `recvfrom` with more to
  /// read, FD_ACCEPT after `accept` with more to accept, FD_WRITE when there is room again after a
  /// send failed with 10035, and once after FD_CONNECT, for an accepted socket and for one that
  /// needs no connection. FD_CLOSE comes once, after all data; an error code in it stands for a
  /// reset. Makes the socket non-blocking. A mask of 0 ends the posting. Accepted sockets inherit
  /// window, message and mask.
  virtual std::int32_t WSAAsyncSelect(std::int32_t socket, WindowHandle window,
                                      std::uint32_t message, std::int32_t mask) = 0;
  /// Starts a look-up and returns its handle, 0 on failure. When it is done the buffer, which has
  /// to stay where it is until then, holds a HostRecord with all that it points to, and the window
  /// gets `message`: wParam the handle, lParam an error code in its high word. A name without an
  /// address is such an error (11001).
  virtual std::int32_t WSAAsyncGetHostByName(WindowHandle window, std::uint32_t message,
                                             TextView name, void* buffer, std::int32_t length) = 0;
  /// Ends a look-up without a message; 10022 for a handle that no look-up has.
  virtual std::int32_t WSACancelAsyncRequest(std::int32_t lookUp) = 0;

  /// Makes a socket; `noSocket` on failure.
  virtual std::int32_t socket(std::int32_t family, std::int32_t type, std::int32_t protocol) = 0;
  /// Closes a socket at once: what was not read is lost, what was sent still goes out.
  /// Notifications that were posted before may still come.
  virtual std::int32_t closesocket(std::int32_t socket) = 0;
  /// A selected stream socket fails with 10035 while its connecting runs; FD_CONNECT tells the end.
  virtual std::int32_t connect(std::int32_t socket, const SocketAddress& address) = 0;
  /// Gives a socket its own address. Port 0: a free one of the system's choice. 10048 for a port
  /// that is taken.
  virtual std::int32_t bind(std::int32_t socket, const SocketAddress& address) = 0;
  /// Lets others connect to a bound stream socket; about `backlog` of them may wait for accept.
  virtual std::int32_t listen(std::int32_t socket, std::int32_t backlog) = 0;
  /// The socket of the next connection that waits. Where there is no room for one (10024, 10055)
  /// FD_ACCEPT comes again when a socket was closed, or some time later, and not at once.
  virtual std::int32_t accept(std::int32_t socket, SocketAddress& peer) = 0;
  /// The address at the other end; 10057 without a connection.
  virtual std::int32_t getpeername(std::int32_t socket, SocketAddress& address) = 0;
  /// The socket's own address; 10022 for one that has none yet.
  virtual std::int32_t getsockname(std::int32_t socket, SocketAddress& address) = 0;
  /// Options of four bytes. 10042 for one that this kind of socket does not have.
  virtual std::int32_t getsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                  std::int32_t& value) = 0;
  virtual std::int32_t setsockopt(std::int32_t socket, std::int32_t level, std::int32_t option,
                                  std::int32_t value) = 0;
  /// FIONREAD: the bytes that one `recv` could read; of a datagram socket the size of the datagram
  /// that waits.
  virtual std::int32_t ioctlsocket(std::int32_t socket, std::int32_t command,
                                   std::int32_t& argument) = 0;

  /// Bytes taken, which can be fewer than given; -1 with 10035 if there is no room.
  virtual std::int32_t send(std::int32_t socket, std::span<const std::uint8_t> bytes,
                            std::int32_t flags) = 0;
  /// Ends one direction (sendingEnd, the only one; 10022 for others): the peer reads what was sent
  /// and then the end; what it sends still comes. Sending fails with 10058 from then on. 10057
  /// without a connection.
  virtual std::int32_t shutdown(std::int32_t socket, std::int32_t how) = 0;
  /// Sends one datagram whole, or fails. It may be lost on its way, which nobody is told.
  virtual std::int32_t sendto(std::int32_t socket, std::span<const std::uint8_t> bytes,
                              std::int32_t flags, const SocketAddress& receiver) = 0;
  /// Bytes read, 0 after the last one of a peer that has closed. Of a datagram that is longer than
  /// `bytes` the rest is lost and the call fails with 10040, the bytes filled.
  virtual std::int32_t recv(std::int32_t socket, std::span<std::uint8_t> bytes,
                            std::int32_t flags) = 0;
  /// The same, with the sender of a datagram.
  virtual std::int32_t recvfrom(std::int32_t socket, std::span<std::uint8_t> bytes,
                                std::int32_t flags, SocketAddress& sender) = 0;

  /// The machine's name into a buffer of at most `size` bytes, ended by NUL.
  virtual std::int32_t gethostname(char* buffer, std::int32_t size) = 0;
  /// A blocking look-up; null on failure. The record belongs to the service and lasts until the
  /// next call.
  virtual const HostRecord* gethostbyname(TextView name) = 0;
  /// The address that a dotted text spells; -1 for any other text (and for 255.255.255.255).
  virtual std::int32_t inet_addr(TextView text) = 0;
  /// The dotted text of an address, ended by NUL; it lasts until the next call.
  virtual const char* inet_ntoa(std::int32_t address) = 0;
};

}  // namespace zev
