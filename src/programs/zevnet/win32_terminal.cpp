#include "programs/zevnet/win32_terminal.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "programs/zevnet/failure.h"
#include "win32/windows_api.h"

namespace zev::netcat {
namespace {

constexpr int interruptSignal = 2;   // SIGINT, as scripts know it
constexpr int terminateSignal = 15;  // SIGTERM
constexpr DWORD forEver = 0xFFFFFFFF;

/// Milliseconds after which a read that has brought nothing is taken for one that waits. The time
/// is that of a busy machine, which may wake the reading thread late.
constexpr DWORD readerWakes = 1000;

/// Milliseconds that the system gives a process, at most, when it closes its console or session.
constexpr DWORD systemWaits = 5000;

/// The text that the system has for one of its errors.
std::string textOf(DWORD error) {
  char text[256] = {};
  const DWORD size = ::FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                      nullptr, error, 0, text, sizeof text, nullptr);
  std::string whole(text, size);
  while (!whole.empty() && (whole.back() == '\n' || whole.back() == '\r')) whole.pop_back();
  return whole;
}

[[noreturn]] void fail(DWORD error, const char* stream) {
  throw Failure(static_cast<std::int32_t>(error), textOf(error), stream);
}

/// What is told by a thread of the system's: the signal that has come, and that one has.
HANDLE signalled = nullptr;
volatile LONG cameSignal = 0;

[[noreturn]] void interrupt() { throw Interruption{static_cast<int>(cameSignal)}; }

/// After the end of console or session the system ends the process when this returns: the loop has
/// until then to tell the totals, and ends the process itself.
BOOL WINAPI takeSignal(DWORD kind) {
  const bool byPerson = kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT;
  const LONG signal = byPerson ? interruptSignal : terminateSignal;
  if (::InterlockedExchange(&cameSignal, signal) != 0) return FALSE;
  ::SetEvent(signalled);
  if (!byPerson) ::Sleep(systemWaits);
  return TRUE;
}

HANDLE newEvent(bool manual) { return ::CreateEventA(nullptr, manual, FALSE, nullptr); }

/// Writes all bytes; the error, or 0.
DWORD writeAll(DWORD stream, const void* bytes, std::size_t size) {
  const auto* next = static_cast<const char*>(bytes);
  while (size != 0) {
    constexpr std::size_t most = 65536;
    DWORD written = 0;
    if (::WriteFile(::GetStdHandle(stream), next, static_cast<DWORD>(std::min(size, most)),
                    &written, nullptr) == FALSE) {
      return ::GetLastError();
    }
    next += written;
    size -= written;
  }
  return 0;
}

bool isConsole(DWORD stream) {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(stream), &mode) != FALSE;
}

/// Bytes of standard input that wait after a piece. Not while somebody reads: the system would
/// make this wait for the end of that read.
InputRest restBehind(std::size_t piece) {
  InputRest rest{piece, false};
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  DWORD waiting = 0;
  LARGE_INTEGER size{}, place{};
  if (::GetFileType(input) == FILE_TYPE_DISK && ::GetFileSizeEx(input, &size) != FALSE &&
      ::SetFilePointerEx(input, LARGE_INTEGER{}, &place, FILE_CURRENT) != FALSE) {
    rest.bytes += static_cast<std::uint64_t>(size.QuadPart - place.QuadPart);
    rest.known = true;
  } else if (::PeekNamedPipe(input, nullptr, 0, nullptr, &waiting, nullptr) != FALSE) {
    rest.bytes += waiting;
  }
  return rest;
}

}  // namespace

/// A thread that moves a piece whenever it is told to. The piece is its own from then until `done`
/// is signalled. A move may last for ever, so thread and piece end with the process.
struct Win32Terminal::Mover {
  using Move = void (*)(Mover&);

  Mover(Move moves, const char* stream) : move(moves) {
    DWORD number = 0;
    const HANDLE thread = ::CreateThread(nullptr, 0, run, this, 0, &number);
    if (thread == nullptr) fail(::GetLastError(), stream);
    ::CloseHandle(thread);
  }

  void begin() {
    ::ResetEvent(done);
    ::SetEvent(wanted);
  }

  static DWORD WINAPI run(void* mover) {
    Mover& self = *static_cast<Mover*>(mover);
    for (;;) {
      ::WaitForSingleObject(self.wanted, forEver);
      self.move(self);
      ::SetEvent(self.done);
    }
  }

  const Move move;
  HANDLE wanted = newEvent(false);
  HANDLE done = newEvent(true);

  // Of the piece.
  std::vector<std::uint8_t> bytes;
  std::size_t size = 0;  ///< that were read
  DWORD error = 0;
};

struct Win32Terminal::Reader : Mover {
  Reader() : Mover(readPiece, "standard input") {}

  void want(std::size_t longest) {
    bytes.resize(longest);
    reading = true;
    begin();
  }
  /// Whether a piece is there, waiting for it that many milliseconds at most.
  bool isThere(DWORD milliseconds) {
    if (reading && ::WaitForSingleObject(done, milliseconds) == WAIT_OBJECT_0) {
      reading = false;
      there = true;
    }
    return there;
  }

  /// The end of a pipe comes as an error. Ctrl-C ends the read of a console with nothing, which is
  /// no end of the input.
  static void readPiece(Mover& self) {
    DWORD count = 0, error = 0;
    BOOL done = FALSE;
    do {
      ::SetLastError(0);
      done = ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), self.bytes.data(),
                        static_cast<DWORD>(self.bytes.size()), &count, nullptr);
      error = ::GetLastError();
    } while (count == 0 && error == ERROR_OPERATION_ABORTED);
    const bool isEnd = error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF;
    self.error = done != FALSE || isEnd ? 0 : error;
    self.size = count;
  }

  const bool ofConsole = isConsole(STD_INPUT_HANDLE);
  bool reading = false;  ///< one is wanted and not there yet
  bool there = false;    ///< one was taken note of and not handed on yet
  bool ended = false;
};

struct Win32Terminal::Writer : Mover {
  Writer() : Mover(writePiece, "standard output") {}

  static void writePiece(Mover& self) {
    self.error = writeAll(STD_OUTPUT_HANDLE, self.bytes.data(), self.bytes.size());
  }
};

Win32Terminal::Win32Terminal(win32::SocketMachine& machine)
    : machine_(machine), reader_(*new Reader), writer_(*new Writer) {
  signalled = newEvent(true);
  ::SetConsoleCtrlHandler(takeSignal, TRUE);
  machine_.watch(signalled, interrupt);
  machine_.watch(reader_.done, [this] { takePiece(); });
}

Win32Terminal::~Win32Terminal() {
  machine_.unwatch(signalled);
  machine_.unwatch(reader_.done);
  ::SetConsoleCtrlHandler(takeSignal, FALSE);
}

// ---- input

void Win32Terminal::readInput(InputTaker& taker, std::size_t longestPiece) {
  taker_ = &taker;
  longestPiece_ = longestPiece;
}

/// A piece that came when nobody wanted it any more stays until somebody does.
void Win32Terminal::takePiece() {
  reader_.isThere(0);
  ::ResetEvent(reader_.done);
  if (taker_ == nullptr || !reader_.there) return;
  reader_.there = false;
  if (reader_.error != 0) fail(reader_.error, "standard input");
  if (reader_.size != 0) {
    return taker_->takeInput(BytesView(reader_.bytes).first(reader_.size));
  }
  reader_.ended = true;
  std::exchange(taker_, nullptr)->endInput();
}

/// Nobody knows what a person will type, and to wait for it would hold up the end.
InputRest Win32Terminal::restOfInput() {
  if (reader_.ended) return {0, true};
  if (reader_.ofConsole) return {};
  if (!reader_.reading && !reader_.there) reader_.want(1);
  if (!reader_.isThere(readerWakes)) return {};
  if (reader_.size == 0) return {0, reader_.error == 0};
  return restBehind(reader_.size);
}

// ---- output

/// By a thread, so that a signal ends it while whoever reads standard output reads nothing.
void Win32Terminal::write(BytesView bytes) {
  writer_.bytes.assign(bytes.begin(), bytes.end());
  writer_.begin();
  const HANDLE either[] = {writer_.done, signalled};
  if (::WaitForMultipleObjects(2, either, FALSE, forEver) != WAIT_OBJECT_0) interrupt();
  if (writer_.error != 0) fail(writer_.error, "standard output");
}

void Win32Terminal::tell(const std::string& line) {
  const std::string whole = line + "\n";
  writeAll(STD_ERROR_HANDLE, whole.data(), whole.size());
}

// ---- the loop

void Win32Terminal::dispatch(int milliseconds) {
  if (taker_ != nullptr && reader_.there) return takePiece();
  if (taker_ != nullptr && !reader_.reading && !reader_.ended) reader_.want(longestPiece_);
  machine_.dispatch(milliseconds);
}

}  // namespace zev::netcat
