#pragma once

#include <memory>

#include "localisation/phrases.h"
#include "state/program.h"

namespace zev {

struct GroupEntry;

/// Makes the product's group in the Start Menu and the shortcut on the Desktop, as far as the
/// options want them: by the shell's shortcuts, or, where the group cannot be made so, by a
/// conversation with Program Manager, which knows no Desktop.
class StartMenu {
 public:
  /// Borrows all three. The report gets the steps 162 to 173 and the status line.
  StartMenu(Program& program, Phrases& phrases, RunReport& report);

  /// Errors after which there is no other way to try reach the caller.
  void makeShortcuts();

 private:
  // The gates.
  bool groupWanted() const;
  bool desktopWanted() const;
  bool present(const GroupEntry& entry);

  // The shell's shortcuts.
  void tellInstalled();
  void findFolder();
  bool readyFolder();
  bool makeFirstEntry();
  void makeDesktopShortcut();
  void makeOtherEntries();
  void makeEntry(const GroupEntry& entry);
  void showGroup();
  WScriptShell& shell();

  // Program Manager.
  void makeProgramManagerGroup();
  void addItems();
  void execute(TextView command, std::uint32_t milliseconds);
  void letReplyCome(std::uint32_t milliseconds);

  Text install() const { return program_.globals.gInstallDir.trimmed(); }
  Text target(const GroupEntry& entry) const;

  Program& program_;
  Globals& globals_;
  Platform& platform_;
  Phrases& phrases_;
  RunReport& report_;
  std::unique_ptr<WScriptShell> shell_;
};

}  // namespace zev
