#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "runtime/text.h"
#include "scenario/machine_change.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// Why the Windows that this runs on cannot be changed so; none if it can. The files, the registry
/// and the windows of other programs can be.
std::optional<std::string> refusal(const scenario::MachineChange& change);

/// Saves the keys Software of the machine and of the user in a folder, as the system saves keys:
/// machine.reg and user.reg. Fails with std::runtime_error.
void saveRegistry(const std::filesystem::path& folder);

/// Top-level windows of another program, with titles as the scenario gives them and nothing else.
/// They answer messages for as long as this lives.
class OtherWindows {
 public:
  /// Shows the windows, the first title in front, before it returns; none without titles.
  explicit OtherWindows(std::vector<Text> titles);
  ~OtherWindows();
  OtherWindows(const OtherWindows&) = delete;
  OtherWindows& operator=(const OtherWindows&) = delete;

 private:
  static DWORD WINAPI thread(void* self);
  void run() const;

  std::vector<Text> titles_;
  HANDLE ready_ = nullptr;
  HANDLE thread_ = nullptr;
  DWORD threadId_ = 0;
};

/// Makes the changes of a scenario on the Windows that this runs on.
class MachineHand {
 public:
  /// Fails with a ScenarioError for what the system refuses.
  void change(const scenario::MachineChange& change);
  /// The same at the beginning, when the temporary folder can be another one as well: that of all
  /// programs which are started from here. The code page has to be the machine's.
  void prepare(const scenario::MachineChange& machine);

 private:
  void change(const scenario::FileEntry& entry);
  void occupy(const Text& path, bool inUse);

  struct HandleCloser {
    void operator()(void* handle) const { CloseHandle(handle); }
  };
  std::map<Text, std::unique_ptr<void, HandleCloser>> occupied_;  ///< files without sharing
  std::unique_ptr<OtherWindows> windows_;
};

}  // namespace zev::drive
