#include "package/extract_file.h"

#include <algorithm>
#include <vector>

#include "lz/byte_stream.h"
#include "lz/expand.h"
#include "package/package_end.h"
#include "runtime/containers.h"
#include "runtime/error.h"
#include "runtime/number.h"
#include "system/attributes.h"

namespace zev {
namespace {

constexpr std::size_t pieceSize = 65536;

class HeldSource final : public lz::ByteSource {
 public:
  explicit HeldSource(const Hold& file) : file_(file) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    const std::size_t count = file_.read(place_, into);
    place_ += count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  const Hold& file_;
  std::uint64_t place_ = 0;
};

/// Takes what a held file has at the same place, and nothing else.
class HeldTwin final : public lz::ByteSink {
 public:
  explicit HeldTwin(const Hold& file) : file_(file), piece_(pieceSize) {}

  bool write(std::span<const std::uint8_t> from) override {
    for (std::size_t done = 0; done < from.size(); done += pieceSize) {
      if (!takes(from.subspan(done, std::min(pieceSize, from.size() - done)))) return false;
    }
    return true;
  }

  bool atEnd() { return file_.read(place_, std::span(piece_).first(1)) == 0; }

 private:
  bool takes(std::span<const std::uint8_t> bytes) {
    const auto found = std::span(piece_).first(bytes.size());
    place_ += bytes.size();
    return file_.read(place_ - bytes.size(), found) == bytes.size() &&
           std::equal(bytes.begin(), bytes.end(), found.begin());
  }

  const Hold& file_;
  std::uint64_t place_ = 0;
  std::vector<std::uint8_t> piece_;
};

}  // namespace

bool holdsNothingBut(const Hold& file, std::span<const std::uint8_t> bytes) {
  if (!file.held()) return false;
  std::vector<std::uint8_t> piece(pieceSize);
  std::uint64_t place = 0;
  while (const std::size_t count = file.read(place, piece)) {
    if (count > bytes.size() ||
        !std::equal(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(count),
                    piece.begin())) {
      return false;
    }
    bytes = bytes.subspan(count);
    place += count;
  }
  return true;
}

bool holdsExpanded(const Hold& file, const Hold& packed) {
  if (!file.held() || !packed.held()) return file.held();
  HeldSource source(packed);
  HeldTwin twin(file);
  return lz::expand(source, twin) >= 0 && twin.atEnd();
}

// ---- copying a member out

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
