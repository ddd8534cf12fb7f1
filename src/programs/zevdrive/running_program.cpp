#include "programs/zevdrive/running_program.h"

#include <algorithm>

#include "win32/ansi.h"
#include "win32/control_windows.h"

namespace zev::drive {
namespace {

/// Between two looks, in milliseconds, and how many must show the same.
constexpr DWORD pause = 2;
constexpr int quietLooks = 6;
constexpr std::chrono::seconds longestUnseen{10};

/// As the shell does: the program begins in its own folder.
PROCESS_INFORMATION start(const Text& path) {
  Text command = join(u"\"", path, u"\"");
  const Text folder = path.substr(0, path.find_last_of(u'\\') + 1);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(win32::wide(path), reinterpret_cast<wchar_t*>(command.data()), nullptr,
                      nullptr, FALSE, 0, nullptr, win32::wide(folder), &startup, &process)) {
    throw DriveError("cannot start " + toUtf8(path) + ": error " + std::to_string(GetLastError()));
  }
  return process;
}

bool anyVisible(const scenario::Sight& sight) {
  return std::any_of(sight.begin(), sight.end(), [](const auto& form) { return form.visible; });
}

}  // namespace

RunningProgram::RunningProgram(const Text& path, std::vector<Form*> forms,
                               Clock::time_point deadline)
    : process_(start(path)), windows_(process_.dwThreadId, std::move(forms)), deadline_(deadline) {}

/// A program that is still there is ended by force: nothing is left of one play when the next
/// begins.
RunningProgram::~RunningProgram() {
  if (!over()) {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, 5000);
  }
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

bool RunningProgram::over() const {
  return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0;
}

void RunningProgram::requireTime(const char* what) const {
  if (Clock::now() > deadline_) throw DriveError(std::string(what) + " in time");
}

/// A program without any window is lost to the person in front of the screen.
void RunningProgram::requireWindow() {
  const bool shows = windows_.activeForm() != nullptr || windows_.box() != nullptr;
  if (shows) lastShown_ = Clock::now();
  if (Clock::now() - lastShown_ > longestUnseen) {
    throw DriveError("the program runs on without a window");
  }
}

/// Looks once more: true if nothing has changed, nothing waits to be painted and every window
/// answers.
bool RunningProgram::looksTheSame() {
  auto now = windows_.sight();
  if (!now || !anyVisible(*now)) return false;
  for (const Form* form : windows_.forms()) {
    const HWND window = windows_.windowOf(*form);
    if (window != nullptr && !ask(window, WM_NULL)) return false;
  }
  const bool same = *now == sight_ && !windows_.paints();
  sight_ = std::move(*now);
  return same;
}

/// A box ends the waiting as soon as it answers. Otherwise several looks in a row have to show the
/// same: a single one can fall between two messages.
Course RunningProgram::settle() {
  lastShown_ = Clock::now();
  for (int quiet = 0; quiet < quietLooks; Sleep(pause)) {
    requireTime("the program did not come to rest");
    if (over()) return Course::Ended;
    windows_.look();
    requireWindow();
    if (windows_.box() != nullptr && ask(windows_.box(), WM_NULL)) {
      if (auto now = windows_.sight()) {
        sight_ = std::move(*now);
        return Course::BoxOpen;
      }
    }
    const bool same = windows_.box() == nullptr && looksTheSame();
    quiet = same ? quiet + 1 : 0;
  }
  return Course::AtRest;
}

/// A box stays on the screen for a moment after its answer; read again, it would be answered twice.
void RunningProgram::waitUntilGone(HWND box) {
  while (IsWindow(box) && IsWindowVisible(box) && !over()) {
    requireTime("a box did not close");
    Sleep(1);
  }
}

void RunningProgram::waitForEnd() {
  while (!over()) {
    requireTime("the program did not end");
    Sleep(pause);
  }
}

}  // namespace zev::drive
