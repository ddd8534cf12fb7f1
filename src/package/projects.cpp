#include "package/projects.h"

#include "runtime/text.h"
#include "system/attributes.h"
#include "system/special_folders.h"

namespace zev {
namespace {

/// Places in a file are counted from 1.
constexpr std::int32_t pathPosition = videoPathOffset + 1;

}  // namespace

Text projectsFolder(Program& program) {
  Text documents = GetKnownFolder(program, known_folder::documents);
  if (!trim(documents).empty()) {
    documents = withoutTrailing(withoutTrailing(trim(documents), u'\0'), u'\\');
  }
  Files& files = program.platform.files;
  if (documents.empty() || !exists(files, documents, dir_mask::directories)) {
    return join(program.globals.gInstallDir.trimmed(), u"\\Projects");
  }
  return join(documents, u"\\ZEV Projects");
}

void patchSampleProject(Program& program, TextView projectsFolder) {
  FixedText<videoPathSize> path;
  path = join(program.globals.gInstallDir.trimmed(), sampleVideo);
  Files& files = program.platform.files;
  const std::int32_t number = files.FreeFile();
  files.OpenBinaryWrite(number, join(projectsFolder, u"\\SampleProject.zrd"));
  files.PutText(number, pathPosition, path.view());
  files.Close(number);
}

}  // namespace zev
