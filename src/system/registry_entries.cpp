#include "system/registry_entries.h"

#include <algorithm>

#include "runtime/error.h"
#include "state/product.h"

namespace zev {

// ---- the uninstall entry

namespace {

constexpr TextView entryKey =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\ZEVScreenRecorder6";

}  // namespace

void enterUninstall(Registry& registry, const Globals& globals) {
  const auto set = [&](TextView name, TextView text) {
    registry.SetRegString(HKEY_LOCAL_MACHINE, entryKey, name, text, ForceRegistry);
  };
  registry.CreateRegKey(HKEY_LOCAL_MACHINE, entryKey, ForceRegistry);
  set(u"DisplayName", u"ZEV Screen Recorder 6");
  set(u"UninstallString", installedFile(globals, uninstallProgram));
}

// ---- the file type

namespace {

constexpr TextView extensionKey = u".zrd";
constexpr TextView programId = u"ZEV.ReelDeskProject";

/// Diagnostic steps of the run.
namespace step {
constexpr std::int32_t list = 156;
constexpr std::int32_t owner = 157;
constexpr std::int32_t keys = 158;
}  // namespace step

}  // namespace

void FileType::registerType() {
  report_.setRunStep(step::list);
  report_.showStatus(phrases_.Translate(u"'.zrd' file type registry..."));
  const bool known = present();
  report_.setRunStep(step::owner);
  if (known && ownedByAnother() && personKeepsTheOther()) return;
  report_.setRunStep(step::keys);
  writeKeys();
}

/// A key that differs only in case does not count.
bool FileType::present() {
  return lists(registry_.EnumRegKeys(HKEY_CLASSES_ROOT, u""), extensionKey);
}

bool FileType::ownedByAnother() {
  return registry_.GetRegString(HKEY_CLASSES_ROOT, extensionKey, defaultValue, u"",
                                ForceRegistry) != programId;
}

bool FileType::personKeepsTheOther() {
  return dialogs_.MsgBox(
             phrases_.Translate(u"'.zrd' file type is associated with another application. Would "
                                u"you like to associate this file type with ZEV Reel Desk Project "
                                u"file?"),
             box_style::yesNoQuestion, phrases_.Translate(u"Screen Recorder")) == BoxAnswer::No;
}

void FileType::writeKeys() {
  const Text program = mainProgram(globals_);
  write(extensionKey, programId);
  write(programId, u"ZEV ReelDesk Project File");
  write(join(programId, u"\\shell\\open\\command"), join(u"\"", program, u"\" /reeldesk %1"));
  write(join(programId, u"\\DefaultIcon"), join(program, u",0"));
}

void FileType::write(TextView key, TextView text) {
  registry_.CreateRegKey(HKEY_CLASSES_ROOT, key, ForceRegistry);
  registry_.SetRegString(HKEY_CLASSES_ROOT, key, defaultValue, text, ForceRegistry);
}

// ---- the keys of AVI files

namespace {

/// A key under HKEY_CLASSES_ROOT and its default value.
struct AviKey {
  TextView key;
  TextView expected;
};

constexpr AviKey aviKeys[] = {
    {u"AVIFile\\Compressors\\vids", u"{00020001-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Compressors\\auds", u"{0002000F-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\WAV", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\AVI", u"{00020000-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\AU", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\BMP", u"{00020006-0000-0000-C000-000000000046}"},
    {u"AVIFile\\Extensions\\DIB", u"{00020006-0000-0000-C000-000000000046}"},
    {u"AVIFile\\RIFFHandlers\\AVI", u"{00020000-0000-0000-C000-000000000046}"},
    {u"AVIFile\\RIFFHandlers\\WAVE", u"{00020003-0000-0000-C000-000000000046}"},
    {u"AVIFile\\CLSID", u"{00022602-0000-0000-C000-000000000046}"},
};

}  // namespace

bool CheckAviRegistry(Registry& registry) {
  return std::all_of(std::begin(aviKeys), std::end(aviKeys), [&](const AviKey& each) {
    const Text found =
        registry.GetRegString(HKEY_CLASSES_ROOT, each.key, defaultValue, u"", ForceRegistry);
    return trim(found) == each.expected;
  });
}

bool RepairAviRegistry(Registry& registry) {
  return ignoringErrors([&] {
    for (const AviKey& each : aviKeys) {
      registry.SetRegString(HKEY_CLASSES_ROOT, each.key, defaultValue, each.expected,
                            ForceRegistry);
    }
  });
}

}  // namespace zev
