#pragma once

#include <cstdint>

#include "destination/earlier_versions.h"
#include "localisation/phrases.h"
#include "state/program.h"
#include "system/attributes.h"
#include "system/registry.h"

namespace zev {

/// Decides whether the run may begin in the install directory.
class DestinationCheck {
 public:
  /// Borrows all of them.
  DestinationCheck(Program& program, Phrases& phrases, Registry& registry, Form1Procedures& form)
      : program_(program),
        globals_(program.globals),
        platform_(program.platform),
        phrases_(phrases),
        registry_(registry),
        form_(form) {}

  /// Completes a short entry, refuses what cannot be a directory and unsuitable drives, asks about
  /// an installation elsewhere, makes the directory with its missing parents, and keeps out of the
  /// folders of earlier versions. `ok` becomes -1 if the directory may be used; 0 if not, after a
  /// box that says why. Folders that were made stay in either case. Run-time errors of the steps
  /// before the directory is made reach the caller.
  void ValidateDestination(std::int16_t& ok);

 private:
  bool entryGiven();
  bool charactersAllowed();
  void completeShortEntry();
  bool driveSuits();
  void readInstalledDirectory();
  Text directoryOnRecord();
  bool otherDirectoryWanted();

  bool makeDirectory();
  void climb();
  bool directoryStands();
  void repairDefaultFolder();
  void makeDestination();
  bool acceptVersion();

  Text destination() const { return globals_.gInstallDir.trimmed(); }
  bool destinationExists() { return folderExists(platform_.files, destination()); }
  Text systemDrive() const;
  void tell(TextView text, std::int32_t style, TextView title);

  Program& program_;
  Globals& globals_;
  Platform& platform_;
  Phrases& phrases_;
  Registry& registry_;
  Form1Procedures& form_;
  Text fullPath_;  ///< the whole directory while `gInstallDir` holds a part of it
};

}  // namespace zev
