#pragma once

#include <functional>

#include "runtime/controls.h"

namespace zev {

/// A list of the machine's drives with one of them chosen, by a person or by code.
class DriveListBox final : public Control {
 public:
  explicit DriveListBox(const ControlDesign& design) : Control(design) {}

  /// The chosen drive as a lower-case letter and a colon, without a label; empty before one is.
  const Text& Drive() const { return drive_; }
  /// Chooses the drive of the text's first letter and fires the change, unless it is the one that
  /// is chosen already; error 68 for a drive that the list does not have.
  void setDrive(TextView drive);
  /// Sets the drive that the list first shows. No event is fired.
  void comeUpOn(TextView drive);

  /// Tells whether the machine has a drive, given as letter and colon. Set by the program.
  std::function<bool(TextView drive)> available;
  EventProcedure Change;

 private:
  Property<Text> drive_{*this, "Drive"};
};

/// The folders of a drive as a tree with one of them opened, by a person or by code.
class DirListBox final : public Control {
 public:
  explicit DirListBox(const ControlDesign& design) : Control(design) {}

  /// The opened folder, with a backslash at its end only if it is a root; empty before one is.
  const Text& Path() const { return path_; }
  /// Opens a folder and fires the change. A drive alone stands for its root. The tree stays as it
  /// is for the folder that is opened already, and for one that does not exist.
  void setPath(TextView path);
  /// Sets the folder that the tree first shows. No event is fired.
  void comeUpOn(TextView path);

  /// Tells whether a folder exists. Set by the program.
  std::function<bool(TextView folder)> exists;
  EventProcedure Change;

 private:
  Property<Text> path_{*this, "Path"};
};

}  // namespace zev
