#include "scenarios/fault_ends.h"

#include <map>
#include <sstream>
#include <stdexcept>

#include "package/manifest.h"
#include "platform/file_system.h"
#include "scenarios/whole_run.h"

namespace zev {
namespace {

const std::string systemRoot = "C:\\Windows\\system32\\";
const std::string documents = "C:\\Users\\bob\\Documents\\";
const std::string productRoot = userFolder + "\\Tavorns";
const std::string values = productRoot + "\\ZEV5";
const std::string probe = userFolder + "\\deneme_sil";
const std::string folderOfLinks = "\\ZEV Screen Recorder 6";
const std::string menu = "C:\\ProgramData\\Microsoft\\Windows\\Start Menu";
const std::string ownMenu =
    "C:\\Users\\bob\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs";
const std::string group = menu + folderOfLinks;
const std::string desktopLink = "C:\\Users\\bob\\Desktop\\ZEV Screen Recorder 6.lnk";

const std::string emptyFile = "32 ";
constexpr int uninstallerRow = 15;
constexpr int helpRow = 16;
constexpr int projectRow = 29;
constexpr int redistributableRow = 31;

// ---- which call leaves what

/// What a failing call leaves, in words that `deeds` knows. The first row that fits counts; a call
/// that no row fits leaves all as it is.
struct EndRule {
  const char* operations;  ///< separated by bars
  Phase phase;
  const char* about;  ///< a piece of the call's path; "" is any
  const char* left;
};

// clang-format off
constexpr EndRule endRules[] = {
    // A machine whose version is not known keeps its settings in the registry.
    {"GetVersionExA", Phase::Load, "", "other_class"},

    // The system directory without its name is the root of the drive.
    {"GetSystemDirectoryA", Phase::Prepare, "", "system_in_root"},
    {"Dir", Phase::Prepare, "ZEV Projects", ""},
    {"CLSIDFromString|SHGetKnownFolderPath|lstrlenW|Dir", Phase::Prepare, "", "projects_inside"},
    {"SHGetSpecialFolderLocation|SHGetPathFromIDList", Phase::Prepare, "", "projects_inside"},

    {"FreeFile|OpenBinary", Phase::Extract, "ZEVTMP", "no_target"},
    {"FreeFile|OpenBinary", Phase::Extract, "ZEVSetup.exe", "no_target"},
    {"LOF|Get|Put", Phase::Extract, "", "empty_target"},
    {"LZOpenFileA", Phase::Expand, "", "no_target"},
    {"LZCopy", Phase::Expand, "", "empty_target"},
    // What nobody closes cannot be deleted.
    {"LZClose", Phase::Expand, "ZEVTMP", "path_stays temporary_stays"},
    {"LZClose", Phase::MainIn, "ZEVTMP", "path_stays temporary_stays"},
    {"LZClose", Phase::Expand, "vcredist_x86.exe", "redistributable_stays"},
    {"Kill", Phase::Expand, "vcredist_x86.exe", "redistributable_stays"},

    {"FreeFile|OpenOutput|Print", Phase::Settings, "deneme_sil", "no_user"},
    {"Close", Phase::Settings, "deneme_sil", "no_user probe_stays"},
    {"Dir|Kill", Phase::Settings, "deneme_sil", "probe_stays"},
    {"MkDir", Phase::Settings, "Tavorns", "no_folder"},
    // What was printed is there as soon as the second attempt to close the file succeeds.
    {"FreeFile|OpenOutput|Print", Phase::Settings, "Tavorns\\ZEV5\\", "no_path"},
    {"FreeFile|OpenOutput|Print", Phase::Language, "Tavorns\\ZEV5\\", "no_path"},
    {"RegCreateKeyA|RegSetValueExA", Phase::Settings, "", "no_value"},
    {"RegCreateKeyA|RegSetValueExA", Phase::FileType, "", "no_value"},
    {"RegCreateKeyA|RegSetValueExA", Phase::Language, "", "no_value"},

    {"Kill", Phase::CleanUp, "", "work_files_stay"},
    {"RmDir", Phase::CleanUp, "", "temporary_stays"},

    {"SpecialFolders", Phase::Shortcuts, "Desktop", "no_desktop_link"},
    {"Dir", Phase::Shortcuts, "ZEV6.chm", "no_help_link"},
    {"Dir", Phase::Shortcuts, "Uninstall Screen Recorder 6.exe", "no_uninstall_link"},
};
// clang-format on

/// Questions whether there is something; what they decide hangs on the mask and on which it is.
struct QuestionRule {
  Phase phase;
  std::string path;
  int mask;
  std::size_t repeat;  ///< 0: each that is answered
  const char* left;
};

constexpr int directories = 16;
constexpr int hiddenFiles = 38;
constexpr int anyEntry = 55;

const QuestionRule questionRules[] = {
    // A folder above that is not seen is taken for the destination.
    {Phase::Check, "C:\\Program Files", directories, 0, "elsewhere"},
    // The first one asks whether to start it, the second one whether to delete it.
    {Phase::Expand, installFolder + "\\vcredist_x86.exe", hiddenFiles, 2, "redistributable_stays"},
    {Phase::Settings, userFolder, directories, 0, "no_user_folders"},
    {Phase::Settings, productRoot, anyEntry, 0, "no_values_folder"},
    {Phase::Shortcuts, menu, directories, 0, "no_group no_desktop_link"},
    {Phase::Shortcuts, menu, anyEntry, 0, "group_of_the_user"},
};

/// A first link that cannot be made is made up for by Program Manager, which leaves no files.
constexpr const char* linkOperations =
    "CreateShortcut|TargetPath|Arguments|WindowStyle|IconLocation|Description|WorkingDirectory|"
    "Save";

bool isAmong(const std::string& name, const std::string& list) {
  return ("|" + list + "|").find("|" + name + "|") != std::string::npos;
}

std::string leftOf(const Call& call) {
  if (call.operation == "Dir" && call.empty) return "";
  if (isAmong(call.operation, linkOperations)) return "no_links no_desktop_link";
  for (const QuestionRule& rule : questionRules) {
    const bool about = call.operation == "Dir" && rule.phase == call.phase &&
                       rule.path == call.path && rule.mask == call.number;
    if (about && (rule.repeat == 0 || rule.repeat == call.repeat)) return rule.left;
  }
  if (call.operation == "Dir" && call.number == directories && !call.value.empty()) {
    return call.read ? "upgraded" : "no_value";
  }
  for (const EndRule& rule : endRules) {
    if (rule.phase == call.phase && isAmong(call.operation, rule.operations) &&
        call.path.find(rule.about) != std::string::npos) {
      return rule.left;
    }
  }
  return "";
}

// ---- what that means

/// Gives everything that lies in a folder, or has a name with that beginning, another beginning.
void move(Snapshot& all, const std::string& from, const std::string& to) {
  Snapshot moved;
  for (auto& [name, value] : all) {
    moved[name.starts_with(from) ? to + name.substr(from.size()) : name] = value;
  }
  all = std::move(moved);
}

std::string targetOf(int number) {
  for (const ManifestRow& row : manifest()) {
    if (row.row != number) continue;
    const std::string name = toUtf8(row.installedName);
    if (row.target == Target::System) return systemRoot + name;
    if (row.target == Target::Projects) return documents + "ZEV Projects\\" + name;
    return installFolder + "\\" + name;
  }
  throw std::out_of_range("no row " + std::to_string(number));
}

/// The path of the video is written into the project whatever it is.
std::string patchedEmptyProject() {
  constexpr std::size_t place = 25;
  constexpr std::size_t room = 512;
  std::string path = installFolder + "\\SampleAVI.avi";
  path.resize(room, ' ');
  return emptyFile + std::string(place, '\0') + path;
}

/// The redistributable is deleted behind its run, unless nothing could be run.
void leaveTarget(Snapshot& all, const Call& call, bool made) {
  const std::string target = targetOf(call.row);
  if (call.row == redistributableRow) {
    if (made && call.phase == Phase::Expand) all[target] = emptyFile;
    return;
  }
  all.erase(target);
  if (made) all[target] = emptyFile;
  if (call.row == projectRow) all[target] = patchedEmptyProject();
  if (!made && call.row == helpRow) all.erase(group + "\\Screen Recorder 6 Help.lnk");
  if (!made && call.row == uninstallerRow) {
    all.erase(group + "\\Uninstall Screen Recorder 6.lnk");
  }
}

using Deed = void (*)(Snapshot& all, const Call& call, const Known& known);

// clang-format off
const std::map<std::string, Deed> deeds = {
    {"other_class", [](Snapshot& all, const Call& call, const Known& known) { if (call.nth == 1) all = known.otherClass; }},
    {"elsewhere", [](Snapshot& all, const Call&, const Known& known) { all = known.elsewhere; }},
    {"system_in_root", [](Snapshot& all, const Call&, const Known&) { move(all, systemRoot, "C:\\"); }},
    {"projects_inside", [](Snapshot& all, const Call&, const Known&) { move(all, documents + "ZEV Projects", installFolder + "\\Projects"); }},
    {"no_target", [](Snapshot& all, const Call& call, const Known&) { leaveTarget(all, call, false); }},
    {"empty_target", [](Snapshot& all, const Call& call, const Known&) { leaveTarget(all, call, true); }},
    {"path_stays", [](Snapshot& all, const Call& call, const Known& known) { all[call.path] = known.before.at(call.path); }},
    {"redistributable_stays", [](Snapshot& all, const Call& call, const Known& known) { all[call.path] = known.before.at(targetOf(redistributableRow)); }},
    {"temporary_stays", [](Snapshot& all, const Call&, const Known& known) { all[temporaryFolder] = known.before.at(temporaryFolder); }},
    {"work_files_stay", [](Snapshot& all, const Call&, const Known& known) { for (const auto& [name, value] : known.before) if (name.starts_with(temporaryFolder)) all[name] = value; }},
    {"no_user", [](Snapshot& all, const Call&, const Known&) { all = withoutFolder(all, productRoot); all[installFolder + "\\UserF.dat"] = emptyFile + "\r\n"; }},
    {"probe_stays", [](Snapshot& all, const Call&, const Known&) { all[probe] = emptyFile + "deneme_sil\r\n"; }},
    {"no_folder", [](Snapshot& all, const Call& call, const Known&) { all = withoutFolder(all, call.path); }},
    {"no_user_folders", [](Snapshot& all, const Call&, const Known&) { all = withoutFolder(all, productRoot); }},
    {"no_values_folder", [](Snapshot& all, const Call&, const Known&) { all = withoutFolder(all, values); }},
    {"no_path", [](Snapshot& all, const Call& call, const Known&) { all.erase(call.path); }},
    {"no_value", [](Snapshot& all, const Call& call, const Known&) { all.erase(call.value); }},
    // A version that reads as 0 is an older one.
    {"upgraded", [](Snapshot& all, const Call& call, const Known&) { if (call.value.ends_with("\\Version")) { all[values + "\\AutoCodec"] = emptyFile + "0\r\n"; all[values + "\\InterfaceStyle"] = emptyFile + "1\r\n"; } }},
    {"no_links", [](Snapshot& all, const Call&, const Known&) { const std::string folder = all.at(group); all = withoutFolder(all, group); all[group] = folder; }},
    {"no_group", [](Snapshot& all, const Call&, const Known&) { all = withoutFolder(all, group); }},
    {"group_of_the_user", [](Snapshot& all, const Call&, const Known&) { move(all, group, ownMenu + folderOfLinks); }},
    {"no_desktop_link", [](Snapshot& all, const Call&, const Known&) { all.erase(desktopLink); }},
    {"no_help_link", [](Snapshot& all, const Call&, const Known&) { all.erase(group + "\\Screen Recorder 6 Help.lnk"); }},
    {"no_uninstall_link", [](Snapshot& all, const Call&, const Known&) { all.erase(group + "\\Uninstall Screen Recorder 6.lnk"); }},
};
// clang-format on

}  // namespace

Snapshot withoutReplacements(Snapshot snapshot) {
  const std::string suffix = toUtf8(replacementSuffix);
  std::erase_if(snapshot, [&](const auto& each) { return each.first.ends_with(suffix); });
  return snapshot;
}

Snapshot leftBehind(const Call& call, const Known& known) {
  Snapshot all = known.clean;
  std::istringstream words(leftOf(call));
  for (std::string word; words >> word;) deeds.at(word)(all, call, known);
  return all;
}

Snapshot leftBehindAStop(const Known& known) {
  return withoutReplacements(withoutFolder(known.before, temporaryFolder));
}

}  // namespace zev
