#pragma once

#include <map>

#include "platform/processes.h"
#include "simulated/machine_state.h"
#include "simulated/screen.h"
#include "simulated/simulated_file_system.h"

namespace zev::simulated {

/// The desktop: the windows of other programs in the order of the machine's settings, then the
/// forms that are loaded, the one on top first.
class SimulatedWindows final : public Windows {
 public:
  /// Borrows both.
  SimulatedWindows(const MachineState& machine, Screen& screen)
      : machine_(machine), screen_(screen) {}

  WindowHandle GetWindow(WindowHandle window, std::uint32_t command) override;
  std::int32_t GetWindowTextLengthA(WindowHandle window) override;
  std::int32_t GetWindowTextA(WindowHandle window, Text& buffer, std::int32_t size) override;
  bool SetForegroundWindow(WindowHandle window) override;
  bool BringWindowToTop(WindowHandle window) override;

 private:
  struct Window {
    WindowHandle handle = 0;
    Text title;
  };
  std::vector<Window> desktop() const;
  std::optional<Window> find(WindowHandle window) const;

  const MachineState& machine_;
  Screen& screen_;
};

/// Starting programs. What the machine's settings say nothing of starts if it is a file, and ends
/// at once. The clock moves by sleeping, by waiting for a program that takes its time, and by a
/// millisecond for each time that it is asked: whoever asks again and again waits.
class SimulatedProcesses final : public Processes {
 public:
  /// Borrows both.
  SimulatedProcesses(MachineState& machine, FileSystem& files) : machine_(machine), files_(files) {}

  std::int32_t Shell(TextView commandLine, std::int32_t style) override;
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit, std::int32_t process) override;
  std::uint32_t WaitForSingleObject(ProcessHandle process, std::uint32_t milliseconds) override;
  void CloseHandle(ProcessHandle process) override;
  void Sleep(std::uint32_t milliseconds) override;
  std::uint32_t GetTickCount() override;
  std::intptr_t ShellExecuteA(WindowHandle window, TextView verb, TextView file,
                              TextView parameters, TextView directory, std::int32_t show) override;
  Text ownFolder() override;
  Text ownName() override;

  /// Puts on record, and tells the transcript, that a command line was to be started and what came
  /// of it: a run-time error number, or 0. A program begins in the folder of the one that starts
  /// it.
  void recordShell(TextView commandLine, std::int32_t style, std::int32_t error);

  /// Process handles that were opened and not closed.
  std::size_t openHandles() const { return handles_.size(); }

 private:
  struct Started {
    Text commandLine;
    ProgramSettings program;
    std::uint64_t ends = 0;  ///< on the machine's clock
  };

  Text ownPath();
  std::optional<Text> programOf(TextView commandLine);
  std::optional<Text> existing(TextView program);
  bool isProgram(TextView path) const;
  std::int32_t start(const Text& program, TextView commandLine);

  MachineState& machine_;
  FileSystem& files_;
  std::map<std::int32_t, Started> started_;
  std::map<ProcessHandle, std::int32_t> handles_;
  std::int32_t lastProcess_ = 1000;
  ProcessHandle lastHandle_ = 0;
};

}  // namespace zev::simulated
