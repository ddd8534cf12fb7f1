#pragma once

#include <netinet/in.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform/sockets.h"

namespace zev::posix {

/// What a look-up has found.
struct Host {
  std::int32_t error = 0;  ///< a Winsock number; 0: the rest is there
  std::string name;
  std::vector<in_addr> addresses;
};

/// Bytes of a host's record with all that it points to, wherever it begins.
std::size_t recordSize(const Host& host);

/// Lays a host's record down in at least that many bytes. The record stands at their beginning.
void writeRecord(const Host& host, void* buffer);

/// Asks the system for a host's addresses, as long as that takes. A dotted address is its own
/// answer. The machine's own name, which an empty one means too, answers with the addresses of its
/// interfaces if the system knows none for it that reaches further than the machine itself.
Host lookUp(const std::string& name);

/// The machine's name.
std::string ownName();

/// Look-ups that run beside the thread that dispatches, a few at once; the others wait their turn.
/// All calls are on that thread.
class LookUps {
 public:
  using Resolver = std::function<Host(const std::string&)>;

  struct Answer {
    std::int32_t handle = 0;
    Host host;
  };

  /// Look-ups that run at once.
  static constexpr std::size_t mostThreads = 4;

  /// The resolver is called on several threads. Throws std::system_error if the system has no room.
  explicit LookUps(Resolver resolver);
  LookUps(const LookUps&) = delete;
  LookUps& operator=(const LookUps&) = delete;
  /// Ends the threads. One whose system call does not return within two seconds is left behind; it
  /// touches nothing any more.
  ~LookUps();

  /// Can be read from while answers wait.
  int descriptor() const;
  /// The handle of a new look-up; 0 if the system has no thread for it. Handles count up from 1.
  std::int32_t start(std::string name);
  /// Takes back a look-up, if it has not begun.
  void forget(std::int32_t handle);
  /// The look-ups that have ended since the last call.
  std::vector<Answer> take();

 private:
  struct Shared;

  static void work(const std::shared_ptr<Shared>& shared);
  bool provideThread();

  std::shared_ptr<Shared> shared_;
  std::vector<std::thread> threads_;
  std::int32_t lastHandle_ = 0;
};

}  // namespace zev::posix
