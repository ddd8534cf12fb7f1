#pragma once

#include <cstddef>
#include <cstdint>

#include "programs/zevnet/terminal.h"

namespace zev::netcat {

/// What goes on between standard input and output and some other machines. `settle` is called from
/// the top of the loop after each dispatch; sockets are closed and let go of nowhere else.
class Conversation : public InputTaker {
 public:
  /// Throws RuntimeError for what the sockets raise.
  virtual void begin() = 0;
  /// Whether there is somebody to send to, and nothing of the last piece waits any more.
  virtual bool wantsInput() const = 0;
  /// Bytes that one piece of input may have.
  virtual std::size_t longestPiece() const = 0;
  /// Does what the notifications of the last dispatch call for: ends and drops connections, sends
  /// what waited.
  virtual void settle() = 0;
  /// Whether nothing more can come: the program ends then.
  virtual bool over() const = 0;
  /// Milliseconds after which it has to be settled though nothing has happened; -1 for never.
  virtual int patience() const { return -1; }
  /// Ends all that still stands, and tells what was lost. Called once, last.
  virtual void end() = 0;
  /// Whether anything that was told was an error.
  virtual bool failed() const = 0;
  /// Bytes moved until now, in either direction.
  virtual std::uint64_t traffic() const = 0;
};

}  // namespace zev::netcat
