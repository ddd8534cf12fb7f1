#include "simulated/simulated_processes.h"

#include <algorithm>

#include "runtime/error.h"

namespace zev::simulated {

// ---- the windows of the desktop

namespace {

constexpr WindowHandle firstForeignWindow = 0x10010;
constexpr WindowHandle windowHandleStep = 2;

auto byHandle(WindowHandle handle) {
  return [handle](const auto& window) { return window.handle == handle; };
}

}  // namespace

std::vector<SimulatedWindows::Window> SimulatedWindows::desktop() const {
  std::vector<Window> windows;
  WindowHandle handle = firstForeignWindow;
  for (const Text& title : machine_.settings.windows) {
    windows.push_back({handle, title});
    handle += windowHandleStep;
  }
  const std::vector<Form*>& forms = screen_.application().forms();
  for (auto form = forms.rbegin(); form != forms.rend(); ++form) {
    windows.push_back({screen_.windowHandle(**form), (*form)->Caption.get()});
  }
  return windows;
}

std::optional<SimulatedWindows::Window> SimulatedWindows::find(WindowHandle window) const {
  const std::vector<Window> windows = desktop();
  const auto found = std::find_if(windows.begin(), windows.end(), byHandle(window));
  return found == windows.end() ? std::nullopt : std::optional(*found);
}

WindowHandle SimulatedWindows::GetWindow(WindowHandle window, std::uint32_t command) {
  const std::vector<Window> windows = desktop();
  const auto found = std::find_if(windows.begin(), windows.end(), byHandle(window));
  if (found == windows.end()) return 0;
  if (command == GW_HWNDFIRST) return windows.front().handle;
  if (command != GW_HWNDNEXT || std::next(found) == windows.end()) return 0;
  return std::next(found)->handle;
}

std::int32_t SimulatedWindows::GetWindowTextLengthA(WindowHandle window) {
  const auto found = find(window);
  return found ? static_cast<std::int32_t>(machine_.toAnsi(found->title).size()) : 0;
}

std::int32_t SimulatedWindows::GetWindowTextA(WindowHandle window, Text& buffer,
                                              std::int32_t size) {
  const auto found = find(window);
  if (!found || size <= 0) return 0;
  const std::string title =
      machine_.toAnsi(found->title).substr(0, static_cast<std::size_t>(size) - 1);
  return static_cast<std::int32_t>(writeAnswer(buffer, title, machine_.codePage()));
}

bool SimulatedWindows::SetForegroundWindow(WindowHandle window) { return find(window).has_value(); }

bool SimulatedWindows::BringWindowToTop(WindowHandle window) { return find(window).has_value(); }

// ---- programs and time

namespace {

constexpr std::uint32_t waitDone = 0;
constexpr std::uint32_t waitTimeout = 258;
constexpr std::uint32_t waitFailed = 0xFFFFFFFF;
constexpr std::int32_t processStep = 4;
constexpr std::intptr_t executed = 42;  // above 32: success

bool hasExtension(TextView path) {
  const std::size_t name = path.find_last_of(u"\\/:") + 1;
  return path.find(u'.', name) != TextView::npos;
}

Text folderOf(const Text& path) {
  const std::size_t end = path.find_last_of(u'\\');
  if (end == Text::npos) return {};
  const bool root = end == 2;
  return path.substr(0, root ? 3 : end);
}

}  // namespace

// ---- starting

bool SimulatedProcesses::isProgram(TextView path) const {
  if (machine_.program(path) != nullptr) return true;
  std::uint32_t attributes = 0;
  const SystemError error = files_.GetFileAttributesA(path, attributes);
  return error == system_error::success && (attributes & file_attribute::directory) == 0;
}

/// The program of that name as the system looks for it: with its extension, and a bare name in the
/// folder of the own program, in the system's and in that of Windows.
std::optional<Text> SimulatedProcesses::existing(TextView program) {
  const Text name = hasExtension(program) ? Text(program) : join(program, u".exe");
  if (name.find_first_of(u"\\/:") != Text::npos) {
    return isProgram(name) ? std::optional(name) : std::nullopt;
  }
  const FolderSettings& folders = machine_.settings.folders;
  for (const std::optional<Text>& folder :
       {std::optional(ownFolder()), folders.system, folders.windows}) {
    const Text path = folder ? join(withoutTrailing(*folder, u'\\'), u"\\", name) : Text();
    if (folder && isProgram(path)) return path;
  }
  return std::nullopt;
}

/// The program of a command line: what is quoted, or the shortest beginning up to a blank that is a
/// program.
std::optional<Text> SimulatedProcesses::programOf(TextView commandLine) {
  const TextView line = ltrim(commandLine);
  if (line.starts_with(u'"')) return existing(line.substr(1, line.find(u'"', 1) - 1));
  for (std::size_t end = line.find(u' ');; end = line.find(u' ', end + 1)) {
    if (auto program = existing(line.substr(0, end))) return program;
    if (end == TextView::npos) return std::nullopt;
  }
}

std::int32_t SimulatedProcesses::start(const Text& program, TextView commandLine) {
  const ProgramSettings* known = machine_.program(program);
  const ProgramSettings settings = known == nullptr ? ProgramSettings{} : *known;
  if (!settings.starts) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  if (settings.running) {
    Path path;
    parsePath(program, machine_.currentFolder(), path);
    machine_.running.insert(upperCase(path.text()));
  }
  lastProcess_ += processStep;
  started_[lastProcess_] = {Text(commandLine), settings, machine_.clock() + settings.duration};
  return lastProcess_;
}

void SimulatedProcesses::recordShell(TextView commandLine, std::int32_t style, std::int32_t error) {
  const Text line = machine_.throughAnsi(beforeNul(commandLine));
  const Start asked{line, style, machine_.currentFolder().text()};
  machine_.records.shell.push_back(asked);
  if (error == 0) machine_.happened.started.push_back(asked);
  if (!machine_.transcript.wants("shell")) return;
  machine_.transcript.add(
      {{"event", "shell"}, {"command", toUtf8(line)}, {"style", style}, {"error", error}});
}

std::int32_t SimulatedProcesses::Shell(TextView commandLine, std::int32_t style) {
  const Text line = machine_.throughAnsi(beforeNul(commandLine));
  try {
    const std::optional<Text> program = programOf(line);
    if (!program) throw RuntimeError(ErrorNumber::FileNotFound);
    const std::int32_t process = start(*program, line);
    recordShell(line, style, 0);
    return process;
  } catch (const RuntimeError& error) {
    recordShell(line, style, error.number());
    throw;
  }
}

// ---- processes

ProcessHandle SimulatedProcesses::OpenProcess(std::uint32_t, bool, std::int32_t process) {
  const auto found = started_.find(process);
  if (found == started_.end() || !found->second.program.opens) return 0;
  handles_[++lastHandle_] = process;
  return lastHandle_;
}

std::uint32_t SimulatedProcesses::WaitForSingleObject(ProcessHandle handle,
                                                      std::uint32_t milliseconds) {
  const auto found = handles_.find(handle);
  if (found == handles_.end()) return waitFailed;
  const Started& started = started_.at(found->second);
  if (machine_.transcript.wants("wait")) {
    machine_.transcript.add({{"event", "wait"}, {"command", toUtf8(started.commandLine)}});
  }
  const bool inTime = milliseconds == INFINITE || machine_.clock() + milliseconds >= started.ends;
  const std::uint64_t left = started.ends - std::min(started.ends, machine_.clock());
  machine_.network.advance(inTime ? left : milliseconds);
  return inTime ? waitDone : waitTimeout;
}

void SimulatedProcesses::CloseHandle(ProcessHandle process) { handles_.erase(process); }

void SimulatedProcesses::Sleep(std::uint32_t milliseconds) {
  machine_.network.advance(milliseconds);
  if (machine_.transcript.wants("sleep")) {
    machine_.transcript.add({{"event", "sleep"}, {"ms", milliseconds}});
  }
}

std::uint32_t SimulatedProcesses::GetTickCount() {
  machine_.network.advance(1);
  return static_cast<std::uint32_t>(machine_.clock());
}

std::intptr_t SimulatedProcesses::ShellExecuteA(WindowHandle, TextView, TextView file, TextView,
                                                TextView directory, std::int32_t show) {
  const Text path = machine_.throughAnsi(beforeNul(file));
  std::uint32_t attributes = 0;
  const SystemError error = files_.GetFileAttributesA(path, attributes);
  if (error != system_error::success) return static_cast<std::intptr_t>(error);
  const Start opened{path, show, machine_.throughAnsi(beforeNul(directory))};
  machine_.records.opened.push_back(opened);
  machine_.happened.opened.push_back(opened);
  if (machine_.transcript.wants("open")) {
    machine_.transcript.add({{"event", "open"}, {"path", toUtf8(path)}});
  }
  return executed;
}

// ---- the own program

Text SimulatedProcesses::ownPath() {
  return machine_.throughAnsi(machine_.givenPath(machine_.settings.installer));
}

Text SimulatedProcesses::ownFolder() { return folderOf(ownPath()); }

Text SimulatedProcesses::ownName() {
  const Text path = ownPath();
  const Text name = path.substr(path.find_last_of(u'\\') + 1);
  return name.substr(0, name.find_last_of(u'.'));
}

}  // namespace zev::simulated
