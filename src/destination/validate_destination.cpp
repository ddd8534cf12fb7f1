#include "destination/validate_destination.h"

#include "destination/drive_refusal.h"
#include "runtime/error.h"
#include "state/product.h"
#include "system/attributes.h"
#include "system/product_settings.h"

// The check of the install directory, in the order in which the person hears of it:
//
//   the entry            empty, forbidden characters; up to three characters stand for the
//                        product's folder on a drive
//   the drive            one that cannot be installed to is refused
//   the installed one    asks before a second installation beside it
//   the directory        made with its missing parents
//   earlier versions     their folders are kept free
//
// `gInstallDir` is entry and result at once: the steps complete, shorten and replace it. As a text
// of fixed length it is always read through destination(), which trims it.

namespace zev {
namespace {

/// An entry of fewer characters is completed, not taken as a path.
constexpr std::size_t shortestPath = 4;
constexpr TextView forbiddenCharacters = u"*?<>\"|/";

constexpr TextView productTitle = u"ZEV Screen Recorder";
constexpr TextView shortTitle = u"ZEV";

/// Thrown where MkDir refuses, to tell that from other run-time errors: the two have boxes of their
/// own.
struct FolderNotMade {};

/// The 1-based place of the last backslash at or before a place; 0 if there is none.
std::size_t backslashUpTo(TextView path, std::size_t place) {
  const std::size_t found = place == 0 ? TextView::npos : path.rfind(u'\\', place - 1);
  return found == TextView::npos ? 0 : found + 1;
}

}  // namespace

void DestinationCheck::ValidateDestination(std::int16_t& ok) {
  ok = 0;
  if (!entryGiven() || !charactersAllowed()) return;
  completeShortEntry();
  if (!driveSuits()) return;
  readInstalledDirectory();
  if (!otherDirectoryWanted()) return;
  if (makeDirectory() && acceptVersion()) ok = -1;
}

// ---- the entry

bool DestinationCheck::entryGiven() {
  if (!destination().empty()) return true;
  tell(phrases_.Translate(u"Please enter a directory to install ZEV Screen Recorder."),
       box_style::information, productTitle);
  return false;
}

/// The message does not name quite the characters that are checked: it has ":", and leaves out ">"
/// and the double quote.
bool DestinationCheck::charactersAllowed() {
  const Text entry = destination();
  if (entry.find_first_of(forbiddenCharacters) == Text::npos) return true;
  tell(join(phrases_.Translate(u"Folder name cannot contain any of the *,?,<, :, /, | characters. "
                               u"The directory name you've entered :"),
            lineEnd, lineEnd, entry),
       box_style::exclamation, shortTitle);
  return false;
}

/// "D", "D:" and "D:\" become the product's folder on that drive. Only the first character counts.
void DestinationCheck::completeShortEntry() {
  const Text entry = destination();
  if (entry.size() < shortestPath)
    globals_.gInstallDir = join(left(entry, 1), u":\\", productFolder);
}

bool DestinationCheck::driveSuits() {
  const Text root = join(trim(left(destination(), 1)), u":\\");
  const std::uint32_t type = platform_.drives.GetDriveTypeA(root);
  showDriveRefusal(platform_.dialogs, phrases_, Refuser::DestinationCheck, type, root);
  return !refusedByCheck(type);
}

// ---- the installed version

/// `gInstalledDir` keeps what it held where the keys could be read but the product's is not among
/// them.
void DestinationCheck::readInstalledDirectory() {
  if (globals_.gOSClass == profileClass) {
    globals_.gInstalledDir =
        folderExists(platform_.files, globals_.gUserData) ? directoryOnRecord() : Text();
    return;
  }
  const KeyList keys = registry_.EnumRegKeys(HKEY_LOCAL_MACHINE, makerKey);
  if (std::holds_alternative<std::int32_t>(keys)) globals_.gInstalledDir.clear();
  if (lists(keys, productKey)) globals_.gInstalledDir = directoryOnRecord();
}

Text DestinationCheck::directoryOnRecord() {
  return registry_.GetRegString(HKEY_LOCAL_MACHINE, settingsKey, setting::Dizin, u"", normalChoice);
}

/// False if the person decides for the installed directory, which then replaces the entry. Paths
/// are compared as they are written: "c:\zev" is another directory than "C:\ZEV".
bool DestinationCheck::otherDirectoryWanted() {
  const Text installed(trim(globals_.gInstalledDir));
  if (!folderExists(platform_.files, installed) || installed == destination()) return true;
  const Text question = join(
      phrases_.Translate(
          u"A version of ZEV Screen Recorder 6 is already installed on your computer and now you "
          u"are installing again to another directory. It is recommended to install into the same "
          u"directory with the installed version or uninstall it before installing this one."),
      lineEnd, lineEnd, phrases_.Translate(u"Are you sure to install into this directory?"));
  const BoxAnswer answer =
      platform_.dialogs.MsgBox(question, box_style::yesNoDefaultNo, productTitle);
  if (answer != BoxAnswer::No) return true;
  globals_.gInstallDir = installed;
  program_.form1.Text2.Text_ = destination();
  return false;
}

// ---- the directory

/// After a failure `gInstallDir` keeps the part of the path that the climb had come to.
bool DestinationCheck::makeDirectory() {
  fullPath_ = destination();
  try {
    climb();
    return directoryStands();
  } catch (const FolderNotMade&) {
    tell(join(phrases_.Translate(u"Error: Could not create directory : "), lineEnd, lineEnd,
              destination()),
         box_style::exclamation, shortTitle);
    return false;
  } catch (const RuntimeError&) {
    tell(join(phrases_.Translate(u"Error: Directory name is not accepted. Please check the "
                                 u"directory name entered : "),
              lineEnd, lineEnd, trim(fullPath_)),
         box_style::exclamation, shortTitle);
    return false;
  }
}

/// Makes the missing parents, one each time round: goes up from the end of the path to the first
/// folder that exists, makes the one below it, and begins anew with the whole path until that
/// exists. `gInstallDir` is the folder that would be made next. A path without a backslash left to
/// go up by becomes the root of the system's drive.
void DestinationCheck::climb() {
  Text path = fullPath_;
  std::size_t place = path.size();
  while (!destinationExists()) {
    place = backslashUpTo(trim(path), place);
    if (place == 0) {
      globals_.gInstallDir = join(systemDrive(), u"\\");
      return;
    }
    path.resize(place - 1);
    if (folderExists(platform_.files, path)) {
      makeDestination();
      globals_.gInstallDir = fullPath_;
      path = fullPath_;
      place = path.size();
      program_.DoEvents();
    } else {
      --place;
      globals_.gInstallDir = path;
    }
  }
}

/// The product's usual folder is made once more, level by level, before the check gives up.
bool DestinationCheck::directoryStands() {
  if (!destinationExists()) makeDestination();
  if (destinationExists()) return true;
  if (destination() == join(systemDrive(), defaultFolder())) {
    repairDefaultFolder();
    return true;
  }
  tell(join(destination(), phrases_.Translate(u" could not be found!")), box_style::exclamation,
       phrases_.Translate(u"Error"));
  return false;
}

void DestinationCheck::repairDefaultFolder() {
  for (const Text& level : {Text(programFiles), defaultFolder()}) {
    const Text folder = join(systemDrive(), level);
    if (!folderExists(platform_.files, folder)) platform_.files.MkDir(folder);
  }
}

/// Makes the folder that `gInstallDir` names; throws FolderNotMade if that is refused.
void DestinationCheck::makeDestination() {
  if (!ignoringErrors([&] { platform_.files.MkDir(destination()); })) throw FolderNotMade{};
}

// ---- earlier versions

bool DestinationCheck::acceptVersion() {
  try {
    std::int16_t ok = 0;
    EarlierVersions(program_, phrases_, registry_, form_).CheckEarlierVersions(ok);
    return ok != 0;
  } catch (const RuntimeError&) {
    tell(phrases_.Translate(u"Error in old version check!"), box_style::exclamation, shortTitle);
    return false;
  }
}

// ---- helpers

Text DestinationCheck::systemDrive() const { return Text(left(trim(globals_.gWinDir), 2)); }

void DestinationCheck::tell(TextView text, std::int32_t style, TextView title) {
  platform_.dialogs.MsgBox(text, style, title);
}

}  // namespace zev
