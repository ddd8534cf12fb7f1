#pragma once

#include "platform/dde.h"
#include "platform/dialogs.h"
#include "platform/shortcuts.h"
#include "simulated/instrumentation.h"
#include "simulated/simulated_processes.h"

namespace zev::simulated {

/// Starting programs, under observation. An injected error makes Shell raise that run-time error
/// (see isRuntimeError), 53 for a file or path that is not found, and 5 for every other number; it
/// is what ShellExecuteA returns. What Shell was asked to start is on record, started or not.
class InstrumentedProcesses final : public Processes {
 public:
  /// Borrows both, as do the other classes below.
  InstrumentedProcesses(SimulatedProcesses& processes, Instrumentation& instrumentation)
      : processes_(processes), instrumentation_(instrumentation) {}

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

 private:
  SimulatedProcesses& processes_;
  Instrumentation& instrumentation_;
};

/// Shortcuts under observation, with every operation of the objects that it makes. An injected
/// run-time error (see isRuntimeError) is raised as it is. A number of the system is raised as
/// automation tells it (0x80070000 and the number); creating the object fails with 429 and
/// CreateShortcut with 440, whatever the number. A shortcut's operations are matched by its path or
/// by a text of their own.
class InstrumentedShortcuts final : public Shortcuts {
 public:
  InstrumentedShortcuts(Shortcuts& shortcuts, Instrumentation& instrumentation)
      : shortcuts_(shortcuts), instrumentation_(instrumentation) {}

  std::unique_ptr<WScriptShell> CreateObject() override;

 private:
  Shortcuts& shortcuts_;
  Instrumentation& instrumentation_;
};

/// The DDE client under observation. Every injected error is 282.
class InstrumentedDde final : public Dde {
 public:
  InstrumentedDde(Dde& dde, Instrumentation& instrumentation)
      : dde_(dde), instrumentation_(instrumentation) {}

  void LinkTopic(TextView topic) override;
  void LinkItem(TextView item) override;
  void LinkMode(std::int32_t mode) override;
  void LinkTimeout(std::int32_t tenths) override;
  void LinkExecute(TextView command) override;

 private:
  template <typename Forward>
  void call(std::string_view name, Arguments arguments, Forward forward);

  Dde& dde_;
  Instrumentation& instrumentation_;
};

/// The boxes under observation. One that fails by injection is not shown: it answers Cancel, or an
/// empty text. One that is ignored answers OK.
class InstrumentedDialogs final : public Dialogs {
 public:
  InstrumentedDialogs(Dialogs& dialogs, Instrumentation& instrumentation)
      : dialogs_(dialogs), instrumentation_(instrumentation) {}

  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override;
  Text InputBox(TextView prompt, TextView title, TextView initial) override;
  Text defaultTitle() override { return dialogs_.defaultTitle(); }

 private:
  Dialogs& dialogs_;
  Instrumentation& instrumentation_;
};

}  // namespace zev::simulated
