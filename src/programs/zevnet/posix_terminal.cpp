#include "programs/zevnet/posix_terminal.h"

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iterator>
#include <system_error>

#include "programs/zevnet/failure.h"

namespace zev::netcat {
namespace {

[[noreturn]] void fail(int error, const char* stream) {
  throw Failure(error, std::generic_category().message(error), stream);
}

constexpr int endingSignals[] = {SIGINT, SIGTERM};

/// What whoever has a pipe is sure to take when there is room at all.
constexpr std::size_t smallPiece = PIPE_BUF;

/// The signal that has come, and what becomes readable by it: a handler gets nothing but its
/// number.
volatile std::sig_atomic_t cameSignal = 0;
volatile std::sig_atomic_t signalDescriptor = -1;

extern "C" void takeSignal(int signal) {
  const int error = errno;
  cameSignal = signal;
  ::eventfd_write(signalDescriptor, 1);
  errno = error;
}

/// A second signal is not taken any more; nor is one that somebody had ignored.
void takeSignals(int descriptor) {
  signalDescriptor = descriptor;
  for (const int signal : endingSignals) {
    struct sigaction before {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = takeSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigaction(signal, &action, nullptr);
  }
}

[[noreturn]] void interrupt() { throw Interruption{cameSignal}; }

bool isPlainFile(int descriptor, struct stat& status) {
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// Bytes of a plain file behind its place.
InputRest restOfFile(const struct stat& status) {
  const off_t place = ::lseek(STDIN_FILENO, 0, SEEK_CUR);
  return {static_cast<std::uint64_t>(std::max<off_t>(status.st_size - place, 0)), place >= 0};
}

}  // namespace

PosixTerminal::PosixTerminal(posix::Machine& machine)
    : machine_(machine), signals_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (signals_.get() < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
  std::signal(SIGPIPE, SIG_IGN);
  takeSignals(signals_.get());
  machine_.watch(signals_.get(), posix::Watch::reading, interrupt);
  struct stat status {};
  writesPieces_ = !isPlainFile(STDOUT_FILENO, status);
}

/// A signal that comes from now on ends the process.
PosixTerminal::~PosixTerminal() {
  holdInput();
  for (const int signal : endingSignals) {
    struct sigaction now {};
    ::sigaction(signal, nullptr, &now);
    if (now.sa_handler == takeSignal) std::signal(signal, SIG_DFL);
  }
  machine_.unwatch(signals_.get());
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

/// Of a plain file all the rest is known. Elsewhere what waits is, and an end that shows already.
InputRest PosixTerminal::restOfInput() {
  struct stat status {};
  if (isPlainFile(STDIN_FILENO, status)) return restOfFile(status);
  pollfd input{STDIN_FILENO, POLLIN, 0};
  if (::poll(&input, 1, 0) <= 0) return {};
  int waiting = 0;
  if (::ioctl(STDIN_FILENO, FIONREAD, &waiting) == 0 && waiting > 0) {
    return {static_cast<std::uint64_t>(waiting), false};
  }
  std::uint8_t next = 0;
  return {0, ::read(STDIN_FILENO, &next, sizeof next) == 0};
}

/// Waits until whoever reads standard output has room, or a signal comes.
void PosixTerminal::awaitReader() {
  pollfd both[] = {{STDOUT_FILENO, POLLOUT, 0}, {signals_.get(), POLLIN, 0}};
  while (::poll(both, std::size(both), -1) < 0 && errno == EINTR) {
  }
  if (both[1].revents != 0) interrupt();
}

/// In pieces that do not wait for a reader who reads nothing, so that a signal still ends it.
void PosixTerminal::write(BytesView bytes) {
  while (!bytes.empty()) {
    if (writesPieces_) awaitReader();
    const std::size_t size = writesPieces_ ? std::min(bytes.size(), smallPiece) : bytes.size();
    const ssize_t count = ::write(STDOUT_FILENO, bytes.data(), size);
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno != EINTR && errno != EAGAIN) {
      fail(errno, "standard output");
    }
  }
}

void PosixTerminal::tell(const std::string& line) { std::fputs((line + "\n").c_str(), stderr); }

void PosixTerminal::dispatch(int milliseconds) { machine_.dispatch(milliseconds); }

}  // namespace zev::netcat
