#include "system/user_folders.h"

#include <utility>

#include "runtime/error.h"
#include "state/product.h"
#include "system/attributes.h"
#include "system/special_folders.h"

namespace zev {
namespace {

constexpr TextView profiles = u":\\Users\\";
constexpr TextView boxTitle = u"ZEV Screen Recorder";
constexpr std::uint32_t accountSize = 256;

constexpr TextView ownFolder = u"\\Program Files\\ZEVConf";
static_assert(ownFolder.starts_with(programFiles));

}  // namespace

UserFolderChain::UserFolderChain(Program& program, Phrases& phrases,
                                 std::function<void(std::int32_t)> setStage)
    : program_(program),
      globals_(program.globals),
      phrases_(phrases),
      setStage_(std::move(setStage)) {}

/// The first folder that can be had ends the chain: the known one, those of the profiles by name,
/// and one that the program makes itself.
void UserFolderChain::run() {
  setStage_(4);
  driveLetter_ = left(systemDirectoryBuffer(program_, 256), 1);
  setStage_(5);
  globals_.gUserDir = GetKnownFolder(program_, known_folder::localAppData);
  if (acceptKnownFolder()) return;
  const std::optional<Text> name = userName(program_);
  if (!name) {
    setStage_(12);
    globals_.gUserDir.clear();
    makeOwnFolder();
    return;
  }
  setStage_(13);  // never printed: nothing is asked here that can fail
  takeProfile(profileFolder(*name));
  takeSecondProfile(*name);
  takeStartMenuProfile();
  lastResort();
}

bool UserFolderChain::exists(TextView folder) {
  const TextView trimmed = trim(folder);
  return !trimmed.empty() && zev::exists(program_.platform.files, trimmed, dir_mask::anyEntry);
}

// ---- the known folder

/// False if the system names none, or one that is not there.
bool UserFolderChain::acceptKnownFolder() {
  if (!exists(globals_.gUserDir)) return false;
  globals_.gUserDir = withoutTrailing(trim(globals_.gUserDir), u'\\');
  clearAttributes(globals_.gUserDir, 6);
  clearAttributes(join(globals_.gUserDir, profile_folder::maker), 8);
  globals_.gUserData = join(globals_.gUserDir, profile_folder::product);
  clearAttributes(globals_.gUserData, 10);
  return true;
}

/// Takes the two attributes off that would keep the program from writing there. What stays is told
/// in a box each.
void UserFolderChain::clearAttributes(TextView folder, std::int32_t hiddenStage) {
  setStage_(hiddenStage);
  if (ClearHiddenAttribute(program_.platform.files, folder) == -1) {
    messageAbout(
        u"The following folder is hidden and couldn't change its attribute to visible. You should "
        u"do it manually.",
        folder);
  }
  setStage_(hiddenStage + 1);
  if (ClearReadOnlyAttribute(program_.platform.files, folder) == -1) {
    messageAbout(
        u"The following folder is readonly and couldn't change its attribute. You should do it "
        u"manually.",
        folder);
  }
}

// ---- the profiles by name

Text UserFolderChain::profileFolder(TextView name) const {
  return join(driveLetter_, profiles, name, profile_folder::local);
}

void UserFolderChain::takeProfile(TextView folder) {
  globals_.gUserDir = folder;
  globals_.gUserData = join(globals_.gUserDir, profile_folder::product);
}

/// Of an account that belongs to a domain the profile may have the domain's name after a dot;
/// without such a folder there is no second one.
void UserFolderChain::takeSecondProfile(TextView name) {
  setStage_(14);
  Text domain(accountSize, u'\0');
  std::uint32_t size = accountSize;
  domain_.clear();
  globals_.gUserDirAlt.clear();
  globals_.gUserDataAlt.clear();
  if (!program_.platform.system.LookupAccountNameA(trim(name), accountSize, domain, size)) return;
  domain_ = inStr(domain, TextView(u"\0", 1)) > 0 ? beforeNul(domain) : trim(domain);
  setStage_(15);
  const Text folder = profileFolder(join(name, u".", domain_));
  if (!exists(folder)) return;
  globals_.gUserDirAlt = folder;
  globals_.gUserDataAlt = join(folder, profile_folder::product);
}

/// A profile that bears another name than its user shows in the path of the Start Menu.
void UserFolderChain::takeStartMenuProfile() {
  setStage_(16);
  if (exists(globals_.gUserDir)) return;
  constexpr TextView mark = u"\\Users\\";
  const Text programs = GetSpecialFolder(program_, CSIDL_PROGRAMS);
  const std::int32_t place = inStrText(programs, mark);
  if (trim(programs).empty() || place == 0) return;
  const TextView behind = mid(programs, place + len(mark));
  takeProfile(profileFolder(behind.substr(0, behind.find(u'\\'))));
}

void UserFolderChain::lastResort() {
  setStage_(17);
  if (exists(globals_.gUserDir)) return;
  globals_.gUserDir.clear();
  globals_.gUserData.clear();
  if (domain_.empty() || !exists(globals_.gUserDirAlt)) makeOwnFolder();
}

// ---- the folder of the product's own

void UserFolderChain::makeOwnFolder() {
  std::int16_t result = 0;
  CreateConfFolder(program_, result);
  if (result != -1) return;
  message(u"Error: Couldn 't find the user folder and couldn't create one! Quiting installation.");
  Application::End();
}

void CreateConfFolder(Program& program, std::int16_t& result) {
  const Text drive = systemDrive(program);
  const Text root = join(drive, ownFolder);
  const Text product = join(root, profile_folder::product);
  Files& files = program.platform.files;
  try {
    for (const Text& folder :
         {join(drive, programFiles), root, join(root, profile_folder::maker), product}) {
      if (exists(files, folder, dir_mask::directories)) continue;
      files.MkDir(folder);
      program.DoEvents();
    }
    result = exists(files, product, dir_mask::directories) ? 0 : -1;
  } catch (const RuntimeError&) {
    result = -1;
  }
  if (result != 0) return;
  program.globals.gUserDir = root;
  program.globals.gUserData = product;
}

// ---- messages

void UserFolderChain::message(TextView phrase) {
  program_.platform.dialogs.MsgBox(phrases_.Translate(phrase), box_style::exclamation, boxTitle);
}

void UserFolderChain::messageAbout(TextView phrase, TextView folder) {
  program_.platform.dialogs.MsgBox(join(phrases_.Translate(phrase), lineEnd, lineEnd, trim(folder)),
                                   box_style::exclamation, boxTitle);
}

// ---- the probe

bool WriteProbeFile(Files& files, TextView folder, TextView file, TextView content) {
  if (folder.empty() || file.empty()) return false;
  std::int32_t number = 0;
  try {
    number = files.FreeFile();
    files.OpenOutput(number, join(folder, u"\\", file));
    files.Print(number, content);
    files.Close(number);
    return true;
  } catch (const RuntimeError&) {
    ignoringErrors([&] { files.Close(number); });
    return false;
  }
}

bool DeleteProbeFile(Files& files, TextView folder, TextView file) {
  if (folder.empty() || file.empty()) return true;
  try {
    const Text path = join(folder, u"\\", file);
    if (exists(files, path, dir_mask::anyEntry)) files.Kill(path);
    return true;
  } catch (const RuntimeError&) {
    return false;
  }
}

// ---- making the folders ready

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

/// Steps after the probe of a root.
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
