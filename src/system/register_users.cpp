#include "system/register_users.h"

#include "runtime/error.h"
#include "system/attributes.h"
#include "system/profile_folders.h"
#include "system/special_folders.h"
#include "system/user_folder_chain.h"

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
  clearAttributes(profile);
  if (!exists(local)) return;
  clearAttributes(local);
  if (!writable(local)) return;
  makeFolder(join(local, profile_folder::maker));
  if (!exists(join(local, profile_folder::maker))) return;
  makeFolder(join(local, profile_folder::product));
  globals_.gUserData = join(local, profile_folder::product);
  globals_.gUserDataAlt.clear();
  ignoringErrors(
      [&] { report_.showStatus(join(phrases_.Translate(u"Registering user : "), trim(name))); });
  writeSettings();
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
