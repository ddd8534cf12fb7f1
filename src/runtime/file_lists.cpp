#include "runtime/file_lists.h"

#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::size_t driveLength = 2;  ///< a letter and a colon

Text driveOf(TextView text) { return join(lowerCase(left(text, 1)), u":"); }

/// "D:\" for a drive alone and for its root, otherwise a folder without a backslash at its end.
Text folderOf(TextView path) {
  const TextView folder = withoutTrailing(path, u'\\');
  const bool drive = folder.size() == driveLength && folder.back() == u':';
  return drive ? join(upperCase(folder), u"\\") : Text(folder);
}

}  // namespace

void DriveListBox::setDrive(TextView drive) {
  const Text wanted = driveOf(drive);
  if (wanted == Drive()) return;
  if (available && !available(wanted)) throw RuntimeError(ErrorNumber::DeviceUnavailable);
  drive_ = wanted;
  if (Change) Change();
}

void DriveListBox::comeUpOn(TextView drive) { drive_ = driveOf(drive); }

void DirListBox::comeUpOn(TextView path) { path_ = folderOf(path); }

void DirListBox::setPath(TextView path) {
  const Text wanted = folderOf(path);
  if (wanted == Path() || (exists && !exists(wanted))) return;
  path_ = wanted;
  if (Change) Change();
}

}  // namespace zev
