#include "system/file_type.h"

#include "system/installed_files.h"

namespace zev {
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

}  // namespace zev
