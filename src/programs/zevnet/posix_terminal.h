#pragma once

#include "posix/descriptors.h"
#include "posix/machine.h"
#include "programs/zevnet/terminal.h"

namespace zev::netcat {

/// The streams of a POSIX process. One a process.
class PosixTerminal final : public Terminal {
 public:
  /// Borrows the machine, whose loop it uses. A stream that ended comes as an error from its call
  /// and not as a signal. SIGINT and SIGTERM become an Interruption; the second one ends the
  /// process as if nobody took them. Throws std::system_error if the system has no room.
  explicit PosixTerminal(posix::Machine& machine);
  ~PosixTerminal() override;
  PosixTerminal(const PosixTerminal&) = delete;
  PosixTerminal& operator=(const PosixTerminal&) = delete;

  /// Opens those of the three streams that the process was started without, so that nothing else
  /// takes their numbers; writing to them fails. Before anything else is opened.
  static void openMissingStreams();

  void readInput(InputTaker& taker, std::size_t longestPiece) override;
  void holdInput() override;
  InputRest restOfInput() override;
  void write(BytesView bytes) override;
  void tell(const std::string& line) override;
  void dispatch(int milliseconds) override;

 private:
  void awaitReader();
  void takePiece(InputTaker& taker, std::size_t longestPiece);

  posix::Machine& machine_;
  posix::Descriptor signals_;
  bool writesPieces_ = true;
  bool reading_ = false;
  std::vector<std::uint8_t> piece_;
};

}  // namespace zev::netcat
