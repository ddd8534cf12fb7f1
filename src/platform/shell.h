#pragma once

#include <array>
#include <cstdint>
#include <memory>

#include "platform/processes.h"
#include "runtime/text.h"

namespace zev {

/// A shell identifier list, owned by the caller until it hands it to CoTaskMemFree; null is none.
using ItemIdList = void*;

/// A class or folder identifier, 16 bytes as the system lays them out.
using Guid = std::array<std::uint8_t, 16>;

inline constexpr std::int32_t CSIDL_PROGRAMS = 2;
inline constexpr std::int32_t CSIDL_PERSONAL = 5;

/// Folders that the shell knows, by number on every system and by identifier on newer ones. A path
/// that the code page of the system cannot write comes in its short form, if it has one.
class ShellFolders {
 public:
  virtual ~ShellFolders() = default;

  /// 0 and a list on success.
  virtual std::int32_t SHGetSpecialFolderLocation(WindowHandle window, std::int32_t csidl,
                                                  ItemIdList& list) = 0;
  /// The path into a buffer of 260 bytes, ended by a NUL. False on failure.
  virtual bool SHGetPathFromIDList(ItemIdList list, Text& buffer) = 0;
  /// 0 on success.
  virtual std::int32_t CLSIDFromString(TextView text, Guid& identifier) = 0;
  /// 0 and a NUL-terminated path on success, which the caller hands to CoTaskMemFree. Looked up at
  /// the call: older systems do not have it.
  virtual std::int32_t SHGetKnownFolderPath(const Guid& folder, std::uint32_t flags,
                                            std::uintptr_t token, char16_t*& path) = 0;
  /// Length of a NUL-terminated text in 16-bit units.
  virtual std::int32_t lstrlenW(const char16_t* text) = 0;
  /// Gives back a list or a path of the calls above; null does nothing.
  virtual void CoTaskMemFree(void* memory) = 0;
};

/// A shortcut that is being made. Every operation can raise the automation's run-time error.
class Shortcut {
 public:
  virtual ~Shortcut() = default;
  /// What it opens: a full path.
  virtual void TargetPath(TextView path) = 0;
  /// The command line for it, without the program.
  virtual void Arguments(TextView arguments) = 0;
  /// 1 for a normal window, 3 for one that fills the screen, 7 for a small one.
  virtual void WindowStyle(std::int32_t style) = 0;
  /// A file and the place of an icon in it, from 0, joined by a comma.
  virtual void IconLocation(TextView location) = 0;
  /// The text that the shell shows for it.
  virtual void Description(TextView text) = 0;
  /// The folder that what it opens begins in.
  virtual void WorkingDirectory(TextView path) = 0;
  /// Writes the file, in the place of one that is there. Until then nothing of it is on the disk.
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

/// The automation by which shortcuts are made.
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
  /// Sends a command and waits for the server to take it, at most the time-out.
  virtual void LinkExecute(TextView command) = 0;
};

}  // namespace zev
