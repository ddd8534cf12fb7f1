#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "observed/observed.h"
#include "platform/dialogs.h"
#include "platform/file_system.h"
#include "platform/processes.h"
#include "platform/shell.h"
#include "runtime/error.h"

namespace zev::observed {

/// Raises an injected number if it is a run-time error, and otherwise the call's usual one.
[[noreturn]] inline void raise(std::int32_t code, ErrorNumber usual) {
  throw RuntimeError(isRuntimeError(code) ? code : static_cast<std::int32_t>(usual));
}

/// An injected error makes Shell raise that run-time error (see isRuntimeError), 53 for a file or
/// path that is not found, and 5 for every other number; it is what ShellExecuteA returns.
class Processes final : public Observed<zev::Processes> {
 public:
  /// `kept` hears of each command line that Shell was kept from starting, with the error or 0.
  Processes(zev::Processes& next, Instrumentation& watch,
            std::function<void(TextView, std::int32_t, std::int32_t)> kept)
      : Observed(next, watch), kept_(std::move(kept)) {}

  std::int32_t Shell(TextView commandLine, std::int32_t style) override {
    bool reached = false;
    const auto forward = [&] {
      reached = true;
      return next_.Shell(commandLine, style);
    };
    const auto fail = [](std::int32_t code) -> std::int32_t { raise(code, shellError(code)); };
    try {
      const std::int32_t process = call(
          {"Shell"}, forward, fail, [] { return std::int32_t{0}; }, commandLine, style);
      if (!reached) kept_(commandLine, style, 0);
      return process;
    } catch (const RuntimeError& error) {
      if (!reached) kept_(commandLine, style, error.number());
      throw;
    }
  }
  ProcessHandle OpenProcess(std::uint32_t access, bool inherit, std::int32_t process) override {
    return withNothing({"OpenProcess"}, &Service::OpenProcess, access, inherit, process);
  }
  std::uint32_t WaitForSingleObject(ProcessHandle process, std::uint32_t milliseconds) override {
    return pass(
        {"WaitForSingleObject"}, &Service::WaitForSingleObject,
        [](std::int32_t) { return ~std::uint32_t{0}; }, [] { return std::uint32_t{0}; }, process,
        milliseconds);
  }
  void CloseHandle(ProcessHandle process) override {
    withNothing({"CloseHandle"}, &Service::CloseHandle, process);
  }
  void Sleep(std::uint32_t milliseconds) override {
    withNothing({"Sleep"}, &Service::Sleep, milliseconds);
  }
  std::uint32_t GetTickCount() override {
    return withNothing({"GetTickCount"}, &Service::GetTickCount);
  }
  std::intptr_t ShellExecuteA(WindowHandle window, TextView verb, TextView file,
                              TextView parameters, TextView directory, std::int32_t show) override {
    return call(
        {"ShellExecuteA", {}, file},
        [&] { return next_.ShellExecuteA(window, verb, file, parameters, directory, show); },
        giveCode<std::intptr_t>, [] { return executed; }, window, file, parameters, directory,
        show);
  }
  Text ownFolder() override { return withNothing({"ownFolder"}, &Service::ownFolder); }
  Text ownName() override { return withNothing({"ownName"}, &Service::ownName); }

 private:
  static constexpr std::intptr_t executed = 42;

  static ErrorNumber shellError(std::int32_t code) {
    const auto error = static_cast<SystemError>(code);
    const bool missing = error == system_error::fileNotFound || error == system_error::pathNotFound;
    return missing ? ErrorNumber::FileNotFound : ErrorNumber::InvalidProcedureCall;
  }

  std::function<void(TextView, std::int32_t, std::int32_t)> kept_;
};

/// The operations of a shortcut, matched by its path or by a text of their own. An injected number
/// of the system is raised as automation tells it: 0x80070000 and the number. Without an object
/// below, each call is done by doing nothing.
class Shortcut final : public zev::Shortcut {
 public:
  Shortcut(std::unique_ptr<zev::Shortcut> next, TextView path, Instrumentation& watch)
      : next_(std::move(next)), path_(path), watch_(watch) {}

  void TargetPath(TextView path) override { call("TargetPath", &zev::Shortcut::TargetPath, path); }
  void Arguments(TextView arguments) override {
    call("Arguments", &zev::Shortcut::Arguments, arguments);
  }
  void WindowStyle(std::int32_t style) override {
    call("WindowStyle", &zev::Shortcut::WindowStyle, style);
  }
  void IconLocation(TextView location) override {
    call("IconLocation", &zev::Shortcut::IconLocation, location);
  }
  void Description(TextView text) override {
    call("Description", &zev::Shortcut::Description, text);
  }
  void WorkingDirectory(TextView path) override {
    call("WorkingDirectory", &zev::Shortcut::WorkingDirectory, path);
  }
  void Save() override { call("Save", &zev::Shortcut::Save); }

 private:
  template <typename... Given>
  void call(std::string_view name, void (zev::Shortcut::*operation)(Given...), Given... given) {
    const std::array<Argument, sizeof...(Given)> arguments{Argument(given)...};
    const auto forward = [&] {
      if (next_) (*next_.*operation)(given...);
    };
    const auto fail = [&](std::int32_t code) {
      if (isRuntimeError(code)) throw RuntimeError(code);
      const auto number = static_cast<std::int32_t>(0x80070000u | static_cast<std::uint32_t>(code));
      throw RuntimeError(number,
                         errorDescription(static_cast<std::int32_t>(ErrorNumber::AutomationError)),
                         join(u"WshShortcut.", fromUtf8(name)));
    };
    watch_.perform({name, {}, path_}, arguments, forward, fail, [] {});
  }

  std::unique_ptr<zev::Shortcut> next_;
  Text path_;
  Instrumentation& watch_;
};

/// CreateShortcut fails with 440, whatever the number of the system.
class WScriptShell final : public zev::WScriptShell {
 public:
  WScriptShell(std::unique_ptr<zev::WScriptShell> next, Instrumentation& watch)
      : next_(std::move(next)), watch_(watch) {}

  std::unique_ptr<zev::Shortcut> CreateShortcut(TextView path) override {
    using Made = std::unique_ptr<zev::Shortcut>;
    const Argument shown[] = {path};
    Made made = watch_.perform(
        {"CreateShortcut"}, shown, [&] { return next_ ? next_->CreateShortcut(path) : Made(); },
        [](std::int32_t code) -> Made { raise(code, ErrorNumber::AutomationError); },
        [] { return Made(); });
    return std::make_unique<Shortcut>(std::move(made), path, watch_);
  }
  Text SpecialFolders(TextView name) override {
    const Argument shown[] = {name};
    return watch_.perform(
        {"SpecialFolders"}, shown, [&] { return next_ ? next_->SpecialFolders(name) : Text(); },
        [](std::int32_t) { return Text(); }, [] { return Text(); });
  }

 private:
  std::unique_ptr<zev::WScriptShell> next_;
  Instrumentation& watch_;
};

/// Creating the object fails with 429, whatever the number of the system.
class Shortcuts final : public Observed<zev::Shortcuts> {
 public:
  using Observed::Observed;

  std::unique_ptr<zev::WScriptShell> CreateObject() override {
    using Made = std::unique_ptr<zev::WScriptShell>;
    Made made = call(
        {"CreateObject"}, [&] { return next_.CreateObject(); },
        [](std::int32_t code) -> Made { raise(code, ErrorNumber::CannotCreateObject); },
        [] { return Made(); }, TextView(u"WScript.Shell"));
    return std::make_unique<WScriptShell>(std::move(made), watch_);
  }
};

/// Every injected error is 282.
class Dde final : public Observed<zev::Dde> {
 public:
  using Observed::Observed;

  void LinkTopic(TextView topic) override { link("LinkTopic", &zev::Dde::LinkTopic, topic); }
  void LinkItem(TextView item) override { link("LinkItem", &zev::Dde::LinkItem, item); }
  void LinkMode(std::int32_t mode) override { link("LinkMode", &zev::Dde::LinkMode, mode); }
  void LinkTimeout(std::int32_t tenths) override {
    link("LinkTimeout", &zev::Dde::LinkTimeout, tenths);
  }
  void LinkExecute(TextView command) override {
    link("LinkExecute", &zev::Dde::LinkExecute, command);
  }

 private:
  template <typename Given>
  void link(std::string_view name, void (zev::Dde::*operation)(Given), Given given) {
    call(
        {name}, [&] { (next_.*operation)(given); },
        [](std::int32_t code) { raise(code, ErrorNumber::NoForeignApplicationResponded); }, [] {},
        given);
  }
};

/// A box that fails by injection is not shown: nobody answers, or an empty text. One that is
/// ignored answers OK.
class Dialogs final : public Observed<zev::Dialogs> {
 public:
  using Observed::Observed;

  BoxAnswer MsgBox(TextView text, std::int32_t style, TextView title) override {
    return pass(
        {"MsgBox"}, &Service::MsgBox, [](std::int32_t) { return BoxAnswer::None; },
        [] { return BoxAnswer::OK; }, text, style, title);
  }
  Text InputBox(TextView prompt, TextView title, TextView initial) override {
    return withNothing({"InputBox"}, &Service::InputBox, prompt, title, initial);
  }
  Text defaultTitle() override { return next_.defaultTitle(); }
};

}  // namespace zev::observed
