#include "programs/zevnet/posix_terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "programs/zevnet/failure.h"

namespace zev::netcat {
namespace {

[[noreturn]] void fail(int error, const char* stream) {
  throw Failure(error, std::generic_category().message(error), stream);
}

/// Somebody has made the stream non-blocking, which concerns all who have it.
void waitForRoom(int descriptor) {
  pollfd room{descriptor, POLLOUT, 0};
  ::poll(&room, 1, -1);
}

}  // namespace

PosixTerminal::PosixTerminal(posix::Machine& machine) : machine_(machine) {
  std::signal(SIGPIPE, SIG_IGN);
}

void PosixTerminal::openMissingStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (::fcntl(descriptor, F_GETFD) < 0) ::open("/dev/null", O_RDONLY);
  }
}

void PosixTerminal::readInput(InputTaker& taker, std::size_t longestPiece) {
  if (reading_) return;
  reading_ = true;
  machine_.watch(STDIN_FILENO, posix::Watch::reading,
                 [this, &taker, longestPiece] { takePiece(taker, longestPiece); });
}

void PosixTerminal::holdInput() {
  if (reading_) machine_.unwatch(STDIN_FILENO);
  reading_ = false;
}

void PosixTerminal::takePiece(InputTaker& taker, std::size_t longestPiece) {
  piece_.resize(longestPiece);
  const ssize_t count = ::read(STDIN_FILENO, piece_.data(), piece_.size());
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
  if (count < 0) fail(errno, "standard input");
  if (count > 0) return taker.takeInput(BytesView(piece_).first(static_cast<std::size_t>(count)));
  holdInput();
  taker.endInput();
}

void PosixTerminal::write(BytesView bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      waitForRoom(STDOUT_FILENO);
    } else if (errno != EINTR) {
      fail(errno, "standard output");
    }
  }
}

void PosixTerminal::tell(const std::string& line) { std::fputs((line + "\n").c_str(), stderr); }

void PosixTerminal::dispatch(int milliseconds) { machine_.dispatch(milliseconds); }

}  // namespace zev::netcat
