#pragma once

#include <poll.h>

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/message_queue.h"
#include "posix/descriptors.h"
#include "posix/socket_table.h"

namespace zev::posix {

/// The notifications of selected sockets: turns what the system reports about descriptors into
/// posted messages. Each event of a socket is posted once and then not again until the call that
/// answers it, as Winsock does it.
///
/// The life of an event, here FD_READ:
///
///   select()          the socket is given to the poller, which reports changes only (edges)
///   notice()          the poller reports EPOLLIN: offer() posts FD_READ and sets its bit in
///                     `posted`. Further reports while the bit is set are dropped
///   (the message is dispatched, and the event procedure reads)
///   read()            the answering call: the bit is cleared. If the call has left bytes behind,
///                     FD_READ is posted again at once; if it may have, the socket goes on
///                     `listed_`
///   examineAgain()    polls all listed sockets at once and offers anew what is still ready
///
/// The list is needed because the poller does not report again what only stays ready, and what it
/// reported meanwhile was dropped. The answering calls: `recv` for FD_READ, `accept` for FD_ACCEPT;
/// for FD_WRITE a `send` that found no room. FD_CONNECT comes once for each connecting, FD_CLOSE
/// once and only when nothing is left to read.
///
/// A listener that cannot accept since the process or the system has no descriptor left rests: its
/// FD_ACCEPT counts as unanswered, or the connection that waits would be offered over and over. The
/// rest ends when a socket is closed, or, tried every 250 ms, when there is room.
///
/// Owns no socket: they are the table's. What is remembered from one call to the next are handles,
/// which are looked up again, since any event procedure may have closed the socket.
class Selection {
 public:
  /// Borrows all three; they outlive it.
  Selection(MessageQueue& queue, Poller& poller, SocketTable& table)
      : queue_(queue), poller_(poller), table_(table) {}

  /// Settles which events of a socket are posted (`mask`, winsock::fdRead and the like) and where
  /// to. The socket becomes non-blocking. All events count as answered, so what is ready now is
  /// reported anew. False, with errno, if the system refuses.
  bool select(OpenSocket& socket, WindowHandle window, std::uint32_t message, std::int32_t mask);
  /// Selects an accepted socket for the events of its listener, if that was selected. False, with
  /// errno, if the system refuses.
  bool inherit(OpenSocket& accepted, const OpenSocket& listener);

  /// Takes a report of the poller. `events` are EPOLLIN and the like. A handle that is closed
  /// meanwhile is ignored.
  void notice(std::int32_t handle, std::uint32_t events);
  /// Looks at all sockets that may still be ready though the poller will not report it. To be
  /// called before each wait for the poller.
  void examineAgain();

  // What the calls of a program did to a socket.

  /// A connecting has begun; what was known of an earlier connection is forgotten.
  void connecting(OpenSocket& socket);
  /// The connecting has ended: 0 for success, else a Winsock number.
  void connected(OpenSocket& socket, std::int32_t error);
  /// `accept` took a connection, or found none.
  void accepted(OpenSocket& socket);
  /// `accept` failed for lack of room: the listener rests.
  void rest(OpenSocket& listener);
  /// A socket was closed: listeners that rest may try again.
  void endRest();
  /// Milliseconds until the next try for a listener that rests; -1 if none does. No wait may be
  /// longer.
  int restLeft() const;
  /// Something was read, and that is how much was left: nothing is known of it, or there is more.
  enum class Left { Nothing, Perhaps, More };
  /// Told after every read. It decides whether FD_READ comes again, at once or after a look, or
  /// FD_CLOSE.
  void read(OpenSocket& socket, Left left);
  /// Reading has shown that nothing more will come: `error` is 0 if the peer has closed, else the
  /// Winsock number that broke the connection.
  void ended(OpenSocket& socket, std::int32_t error);
  /// Sending has found no room: FD_WRITE is due once there is some.
  void full(OpenSocket& socket);

 private:
  void offer(OpenSocket& socket, std::int32_t event, std::int32_t error = 0);
  void offerRest(OpenSocket& socket);
  void concludeConnecting(OpenSocket& socket);
  void examine(OpenSocket& socket, std::uint32_t events);
  void examineConnection(OpenSocket& socket, std::uint32_t events);
  void examineDatagrams(OpenSocket& socket, std::uint32_t events);
  void examineLater(OpenSocket& socket);
  void tryResting();
  bool hasUnread(OpenSocket& socket);

  MessageQueue& queue_;
  Poller& poller_;
  SocketTable& table_;
  std::vector<std::int32_t> resting_;  ///< handles of listeners
  std::chrono::steady_clock::time_point restUntil_;
  std::vector<std::int32_t> listed_;  ///< handles, to be examined again
  int readOn_ = 0;                    ///< reads offered without a look since the last look
  // Of one examineAgain(), kept for their memory; place by place about the same socket.
  std::vector<std::int32_t> examined_;
  std::vector<pollfd> polled_;
};

}  // namespace zev::posix
