#include "scenarios/run_steps.h"

namespace zev {
namespace {

constexpr int directories = 16;
constexpr int anyEntry = 55;

/// What tells of its own failure does so in a box of one of these beginnings.
const std::vector<std::string> registryBox = {"Error : "};
const std::vector<std::string> fileBoxes = {"Error : ", "Error in "};

/// The next member's tick, which comes in front of its own step.
const Mark behindProject = writing("Label8.Caption", "50%");
const Mark behindRedistributable = writing("Label8.Caption", "53%");

}  // namespace

// clang-format off
const std::vector<StepMark>& stepMarks() {
  static const std::vector<StepMark> marks = {
      {"denominator and tick 0",                     writing("Label8.Caption", "0%"), {}, writing("Label8.Caption", "0%")},
      {"ProjectsFolder found",                       {"Dir", Phase::Prepare, "Documents", "", directories}, {}, behindProject},
      {"ProjectsFolder made",                        {"MkDir", Phase::Prepare, "ZEV Projects"}, {}, behindProject},
      {"sample project patched",                     {"OpenBinaryWrite", Phase::Prepare, "SampleProject.zrd"}},
      {"redistributable started",                    {"Shell", Phase::Expand, "vcredist_x86.exe"}},
      {"process of the redistributable opened and waited for", {"OpenProcess", Phase::Expand}},
      {"redistributable deleted",                    {"Dir", Phase::Expand, "vcredist_x86.exe", "", 0, 2}, {}, behindRedistributable},
      {"product key created",                        {"RegCreateKeyA", Phase::Settings, "Software\\Tavorns\\ZEV5"}},
      {"probe of gUserDir",                          {"OpenOutput", Phase::Settings, "\\bob\\AppData\\Local\\deneme_sil"}, {"couldn't be created"}},
      {"probe removed and \\Tavorns made in gUserDir", {"MkDir", Phase::Settings, "\\bob\\AppData\\Local\\Tavorns"}, {"couldn't be created"}},
      {"\\Tavorns\\ZEV5 made in gUserDir",           {"MkDir", Phase::Settings, "\\bob\\AppData\\Local\\Tavorns\\ZEV5"}, {"couldn't be created"}},
      {"the same work in gUserDirAlt",               {"Dir", Phase::Settings, "\\bob.BOBPC\\AppData\\Local", "", directories}},
      {"UserF.dat written",                          {"OpenOutput", Phase::Settings, "UserF.dat"}},
      {"Dizin",                                      {"OpenOutput", Phase::Settings, "\\ZEV5\\Dizin"}, fileBoxes},
      {"Dizin",                                      {"RegSetValueExA", Phase::Settings, "Dizin"}},
      {"reads and upgrades of the settings",         {"Dir", Phase::Settings, "\\ZEV5\\Version"}, fileBoxes},
      {"reads and upgrades of the settings",         {"RegQueryValueExA", Phase::Settings, "Version"}, registryBox},
      {"Version, IncCur, dwKFE, RecSnd, CapSpeed",   {"OpenOutput", Phase::Settings, "\\ZEV5\\Version"}, fileBoxes},
      {"Version, IncCur, dwKFE, RecSnd, CapSpeed",   {"RegSetValueExA", Phase::Settings, "Version"}, registryBox},
      {"uninstall entry",                            {"RegCreateKeyA", Phase::Settings, "\\Uninstall\\ZEVScreenRecorder6"}},
      {"file types listed",                          {"RegEnumKeyA", Phase::FileType}, registryBox},
      {"present file type read",                     {"RegOpenKeyA", Phase::FileType, ".zrd"}, registryBox},
      {"file type written",                          {"RegCreateKeyA", Phase::FileType, ".zrd"}},
      {"AVI keys",                                   {"RegOpenKeyA", Phase::FileType, "AVIFile"}, registryBox},
      {"Language",                                   {"OpenOutput", Phase::Language, "\\ZEV5\\Language"}, fileBoxes},
      {"Language",                                   {"RegSetValueExA", Phase::Language, "Language"}, registryBox},
      {"RemoveTempFiles",                            {"RmDir", Phase::CleanUp}, {}, writing("Label11.Caption", "ZEV has been")},
      {"candidate formed",                           {"GetSystemDirectoryA", Phase::Shortcuts}},
      {"candidate tested",                           {"Dir", Phase::Shortcuts, "\\ProgramData\\", "", anyEntry}},
      {"gStartMenuDir tested",                       {"Dir", Phase::Shortcuts, "", "", directories}},
      {"gStartMenuDir extended and made",            {"MkDir", Phase::Shortcuts, "\\ZEV Screen Recorder 6"}},
      {"WScript.Shell created",                      {"CreateObject", Phase::Shortcuts}},
      {"Desktop shortcut",                           {"SpecialFolders", Phase::Shortcuts}},
      {"entry 2",                                    {"CreateShortcut", Phase::Shortcuts, "Film Works.lnk"}},
      {"entry 3",                                    {"CreateShortcut", Phase::Shortcuts, "Reel Desk.lnk"}},
      {"entry 4",                                    {"CreateShortcut", Phase::Shortcuts, "Screen Recorder 6 Help.lnk"}},
      {"entry 5",                                    {"CreateShortcut", Phase::Shortcuts, "Uninstall Screen Recorder 6.lnk"}},
      {"folder shown",                               {"ShellExecuteA", Phase::Shortcuts}, {}, {}, true},
      {"Program Manager",                            {"LinkTopic", Phase::Shortcuts}, {}, {}, true},
      {"RegisterUsers",                              {"GetSystemDirectoryA", Phase::Users}},
      {"buttons handed back",                        {"SetForegroundWindow", Phase::Finish}},
  };
  return marks;
}
// clang-format on

Strike strikeOf(const WatchedRun& run, const StepMark& step) {
  return {run.call(step.mark), step.boxes, step.later};
}

}  // namespace zev
