#pragma once

#include "localisation/phrases.h"
#include "platform/dialogs.h"
#include "state/globals.h"
#include "state/program.h"
#include "system/registry.h"

namespace zev {

/// Enters the product in the system's list of programs that can be removed. The path of the
/// uninstall program stands there without quotation marks.
void enterUninstall(Registry& registry, const Globals& globals);

/// Makes the project files of Reel Desk a file type of the system, opened by the installed program.
/// A type that another program has is taken over only if the person agrees.
class FileType {
 public:
  /// Borrows all of them.
  FileType(Registry& registry, const Globals& globals, Dialogs& dialogs, Phrases& phrases,
           RunReport& report)
      : registry_(registry),
        globals_(globals),
        dialogs_(dialogs),
        phrases_(phrases),
        report_(report) {}

  /// The report gets the steps 156 to 158 and the status line.
  void registerType();

 private:
  bool present();
  bool ownedByAnother();
  bool personKeepsTheOther();
  void writeKeys();
  void write(TextView key, TextView text);

  Registry& registry_;
  const Globals& globals_;
  Dialogs& dialogs_;
  Phrases& phrases_;
  RunReport& report_;
};

/// True if the ten keys by which the system's AVI file services find their handlers are as they
/// should be, blanks at the ends of their values aside.
bool CheckAviRegistry(Registry& registry);

/// Writes all ten, whatever their state. False if a run-time error stopped it; a write that the
/// system refuses is none.
bool RepairAviRegistry(Registry& registry);

}  // namespace zev
