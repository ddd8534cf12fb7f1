#pragma once

#include <cstdint>
#include <deque>

#include "platform/sockets.h"
#include "posix/descriptors.h"

namespace zev::posix {

/// How far a socket has come. Of datagram sockets: whether they have one fixed receiver.
enum class Phase { idle, connecting, connected, listening };

/// An open socket: what the system does not tell of it, or tells in another way than Winsock.
struct OpenSocket {
  std::int32_t handle = winsock::noSocket;  ///< noSocket: this place is free
  Descriptor descriptor;
  bool stream = true;
  Phase phase = Phase::idle;

  bool named = false;     ///< it has a local address
  bool reserves = false;  ///< `local`, given by `bind`: no other socket may bind that
  SocketAddress local;

  WindowHandle window = 0;
  std::uint32_t message = 0;
  std::int32_t mask = 0;
  bool nonBlocking = false;
  bool watched = false;     ///< the poller knows it
  std::int32_t posted = 0;  ///< events that were posted and that no call has answered yet

  bool silent = false;       ///< sends nothing more
  bool hungUp = false;       ///< nothing more will come from the peer
  bool urgent = false;       ///< the peer has sent urgent data, at which reading stops early
  bool listed = false;       ///< waits to be examined
  bool tellsRest = false;    ///< each read tells how many bytes it has left
  std::int32_t failure = 0;  ///< why the connection broke
};

/// All open sockets by their handles. A handle names one socket alone: it does not come back when
/// that one is closed and another one takes its place, not for the next 32,767 that do.
class SocketTable {
 public:
  /// A place for a socket; null if all are taken.
  OpenSocket* add(Descriptor descriptor, bool stream);
  /// Null if there is no such socket.
  OpenSocket* find(std::int32_t handle);
  /// Closes a socket and frees its place. The error number of the system, 0 on success.
  int remove(OpenSocket& socket);
  /// Closes all sockets, whatever the system says to that.
  void removeAll();

  /// Whether all places are taken.
  bool full() const;
  /// Sockets that are open. begin() and end() pass over free places as well, whose handle is
  /// `noSocket`.
  std::size_t size() const { return places_.size() - free_.size(); }
  auto begin() { return places_.begin(); }
  auto end() { return places_.end(); }

 private:
  struct Place : OpenSocket {
    std::int32_t next = 0;  ///< the handle of the next socket here
  };

  Place* freePlace();

  std::deque<Place> places_;  // which never moves
  std::deque<std::size_t> free_;
};

}  // namespace zev::posix
