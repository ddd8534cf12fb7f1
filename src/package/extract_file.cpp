#include "package/extract_file.h"

#include <vector>

#include "package/held_files.h"
#include "package/package_end.h"
#include "runtime/buffer.h"
#include "runtime/error.h"
#include "runtime/number.h"
#include "system/attributes.h"

namespace zev {
namespace {

bool oldFileThere(Files& files, TextView path) {
  bool there = false;
  ignoringErrors([&] { there = !path.empty() && exists(files, path, dir_mask::hiddenFiles); });
  return there;
}

/// A longer old file would keep its tail under the new one, so it goes first. Whatever happens
/// here, the copy is tried.
void deleteOldFile(Program& program, Phrases& phrases, TextView path) {
  Files& files = program.platform.files;
  if (oldFileThere(files, path)) {
    ignoringErrors([&] { files.Kill(path); });
    ignoringErrors([&] { program.DoEvents(); });
  }
  if (!oldFileThere(files, path)) return;
  program.platform.dialogs.MsgBox(join(phrases.Translate(u"Couldn't delete the file "), path),
                                  box_style::exclamation, u"ZEV");
}

/// The files of one copy, by their numbers; 0 while they are not open.
struct Copy {
  std::int32_t source = 0;
  std::int32_t destination = 0;
};

/// From here to its expansion the work file stays what it is. Between its closing and its holding
/// somebody may have swapped it: that is a copy that failed.
void holdWorkFile(Program& program, TextView path, std::span<const std::uint8_t> written) {
  program.workFile = program.platform.holds.hold(path, Holding::ToKeep);
  if (holdsNothingBut(program.workFile, written)) return;
  program.workFile.refuse();
  throw RuntimeError(ErrorNumber::PermissionDenied);
}

void copyMember(Program& program, Phrases& phrases, Copy& copy, TextView source,
                TextView destination, std::int32_t size, std::int32_t tailOffset) {
  Files& files = program.platform.files;
  std::vector<std::uint8_t> buffer = byteArray(size);
  copy.source = files.FreeFile();
  files.OpenBinary(copy.source, source, false);
  copy.destination = files.FreeFile();
  files.OpenBinary(copy.destination, destination, true);
  const std::int32_t end = packageEnd(files, copy.source, files.LOF(copy.source));
  const std::int32_t position = add(subtract(subtract(end, tailOffset), size), 1);
  if (position < 1) {
    program.platform.dialogs.MsgBox(
        phrases.Translate(u"Installation file is not complete! You should download the whole "
                          u"installation file to install ZEV."),
        box_style::exclamation, u"ZEV");
  }
  files.Get(copy.source, position, buffer);
  files.Put(copy.destination, 1, buffer);
  files.Close(copy.destination);
  files.Close(copy.source);
  holdWorkFile(program, destination, buffer);
}

void tellFailure(Program& program, Phrases& phrases, TextView destination,
                 const RuntimeError& error) {
  program.platform.dialogs.MsgBox(
      join(phrases.Translate(u"Error in Extract File - "), decimal(error.number()),
           phrases.Translate(u" : File '"), destination, u"' could not be written!",
           error.description()),
      box_style::systemExclamation, phrases.Translate(u"Error"));
}

}  // namespace

bool ExtractFile(Program& program, Phrases& phrases, TextView source, TextView destination,
                 std::int32_t size, std::int32_t tailOffset) {
  const TextView target = trim(destination);
  program.workFile.release();
  deleteOldFile(program, phrases, target);
  Copy copy;
  try {
    copyMember(program, phrases, copy, trim(source), target, size, tailOffset);
    return true;
  } catch (const RuntimeError& error) {
    Files& files = program.platform.files;
    ignoringErrors([&] { files.Close(copy.source); });
    ignoringErrors([&] { files.Close(copy.destination); });
    tellFailure(program, phrases, target, error);
    return false;
  }
}

}  // namespace zev
