#include "system/register_users.h"

#include <algorithm>

#include "runtime/error.h"
#include "state/product.h"
#include "system/attributes.h"
#include "system/special_folders.h"
#include "system/user_folders.h"

namespace zev {

void UserRegistration::RegisterUsers(std::int16_t& result) {
  const Text base = baseFolder();
  const std::vector<Text> names = base.empty() ? std::vector<Text>() : entriesOf(base);
  result = names.empty() ? -1 : 0;
  if (names.empty()) return;
  const Text user(trim(userName(program_).value_or(Text())));
  const Text userData(trim(globals_.gUserData));
  const Text userDataAlt(trim(globals_.gUserDataAlt));
  for (const Text& name : names) {
    if (name != user) serve(base, name);  // the run has served the running user
  }
  globals_.gUserData = userData;
  globals_.gUserDataAlt = userDataAlt;
}

/// The folder of the profiles, or the known folder itself where that lies elsewhere: its entries
/// are then left out, since they have no local folder of their own.
Text UserRegistration::baseFolder() {
  const Text drive = systemDrive(program_);
  Text base(withoutTrailing(GetKnownFolder(program_, known_folder::localAppData), u'\\'));
  if (base.empty() || !zev::exists(files_, base, dir_mask::anyEntry)) return base;
  const Text profiles = lowerCase(join(drive, u"\\Users"));
  return inStrText(lowerCase(base), profiles) > 0 ? profiles : base;
}

/// Files too; the walk sorts them out.
std::vector<Text> UserRegistration::entriesOf(TextView folder) {
  std::vector<Text> names;
  Text name = files_.Dir(join(trim(folder), u"\\*.*"), dir_mask::anyEntry);
  while (!name.empty()) {
    if (name != u"." && name != u"..") names.emplace_back(trim(name));
    program_.DoEvents();
    name = files_.Dir();
  }
  return names;
}

/// Errors are ignored here, statement by statement.
void UserRegistration::serve(TextView base, TextView name) {
  const Text profile = join(base, u"\\", name);
  const Text local = join(profile, profile_folder::local);
  std::vector<Hold> way;
  for (const Text& each : {profile, join(profile, profile_folder::data), local}) {
    if (!keep(way, each)) return;
  }
  clearAttributes(profile);
  if (!exists(local)) return;
  clearAttributes(local);
  if (!readyFolders(way, local)) return;
  globals_.gUserData = join(local, profile_folder::product);
  globals_.gUserDataAlt.clear();
  ignoringErrors(
      [&] { report_.showStatus(join(phrases_.Translate(u"Registering user : "), trim(name))); });
  writeSettings();
}

/// Makes the folders of the settings below a local folder that can be written to; false if the
/// profile is to be passed over.
bool UserRegistration::readyFolders(std::vector<Hold>& way, TextView local) {
  const Text maker = join(local, profile_folder::maker);
  const Text product = join(local, profile_folder::product);
  if (holds_.hold(join(local, u"\\", probeFile), Holding::ToKeep).isLink()) return false;
  if (!writable(local)) return false;
  makeFolder(maker);
  if (!exists(maker) || !keep(way, maker)) return false;
  makeFolder(product);
  return keep(way, product) && noLinksAmong(product);
}

/// Holds an entry on the way to the settings; false if it is a link, or somebody could make it one.
bool UserRegistration::keep(std::vector<Hold>& way, TextView path) {
  way.push_back(holds_.hold(path, Holding::ToKeep));
  return !way.back().refused();
}

/// Whether no setting leads to somebody's file.
bool UserRegistration::noLinksAmong(TextView folder) {
  const std::vector<TextView> names = ProductSettings::names();
  return std::none_of(names.begin(), names.end(), [&](TextView name) {
    return holds_.hold(join(folder, u"\\", name), Holding::ToKeep).isLink();
  });
}

bool UserRegistration::writable(TextView folder) {
  if (!WriteProbeFile(files_, folder, probeFile, probeFile)) return false;
  DeleteProbeFile(files_, folder, probeFile);
  return true;
}

void UserRegistration::makeFolder(TextView folder) {
  if (!exists(folder)) ignoringErrors([&] { files_.MkDir(folder); });
}

bool UserRegistration::exists(TextView path) {
  bool there = false;
  ignoringErrors([&] { there = zev::exists(files_, path, dir_mask::anyEntry); });
  return there;
}

void UserRegistration::clearAttributes(TextView path) {
  ClearHiddenAttribute(files_, path);
  ClearReadOnlyAttribute(files_, path);
}

void UserRegistration::writeSettings() {
  settings_.writeDirectory(globals_.gInstallDir.trimmed());
  settings_.upgrade();
  settings_.write(globals_.gProductVersion);
  settings_.writeLanguage(program_.form1.Combo1.ListIndex());
}

}  // namespace zev
