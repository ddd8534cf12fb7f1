#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "platform/kernel.h"
#include "platform/message_windows.h"
#include "platform/sockets.h"

namespace zev::socket_bench {

/// A network and the thread that dispatches its notifications, as one binding has them. Each
/// program of tests links one binding's bench.
class Bench {
 public:
  virtual ~Bench() = default;

  /// Of the binding, for messages of the tests: "simulated", "posix", "win32", and "wine" where
  /// that is what the last one runs on.
  virtual std::string name() const = 0;
  virtual Sockets& sockets() = 0;
  virtual MessageWindows& windows() = 0;
  virtual Kernel& kernel() = 0;

  /// Dispatches one message that waits; if none does, waits for one, that many milliseconds at most
  /// (of the bench's own clock). True if a message was dispatched.
  virtual bool pump(int milliseconds) = 0;
  /// Queues a message as any other program could.
  virtual void post(const WindowMessage& message) = 0;

  /// From now on no socket more can be opened or accepted; or, with `full` false, as many as
  /// before.
  virtual void setFull(bool full) = 0;

  /// Whether code in that page of memory could run.
  virtual bool isExecutable(const std::uint8_t* address) = 0;

  /// Sockets that are open now, those of the bench itself left out; -1 if it cannot tell.
  virtual int openSockets() = 0;
  /// Windows that the tests have created and that are still there; -1 if it cannot tell.
  virtual int openWindows() = 0;
};

std::unique_ptr<Bench> makeBench();

}  // namespace zev::socket_bench
