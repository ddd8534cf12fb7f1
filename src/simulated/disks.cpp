#include "simulated/disks.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "digest/sha256.h"

namespace zev::simulated {
namespace {

namespace fs = std::filesystem;

/// How many links the system follows on the way to an entry.
constexpr int mostLinks = 63;

constexpr std::size_t chunkBytes = 1u << 20;

Path absolute(TextView text) {
  Path path;
  const bool parsed = parsePath(text, Path{}, path) == system_error::success;
  if (!parsed || path.drive == 0 || checkNames(path) != system_error::success) {
    throw std::invalid_argument("no absolute path of the system: " + toUtf8(text));
  }
  return path;
}

std::vector<std::uint8_t> readHostFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::error_code failed;
  const std::uintmax_t size = fs::file_size(path, failed);
  if (failed) file.setstate(std::ios::failbit);
  std::vector<std::uint8_t> bytes(file ? size : 0);
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  if (!file) throw std::runtime_error("cannot read " + path.string());
  return bytes;
}

SystemError fill(FileBody& body, const FileContent& content) {
  if (const auto* piece = std::get_if<std::shared_ptr<const HostPiece>>(&content)) {
    return body.fill(*piece);
  }
  if (const SystemError error = body.resize(0)) return error;
  if (const auto* zeros = std::get_if<ZeroBytes>(&content)) return body.resize(zeros->size);
  if (const auto* host = std::get_if<fs::path>(&content)) return fill(body, readHostFile(*host));
  return body.write(0, std::get<std::vector<std::uint8_t>>(content));
}

/// Hands the bytes of a file on, chunk by chunk.
void forEachChunk(FileBody& body, const std::function<void(std::span<const std::uint8_t>)>& take) {
  std::vector<std::uint8_t> chunk(chunkBytes);
  std::uint64_t offset = 0;
  while (const std::size_t count = body.read(offset, chunk)) {
    take(std::span(chunk).first(count));
    offset += count;
  }
}

void requireHost(bool fine, const fs::path& path) {
  if (!fine) throw std::runtime_error("cannot write " + path.string());
}

void exportFile(const Volume& volume, const Path& file, const fs::path& target) {
  std::ofstream out(target, std::ios::binary);
  if (const auto body = volume.open(file)) {
    forEachChunk(*body, [&](std::span<const std::uint8_t> bytes) {
      out.write(reinterpret_cast<const char*>(bytes.data()),
                static_cast<std::streamsize>(bytes.size()));
    });
  }
  out.close();
  requireHost(out.good(), target);
}

void exportDirectory(const Volume& volume, const Path& directory, const fs::path& target) {
  fs::create_directories(target);
  for (const DirectoryEntry& entry : volume.list(directory)) {
    const std::string utf8 = toUtf8(entry.name);
    const fs::path place = target / std::u8string(utf8.begin(), utf8.end());
    const Path path = directory.child(entry.name);
    if ((entry.attributes & file_attribute::directory) != 0) {
      exportDirectory(volume, path, place);
    } else {
      exportFile(volume, path, place);
    }
  }
}

bool isDirectory(const std::optional<DirectoryEntry>& entry) {
  return entry && (entry->attributes & file_attribute::directory) != 0;
}

}  // namespace

// ---- one drive

std::uint64_t Drive::clusterBytes() const {
  const std::uint64_t bytes = std::uint64_t{settings.sectorsPerCluster} * settings.bytesPerSector;
  return std::max<std::uint64_t>(bytes, 1);
}

std::uint64_t Drive::spaceFor(std::uint64_t size) const {
  return (size + clusterBytes() - 1) / clusterBytes() * clusterBytes();
}

Guard Drive::guard(const Path& path) const {
  if (guards.empty()) return {};
  const auto found = guards.find(path.key());
  return found == guards.end() ? Guard{} : found->second;
}

void Drive::forget(const Path& path) {
  guards.erase(path.key());
  links.erase(path.key());
}

Path Drive::longPath(const Path& path) {
  const bool mayHoldShort = std::any_of(path.names.begin(), path.names.end(), [](const Text& name) {
    return name.find(u'~') != Text::npos;
  });
  if (!settings.shortNames || !mayHoldShort) return path;
  Path known{path.drive, {}, false};
  for (const Text& name : path.names) {
    const bool there = volume->find(known.child(name)).has_value();
    const auto meant = there ? std::nullopt : shortNames.nameOf(*volume, known, name);
    known = known.child(meant.value_or(name));
  }
  known.closed = path.closed;
  return known;
}

// ---- drives

void Disks::setDrive(char16_t letter, DriveSettings settings) {
  Drive& drive = drives_[upperLetter(letter)];
  if (!drive.volume || drive.settings.host != settings.host) {
    drive.volume = settings.host ? makeHostVolume(*settings.host) : makeMemoryVolume();
    drive.used = 0;
    drive.guards.clear();
    drive.shortNames = {};
  }
  drive.settings = std::move(settings);
}

void Disks::removeDrive(char16_t letter) { drives_.erase(upperLetter(letter)); }

std::optional<DriveSettings> Disks::drive(char16_t letter) const {
  const Drive* found = at(letter);
  return found == nullptr ? std::nullopt : std::optional(found->settings);
}

std::vector<char16_t> Disks::letters() const {
  std::vector<char16_t> letters;
  for (const auto& [letter, drive] : drives_) letters.push_back(letter);
  return letters;
}

const Drive* Disks::at(char16_t letter) const {
  const auto found = drives_.find(upperLetter(letter));
  return found == drives_.end() ? nullptr : &found->second;
}

Drive* Disks::at(char16_t letter) { return const_cast<Drive*>(std::as_const(*this).at(letter)); }

Drive& Disks::require(const Path& path) {
  Drive* drive = at(path.drive);
  if (drive == nullptr) throw std::invalid_argument("no drive for " + toUtf8(path.text()));
  return *drive;
}

// ---- laying entries

void Disks::put(TextView text, const FileSettings& settings) {
  Path path = absolute(text);
  if (follow(path, false) != system_error::success) {
    throw std::invalid_argument("too many links on the way to " + toUtf8(text));
  }
  Drive& drive = require(path);
  const bool replaced = settings.directory || settings.content;
  if (replaced && drive.links.contains(path.key())) remove(path.text());
  if (settings.link) {
    putLink(drive, path, settings);
  } else if (settings.directory) {
    putDirectory(path.text());
  } else {
    putDirectory(path.parent().text());
    putFile(drive, path, settings.content);
  }
  if (settings.attributes) {
    const std::uint32_t link = drive.volume->find(path)->attributes & file_attribute::link;
    drive.volume->setAttributes(path, *settings.attributes | link);
  }
  Guard guard = drive.guard(path);
  guard.locked = settings.locked.value_or(guard.locked);
  guard.inUse = settings.inUse.value_or(guard.inUse);
  guard.deny = settings.deny.value_or(guard.deny);
  if (guard == Guard{}) {
    drive.guards.erase(path.key());
  } else {
    drive.guards[path.key()] = guard;
  }
}

void Disks::putFile(Drive& drive, const Path& path, const std::optional<FileContent>& content) {
  if (path.isRoot()) throw std::invalid_argument("a root is no file");
  std::optional<DirectoryEntry> entry = drive.volume->find(path);
  if (isDirectory(entry)) {
    remove(path.text());
    entry.reset();
  }
  const std::uint64_t before = entry ? entry->size : 0;
  const bool made = entry || drive.volume->createFile(path, file_attribute::archive) == 0;
  const auto body = made ? drive.volume->open(path) : nullptr;
  if (!body || (content && fill(*body, *content) != 0) || body->close() != 0) {
    throw std::runtime_error("cannot lay " + toUtf8(path.text()));
  }
  drive.used += static_cast<std::int64_t>(drive.spaceFor(body->size())) -
                static_cast<std::int64_t>(drive.spaceFor(before));
}

/// A link holds nothing itself: an empty entry of its kind stands for it.
void Disks::putLink(Drive& drive, const Path& path, const FileSettings& settings) {
  const Path target = absolute(*settings.link);
  remove(path.text());
  if (settings.directory) {
    putDirectory(path.text());
  } else {
    putDirectory(path.parent().text());
    putFile(drive, path, std::nullopt);
  }
  drive.volume->setAttributes(path, drive.volume->find(path)->attributes | file_attribute::link);
  drive.links[path.key()] = target;
}

void Disks::putDirectory(TextView text) {
  const Path path = absolute(text);
  Drive& drive = require(path);
  Path each{path.drive, {}, false};
  for (const Text& name : path.names) {
    each = each.child(name);
    if (isDirectory(drive.volume->find(each))) continue;
    remove(each.text());
    if (drive.volume->createDirectory(each) != 0) {
      throw std::runtime_error("cannot lay " + toUtf8(each.text()));
    }
  }
}

void Disks::remove(TextView text) {
  const Path path = absolute(text);
  Drive* drive = at(path.drive);
  const auto entry = drive == nullptr ? std::nullopt : drive->volume->find(path);
  if (!entry) return;
  if (isDirectory(entry)) {
    for (const DirectoryEntry& each : drive->volume->list(path)) {
      remove(path.child(each.name).text());
    }
  } else {
    drive->used -= static_cast<std::int64_t>(drive->spaceFor(entry->size));
  }
  if (!path.isRoot()) drive->volume->remove(path);
  drive->forget(path);
}

// ---- looking

std::optional<DirectoryEntry> Disks::find(TextView text) const {
  const Path path = absolute(text);
  const Drive* drive = at(path.drive);
  return drive == nullptr ? std::nullopt : drive->volume->find(path);
}

std::optional<Text> Disks::link(TextView text) const {
  const Path path = absolute(text);
  const Drive* drive = at(path.drive);
  if (drive == nullptr) return std::nullopt;
  const auto found = drive->links.find(path.key());
  return found == drive->links.end() ? std::nullopt : std::optional(found->second.text());
}

/// The path behind the first link on its way; none if there is none.
std::optional<Path> Disks::behindLink(const Path& path, bool last) const {
  const Drive* drive = at(path.drive);
  if (drive == nullptr || drive->links.empty()) return std::nullopt;
  const std::size_t count = path.names.size() - (last || path.isRoot() ? 0 : 1);
  Path each{path.drive, {}, false};
  for (std::size_t place = 0; place < count; ++place) {
    each = each.child(path.names[place]);
    const auto found = drive->links.find(each.key());
    if (found == drive->links.end()) continue;
    Path behind = found->second;
    behind.names.insert(behind.names.end(),
                        path.names.begin() + static_cast<std::ptrdiff_t>(place) + 1,
                        path.names.end());
    behind.closed = path.closed;
    return behind;
  }
  return std::nullopt;
}

SystemError Disks::follow(Path& path, bool last) const {
  for (int links = 0; links <= mostLinks; ++links) {
    std::optional<Path> behind = behindLink(path, last);
    if (!behind) return system_error::success;
    path = std::move(*behind);
  }
  return system_error::cannotResolve;
}

std::optional<std::vector<std::uint8_t>> Disks::read(TextView text) const {
  const auto entry = find(text);
  if (!entry || isDirectory(entry)) return std::nullopt;
  return read(text, 0, static_cast<std::size_t>(entry->size));
}

std::optional<std::vector<std::uint8_t>> Disks::read(TextView text, std::uint64_t offset,
                                                     std::size_t count) const {
  const Path path = absolute(text);
  const Drive* drive = at(path.drive);
  const auto body = drive == nullptr ? nullptr : drive->volume->open(path);
  if (!body) return std::nullopt;
  const std::uint64_t size = body->size();
  const std::uint64_t left = offset < size ? size - offset : 0;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min<std::uint64_t>(count, left)));
  bytes.resize(body->read(offset, bytes));
  return bytes;
}

std::optional<std::vector<Text>> Disks::names(TextView text) const {
  const Path path = absolute(text);
  const Drive* drive = at(path.drive);
  if (drive == nullptr || !isDirectory(drive->volume->find(path))) return std::nullopt;
  std::vector<Text> names;
  for (const DirectoryEntry& entry : drive->volume->list(path)) names.push_back(entry.name);
  return names;
}

std::optional<std::string> Disks::sha256(TextView text) const {
  const Path path = absolute(text);
  const Drive* drive = at(path.drive);
  const auto body = drive == nullptr ? nullptr : drive->volume->open(path);
  if (!body) return std::nullopt;
  Sha256 digest;
  forEachChunk(*body, [&](std::span<const std::uint8_t> bytes) { digest.add(bytes); });
  return digest.hex();
}

std::optional<Text> Disks::shortPath(TextView text) {
  Path path;
  if (parsePath(text, Path{}, path) != system_error::success) return std::nullopt;
  Drive* drive = at(path.drive);
  const bool kept = drive != nullptr && drive->settings.shortNames && drive->volume->find(path);
  if (!kept) return std::nullopt;
  Path entry{path.drive, {}, false};
  Path shortened = entry;
  for (const Text& name : path.names) {
    entry = entry.child(name);
    shortened = shortened.child(drive->shortNames.of(*drive->volume, entry));
  }
  return join(shortened.text(), path.closed && !path.isRoot() ? u"\\" : u"");
}

void Disks::exportDrive(char16_t letter, const fs::path& folder) const {
  const Drive* drive = at(letter);
  if (drive == nullptr) throw std::invalid_argument("no such drive");
  exportDirectory(*drive->volume, Path{upperLetter(letter), {}, false}, folder);
}

}  // namespace zev::simulated
