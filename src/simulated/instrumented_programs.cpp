#include "simulated/instrumented_programs.h"

#include <utility>

#include "platform/file_system.h"

namespace zev::simulated {
namespace {

constexpr std::uint32_t waitFailed = 0xFFFFFFFF;
constexpr std::uint32_t facilityWin32 = 0x80070000;
constexpr std::intptr_t executed = 42;

std::int64_t shown(std::uintptr_t handle) { return static_cast<std::int64_t>(handle); }

/// Raises an injected number if it is a run-time error, and otherwise the call's usual one.
[[noreturn]] void raise(std::int32_t code, ErrorNumber usual) {
  throw RuntimeError(isRuntimeError(code) ? code : static_cast<std::int32_t>(usual));
}

[[noreturn]] void raiseAutomation(std::int32_t code, TextView source) {
  if (isRuntimeError(code)) throw RuntimeError(code);
  const auto number = static_cast<std::int32_t>(facilityWin32 | static_cast<std::uint32_t>(code));
  throw RuntimeError(number,
                     errorDescription(static_cast<std::int32_t>(ErrorNumber::AutomationError)),
                     Text(source));
}

ErrorNumber shellError(std::int32_t code) {
  const auto error = static_cast<SystemError>(code);
  const bool missing = error == system_error::fileNotFound || error == system_error::pathNotFound;
  return missing ? ErrorNumber::FileNotFound : ErrorNumber::InvalidProcedureCall;
}

}  // namespace

// ---- processes

std::int32_t InstrumentedProcesses::Shell(TextView commandLine, std::int32_t style) {
  bool reached = false;
  const auto forward = [&] {
    reached = true;
    return processes_.Shell(commandLine, style);
  };
  try {
    const std::int32_t process = instrumentation_.perform(
        {"Shell"}, {commandLine, style}, forward,
        [](std::int32_t code) -> std::int32_t { raise(code, shellError(code)); },
        [] { return std::int32_t{0}; });
    if (!reached) processes_.recordShell(commandLine, style, 0);
    return process;
  } catch (const RuntimeError& error) {
    if (!reached) processes_.recordShell(commandLine, style, error.number());
    throw;
  }
}

ProcessHandle InstrumentedProcesses::OpenProcess(std::uint32_t access, bool inherit,
                                                 std::int32_t process) {
  return instrumentation_.perform(
      {"OpenProcess"}, {access, inherit, process},
      [&] { return processes_.OpenProcess(access, inherit, process); },
      [](std::int32_t) { return ProcessHandle{0}; }, [] { return ProcessHandle{0}; });
}

std::uint32_t InstrumentedProcesses::WaitForSingleObject(ProcessHandle process,
                                                         std::uint32_t milliseconds) {
  return instrumentation_.perform(
      {"WaitForSingleObject"}, {shown(process), milliseconds},
      [&] { return processes_.WaitForSingleObject(process, milliseconds); },
      [](std::int32_t) { return waitFailed; }, [] { return std::uint32_t{0}; });
}

void InstrumentedProcesses::CloseHandle(ProcessHandle process) {
  instrumentation_.perform(
      {"CloseHandle"}, {shown(process)}, [&] { processes_.CloseHandle(process); },
      [](std::int32_t) {}, [] {});
}

void InstrumentedProcesses::Sleep(std::uint32_t milliseconds) {
  instrumentation_.perform(
      {"Sleep"}, {milliseconds}, [&] { processes_.Sleep(milliseconds); }, [](std::int32_t) {},
      [] {});
}

std::uint32_t InstrumentedProcesses::GetTickCount() {
  return instrumentation_.perform(
      {"GetTickCount"}, {}, [&] { return processes_.GetTickCount(); },
      [](std::int32_t) { return std::uint32_t{0}; }, [] { return std::uint32_t{0}; });
}

std::intptr_t InstrumentedProcesses::ShellExecuteA(WindowHandle window, TextView verb,
                                                   TextView file, TextView parameters,
                                                   TextView directory, std::int32_t show) {
  const auto forward = [&] {
    return processes_.ShellExecuteA(window, verb, file, parameters, directory, show);
  };
  return instrumentation_.perform(
      {"ShellExecuteA", {}, file}, {shown(window), file, parameters, directory, show}, forward,
      [](std::int32_t code) { return std::intptr_t{code}; }, [] { return executed; });
}

Text InstrumentedProcesses::ownFolder() {
  return instrumentation_.perform(
      {"ownFolder"}, {}, [&] { return processes_.ownFolder(); },
      [](std::int32_t) { return Text(); }, [] { return Text(); });
}

Text InstrumentedProcesses::ownName() {
  return instrumentation_.perform(
      {"ownName"}, {}, [&] { return processes_.ownName(); }, [](std::int32_t) { return Text(); },
      [] { return Text(); });
}

// ---- shortcuts

namespace {

class InstrumentedShortcut final : public Shortcut {
 public:
  InstrumentedShortcut(std::unique_ptr<Shortcut> shortcut, TextView path,
                       Instrumentation& instrumentation)
      : shortcut_(std::move(shortcut)), path_(path), instrumentation_(instrumentation) {}

  void TargetPath(TextView path) override {
    call("TargetPath", {path}, [&] { shortcut_->TargetPath(path); });
  }
  void Arguments(TextView arguments) override {
    call("Arguments", {arguments}, [&] { shortcut_->Arguments(arguments); });
  }
  void WindowStyle(std::int32_t style) override {
    call("WindowStyle", {style}, [&] { shortcut_->WindowStyle(style); });
  }
  void IconLocation(TextView location) override {
    call("IconLocation", {location}, [&] { shortcut_->IconLocation(location); });
  }
  void Description(TextView text) override {
    call("Description", {text}, [&] { shortcut_->Description(text); });
  }
  void WorkingDirectory(TextView path) override {
    call("WorkingDirectory", {path}, [&] { shortcut_->WorkingDirectory(path); });
  }
  void Save() override {
    call("Save", {}, [&] { shortcut_->Save(); });
  }

 private:
  template <typename Forward>
  void call(std::string_view name, simulated::Arguments arguments, Forward forward) {
    instrumentation_.perform(
        {name, {}, path_}, arguments, forward,
        [&](std::int32_t code) { raiseAutomation(code, join(u"WshShortcut.", fromUtf8(name))); },
        [] {});
  }

  std::unique_ptr<Shortcut> shortcut_;
  Text path_;
  Instrumentation& instrumentation_;
};

/// A shortcut that is made of nothing and saves nothing.
class NoShortcut final : public Shortcut {
 public:
  void TargetPath(TextView) override {}
  void Arguments(TextView) override {}
  void WindowStyle(std::int32_t) override {}
  void IconLocation(TextView) override {}
  void Description(TextView) override {}
  void WorkingDirectory(TextView) override {}
  void Save() override {}
};

class InstrumentedShell final : public WScriptShell {
 public:
  InstrumentedShell(std::unique_ptr<WScriptShell> shell, Instrumentation& instrumentation)
      : shell_(std::move(shell)), instrumentation_(instrumentation) {}

  std::unique_ptr<Shortcut> CreateShortcut(TextView path) override {
    using Made = std::unique_ptr<Shortcut>;
    Made made = instrumentation_.perform(
        {"CreateShortcut"}, {path}, [&] { return shell_->CreateShortcut(path); },
        [](std::int32_t code) -> Made { raise(code, ErrorNumber::AutomationError); },
        []() -> Made { return std::make_unique<NoShortcut>(); });
    return std::make_unique<InstrumentedShortcut>(std::move(made), path, instrumentation_);
  }

  Text SpecialFolders(TextView name) override {
    return instrumentation_.perform(
        {"SpecialFolders"}, {name}, [&] { return shell_->SpecialFolders(name); },
        [](std::int32_t) { return Text(); }, [] { return Text(); });
  }

 private:
  std::unique_ptr<WScriptShell> shell_;
  Instrumentation& instrumentation_;
};

/// What a creation that does nothing gives: an object without shortcuts and folders.
class NoShell final : public WScriptShell {
 public:
  std::unique_ptr<Shortcut> CreateShortcut(TextView) override {
    return std::make_unique<NoShortcut>();
  }
  Text SpecialFolders(TextView) override { return {}; }
};

}  // namespace

std::unique_ptr<WScriptShell> InstrumentedShortcuts::CreateObject() {
  using Made = std::unique_ptr<WScriptShell>;
  Made made = instrumentation_.perform(
      {"CreateObject"}, {TextView(u"WScript.Shell")}, [&] { return shortcuts_.CreateObject(); },
      [](std::int32_t code) -> Made { raise(code, ErrorNumber::CannotCreateObject); },
      []() -> Made { return std::make_unique<NoShell>(); });
  return std::make_unique<InstrumentedShell>(std::move(made), instrumentation_);
}

// ---- DDE

template <typename Forward>
void InstrumentedDde::call(std::string_view name, Arguments arguments, Forward forward) {
  instrumentation_.perform(
      {name}, arguments, forward,
      [](std::int32_t code) { raise(code, ErrorNumber::NoForeignApplicationResponded); }, [] {});
}

void InstrumentedDde::LinkTopic(TextView topic) {
  call("LinkTopic", {topic}, [&] { dde_.LinkTopic(topic); });
}

void InstrumentedDde::LinkItem(TextView item) {
  call("LinkItem", {item}, [&] { dde_.LinkItem(item); });
}

void InstrumentedDde::LinkMode(std::int32_t mode) {
  call("LinkMode", {mode}, [&] { dde_.LinkMode(mode); });
}

void InstrumentedDde::LinkTimeout(std::int32_t tenths) {
  call("LinkTimeout", {tenths}, [&] { dde_.LinkTimeout(tenths); });
}

void InstrumentedDde::LinkExecute(TextView command) {
  call("LinkExecute", {command}, [&] { dde_.LinkExecute(command); });
}

// ---- boxes

BoxAnswer InstrumentedDialogs::MsgBox(TextView text, std::int32_t style, TextView title) {
  return instrumentation_.perform(
      {"MsgBox"}, {text, style, title}, [&] { return dialogs_.MsgBox(text, style, title); },
      [](std::int32_t) { return BoxAnswer::None; }, [] { return BoxAnswer::OK; });
}

Text InstrumentedDialogs::InputBox(TextView prompt, TextView title, TextView initial) {
  return instrumentation_.perform(
      {"InputBox"}, {prompt, title, initial},
      [&] { return dialogs_.InputBox(prompt, title, initial); },
      [](std::int32_t) { return Text(); }, [] { return Text(); });
}

}  // namespace zev::simulated
