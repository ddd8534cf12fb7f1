#include "system/start_menu.h"

#include "runtime/error.h"
#include "state/product.h"
#include "system/attributes.h"
#include "system/special_folders.h"

namespace zev {

/// An entry of the group: a shortcut's file, and an item of Program Manager.
struct GroupEntry {
  std::int32_t step;    ///< diagnostic step of the shortcut; 0 for the first, which has none
  TextView fileName;    ///< of the shortcut, without its extension
  TextView ownProgram;  ///< in the install directory; empty: the main program
  TextView arguments;
  TextView icon;         ///< follows the program's path
  TextView description;  ///< of the shortcut
  TextView title;        ///< of the item
};

namespace {

constexpr TextView groupName = u"ZEV Screen Recorder 6";

/// Diagnostic steps of the run; the entries after the first have theirs in the table.
namespace step {
constexpr std::int32_t status = 162;
constexpr std::int32_t folder = 163;
constexpr std::int32_t checkFolder = 164;
constexpr std::int32_t makeFolder = 165;
constexpr std::int32_t object = 166;
constexpr std::int32_t desktop = 167;
constexpr std::int32_t showGroup = 172;
constexpr std::int32_t programManager = 173;
}  // namespace step

/// Pauses in milliseconds, and what the server gets to answer in tenths of a second.
namespace pause {
constexpr std::uint32_t group = 500;
constexpr std::uint32_t item = 200;
}  // namespace pause

namespace timeout {
constexpr std::int32_t group = 100;
constexpr std::int32_t item = 50;
}  // namespace timeout

// clang-format off
constexpr GroupEntry groupEntries[] = {
    {0,   u"ZEV Screen Recorder 6",       u"",                                u"",            u", 0", u"ZEV Screen Recorder 6",           u"ZEV Screen Recorder 6"},
    {168, u"Film Works",                  u"",                                u" /filmworks", u", 0", u"ZEV Film Works",                  u"Film Works"},
    {169, u"Reel Desk",                   u"",                                u" /reeldesk",  u", 0", u"ZEV Reel Desk",                   u"Reel Desk"},
    {170, u"Screen Recorder 6 Help",      u"ZEV6.chm",                        u"",            u"",    u"ZEV Screen Recorder 6 Help",      u"Screen Recorder 6 Help"},
    {171, u"Uninstall Screen Recorder 6", uninstallProgram,                   u"",            u", 0", u"Uninstall ZEV Screen Recorder 6", u"Uninstall Screen Recorder 6"},
};
// clang-format on

constexpr int passesForReply = 10;
constexpr std::int32_t manualLink = 2;
constexpr std::int32_t noLink = 0;

}  // namespace

StartMenu::StartMenu(Program& program, Phrases& phrases, RunReport& report)
    : program_(program),
      globals_(program.globals),
      platform_(program.platform),
      phrases_(phrases),
      report_(report) {}

/// Program Manager makes the group where the shell cannot: without a folder for it, or when its
/// first entry fails. The Desktop's shortcut is then left out.
void StartMenu::makeShortcuts() {
  if (!groupWanted()) {
    if (desktopWanted()) makeDesktopShortcut();
    return;
  }
  tellInstalled();
  findFolder();
  if (!readyFolder() || !makeFirstEntry()) {
    makeProgramManagerGroup();
    return;
  }
  report_.setRunStep(step::desktop);
  if (desktopWanted()) makeDesktopShortcut();
  makeOtherEntries();
  showGroup();
}

// ---- the gates

/// Only NT 6.2 has the options that can switch the two off; elsewhere both are made.
bool StartMenu::groupWanted() const {
  return globals_.gVersionNT62 != 1 || globals_.gOptStartMenu != 0;
}

bool StartMenu::desktopWanted() const {
  return globals_.gVersionNT62 == 0 || (globals_.gVersionNT62 == 1 && globals_.gOptDesktop == 1);
}

/// The main program needs no proof: the run does not go on without it.
bool StartMenu::present(const GroupEntry& entry) {
  return entry.ownProgram.empty() || exists(platform_.files, target(entry), dir_mask::hiddenFiles);
}

// ---- the shell's shortcuts

void StartMenu::tellInstalled() {
  report_.showStatus(join(phrases_.Translate(u"ZEV has been sucessfully installed into '"),
                          install(), phrases_.Translate(u"' directory."), lineEnd, lineEnd,
                          phrases_.Translate(u"Now creating shortcuts...")));
}

/// The Start Menu that all users share, else the running user's own programs.
void StartMenu::findFolder() {
  report_.setRunStep(step::status);
  const Text shared = join(systemDrive(program_), u"\\ProgramData\\Microsoft\\Windows\\Start Menu");
  report_.setRunStep(step::folder);
  if (exists(platform_.files, shared, dir_mask::anyEntry)) {
    globals_.gStartMenuDir = shared;
  } else {
    globals_.gStartMenuDir = withoutTrailing(GetSpecialFolder(program_, CSIDL_PROGRAMS), u'\\');
  }
}

/// Makes the folder of the group. False if there is nowhere to make it.
bool StartMenu::readyFolder() {
  report_.setRunStep(step::checkFolder);
  Text& folder = globals_.gStartMenuDir;
  if (folder.empty() || !exists(platform_.files, folder, dir_mask::directories)) return false;
  report_.setRunStep(step::makeFolder);
  folder = join(withoutTrailing(folder, u'\\'), u"\\", groupName);
  if (!exists(platform_.files, folder, dir_mask::directories)) platform_.files.MkDir(trim(folder));
  return true;
}

/// False if the first entry cannot be made; that of the object is no such failure.
bool StartMenu::makeFirstEntry() {
  report_.setRunStep(step::object);
  shell_ = platform_.shortcuts.CreateObject();
  return ignoringErrors([&] { makeEntry(groupEntries[0]); });
}

/// All but the first, which was made before as the proof that the shell makes any.
void StartMenu::makeOtherEntries() {
  for (const GroupEntry& entry : groupEntries) {
    if (entry.step == 0) continue;
    report_.setRunStep(entry.step);
    if (present(entry)) makeEntry(entry);
  }
}

/// An error of any statement reaches the caller, and nothing is on the disk before Save.
void StartMenu::makeEntry(const GroupEntry& entry) {
  const auto shortcut =
      shell().CreateShortcut(join(trim(globals_.gStartMenuDir), u"\\", entry.fileName, u".lnk"));
  shortcut->TargetPath(target(entry));
  shortcut->Arguments(entry.arguments);
  shortcut->WindowStyle(normalWindow);
  shortcut->IconLocation(join(target(entry), entry.icon));
  shortcut->Description(entry.description);
  shortcut->WorkingDirectory(install());
  shortcut->Save();
}

/// Unlike the entries of the group it sets no window style.
void StartMenu::makeDesktopShortcut() {
  const Text desktop(trim(shell().SpecialFolders(u"Desktop")));
  if (desktop.empty()) return;
  const auto shortcut = shell().CreateShortcut(join(desktop, u"\\", groupName, u".lnk"));
  shortcut->TargetPath(mainProgram(globals_));
  shortcut->Arguments(u"");
  shortcut->IconLocation(join(mainProgram(globals_), u", 0"));
  shortcut->Description(u"ZEV Screen Recorder 6");
  shortcut->WorkingDirectory(install());
  shortcut->Save();
}

/// Shows the person where the entries are. That this fails is no error of the run.
void StartMenu::showGroup() {
  report_.setRunStep(step::showGroup);
  ignoringErrors([&] {
    const TextView folder = trim(globals_.gStartMenuDir);
    platform_.processes.ShellExecuteA(0, u"", folder, u"", left(folder, 2), normalWindow);
  });
}

/// Without the group there is no object, and a Desktop shortcut alone fails on that.
WScriptShell& StartMenu::shell() {
  if (shell_ == nullptr) throw RuntimeError(ErrorNumber::ObjectVariableNotSet);
  return *shell_;
}

// ---- Program Manager

/// Whatever fails, the next step is tried: the server may be there without answering in time.
void StartMenu::makeProgramManagerGroup() {
  report_.setRunStep(step::programManager);
  Dde& dde = platform_.dde;
  ignoringErrors([&] { dde.LinkTopic(u"Progman|progman"); });
  ignoringErrors([&] { dde.LinkItem(u""); });
  ignoringErrors([&] { dde.LinkMode(manualLink); });
  letReplyCome(pause::group);
  ignoringErrors([&] { dde.LinkTimeout(timeout::group); });
  execute(join(u"[CreateGroup(", groupName, u")]"), pause::group);
  ignoringErrors([&] { dde.LinkTimeout(timeout::item); });
  addItems();
  ignoringErrors([&] { dde.LinkMode(noLink); });
}

/// A file that cannot be asked for gets no item.
void StartMenu::addItems() {
  for (const GroupEntry& entry : groupEntries) {
    bool wanted = false;
    ignoringErrors([&] { wanted = present(entry); });
    if (!wanted) continue;
    execute(join(u"[additem(\"", target(entry), u"\"", entry.arguments, u",", entry.title, u")]"),
            pause::item);
  }
}

void StartMenu::execute(TextView command, std::uint32_t milliseconds) {
  ignoringErrors([&] { platform_.dde.LinkExecute(command); });
  letReplyCome(milliseconds);
}

/// Replies arrive through the message loop.
void StartMenu::letReplyCome(std::uint32_t milliseconds) {
  for (int pass = 0; pass < passesForReply; ++pass) {
    ignoringErrors([&] { program_.DoEvents(); });
  }
  ignoringErrors([&] { platform_.processes.Sleep(milliseconds); });
}

// ---- paths

Text StartMenu::target(const GroupEntry& entry) const {
  return entry.ownProgram.empty() ? mainProgram(globals_)
                                  : installedFile(globals_, entry.ownProgram);
}

}  // namespace zev
