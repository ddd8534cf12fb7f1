#pragma once

#include <cstdint>

#include "localisation/phrases.h"
#include "state/program.h"

namespace zev {

/// The event procedures of the folder browser: it gives the chosen folder back in `gInstallDir`.
class FolderBrowser {
 public:
  /// Hangs the procedures on the form of the program. Borrows all three; they outlive this.
  FolderBrowser(Program& program, Phrases& phrases, Form1Procedures& wizard);

 private:
  // Opening and closing.
  void Form_Load();
  void writeTexts();
  void repairProposal();
  void climbToExistingFolder();
  void openProposal();
  void Form_QueryUnload(UnloadMode mode);
  void Command2_Click();
  void Command3_Click();

  // Drives and folders.
  void Drive1_Change();
  void enterDrive();
  void returnToProposal();
  void Command1_Click();
  bool nameAllowed(TextView name);
  Text openFolderWithBackslash() const;

  // Free space.
  std::int32_t FreeSpaceKB();
  void showFreeSpace();
  bool spaceSuffices();

  bool isFolder(TextView folder);
  Text proposal() const { return globals_.gInstallDir.trimmed(); }
  Text proposedDrive() const;

  Globals& globals_;
  Form1& form1_;
  Form3& form3_;
  Platform& platform_;
  Phrases& phrases_;
  Form1Procedures& wizard_;
};

/// Kilobytes as whole megabytes with thousands separators, "1,024 MB"; no digits at all for a
/// figure that rounds to 0.
Text megabytes(std::int32_t kilobytes);

}  // namespace zev
