#include "simulated/simulated_file_system.h"

#include <algorithm>

#include "platform/file_system.h"
#include "platform/system_information.h"
#include "simulated/path.h"

namespace zev::simulated {
namespace {

using namespace system_error;

constexpr std::uint32_t settable = file_attribute::readOnly | file_attribute::hidden |
                                   file_attribute::system | file_attribute::archive;

bool writes(FileAccess access) { return access != FileAccess::Read; }
bool reads(FileAccess access) { return access != FileAccess::Write; }
bool empties(FileDisposition disposition) {
  return disposition == FileDisposition::CreateAlways || disposition == FileDisposition::Replace;
}

Text driveAndKey(const Path& path) { return path.drive + path.key(); }

/// Deleting an entry by its name, which others may do, too.
constexpr Opening deletion = {sharing::deleting,
                              sharing::reading | sharing::writing | sharing::deleting};

DirectoryEntry dots(TextView name) { return {Text(name), file_attribute::directory, 0}; }

}  // namespace

bool SimulatedFileSystem::Place::onReadOnlyMedium() const {
  return drive->settings.type == drive_type::cdRom;
}

SimulatedFileSystem::~SimulatedFileSystem() {
  for (const auto& [handle, file] : files_) machine_.sharing.remove(file.sharing);
}

// ---- looking paths up

SystemError SimulatedFileSystem::onDrive(Place& place) const {
  place.drive = machine_.disks.at(place.path.drive);
  if (place.drive == nullptr) return pathNotFound;
  return place.drive->settings.ready ? success : notReady;
}

SystemError SimulatedFileSystem::lookUpDrive(TextView text, Place& place, bool followed) const {
  const SystemError error =
      parsePath(machine_.throughAnsi(text), machine_.currentFolder(), place.path);
  if (error != success) return error;
  if (const SystemError missing = onDrive(place)) return missing;
  place.path = place.drive->longPath(place.path);
  if (const SystemError tooMany = machine_.disks.follow(place.path, followed)) return tooMany;
  return onDrive(place);
}

/// Success if the parent is there, whether or not the entry is. An entry that is a link is what it
/// leads to if it is to be followed.
SystemError SimulatedFileSystem::lookUp(TextView text, Place& place, bool followed) const {
  if (const SystemError error = lookUpDrive(text, place, followed)) return error;
  if (const SystemError error = checkNames(place.path)) return error;
  place.entry = place.drive->volume->find(place.path);
  if (place.exists()) {
    return place.path.closed && !place.isDirectory() ? invalidName : success;
  }
  const auto parent = place.drive->volume->find(place.path.parent());
  return parent && (parent->attributes & file_attribute::directory) ? success : pathNotFound;
}

SystemError SimulatedFileSystem::lookUpPattern(TextView pattern, Place& directory,
                                               Text& leaf) const {
  if (const SystemError error = lookUpDrive(pattern, directory)) return error;
  if (directory.path.isRoot() || directory.path.closed) return fileNotFound;
  leaf = directory.path.leaf();
  if (beforeNul(pattern).ends_with(u"*.")) leaf += u'.';
  directory.path = directory.path.parent();
  if (const SystemError error = checkNames(directory.path)) return error;
  directory.entry = directory.drive->volume->find(directory.path);
  if (!directory.isDirectory()) return pathNotFound;
  if (directory.guard().deny.list) return accessDenied;
  Text plain = leaf;
  std::erase_if(plain, [](char16_t unit) { return unit == u'*' || unit == u'?'; });
  return plain.empty() || !hasWildcards(leaf) || validName(plain) ? success : invalidName;
}

// ---- searches

SystemError SimulatedFileSystem::FindFirstFileA(TextView pattern, DirectoryEntry& entry,
                                                FileHandle& search) {
  Place directory;
  Text leaf;
  if (const SystemError error = lookUpPattern(pattern, directory, leaf)) return error;
  Search found;
  if (hasWildcards(leaf)) {
    found.entries = directory.drive->volume->list(directory.path);
    if (!directory.path.isRoot()) {
      found.entries.insert(found.entries.begin(), {dots(u"."), dots(u"..")});
    }
    std::erase_if(found.entries,
                  [&](const DirectoryEntry& each) { return !matchesPattern(each.name, leaf); });
  } else if (!validName(leaf)) {
    return invalidName;
  } else if (auto single = directory.drive->volume->find(directory.path.child(leaf))) {
    found.entries.push_back(std::move(*single));
  }
  if (found.entries.empty()) return fileNotFound;
  entry = shown(found.entries.front());
  found.next = 1;
  search = ++lastHandle_;
  searches_.emplace(search, std::move(found));
  return success;
}

SystemError SimulatedFileSystem::FindNextFileA(FileHandle search, DirectoryEntry& entry) {
  const auto found = searches_.find(search);
  if (found == searches_.end()) return invalidHandle;
  Search& running = found->second;
  if (running.next >= running.entries.size()) return noMoreFiles;
  entry = shown(running.entries[running.next++]);
  return success;
}

/// A letter that the code page cannot write is lost.
DirectoryEntry SimulatedFileSystem::shown(DirectoryEntry entry) const {
  entry.name = machine_.throughAnsi(entry.name);
  return entry;
}

void SimulatedFileSystem::FindClose(FileHandle search) { searches_.erase(search); }

// ---- what is allowed

/// What other programs have open counts as well as what this one has.
bool SimulatedFileSystem::allows(const Place& place, Opening opening) const {
  return !place.guard().inUse && machine_.sharing.allows(driveAndKey(place.path), opening);
}

/// The file of a program that runs can be read by all and changed by nobody.
bool SimulatedFileSystem::runs(const Path& path) const {
  const Text text = path.text();
  return equalText(text, machine_.settings.installer) || machine_.running.contains(upperCase(text));
}

SystemError SimulatedFileSystem::mayCreate(const Place& place) const {
  if (place.path.isRoot()) return accessDenied;
  if (place.onReadOnlyMedium()) return writeProtect;
  return place.parentGuard().deny.create ? accessDenied : success;
}

/// The order of these checks is the system's: where several refuse, the program sees the number of
/// the first. One that empties a file must not lose its hidden or system attribute by that.
SystemError SimulatedFileSystem::mayWrite(const Place& place, FileDisposition disposition) const {
  constexpr std::uint32_t concealing = file_attribute::hidden | file_attribute::system;
  if (place.onReadOnlyMedium()) return writeProtect;
  if (place.has(file_attribute::readOnly)) return accessDenied;
  if (place.guard().deny.write || place.parentGuard().deny.write) return accessDenied;
  const bool replaces = empties(disposition);
  if (replaces && place.has(concealing)) return accessDenied;
  return runs(place.path) ? sharingViolation : success;
}

/// A path that ends in a separator can only mean a directory.
SystemError SimulatedFileSystem::mayOpen(const Place& place, FileAccess access, FileShare share,
                                         FileDisposition disposition) const {
  if (place.path.isRoot() || place.isDirectory()) return accessDenied;
  if (place.path.closed) return pathNotFound;
  if (!place.exists()) {
    return disposition == FileDisposition::OpenExisting ? fileNotFound : mayCreate(place);
  }
  if (writes(access)) {
    if (const SystemError error = mayWrite(place, disposition)) return error;
  }
  return allows(place, openingOf(access, share)) ? success : sharingViolation;
}

SystemError SimulatedFileSystem::mayDelete(const Place& place) const {
  if (!place.exists()) return fileNotFound;
  if (place.isDirectory()) return accessDenied;
  if (place.onReadOnlyMedium()) return writeProtect;
  if (place.guard().deny.remove || place.parentGuard().deny.remove) return accessDenied;
  if (place.has(file_attribute::readOnly) || runs(place.path)) return accessDenied;
  return allows(place, deletion) ? success : sharingViolation;
}

/// A link to a folder goes alone, whatever the folder holds.
SystemError SimulatedFileSystem::mayRemoveDirectory(const Place& place) const {
  if (!place.exists()) return fileNotFound;
  if (!place.isDirectory()) return directoryInvalid;
  if (place.path.isRoot()) return accessDenied;
  if (place.onReadOnlyMedium()) return writeProtect;
  if (place.guard().deny.remove || place.parentGuard().deny.remove) return accessDenied;
  if (place.has(file_attribute::readOnly)) return accessDenied;
  if (!allows(place, deletion)) return sharingViolation;
  const bool filled = !place.isLink() && !place.drive->volume->list(place.path).empty();
  return filled ? directoryNotEmpty : success;
}

// ---- open files

SystemError SimulatedFileSystem::createFile(const Place& place) {
  return told("create", place.path.text(),
              place.drive->volume->createFile(place.path, file_attribute::archive));
}

/// Emptying gives the space back, and counts as creating the file in the transcript.
SystemError SimulatedFileSystem::empty(const Place& place) {
  const auto body = place.drive->volume->open(place.path);
  const SystemError error = body ? body->resize(0) : accessDenied;
  if (error == success) {
    account(*place.drive, place.entry->size, 0);
    place.drive->volume->setAttributes(place.path,
                                       place.entry->attributes | file_attribute::archive);
  }
  return told("create", place.path.text(), error);
}

/// Whether a second file can be made beside one, and can take its place.
bool SimulatedFileSystem::canReplace(const Place& place) const {
  if (place.parentGuard().deny.create) return false;
  return !place.exists() || mayDelete(place) == success;
}

/// Makes the file that is to replace one; none where that one has to be written over. What an ended
/// program has left under its name is gone.
std::optional<Path> SimulatedFileSystem::beginReplacement(const Place& place) {
  if (!canReplace(place)) return std::nullopt;
  const Path by = place.path.parent().child(join(place.path.leaf(), replacementSuffix));
  if (checkNames(by) != success) return std::nullopt;
  if (place.drive->volume->find(by)) drop(by);
  const bool made = place.drive->volume->createFile(by, file_attribute::archive) == success;
  return made ? std::optional(by) : std::nullopt;
}

/// Makes or empties what is to be written, or the second file that will take its place.
SystemError SimulatedFileSystem::prepare(Place& place, FileDisposition disposition,
                                         std::optional<Path>& replacement) {
  if (disposition == FileDisposition::Replace) replacement = beginReplacement(place);
  if (replacement) return told("create", place.path.text(), success);
  if (!place.exists()) return createFile(place);
  return empties(disposition) ? empty(place) : success;
}

/// A refusal is told only where the call would have made or emptied a file: opening one leaves no
/// trace.
SystemError SimulatedFileSystem::CreateFileA(TextView path, FileAccess access, FileShare share,
                                             FileDisposition disposition, FileHandle& file) {
  Place place;
  SystemError error = lookUp(path, place, true);
  if (error == success) error = mayOpen(place, access, share, disposition);
  if (error != success) {
    const bool creates =
        empties(disposition) || (disposition == FileDisposition::OpenAlways && !place.exists());
    return creates ? told("create", path, error) : error;
  }
  std::optional<Path> replacement;
  if (const SystemError refused = prepare(place, disposition, replacement)) return refused;
  auto body = place.drive->volume->open(replacement.value_or(place.path));
  if (!body) return accessDenied;
  file = add(place, access, openingOf(access, share), std::move(body));
  files_.at(file).replacement = std::move(replacement);
  return success;
}

FileHandle SimulatedFileSystem::add(const Place& place, FileAccess access, Opening opening,
                                    std::shared_ptr<FileBody> body) {
  const std::uint64_t sharing = machine_.sharing.add(driveAndKey(place.path), opening);
  files_.emplace(++lastHandle_, OpenFile{place.path, sharing, access, std::move(body)});
  return lastHandle_;
}

/// A link is held as it is, without bytes to read.
SystemError SimulatedFileSystem::HoldEntryA(TextView path, Holding holding,
                                            std::uint32_t& attributes, FileHandle& held) {
  Place place;
  if (const SystemError error = lookUp(path, place)) return error;
  if (!place.exists()) return fileNotFound;
  const Denial deny = place.guard().deny;
  if (holding == Holding::ToEmpty ? deny.create : deny.list) return accessDenied;
  const Opening opening = openingOf(holding, place.isDirectory());
  if (!allows(place, opening)) return sharingViolation;
  attributes = place.entry->attributes;
  held = add(place, FileAccess::Read, opening,
             place.isLink() ? nullptr : place.drive->volume->open(place.path));
  return success;
}

SystemError SimulatedFileSystem::ReadFile(FileHandle file, std::uint64_t offset,
                                          std::span<std::uint8_t> into, std::size_t& read) {
  read = 0;
  const auto found = files_.find(file);
  if (found == files_.end()) return invalidHandle;
  if (!reads(found->second.access) || !found->second.body) return accessDenied;
  read = found->second.body->read(offset, into);
  return success;
}

/// The size that a file of `size` bytes can reach on what is left of its drive.
std::uint64_t SimulatedFileSystem::largestSize(const Drive& drive, std::uint64_t size) {
  return drive.spaceFor(size) + drive.settings.free / drive.clusterBytes() * drive.clusterBytes();
}

/// Space goes down and up by whole clusters.
void SimulatedFileSystem::account(Drive& drive, std::uint64_t before, std::uint64_t after) {
  const std::uint64_t taken = drive.spaceFor(after);
  const std::uint64_t given = drive.spaceFor(before);
  drive.used += static_cast<std::int64_t>(taken) - static_cast<std::int64_t>(given);
  drive.settings.free = drive.settings.free + given - taken;
}

/// What fits is written even if not all does. Where the host refuses, the file's length tells how
/// much of it went through.
SystemError SimulatedFileSystem::WriteFile(FileHandle file, std::uint64_t offset,
                                           std::span<const std::uint8_t> from,
                                           std::size_t& written) {
  written = 0;
  const auto found = files_.find(file);
  if (found == files_.end()) return invalidHandle;
  OpenFile& open = found->second;
  if (!writes(open.access)) return accessDenied;
  Drive* drive = machine_.disks.at(open.path.drive);
  if (drive == nullptr || !drive->settings.ready) return notReady;
  const std::uint64_t before = open.body->size();
  const std::uint64_t largest = largestSize(*drive, before);
  const std::uint64_t room = offset < largest ? largest - offset : 0;
  const std::size_t fitting = static_cast<std::size_t>(std::min<std::uint64_t>(from.size(), room));
  SystemError error = fitting == from.size() ? success : diskFull;
  written = fitting;
  if (fitting > 0) {
    if (const SystemError refused = open.body->write(offset, from.first(fitting))) {
      error = refused;
      const std::uint64_t end = std::max(open.body->size(), offset);
      written = std::min<std::size_t>(static_cast<std::size_t>(end - offset), fitting);
    }
    account(*drive, before, open.body->size());
    open.written = true;
  }
  open.unreported += written;
  if (error != success) tellWritten(open, error);
  return error;
}

SystemError SimulatedFileSystem::GetFileSize(FileHandle file, std::uint64_t& size) {
  const auto found = files_.find(file);
  if (found == files_.end()) return invalidHandle;
  size = found->second.body ? found->second.body->size() : 0;
  return success;
}

/// What the drive cannot keep shows at the latest when nobody has the file open any more.
SystemError SimulatedFileSystem::close(OpenFile& file) {
  const SystemError error = file.body && file.body.use_count() == 1 ? file.body->close() : success;
  file.body.reset();
  machine_.sharing.remove(file.sharing);
  if (error != success) tellWritten(file, error);
  return error;
}

/// A file that was written has the archive attribute.
void SimulatedFileSystem::settle(const OpenFile& file) {
  const Drive* drive = machine_.disks.at(file.path.drive);
  if (!file.written || drive == nullptr) return;
  if (const auto entry = drive->volume->find(file.path)) {
    drive->volume->setAttributes(file.path, entry->attributes | file_attribute::archive);
  }
}

void SimulatedFileSystem::drop(const Path& replacement) {
  Drive* drive = machine_.disks.at(replacement.drive);
  const auto entry = drive == nullptr ? std::nullopt : drive->volume->find(replacement);
  if (entry && drive->volume->remove(replacement)) account(*drive, entry->size, 0);
}

SystemError SimulatedFileSystem::CloseHandle(FileHandle file) {
  const auto found = files_.find(file);
  if (found == files_.end()) return invalidHandle;
  OpenFile open = std::move(found->second);
  files_.erase(found);
  const SystemError error = close(open);
  if (open.replacement) {
    drop(*open.replacement);
    return error;
  }
  settle(open);
  if (open.unreported > 0) tellWritten(open, success);
  return error;
}

SystemError SimulatedFileSystem::CommitFile(FileHandle file) {
  const auto found = files_.find(file);
  if (found == files_.end()) return invalidHandle;
  if (!found->second.replacement) return CloseHandle(file);
  OpenFile open = std::move(found->second);
  files_.erase(found);
  Drive* drive = machine_.disks.at(open.path.drive);
  SystemError error = close(open);
  if (error == success && drive == nullptr) error = notReady;
  const auto replaced = drive == nullptr ? std::nullopt : drive->volume->find(open.path);
  if (error == success) error = drive->volume->replace(open.path, *open.replacement);
  if (error != success) {
    drop(*open.replacement);
    return error;
  }
  if (replaced) account(*drive, replaced->size, 0);
  settle(open);
  if (open.unreported > 0) tellWritten(open, success);
  return success;
}

// ---- entries by name

SystemError SimulatedFileSystem::DeleteFileA(TextView path) {
  Place place;
  SystemError error = lookUp(path, place);
  if (error == success) error = mayDelete(place);
  if (error == success) {
    if (!place.drive->volume->remove(place.path)) return told("delete", path, accessDenied);
    account(*place.drive, place.entry->size, 0);
    place.drive->forget(place.path);
  }
  return told("delete", path, error);
}

SystemError SimulatedFileSystem::CreateDirectoryA(TextView path) {
  Place place;
  SystemError error = lookUp(path, place);
  if (error == success && place.exists()) error = alreadyExists;
  if (error == success && place.path.text().size() > longestDirectoryPath) error = fileNameTooLong;
  if (error == success) error = mayCreate(place);
  if (error == success) error = place.drive->volume->createDirectory(place.path);
  return told("mkdir", path, error);
}

SystemError SimulatedFileSystem::RemoveDirectoryA(TextView path) {
  Place place;
  SystemError error = lookUp(path, place);
  if (error == success) error = mayRemoveDirectory(place);
  if (error == success) {
    if (!place.drive->volume->remove(place.path)) return told("rmdir", path, accessDenied);
    place.drive->forget(place.path);
  }
  return told("rmdir", path, error);
}

SystemError SimulatedFileSystem::GetFileAttributesA(TextView path, std::uint32_t& attributes) {
  Place place;
  if (const SystemError error = lookUp(path, place)) return error;
  if (!place.exists()) return fileNotFound;
  attributes = place.entry->attributes;
  return success;
}

SystemError SimulatedFileSystem::maySetAttributes(const Place& place) const {
  if (!place.exists()) return fileNotFound;
  if (place.onReadOnlyMedium()) return writeProtect;
  return place.path.isRoot() || place.guard().locked ? accessDenied : success;
}

SystemError SimulatedFileSystem::SetFileAttributesA(TextView path, std::uint32_t attributes) {
  Place place;
  SystemError error = lookUp(path, place);
  if (error == success) error = maySetAttributes(place);
  if (error == success) {
    place.drive->volume->setAttributes(
        place.path, (attributes & settable) | (place.entry->attributes & file_attribute::link));
  }
  return told("attributes", path, error);
}

bool SimulatedFileSystem::rootExists(TextView root) {
  Place place;
  const Text closed = join(withoutTrailing(beforeNul(root), u'\\'), u"\\");
  return lookUpDrive(closed, place) == success && place.path.isRoot();
}

// ---- transcript

void SimulatedFileSystem::tell(std::string_view op, TextView path, SystemError error) {
  if (!machine_.transcript.wants("file")) return;
  machine_.transcript.add(
      {{"event", "file"}, {"op", op}, {"path", toUtf8(beforeNul(path))}, {"error", error}});
}

SystemError SimulatedFileSystem::told(std::string_view op, TextView path, SystemError error) {
  tell(op, path, error);
  return error;
}

void SimulatedFileSystem::tellWritten(OpenFile& file, SystemError error) {
  if (machine_.transcript.wants("file")) {
    machine_.transcript.add({{"event", "file"},
                             {"op", "write"},
                             {"path", toUtf8(file.path.text())},
                             {"bytes", file.unreported},
                             {"error", error}});
  }
  file.unreported = 0;
}

}  // namespace zev::simulated
