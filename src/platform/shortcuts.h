#pragma once

#include <cstdint>
#include <memory>

#include "runtime/text.h"

namespace zev {

/// A shortcut that is being made. Every operation can raise the automation's run-time error.
class Shortcut {
 public:
  virtual ~Shortcut() = default;
  virtual void TargetPath(TextView path) = 0;
  virtual void Arguments(TextView arguments) = 0;
  virtual void WindowStyle(std::int32_t style) = 0;
  virtual void IconLocation(TextView location) = 0;
  virtual void Description(TextView text) = 0;
  virtual void WorkingDirectory(TextView path) = 0;
  virtual void Save() = 0;
};

/// The automation object `WScript.Shell`.
class WScriptShell {
 public:
  virtual ~WScriptShell() = default;
  /// Error 440 for a path that is no shortcut's.
  virtual std::unique_ptr<Shortcut> CreateShortcut(TextView path) = 0;
  /// A folder by its name, such as "Desktop"; empty for one that the shell does not know. A path
  /// that the code page of the system cannot write comes in its short form, if it has one.
  virtual Text SpecialFolders(TextView name) = 0;
};

class Shortcuts {
 public:
  virtual ~Shortcuts() = default;
  /// Creates the automation object; error 429 if the machine has none.
  virtual std::unique_ptr<WScriptShell> CreateObject() = 0;
};

/// The client end of one DDE conversation, as a control of the run-time offers it. A server that is
/// not there or does not answer within the time-out is error 282.
class Dde {
 public:
  virtual ~Dde() = default;
  /// Service and topic, joined by "|".
  virtual void LinkTopic(TextView topic) = 0;
  virtual void LinkItem(TextView item) = 0;
  /// 0 ends the conversation, 2 begins one without automatic updates.
  virtual void LinkMode(std::int32_t mode) = 0;
  /// In tenths of a second.
  virtual void LinkTimeout(std::int32_t tenths) = 0;
  virtual void LinkExecute(TextView command) = 0;
};

}  // namespace zev
