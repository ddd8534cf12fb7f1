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
constexpr DWORD giveReaderTime = 100;

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

BOOL WINAPI takeSignal(DWORD kind) {
  if (::InterlockedExchange(&cameSignal, kind == CTRL_C_EVENT || kind == CTRL_BREAK_EVENT
                                             ? interruptSignal
                                             : terminateSignal) != 0) {
    return FALSE;
  }
  ::SetEvent(signalled);
  // Behind this the system ends the process: the loop has a moment to tell the totals.
  if (kind != CTRL_C_EVENT && kind != CTRL_BREAK_EVENT) ::Sleep(1000);
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

}  // namespace

/// The thread reads a piece whenever one is wanted, and says when it is there. What it has read is
/// its own until then, and the terminal's behind that.
struct Win32Terminal::Reader {
  HANDLE wanted = newEvent(false);
  HANDLE ready = newEvent(true);
  bool reading = false;  ///< one is wanted and not there yet
  bool there = false;    ///< one was taken note of and not handed on yet
  bool ended = false;

  // Of the piece.
  std::vector<std::uint8_t> bytes;
  std::size_t size = 0;
  DWORD error = 0;

  void want(std::size_t longest) {
    bytes.resize(longest);
    reading = true;
    ::ResetEvent(ready);
    ::SetEvent(wanted);
  }
  /// Whether a piece is there, waiting for it that many milliseconds at most.
  bool isThere(DWORD milliseconds) {
    if (reading && ::WaitForSingleObject(ready, milliseconds) == WAIT_OBJECT_0) {
      reading = false;
      there = true;
    }
    return there;
  }

  static DWORD WINAPI run(void* reader) {
    Reader& self = *static_cast<Reader*>(reader);
    for (;;) {
      ::WaitForSingleObject(self.wanted, 0xFFFFFFFF);
      self.readPiece();
      ::SetEvent(self.ready);
    }
  }
  /// The end of a pipe comes as an error.
  void readPiece() {
    DWORD count = 0;
    const BOOL done = ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), bytes.data(),
                                 static_cast<DWORD>(bytes.size()), &count, nullptr);
    error = done != FALSE ? 0 : ::GetLastError();
    if (error == ERROR_BROKEN_PIPE || error == ERROR_HANDLE_EOF) error = 0;
    size = count;
  }
};

Win32Terminal::Win32Terminal(win32::SocketMachine& machine)
    : machine_(machine), reader_(*new Reader) {
  signalled = newEvent(true);
  ::SetConsoleCtrlHandler(takeSignal, TRUE);
  machine_.watch(signalled, [] { throw Interruption{static_cast<int>(cameSignal)}; });
  machine_.watch(reader_.ready, [this] { takePiece(); });
  DWORD number = 0;
  ::CloseHandle(::CreateThread(nullptr, 0, Reader::run, &reader_, 0, &number));
}

Win32Terminal::~Win32Terminal() {
  machine_.unwatch(signalled);
  machine_.unwatch(reader_.ready);
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
  ::ResetEvent(reader_.ready);
  if (taker_ == nullptr || !reader_.there) return;
  reader_.there = false;
  if (reader_.error != 0) fail(reader_.error, "standard input");
  if (reader_.size != 0) {
    return taker_->takeInput(BytesView(reader_.bytes).first(reader_.size));
  }
  reader_.ended = true;
  std::exchange(taker_, nullptr)->endInput();
}

InputRest Win32Terminal::restOfInput() {
  if (reader_.ended) return {0, true};
  if (!reader_.reading && !reader_.there) reader_.want(1);
  if (!reader_.isThere(giveReaderTime)) return {};
  if (reader_.size == 0) return {0, reader_.error == 0};
  InputRest rest{reader_.size, false};
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

// ---- output

void Win32Terminal::write(BytesView bytes) {
  const DWORD error = writeAll(STD_OUTPUT_HANDLE, bytes.data(), bytes.size());
  if (error != 0) fail(error, "standard output");
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
