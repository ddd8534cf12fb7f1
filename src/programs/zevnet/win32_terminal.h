#pragma once

#include <memory>

#include "programs/zevnet/terminal.h"
#include "win32/socket_machine.h"

namespace zev::netcat {

/// The streams of a process on Windows. One a process. Standard input is read, and standard output
/// written, by a thread of its own: a console or a pipe cannot be waited for together with messages
/// and signals.
class Win32Terminal final : public Terminal {
 public:
  /// Borrows the machine, whose loop it uses. Ctrl-C, and the end of console or session, become an
  /// Interruption; the second one ends the process as if nobody took it.
  explicit Win32Terminal(win32::SocketMachine& machine);
  ~Win32Terminal() override;
  Win32Terminal(const Win32Terminal&) = delete;
  Win32Terminal& operator=(const Win32Terminal&) = delete;

  /// Nothing to do: streams that the process was started without fail when they are used.
  static void openMissingStreams() {}

  void readInput(InputTaker& taker, std::size_t longestPiece) override;
  void holdInput() override { taker_ = nullptr; }
  InputRest restOfInput() override;
  void write(BytesView bytes) override;
  void tell(const std::string& line) override;
  void dispatch(int milliseconds) override;

 private:
  struct Mover;
  struct Reader;
  struct Writer;

  void takePiece();

  win32::SocketMachine& machine_;
  // What a thread works on ends with the process.
  Reader& reader_;
  Writer& writer_;
  InputTaker* taker_ = nullptr;
  std::size_t longestPiece_ = 0;
};

}  // namespace zev::netcat
