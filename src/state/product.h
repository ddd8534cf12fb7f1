#pragma once

#include "runtime/text.h"
#include "state/globals.h"

namespace zev {

// What the product is called where it lies: its folder, its keys, its folders of a profile, and its
// programs.

/// The product's own folder, which every directory that it is laid into ends in.
inline constexpr TextView productFolder = u"ZEV Screen Recorder 6";

/// Behind a drive the folder of programs, and in it the product's: where it is laid if nobody wants
/// anything else.
inline constexpr TextView programFiles = u"\\Program Files";
inline Text defaultFolder() { return join(programFiles, u"\\", productFolder); }

/// Key of the product's settings under HKEY_LOCAL_MACHINE; the value files have no use for it.
inline constexpr TextView settingsKey = u"Software\\Tavorns\\ZEV5";

/// The maker's key under HKEY_LOCAL_MACHINE, and the subkey there that a machine with the product
/// has.
inline constexpr TextView makerKey = settingsKey.substr(0, settingsKey.rfind(u'\\'));
inline constexpr TextView productKey = settingsKey.substr(makerKey.size() + 1);

/// Folders of a user's profile, each with what it lies in in front of it. Maker and product are
/// called there as they are in the registry.
namespace profile_folder {
inline constexpr TextView data = u"\\AppData";          ///< of the profile
inline constexpr TextView local = u"\\AppData\\Local";  ///< of the profile: a user's root
/// `\Tavorns\ZEV5` of a user's root: the value files.
inline constexpr TextView product = settingsKey.substr(settingsKey.find(u'\\'));
inline constexpr TextView maker = product.substr(0, product.rfind(u'\\'));  ///< `\Tavorns`
}  // namespace profile_folder

/// The program that takes the product off the machine again.
inline constexpr TextView uninstallProgram = u"Uninstall Screen Recorder 6.exe";

/// Path of a file in the install directory.
inline Text installedFile(const Globals& globals, TextView name) {
  return join(globals.gInstallDir.trimmed(), u"\\", name);
}

/// Path of the product's main program there.
inline Text mainProgram(const Globals& globals) {
  return installedFile(globals, join(trim(globals.gProductExe), u".exe"));
}

}  // namespace zev
