#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zev::netcat {

using BytesView = std::span<const std::uint8_t>;

/// Whoever standard input goes to.
class InputTaker {
 public:
  virtual ~InputTaker() = default;
  /// The next bytes of the input, in order; valid until the call returns.
  virtual void takeInput(BytesView piece) = 0;
  /// No further piece will come.
  virtual void endInput() = 0;
};

/// What somebody else's signal ends the program by: the person's (SIGINT) or the system's
/// (SIGTERM).
struct Interruption {
  int signal = 0;
};

/// What is left of an input, as far as can be told without waiting for more.
struct InputRest {
  std::uint64_t bytes = 0;  ///< that wait
  bool known = false;       ///< there are no others behind them
};

/// The three streams that a program has from its caller, and the loop that waits for the first one
/// as well as for the network.
class Terminal {
 public:
  virtual ~Terminal() = default;

  /// From now on standard input is read, in pieces of at most that many bytes; not after its end.
  virtual void readInput(InputTaker& taker, std::size_t longestPiece) = 0;
  /// From now on standard input stays unread.
  virtual void holdInput() = 0;
  /// What is left of standard input. Only once nobody reads it any more.
  virtual InputRest restOfInput() = 0;
  /// Writes all bytes to standard output, waiting for whoever reads it. Throws Failure, and
  /// Interruption.
  virtual void write(BytesView bytes) = 0;
  /// One line on standard error.
  virtual void tell(const std::string& line) = 0;
  /// Dispatches one message of the sockets or reads one piece of input; waits for that as many
  /// milliseconds at most, for ever if negative. Throws Interruption.
  virtual void dispatch(int milliseconds) = 0;
};

}  // namespace zev::netcat
