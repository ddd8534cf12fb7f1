#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/platform.h"
#include "runtime/controls.h"

namespace zev::simulator {

/// The program that a scenario plays, as the player sees it. One object is one start of the
/// program.
class PlayedProgram {
 public:
  virtual ~PlayedProgram() = default;

  /// The entry procedure; the message loop follows.
  virtual void start() = 0;
  /// All forms of the program, those that are not loaded included.
  virtual std::vector<Form*> forms() = 0;

  /// A global by its name, letter case as it stands; none if there is no such global.
  virtual std::optional<PropertyValue> global(std::string_view name) = 0;
  /// Writes a global. False if there is none of that name and type.
  virtual bool setGlobal(std::string_view name, const PropertyValue& value) = 0;

  /// A person chooses an entry of a drive list ("d:") or a folder of a directory tree ("C:\Temp").
  /// Called from the message loop.
  virtual void choose(Control& list, const Text& entry) {
    if (auto* drives = dynamic_cast<DriveListBox*>(&list)) {
      drives->setDrive(entry);
    } else if (auto* folders = dynamic_cast<DirListBox*>(&list)) {
      folders->setPath(entry);
    }
  }
};

/// Makes the program on a machine whose process has just begun. It borrows the platform, which
/// outlives it.
using ProgramFactory = std::function<std::unique_ptr<PlayedProgram>(Platform&)>;

}  // namespace zev::simulator
