#include "system/user_folders.h"

#include "runtime/error.h"
#include "system/attributes.h"
#include "system/profile_folders.h"
#include "system/user_folder_chain.h"

namespace zev {
namespace {

enum class Outcome {
  Ready,
  NotWritable,  ///< the probe could not be written
  NotMade,      ///< one of the folders could not be made
};

/// Makes a folder unless it is there, and tells whether it is there then.
bool makeFolder(Files& files, TextView folder) {
  if (exists(files, folder, dir_mask::anyEntry)) return true;
  ignoringErrors([&] { files.MkDir(folder); });
  return exists(files, folder, dir_mask::anyEntry);
}

/// Steps behind the probe of a root.
struct RootSteps {
  std::int32_t maker, product;
};

Outcome readyRoot(Files& files, TextView root, const RootSteps& steps, RunReport& report) {
  if (!WriteProbeFile(files, root, probeFile, probeFile)) return Outcome::NotWritable;
  report.setRunStep(steps.maker);
  DeleteProbeFile(files, root, probeFile);
  if (!makeFolder(files, join(root, profile_folder::maker))) return Outcome::NotMade;
  report.setRunStep(steps.product);
  return makeFolder(files, join(root, profile_folder::product)) ? Outcome::Ready : Outcome::NotMade;
}

bool present(Files& files, const Text& root) {
  return !root.empty() && exists(files, root, dir_mask::directories);
}

void tellNotMade(Program& program, Phrases& phrases) {
  program.platform.dialogs.MsgBox(
      join(phrases.Translate(u"The following folder couldn't be created : "), lineEnd, lineEnd,
           trim(program.globals.gUserDir), profile_folder::product, lineEnd, lineEnd,
           phrases.Translate(u"Please create manually.")),
      box_style::exclamation, u"ZEV");
}

void readyFirstRoot(Program& program, Phrases& phrases, RunReport& report) {
  Globals& globals = program.globals;
  Files& files = program.platform.files;
  if (!present(files, globals.gUserDir)) return;
  const Outcome outcome = readyRoot(files, globals.gUserDir, {128, 129}, report);
  if (outcome != Outcome::Ready) tellNotMade(program, phrases);
  if (outcome != Outcome::NotWritable) return;
  globals.gUserDir.clear();
  globals.gUserData.clear();
}

void readySecondRoot(Program& program, RunReport& report) {
  Globals& globals = program.globals;
  Files& files = program.platform.files;
  report.setRunStep(130);  // one number for all of its work
  if (!present(files, globals.gUserDirAlt)) return;
  const Outcome outcome = readyRoot(files, globals.gUserDirAlt, {130, 130}, report);
  if (outcome != Outcome::NotWritable) return;
  globals.gUserDirAlt.clear();
  globals.gUserDataAlt.clear();
}

void writeUserFile(Program& program) {
  Files& files = program.platform.files;
  const std::int32_t number = files.FreeFile();
  files.OpenOutput(number, join(program.globals.gInstallDir.trimmed(), u"\\UserF.dat"));
  files.Print(number, trim(program.globals.gUserDir));
  files.Close(number);
}

}  // namespace

void readyUserFolders(Program& program, Phrases& phrases, RunReport& report) {
  const Globals& globals = program.globals;
  report.setRunStep(127);
  readyFirstRoot(program, phrases, report);
  readySecondRoot(program, report);
  if (trim(globals.gUserData).empty() && trim(globals.gUserDataAlt).empty()) {
    program.platform.dialogs.MsgBox(
        phrases.Translate(u"Error: Couldn 't write to the user directory."), box_style::exclamation,
        phrases.Translate(u"Screen Recorder"));
  }
  report.setRunStep(131);
  writeUserFile(program);
}

}  // namespace zev
