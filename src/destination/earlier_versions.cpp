#include "destination/earlier_versions.h"

#include <algorithm>

#include "runtime/error.h"
#include "system/attributes.h"
#include "system/product_settings.h"

namespace zev {
namespace {

constexpr TextView installTitle = u"ZEV Install";

/// An older generation on record under HKEY_LOCAL_MACHINE.
struct Generation {
  TextView key;
  TextView uninstaller;
};

/// Oldest first. The last one is version 4, whatever its key says.
constexpr Generation generations[] = {
    {u"Software\\Marlotech\\ZEV", u"Uninstall ZEV.exe"},
    {u"Software\\Marlotech\\ZEV2", u"Uninstall Screen Recorder 3.exe"},
    {u"Software\\Marlotech\\ZEV3", u"Uninstall Screen Recorder 4.exe"},
};
constexpr std::size_t version4 = 2;

}  // namespace

void EarlierVersions::CheckEarlierVersions(std::int16_t& ok) {
  ok = 0;
  readDirectories();
  if (!destinationIsTaken()) {
    ok = -1;
  } else if (!trim(directories_[version4]).empty()) {
    refuseForVersion4();
  } else {
    offerUninstall();
  }
}

/// A folder on record that has gone from the disk does not count.
void EarlierVersions::readDirectories() {
  for (std::size_t place = 0; place < std::size(generations); ++place) {
    Text& directory = directories_[place];
    directory = registry_.GetRegString(HKEY_LOCAL_MACHINE, generations[place].key, setting::Dizin,
                                       u"", ForceRegistry);
    const bool gone = !trim(directory).empty() && !folderExists(program_.platform.files, directory);
    if (gone) directory.clear();
  }
}

bool EarlierVersions::destinationIsTaken() const {
  const Text destination = program_.globals.gInstallDir.trimmed();
  return std::any_of(directories_.begin(), directories_.end(),
                     [&](const Text& directory) { return trim(directory) == destination; });
}

void EarlierVersions::refuseForVersion4() {
  program_.platform.dialogs.MsgBox(
      phrases_.Translate(u"Version 4 of ZEV Screen Recorder is installed in this folder. Please "
                         u"select another directory to install the new version."),
      box_style::exclamation, installTitle);
  form_.Command4_Click();
}

void EarlierVersions::offerUninstall() {
  const Text text = join(
      phrases_.Translate(u"A previous version of ZEV Screen Recorder is installed in this folder."),
      lineEnd, lineEnd,
      phrases_.Translate(u"Please first uninstall the previous version or select another directory "
                         u"to install the new version."),
      lineEnd, lineEnd,
      phrases_.Translate(u"Would you like to uninstall the previous version now?"));
  const BoxAnswer answer =
      program_.platform.dialogs.MsgBox(text, box_style::yesNoDefaultNo, installTitle);
  if (answer == BoxAnswer::Yes) ignoringErrors([&] { startUninstaller(); });
}

/// That of the newest generation on record, which need not be the one whose folder it is about; the
/// oldest if there is none. The wizard does not wait for it.
void EarlierVersions::startUninstaller() {
  std::size_t place = std::size(generations) - 1;
  while (place > 0 && trim(directories_[place]).empty()) --place;
  program_.platform.processes.Shell(
      join(u"\"", trim(directories_[place]), u"\\", generations[place].uninstaller, u"\""),
      normalWindow);
}

}  // namespace zev
