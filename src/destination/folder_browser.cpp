#include "destination/folder_browser.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "destination/drive_refusal.h"
#include "localisation/localise_form.h"
#include "runtime/error.h"
#include "runtime/number.h"
#include "system/attributes.h"

namespace zev {
namespace {

constexpr double bytesPerKilobyte = 1024;
constexpr double kilobytesPerMegabyte = 1024;
constexpr double leastFreeBytes = 5'000'000;
constexpr TextView paragraph = u"\r";
constexpr TextView forbiddenInName = u"*\\?";
constexpr std::size_t digitsOfGroup = 3;

bool isFloppy(TextView drive) { return drive == u"a:" || drive == u"b:"; }

}  // namespace

FolderBrowser::FolderBrowser(Program& program, Phrases& phrases, Form1Procedures& wizard)
    : globals_(program.globals),
      form1_(program.form1),
      form3_(program.form3),
      platform_(program.platform),
      phrases_(phrases),
      wizard_(wizard) {
  form3_.Load = [this] { Form_Load(); };
  form3_.QueryUnload = [this](std::int16_t&, UnloadMode mode) { Form_QueryUnload(mode); };
  form3_.Command1.Click = [this] { Command1_Click(); };
  form3_.Command2.Click = [this] { Command2_Click(); };
  form3_.Command3.Click = [this] { Command3_Click(); };
  form3_.Drive1.Change = [this] { Drive1_Change(); };
  form3_.Drive1.available = [this](TextView drive) {
    const std::uint32_t place = static_cast<std::uint32_t>(upperCase(drive).front() - u'A');
    return place < 26 && (platform_.drives.GetLogicalDrives() >> place & 1) != 0;
  };
  form3_.Dir1.exists = [this](TextView folder) { return isFolder(folder); };
}

// ---- opening and closing

void FolderBrowser::Form_Load() {
  form3_.Drive1.comeUpOn(platform_.processes.ownFolder());
  form3_.Dir1.comeUpOn(platform_.processes.ownFolder());
  form3_.Icon = form1_.Icon.get();
  writeTexts();
  repairProposal();
  climbToExistingFolder();
  openProposal();
  showFreeSpace();
}

void FolderBrowser::writeTexts() {
  LocaliseForm(form3_, phrases_, globals_.gLanguage);
  form3_.Caption = phrases_.Translate(form3_.Caption.get());
  form3_.Label1.Caption = phrases_.Translate(u"Select a destination for Screen Recorder");
  form3_.Label2.Caption = phrases_.Translate(u"Free Space");
  form3_.Command1.Caption = phrases_.Translate(u"&New Folder");
  form3_.Command2.Caption = phrases_.Translate(u"&Ok");
}

/// What cannot begin a path gives way to the root of the system's drive.
void FolderBrowser::repairProposal() {
  const Text proposed = proposal();
  if (!proposed.empty() && proposed.front() != u':' && proposed.front() != u'\\') return;
  globals_.gInstallDir = join(left(trim(globals_.gWinDir), 2), u"\\");
  form1_.Text2.Text_ = proposal();
}

void FolderBrowser::climbToExistingFolder() {
  while (!exists(platform_.files, proposal(), dir_mask::directories)) {
    const std::size_t backslash = proposal().rfind(u'\\');
    if (backslash == Text::npos) {
      globals_.gInstallDir = join(left(trim(globals_.gWinDir), 1), u":\\");
      return;
    }
    globals_.gInstallDir = proposal().substr(0, backslash);
  }
}

/// The browser does not stay on a diskette.
void FolderBrowser::openProposal() {
  form3_.Drive1.setDrive(proposedDrive());
  form3_.Dir1.setPath(proposal());
  if (isFloppy(form3_.Drive1.Drive())) form3_.Drive1.setDrive(left(trim(globals_.gWinDir), 2));
}

/// Every way of closing passes here; that by the title bar has nobody else to give the wizard back.
/// The person comes back to the path, if the wizard still shows it.
void FolderBrowser::Form_QueryUnload(UnloadMode mode) {
  if (mode == UnloadMode::ControlMenu) form1_.Enabled = true;
  if (form1_.Text2.canTakeFocus()) form1_.Text2.SetFocus();
  wizard_.DizinGuncelle();
}

void FolderBrowser::Command2_Click() {
  if (!spaceSuffices()) return;
  globals_.gInstallDir = withoutTrailing(trim(form3_.Dir1.Path()), u'\\');
  platform_.application.Unload(form3_);
  wizard_.DizinGuncelle();
  form1_.Text2.Text_ = proposal();
  form1_.Enabled = true;
}

void FolderBrowser::Command3_Click() {
  form1_.Enabled = true;
  platform_.application.Unload(form3_);
}

// ---- drives and folders

/// Comes about inside itself, too: when it sets the drive back.
void FolderBrowser::Drive1_Change() {
  const Text root = join(left(form3_.Drive1.Drive(), 1), u":\\");
  const std::uint32_t type = platform_.drives.GetDriveTypeA(root);
  showDriveRefusal(platform_.dialogs, phrases_, Refuser::FolderBrowser, type, root);
  if (type == drive_type::fixed) {
    enterDrive();
  } else {
    returnToProposal();
  }
  showFreeSpace();
}

void FolderBrowser::enterDrive() {
  const bool proposed = equalText(proposedDrive(), form3_.Drive1.Drive());
  form3_.Dir1.setPath(proposed ? proposal() : form3_.Drive1.Drive());
}

void FolderBrowser::returnToProposal() {
  form3_.Drive1.setDrive(proposedDrive());
  form3_.Dir1.setPath(proposal());
}

/// The new folder stays, even if the browser is left without choosing it. A name that the system
/// refuses is a run-time error.
void FolderBrowser::Command1_Click() {
  const Text parent = openFolderWithBackslash();
  const Text answer = platform_.dialogs.InputBox(
      join(phrases_.Translate(u"Enter a name for new folder :"), paragraph, paragraph, parent),
      phrases_.Translate(u"New Folder"), u"");
  const TextView name = trim(answer);
  if (name.empty() || !nameAllowed(name)) return;
  const Text folder = join(parent, name);
  if (!exists(platform_.files, folder, dir_mask::directories)) platform_.files.MkDir(folder);
  form3_.Dir1.setPath(folder);
  form3_.Dir1.Refresh();
}

/// The message names more characters than the check.
bool FolderBrowser::nameAllowed(TextView name) {
  if (name.find_first_of(forbiddenInName) == TextView::npos) return true;
  platform_.dialogs.MsgBox(phrases_.Translate(u"Characters, like '\\*?,:' are invalid."),
                           box_style::exclamation, phrases_.Translate(u"Invalid Characters"));
  return false;
}

Text FolderBrowser::openFolderWithBackslash() const {
  return join(withoutTrailing(form3_.Dir1.Path(), u'\\'), u"\\");
}

// ---- free space

/// Of the drive of the opened folder. The numbers of a drive that cannot be asked are 0; a drive
/// with more than the figure can tell has the greatest one.
std::int32_t FolderBrowser::FreeSpaceKB() {
  DiskSpace space;
  platform_.drives.GetDiskFreeSpaceA(left(form3_.Dir1.Path(), 3), space);
  const std::int32_t clusterBytes = multiply(space.sectorsPerCluster, space.bytesPerSector);
  const double kilobytes = space.freeClusters / bytesPerKilobyte * clusterBytes;
  return toLong(std::min<double>(kilobytes, std::numeric_limits<std::int32_t>::max()));
}

void FolderBrowser::showFreeSpace() { form3_.Label3.Caption = megabytes(FreeSpaceKB()); }

bool FolderBrowser::spaceSuffices() {
  if (FreeSpaceKB() >= leastFreeBytes / bytesPerKilobyte) return true;
  platform_.dialogs.MsgBox(
      join(phrases_.Translate(u"Space in drive is less than 5.000.000 bytes."), paragraph,
           phrases_.Translate(u"You need more space to install Screen Recorder.")),
      box_style::exclamation, phrases_.Translate(u"Warning"));
  return false;
}

Text megabytes(std::int32_t kilobytes) {
  const auto whole = static_cast<std::int64_t>(std::round(kilobytes / kilobytesPerMegabyte));
  Text figure = whole == 0 ? Text() : decimal(whole);
  for (std::size_t place = figure.size(); place > digitsOfGroup;) {
    place -= digitsOfGroup;
    figure.insert(place, u",");
  }
  return join(figure, u" MB");
}

// ---- helpers

/// Unlike the proposal, the tree opens nothing but folders, hidden ones too.
bool FolderBrowser::isFolder(TextView folder) {
  std::int32_t attributes = 0;
  ignoringErrors([&] { attributes = platform_.files.GetAttr(folder); });
  return (attributes & static_cast<std::int32_t>(file_attribute::directory)) != 0;
}

Text FolderBrowser::proposedDrive() const { return Text(left(proposal(), 2)); }

}  // namespace zev
