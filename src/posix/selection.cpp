#include "posix/selection.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "posix/translation.h"

namespace zev::posix {
namespace {

/// What the poller is asked for: edges, of everything that an event can come of.
constexpr std::uint32_t changes = EPOLLIN | EPOLLOUT | EPOLLPRI | EPOLLRDHUP | EPOLLET;
/// What a second look asks for. Room to send is left out: the poller reports that by itself.
constexpr short looks = POLLIN | POLLPRI | POLLRDHUP;
static_assert(EPOLLIN == POLLIN && EPOLLPRI == POLLPRI && EPOLLOUT == POLLOUT &&
              EPOLLERR == POLLERR && EPOLLHUP == POLLHUP && EPOLLRDHUP == POLLRDHUP);

/// A notification's lParam: the event in the low word, its error number in the high one.
constexpr int errorShift = 16;

/// How many reads in a row are offered without a look at the other sockets.
constexpr int longestReadingOn = 8;

/// How long a listener rests before the next try, if no socket is closed meanwhile.
constexpr std::chrono::milliseconds restTime(250);

/// The error that the system keeps for a socket, which forgets it by that; 0 if there is none.
int takeError(const OpenSocket& socket) {
  int error = 0;
  socklen_t size = sizeof error;
  const int result = ::getsockopt(socket.descriptor.get(), SOL_SOCKET, SO_ERROR, &error, &size);
  return result == 0 ? error : errno;
}

bool makeNonBlocking(int descriptor) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  return flags >= 0 && ::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK) == 0;
}

Token tokenOf(const OpenSocket& socket) {
  return {Subject::socket, static_cast<std::uint32_t>(socket.handle)};
}

/// Whether one more socket can be opened. Only trying shows it.
bool hasRoom() {
  const Descriptor probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  return probe.get() >= 0;
}

/// Whether the error says that the connection had been made and the peer then reset it.
bool isReset(int error) { return error == ECONNRESET || error == EPIPE; }

}  // namespace

// ---- selecting

/// Offers nothing by itself: renewing makes the poller report what is ready already.
bool Selection::select(OpenSocket& socket, WindowHandle window, std::uint32_t message,
                       std::int32_t mask) {
  const int descriptor = socket.descriptor.get();
  if (!socket.nonBlocking && !makeNonBlocking(descriptor)) return false;
  socket.nonBlocking = true;
  socket.window = window;
  socket.message = message;
  socket.mask = mask;
  socket.posted = 0;
  const bool done = socket.watched ? poller_.renew(descriptor, changes, tokenOf(socket))
                                   : poller_.add(descriptor, changes, tokenOf(socket));
  socket.watched = socket.watched || done;
  return done;
}

bool Selection::inherit(OpenSocket& accepted, const OpenSocket& listener) {
  accepted.nonBlocking = listener.nonBlocking;
  return !listener.nonBlocking ||
         select(accepted, listener.window, listener.message, listener.mask);
}

// ---- what the system tells

void Selection::notice(std::int32_t handle, std::uint32_t events) {
  OpenSocket* const socket = table_.find(handle);
  if (socket != nullptr) examine(*socket, events);
}

/// Asks about all listed sockets in one call. None is listed any more when the first is examined,
/// since that may list it again.
void Selection::examineAgain() {
  readOn_ = 0;
  tryResting();
  if (listed_.empty()) return;
  examined_.clear();
  polled_.clear();
  for (const std::int32_t handle : listed_) {
    OpenSocket* const socket = table_.find(handle);
    if (socket == nullptr) continue;
    socket->listed = false;
    examined_.push_back(handle);
    polled_.push_back({socket->descriptor.get(), looks, 0});
  }
  listed_.clear();
  if (::poll(polled_.data(), polled_.size(), 0) <= 0) return;
  for (std::size_t i = 0; i < polled_.size(); ++i) {
    if (polled_[i].revents != 0) {
      notice(examined_[i], static_cast<std::uint32_t>(polled_[i].revents));
    }
  }
}

/// One report can hold for two phases: a connecting that has ended, and what came over it since.
void Selection::examine(OpenSocket& socket, std::uint32_t events) {
  if (!socket.stream) return examineDatagrams(socket, events);
  if (socket.phase == Phase::connecting && (events & (EPOLLOUT | EPOLLERR | EPOLLHUP)) != 0) {
    concludeConnecting(socket);
  }
  if (socket.phase == Phase::connected) examineConnection(socket, events);
  if (socket.phase == Phase::listening && (events & EPOLLIN) != 0) {
    offer(socket, winsock::fdAccept);
  }
}

/// The error is taken before anything is offered, since FD_CLOSE carries it.
void Selection::examineConnection(OpenSocket& socket, std::uint32_t events) {
  if ((events & EPOLLERR) != 0 && socket.failure == 0) {
    const int error = takeError(socket);
    if (error != 0) socket.failure = winsockError(error);
  }
  if ((events & EPOLLPRI) != 0) socket.urgent = true;
  if ((events & (EPOLLRDHUP | EPOLLHUP)) != 0) socket.hungUp = true;
  if ((events & EPOLLOUT) != 0 && (events & EPOLLHUP) == 0) offer(socket, winsock::fdWrite);
  if (socket.hungUp) {
    offerRest(socket);
  } else if ((events & EPOLLIN) != 0) {
    offer(socket, winsock::fdRead);
  }
}

/// An error of a datagram socket is offered as FD_READ, since it is the next read that reports it.
void Selection::examineDatagrams(OpenSocket& socket, std::uint32_t events) {
  if ((events & EPOLLOUT) != 0) offer(socket, winsock::fdWrite);
  if ((events & (EPOLLIN | EPOLLERR)) != 0) offer(socket, winsock::fdRead);
}

/// A connection that was made and is reset already counts as made, so that what came over it can
/// still be read; the reset follows as the error of FD_CLOSE.
void Selection::concludeConnecting(OpenSocket& socket) {
  const int error = takeError(socket);
  if (isReset(error)) socket.failure = winsockError(error);
  connected(socket, error == 0 || isReset(error) ? 0 : winsockError(error));
}

// ---- what the calls tell

void Selection::connecting(OpenSocket& socket) {
  socket.phase = Phase::connecting;
  socket.posted = 0;
  socket.silent = false;
  socket.hungUp = false;
  socket.failure = 0;
}

void Selection::connected(OpenSocket& socket, std::int32_t error) {
  socket.phase = error == 0 ? Phase::connected : Phase::idle;
  offer(socket, winsock::fdConnect, error);
}

void Selection::accepted(OpenSocket& socket) {
  socket.posted &= ~winsock::fdAccept;
  examineLater(socket);
}

/// FD_ACCEPT counts as posted and unanswered, so that new connections do not bring it.
void Selection::rest(OpenSocket& listener) {
  if (resting_.empty()) restUntil_ = std::chrono::steady_clock::now() + restTime;
  if (std::find(resting_.begin(), resting_.end(), listener.handle) != resting_.end()) return;
  listener.posted |= winsock::fdAccept;
  resting_.push_back(listener.handle);
}

void Selection::endRest() {
  for (const std::int32_t handle : std::exchange(resting_, {})) {
    OpenSocket* const listener = table_.find(handle);
    if (listener != nullptr) accepted(*listener);
  }
}

int Selection::restLeft() const {
  if (resting_.empty()) return -1;
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(restUntil_ - std::chrono::steady_clock::now());
  return static_cast<int>(std::max<decltype(left)::rep>(left.count(), 0));
}

/// There may be room though no socket was closed here: descriptors are also freed by others, in
/// this process or any other.
void Selection::tryResting() {
  if (restLeft() != 0) return;
  if (hasRoom()) return endRest();
  restUntil_ = std::chrono::steady_clock::now() + restTime;
}

/// Urgent data stops a read early, so that "all that was there" cannot be trusted then. After the
/// last byte of a peer that has closed, FD_CLOSE is due, which no further report would bring.
void Selection::read(OpenSocket& socket, Left left) {
  socket.posted &= ~winsock::fdRead;
  if (left == Left::More && readOn_ < longestReadingOn) {
    ++readOn_;
    offer(socket, winsock::fdRead);
  } else if (left != Left::Nothing || socket.urgent) {
    examineLater(socket);
  } else if (socket.hungUp) {
    offer(socket, winsock::fdClose, socket.failure);
  }
}

void Selection::ended(OpenSocket& socket, std::int32_t error) {
  socket.hungUp = true;
  if (socket.failure == 0) socket.failure = error;
}

void Selection::full(OpenSocket& socket) { socket.posted &= ~winsock::fdWrite; }

// ---- posting

/// The only place that posts: no event that was not asked for, and none that is still unanswered.
void Selection::offer(OpenSocket& socket, std::int32_t event, std::int32_t error) {
  if ((socket.mask & event) == 0 || (socket.posted & event) != 0) return;
  socket.posted |= event;
  queue_.post({socket.window, socket.message, static_cast<std::uintptr_t>(socket.handle),
               static_cast<std::intptr_t>(static_cast<std::uint32_t>(error) << errorShift |
                                          static_cast<std::uint32_t>(event))});
}

/// For a peer that will send nothing more: FD_READ while bytes are left, and only then FD_CLOSE.
void Selection::offerRest(OpenSocket& socket) {
  if (hasUnread(socket)) {
    offer(socket, winsock::fdRead);
  } else {
    offer(socket, winsock::fdClose, socket.failure);
  }
}

void Selection::examineLater(OpenSocket& socket) {
  if (socket.mask == 0 || socket.listed) return;
  socket.listed = true;
  listed_.push_back(socket.handle);
}

/// Looks at the next byte without taking it. After the last byte this is also where the system
/// reports a reset, which becomes the error of FD_CLOSE.
bool Selection::hasUnread(OpenSocket& socket) {
  char next = 0;
  const ssize_t count =
      ::recv(socket.descriptor.get(), &next, sizeof next, MSG_PEEK | MSG_DONTWAIT);
  if (count < 0 && errno != EAGAIN && errno != EINTR && socket.failure == 0) {
    socket.failure = winsockError(errno);
  }
  return count > 0;
}

}  // namespace zev::posix
