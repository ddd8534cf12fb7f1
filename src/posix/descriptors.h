#pragma once

#include <sys/epoll.h>

#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace zev::posix {

/// A file descriptor and its only owner.
class Descriptor {
 public:
  Descriptor() = default;
  /// Takes the descriptor over; -1 is none.
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  int get() const { return number_; }
  /// Closes it now. The error number of the system, 0 on success; it is gone in either case.
  int close();

 private:
  int number_ = -1;
};

/// What a token of the poller is about.
enum class Subject : std::uint32_t { socket, lookUps, watch };

/// Tells one watched descriptor from the others.
struct Token {
  Subject subject = Subject::socket;
  std::uint32_t number = 0;  ///< of the socket or the watch
};

/// What became of a descriptor: bits of EPOLLIN and its like, which poll has as well.
struct Readiness {
  Token token;
  std::uint32_t events = 0;
};

/// The set of descriptors that the thread waits for. A descriptor that is closed leaves it.
class Poller {
 public:
  /// Throws std::system_error if the system has no room for it.
  Poller();

  /// False, with errno, if the system refuses. Adding and renewing report what is there already,
  /// too.
  bool add(int descriptor, std::uint32_t events, Token token);
  /// Watches a descriptor anew that is watched already.
  bool renew(int descriptor, std::uint32_t events, Token token);
  /// Stops watching; nothing happens for one that is not watched.
  void remove(int descriptor);

  /// What has become ready, waiting for it that many milliseconds at most (for ever if negative).
  /// Lasts until the next call. A signal ends the waiting.
  std::span<const Readiness> wait(int milliseconds);

 private:
  bool control(int operation, int descriptor, std::uint32_t events, Token token);

  Descriptor epoll_;
  std::vector<epoll_event> events_;
  std::vector<Readiness> ready_;
};

}  // namespace zev::posix
