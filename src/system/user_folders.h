#pragma once

#include <cstdint>
#include <functional>

#include "localisation/phrases.h"
#include "state/program.h"

namespace zev {

/// Finds the folders of the running user on machines of `profileClass`: the known folder, else the
/// profile by the user's name, by the account's domain, by the Start Menu folder, else a folder of
/// the product's own under Program Files. It fills `gUserDir`, `gUserData`, `gUserDirAlt` and
/// `gUserDataAlt`, or ends the program (ProgramEnd) with a message.
class UserFolderChain {
 public:
  /// Borrows the program and the phrases. `setStage` is told the stage number of each step, which
  /// the trap of the caller prints.
  UserFolderChain(Program& program, Phrases& phrases, std::function<void(std::int32_t)> setStage);

  void run();

 private:
  bool acceptKnownFolder();
  void clearAttributes(TextView folder, std::int32_t hiddenStage);
  void takeProfile(TextView folder);
  void takeSecondProfile(TextView name);
  void takeStartMenuProfile();
  void lastResort();
  void makeOwnFolder();
  bool exists(TextView folder);
  void message(TextView phrase);
  void messageAbout(TextView phrase, TextView folder);
  Text profileFolder(TextView name) const;

  Program& program_;
  Globals& globals_;
  Phrases& phrases_;
  std::function<void(std::int32_t)> setStage_;
  Text driveLetter_;
  Text domain_;
};

/// Makes the folder that serves where there is no profile, and points `gUserDir` and `gUserData` at
/// it. 0 on success, -1 on failure; the globals are then as they were.
void CreateConfFolder(Program& program, std::int16_t& result);

/// Name and content of the file that proves a folder writable.
inline constexpr TextView probeFile = u"deneme_sil";

/// Tells whether a folder can be written to: writes a file with one line of content. False for an
/// empty folder or name, and on any run-time error.
bool WriteProbeFile(Files& files, TextView folder, TextView file, TextView content);

/// Deletes such a file. True also if it was not there; false only on a run-time error.
bool DeleteProbeFile(Files& files, TextView folder, TextView file);

/// Proves the running user's folders writable and makes them ready, on machines of `profileClass`:
/// a root that cannot be written to is given up and its globals are emptied. Leaves `UserF.dat`
/// with the root in the install directory. Boxes tell of failures and nothing stops, but for
/// run-time errors around `UserF.dat`, which reach the caller. The report gets the steps 127 to
/// 131.
void readyUserFolders(Program& program, Phrases& phrases, RunReport& report);

}  // namespace zev
