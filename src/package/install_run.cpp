#include "package/install_run.h"

#include "localisation/catalogue.h"
#include "package/expand_file.h"
#include "package/extract_file.h"
#include "package/package_end.h"
#include "package/projects.h"
#include "package/shorten_path.h"
#include "runtime/number.h"
#include "system/attributes.h"
#include "system/register_users.h"
#include "system/registry_entries.h"
#include "system/special_folders.h"
#include "system/start_menu.h"
#include "system/user_folders.h"

// The install itself. What to know before reading:
//
// - RunInstall() is one pass through its phases, and nothing is ever undone. A member that fails
//   gets its box and the run goes on. After openPackage() only two things stop it: a failure of the
//   main program's file (giveUp) and a run-time error that no phase expects (trap).
// - `RunStep_` is the number of the statement being carried out. It is only for the trap's box, and
//   is set in front of what may fail.
// - Ticks move the progress bar: one before each member, from its row of the manifest, and four
//   after them.
// - A member is found from the end of the package. The first one lies last in the file, so
//   `TailOffset_` grows by the size of each row, also of those that are not laid.
// - A member goes two ways: it is copied out, still compressed, into the temporary folder, and
//   expanded from there to its target.
// - Forms are written directly and refreshed at once, since no events run between two statements;
//   those run in DoEvents, which is also where Cancel ends the run.

namespace zev {
namespace {

constexpr TextView runPhrase =
    u"Copying files into temporary folder and expanding into install directory...";
constexpr std::size_t systemFolderSize = 255;

/// Diagnostic steps, printed by the trap. Members have theirs in the manifest; the user's folders,
/// the file type and the shortcuts in their own modules.
namespace step {
constexpr std::int32_t packageFile = 1;
constexpr std::int32_t temporaryFolder = 2;
constexpr std::int32_t sizes = 3;
constexpr std::int32_t counters = 4;
constexpr std::int32_t projectsFolder = 63;
constexpr std::int32_t makeProjectsFolder = 64;
constexpr std::int32_t patchProject = 67;
constexpr std::int32_t startRedistributable = 72;
constexpr std::int32_t waitForRedistributable = 73;
constexpr std::int32_t deleteRedistributable = 74;
constexpr std::int32_t productKey = 126;
constexpr std::int32_t directory = 132;
constexpr std::int32_t upgrades = 133;
constexpr std::int32_t settings = 134;
constexpr std::int32_t uninstallEntry = 155;
constexpr std::int32_t videoCodecs = 159;
constexpr std::int32_t language = 160;
constexpr std::int32_t temporaryFiles = 161;
constexpr std::int32_t otherUsers = 174;
constexpr std::int32_t registerUsers = 175;
constexpr std::int32_t finish = 176;
}  // namespace step

/// Ticks that follow those of the slots, of which the first is 0. The bar is full at the last one.
namespace tick {
constexpr std::int32_t status = std::int32_t{manifestSlots};
constexpr std::int32_t behindVideoCodecs = status + 1;
constexpr std::int32_t otherUsers = behindVideoCodecs + 1;
constexpr std::int32_t finish = otherUsers + 1;
}  // namespace tick

/// Rows of the manifest that prepare() does something before.
constexpr std::int32_t firstSystemRow = 27;
constexpr std::int32_t rowBehindProject = 30;

}  // namespace

InstallRun::InstallRun(Program& program, Phrases& phrases, Registry& registry,
                       Form1Procedures& form)
    : program_(program),
      form1_(program.form1),
      platform_(program.platform),
      phrases_(phrases),
      registry_(registry),
      form_(form),
      settings_(registry, ProductSettings::Errors::Raised) {}

/// The steps in their order, each of which sets `RunStep_` before what can fail, so that the trap
/// can print how far the run came.
void InstallRun::RunInstall() {
  const Application::Busy busy(platform_.application, phrases_.Translate(runPhrase));
  try {
    if (!openPackage()) return;
    startCounters();
    layMembers();
    changeStatus();
    readySettingsStore();
    writeSettings();
    writeUninstallEntry();
    registerFileType();
    repairVideoCodecs();
    writeLanguage();
    removeTemporaryFiles();
    makeShortcuts();
    registerUsers();
    finish();
  } catch (const RuntimeError& error) {
    trap(error);
  }
}

/// The box is English in every language. The form comes back with the button that goes on disabled.
void InstallRun::trap(const RuntimeError& error) {
  platform_.dialogs.MsgBox(join(u"Error occured during installing. Error No.", decimal(RunStep_),
                                u"-", decimal(error.number()), u": ", error.description()),
                           box_style::exclamation, u"ZEV Screen Recorder");
  platform_.application.Show(form1_);
  form1_.Command2.Enabled = false;
}

// ---- 1 and 2: the package and the counters

/// False for a package that is cut short: the person is asked to fetch it anew, and the wizard goes
/// back a page.
bool InstallRun::openPackage() {
  RunStep_ = step::packageFile;
  form1_.Command1.Enabled = false;
  form1_.Command2.Enabled = false;
  showStatus(phrases_.Translate(runPhrase));
  const Text folder(withoutTrailing(trim(platform_.processes.ownFolder()), u'\\'));
  PackagePath_ = join(folder, u"\\", platform_.processes.ownName(), u".exe");
  if (packageLength() < smallestPackage) {
    tellIncomplete();
    form_.Command1_Click();
    return false;
  }
  RunStep_ = step::temporaryFolder;
  TempFolder_ = join(program_.globals.gTempDir.trimmed(), u"\\ZEVTMP");
  if (!exists(platform_.files, TempFolder_, dir_mask::directories)) {
    platform_.files.MkDir(TempFolder_);
  }
  program_.temporaryFolder = platform_.holds.hold(TempFolder_, Holding::ToFill);
  if (program_.temporaryFolder.refused()) throw RuntimeError(ErrorNumber::PathFileAccessError);
  program_.DoEvents();
  return true;
}

/// The length without what signing has put after the package. If that cannot be worked out the
/// whole length is taken: should the file not open, each member will say so.
std::int32_t InstallRun::packageLength() {
  std::int32_t length = platform_.files.FileLen(PackagePath_);
  ignoringErrors([&] { length = packageEnd(platform_.files, PackagePath_, length); });
  return length;
}

void InstallRun::tellIncomplete() {
  platform_.dialogs.MsgBox(phrases_.Translate(downloadRequestPhrase), box_style::exclamation,
                           phrases_.Translate(u"ZEV Screen Recorder"));
}

void InstallRun::startCounters() {
  RunStep_ = step::sizes;
  RunStep_ = step::counters;
  showTick(0);
  TailOffset_ = 0;
}

// ---- 3: the members

/// The offset grows by every member, also by those that are not laid: they stand in the package all
/// the same.
void InstallRun::layMembers() {
  for (const ManifestRow& row : manifest()) {
    showTick(row.tick);
    prepare(row);
    if (wanted(row)) layMember(row);
    TailOffset_ = add(TailOffset_, row.size);
  }
}

void InstallRun::prepare(const ManifestRow& row) {
  if (row.row == firstSystemRow) findSystemDirectory();
  if (row.row == rowBehindProject) {
    RunStep_ = step::patchProject;
    patchSampleProject(program_, ProjectsFolder_);
  }
}

/// Asked for once, before the first member that goes there.
void InstallRun::findSystemDirectory() {
  Text buffer = blanks(systemFolderSize);
  const std::uint32_t length =
      platform_.system.GetSystemDirectoryA(buffer, static_cast<std::uint32_t>(systemFolderSize));
  const TextView cut = trim(left(buffer, static_cast<std::int32_t>(length)));
  systemDirectory_ = withoutTrailing(withoutTrailing(cut, u'\0'), u'\\');
}

/// What is asked here may act: the folder of the projects is made before its first member is laid.
bool InstallRun::wanted(const ManifestRow& row) {
  switch (row.condition) {
    case Condition::OtherClasses:
      return program_.globals.gOSClass != profileClass;
    case Condition::ProfileClass:
      return program_.globals.gOSClass == profileClass;
    case Condition::ProjectsFolder:
      return readyProjectsFolder();
    case Condition::Redistributable:
      return redistributableWanted();
    default:
      return row.target != Target::None;
  }
}

/// Finds the folder of the projects and makes it. Any error leaves the project out, without a box.
bool InstallRun::readyProjectsFolder() {
  return ignoringErrors([&] {
    RunStep_ = step::projectsFolder;
    ProjectsFolder_ = projectsFolder(program_);
    RunStep_ = step::makeProjectsFolder;
    if (!exists(platform_.files, ProjectsFolder_, dir_mask::directories)) {
      platform_.files.MkDir(ProjectsFolder_);
    }
  });
}

bool InstallRun::redistributableWanted() const {
  const Globals& globals = program_.globals;
  if (trim(form1_.Image1.Tag.get()) == u"1") return false;
  return globals.gVersionNT62 == 0 || (globals.gVersionNT62 == 1 && globals.gOptRedist == 1);
}

/// A failed extraction does not keep the expansion from being tried: as a rule it fails as well,
/// with a box of its own.
void InstallRun::layMember(const ManifestRow& row) {
  const Text workFile = join(TempFolder_, u"\\", row.packedName);
  showFile(row.packedName);
  RunStep_ = row.extractStep;
  extract(row, workFile);
  const Text shownFolder = row.target == Target::Projects ? ProjectsFolder_ : installDirectory();
  showFile(ShortenPathForLabel(platform_.application.engine(),
                               join(shownFolder, u"\\", row.installedName), form1_,
                               form1_.Label12));
  program_.DoEvents();
  RunStep_ = row.expandStep;
  const bool expanded = expand(row, workFile);
  if (expanded && row.condition == Condition::Redistributable) runRedistributable();
  program_.workFile.release();
}

void InstallRun::extract(const ManifestRow& row, TextView workFile) {
  if (ExtractFile(program_, phrases_, PackagePath_, workFile, row.size, TailOffset_)) return;
  if (row.condition == Condition::Mandatory) giveUp();
  const Text text = extractionFailure(row);
  showMemberBox(row.plain == Plain::InText ? text : phrases_.Translate(text),
                row.plain == Plain::InTitle ? Text(u"Screen Recorder")
                                            : phrases_.Translate(u"Screen Recorder"));
}

bool InstallRun::expand(const ManifestRow& row, TextView workFile) {
  const Text target = join(targetFolder(row.target), u"\\", row.installedName);
  if (expandWorkFile(workFile, target) >= 0) return true;
  if (row.condition == Condition::Mandatory) giveUp();
  showMemberBox(phrases_.Translate(expansionFailure(row)), phrases_.Translate(u"Screen Recorder"));
  return false;
}

/// A work file that somebody has swapped, or may write to, is a file in use.
std::int32_t InstallRun::expandWorkFile(TextView workFile, TextView target) {
  if (!program_.workFile.refused()) {
    return ExpandFile(platform_.lz, platform_.dialogs, phrases_, workFile, target, true);
  }
  ShowExpandError(platform_.dialogs, fileInUse, workFile);
  return fileInUse;
}

Text InstallRun::targetFolder(Target target) const {
  switch (target) {
    case Target::System:
      return systemDirectory_;
    case Target::Projects:
      return ProjectsFolder_;
    default:
      return installDirectory();
  }
}

/// Without the main program there is nothing to install, so the program ends on the spot.
void InstallRun::giveUp() {
  form_.RemoveTempFiles();
  Application::End();
}

/// Whether or not it ran, its file goes again.
void InstallRun::runRedistributable() {
  const Text path = join(installDirectory(), u"\\vcredist_x86.exe");
  std::int32_t process = 0;
  if (exists(platform_.files, path, dir_mask::hiddenFiles)) {
    RunStep_ = step::startRedistributable;
    process = startExpanded(path);
  }
  if (process != 0) {
    RunStep_ = step::waitForRedistributable;
    waitFor(process);
  }
  program_.DoEvents();
  RunStep_ = step::deleteRedistributable;
  DeleteFileIfPresent(path);
}

/// Starts what the work file holds and nothing else: the laid program is held until its process is
/// there.
std::int32_t InstallRun::startExpanded(TextView path) {
  const Hold laid = platform_.holds.hold(path, Holding::ToKeep);
  if (!holdsExpanded(laid, program_.workFile)) throw RuntimeError(ErrorNumber::PermissionDenied);
  return platform_.processes.Shell(join(u"\"", path, u"\""), normalWindow);
}

void InstallRun::waitFor(std::int32_t process) {
  const ProcessHandle handle = platform_.processes.OpenProcess(SYNCHRONIZE, false, process);
  if (handle == 0) return;
  platform_.processes.WaitForSingleObject(handle, INFINITE);
  platform_.processes.CloseHandle(handle);
}

bool InstallRun::DeleteFileIfPresent(TextView path) {
  return ignoringErrors([&] {
    if (exists(platform_.files, path, dir_mask::hiddenFiles)) platform_.files.Kill(path);
  });
}

// ---- 4 to 14

void InstallRun::changeStatus() {
  showTick(tick::status);
  showFile(u"");
  showStatus(phrases_.Translate(u"Registry settings are being done..."));
}

void InstallRun::readySettingsStore() {
  if (program_.globals.gOSClass == profileClass) {
    readyUserFolders(program_, phrases_, *this);
    return;
  }
  RunStep_ = step::productKey;
  registry_.CreateRegKey(HKEY_LOCAL_MACHINE, settingsKey, normalChoice);
}

void InstallRun::writeSettings() {
  RunStep_ = step::directory;
  settings_.writeDirectory(installDirectory());
  RunStep_ = step::upgrades;
  settings_.upgrade();
  program_.globals.gProductVersion = productVersion;
  RunStep_ = step::settings;
  settings_.write(program_.globals.gProductVersion);
}

void InstallRun::writeUninstallEntry() {
  RunStep_ = step::uninstallEntry;
  enterUninstall(registry_, program_.globals);
}

void InstallRun::registerFileType() {
  FileType(registry_, program_.globals, platform_.dialogs, phrases_, *this).registerType();
}

void InstallRun::repairVideoCodecs() {
  RunStep_ = step::videoCodecs;
  if (!CheckAviRegistry(registry_) && !RepairAviRegistry(registry_)) {
    platform_.dialogs.MsgBox(phrases_.Translate(u"Couldn't fix AVI registry!"),
                             box_style::exclamation, u"ZEV Screen Recorder");
  }
  showTick(tick::behindVideoCodecs);
}

void InstallRun::writeLanguage() {
  RunStep_ = step::language;
  settings_.writeLanguage(form1_.Combo1.ListIndex());
}

void InstallRun::removeTemporaryFiles() {
  RunStep_ = step::temporaryFiles;
  form_.RemoveTempFiles();
}

void InstallRun::makeShortcuts() { StartMenu(program_, phrases_, *this).makeShortcuts(); }

void InstallRun::registerUsers() {
  RunStep_ = step::otherUsers;
  showTick(tick::otherUsers);
  if (program_.globals.gOSClass != profileClass) return;
  RunStep_ = step::registerUsers;
  std::int16_t nothingToWalk = 0;
  UserRegistration(program_, phrases_, registry_, *this).RegisterUsers(nothingToWalk);
}

/// The last button that works is Finish. The window comes to the front of whatever covered it
/// meanwhile.
void InstallRun::finish() {
  showTick(tick::finish);
  form1_.Refresh();
  program_.DoEvents();
  form1_.Refresh();
  showStatus(phrases_.Translate(
      u"Installation of ZEV Screen Recorder has been successfully completed! You "
      u"can launch ZEV from the Start Menu."));
  form1_.Picture2.Visible = false;
  RunStep_ = step::finish;
  form1_.Command1.Enabled = false;
  form1_.Command3.Enabled = false;
  form1_.Command2.Enabled = true;
  form1_.Command2.Caption = phrases_.Translate(u"Finish");
  const WindowHandle window = platform_.application.engine().windowHandle(form1_);
  platform_.windows.SetForegroundWindow(window);
  form1_.Refresh();
  platform_.windows.BringWindowToTop(window);
}

// ---- the screen

void InstallRun::showTick(std::int32_t tick) {
  ShowProgress(toLong(static_cast<double>(tick) / tick::finish * 100));
}

/// Bar and figure are painted at once: the run passes the message loop too seldom for that.
void InstallRun::ShowProgress(std::int32_t percent) {
  form1_.Label7.Width =
      static_cast<std::int32_t>(form1_.Picture2.Width.get() * static_cast<double>(percent) / 100);
  form1_.Label8.Caption = join(decimal(percent), u"%");
  form1_.Label7.Refresh();
  form1_.Label8.Refresh();
}

void InstallRun::showStatus(TextView text) {
  form1_.Label11.Caption = Text(text);
  form1_.Label11.Refresh();
}

void InstallRun::showFile(TextView text) {
  form1_.Label12.Caption = Text(text);
  form1_.Label12.Refresh();
}

void InstallRun::showMemberBox(TextView text, TextView title) {
  platform_.dialogs.MsgBox(text, box_style::systemExclamation, title);
}

}  // namespace zev
