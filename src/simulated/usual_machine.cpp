#include "simulated/machine_settings.h"
#include "simulated/simulated_machine.h"

namespace zev::simulated {
namespace {

constexpr TextView commonFolders[] = {
    u"C:\\Program Files",
    u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs",
};

struct AviRow {
  TextView key;
  TextView value;
};

/// The handlers of the system's AVI file services, each the default value of its key.
constexpr AviRow aviRows[] = {
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

constexpr std::int32_t usualProgramsFolder = 2;

}  // namespace

FolderSettings usualFolders(TextView user) {
  const Text home = join(u"C:\\Users\\", user);
  FolderSettings folders;
  folders.temp = home + u"\\AppData\\Local\\Temp\\";
  folders.windows = u"C:\\Windows";
  folders.system = u"C:\\Windows\\system32";
  folders.documents = home + u"\\Documents";
  folders.localAppData = home + u"\\AppData\\Local";
  folders.desktop = home + u"\\Desktop";
  folders.special[usualProgramsFolder] =
      home + u"\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs";
  return folders;
}

void layCommonFolders(Disks& disks) {
  if (disks.at(u'C') == nullptr) return;
  for (const TextView folder : commonFolders) {
    if (!disks.exists(folder)) disks.putDirectory(folder);
  }
}

void layUsualMachine(SimulatedMachine& machine) {
  machine.disks().setDrive(u'C', {});
  machine.setFolders(usualFolders(u"bob"));
  layCommonFolders(machine.disks());
  for (const AviRow& row : aviRows) {
    machine.registry().setValue(HKEY_CLASSES_ROOT, row.key, {}, RegistryValue::ofText(row.value));
  }
}

}  // namespace zev::simulated
