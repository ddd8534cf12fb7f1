#pragma once

#include <poll.h>

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/message_queue.h"
#include "posix/poller.h"
#include "posix/socket_table.h"

namespace zev::posix {

/// The notifications of selected sockets: turns what the system tells of descriptors into posted
/// messages, each one once until the call that answers it.
///
/// The poller tells of changes alone. Whatever it tells while an event is still unanswered is
/// dropped, so the answering call has to look for more: by what it got itself where that settles
/// it, else in the next pass over all sockets that are to be examined again.
class Selection {
 public:
  Selection(MessageQueue& queue, Poller& poller, SocketTable& table)
      : queue_(queue), poller_(poller), table_(table) {}

  /// Settles where a socket's events go; each may come again. False, with errno, if the system
  /// refuses.
  bool select(OpenSocket& socket, WindowHandle window, std::uint32_t message, std::int32_t mask);
  /// Gives an accepted socket what its listener has.
  bool inherit(OpenSocket& accepted, const OpenSocket& listener);

  /// What the poller tells of a socket; of one that has gone, nothing.
  void notice(std::int32_t handle, std::uint32_t events);
  /// Looks at all sockets whose state an answering call has left open.
  void examineAgain();

  void connecting(OpenSocket& socket);
  /// The connecting that has just begun is over already; 0 or a Winsock number.
  void connected(OpenSocket& socket, std::int32_t error);
  /// A connection was taken, or none was there.
  void accepted(OpenSocket& socket);
  /// A connection waits that the system has no room for. The listener is not told of it, or of
  /// others, until something is closed or, some time later, there is room again.
  void rest(OpenSocket& listener);
  /// Something was closed: listeners that rest may try again.
  void endRest();
  /// Milliseconds until there is to be a look at whether there is room; -1 if nobody rests.
  int restLeft() const;
  /// Something was read. `exhausted`: nothing more was there.
  void read(OpenSocket& socket, bool exhausted);
  /// The peer has closed, which reading has shown; or it has reset, a Winsock number.
  void ended(OpenSocket& socket, std::int32_t error);
  /// Sending has found no room.
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
  std::vector<std::int32_t> resting_;  ///< listeners
  std::chrono::steady_clock::time_point restUntil_;
  std::vector<std::int32_t> listed_;
  std::vector<std::int32_t> examined_;
  std::vector<pollfd> polled_;
};

}  // namespace zev::posix
