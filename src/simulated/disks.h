#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "runtime/text.h"
#include "simulated/machine_settings.h"
#include "simulated/path.h"
#include "simulated/short_names.h"
#include "simulated/volume.h"

namespace zev::simulated {

/// What stands on an entry beyond what a file system keeps.
struct Guard {
  bool locked = false;
  bool inUse = false;
  Denial deny;

  bool operator==(const Guard&) const = default;
};

/// One drive: its settings, its volume and the guards of its entries.
struct Drive {
  DriveSettings settings;  ///< `free` goes down and up with what is written and deleted
  std::unique_ptr<Volume> volume;
  std::int64_t used = 0;         ///< bytes, as far as they were laid or written here
  std::map<Text, Guard> guards;  ///< by Path::key of the entry
  std::map<Text, Path> links;    ///< where links lead, by Path::key; the host's own are not here
  ShortNames shortNames;

  /// Bytes of one cluster: space is given out in whole ones.
  std::uint64_t clusterBytes() const;
  /// The space that a file of that size takes: whole clusters.
  std::uint64_t spaceFor(std::uint64_t size) const;
  /// What stands on an entry; nothing by default.
  Guard guard(const Path& path) const;
  /// Drops what stands on an entry that has gone.
  void forget(const Path& path);
  /// The path with the names that its short ones stand for. What is not there stays.
  Path longPath(const Path& path);
};

/// The drives of a machine with all that lies on them. Its functions set the machine up and look at
/// it; they know no refusals, leave the free space alone and tell no transcript. Paths are
/// absolute, with a drive letter; a path that is none of the system's throws std::invalid_argument.
class Disks {
 public:
  /// Puts a drive in or changes it. The content stays unless `host` changes.
  void setDrive(char16_t letter, DriveSettings settings);
  /// Takes a drive out, with all that lies on it in memory. What lies in a folder of the host stays
  /// there.
  void removeDrive(char16_t letter);
  /// The settings as they now are; none without such a drive.
  std::optional<DriveSettings> drive(char16_t letter) const;
  /// Upper-case letters of all drives.
  std::vector<char16_t> letters() const;

  /// Lays an entry, with the directories above it, behind the links on its way. An entry of the
  /// other kind makes room. Throws std::invalid_argument if the drive is not there,
  /// std::runtime_error for a host file that cannot be read.
  void put(TextView path, const FileSettings& settings);
  /// The same for a directory. One that is there stays as it is, with what it holds.
  void putDirectory(TextView path);
  /// Takes an entry away, a directory with all that it holds. Nothing happens if there is none.
  void remove(TextView path);

  /// The entry of that path; none if there is none. A root is a directory without a name.
  std::optional<DirectoryEntry> find(TextView path) const;
  bool exists(TextView path) const { return find(path).has_value(); }
  /// Where an entry leads that is a link; none if it is none, or one of the host's own.
  std::optional<Text> link(TextView path) const;
  /// Follows the links on the way to an entry, and with `last` the entry itself: success, or
  /// cannotResolve if they are too many.
  SystemError follow(Path& path, bool last) const;
  /// All bytes of a file; none if it is no file.
  std::optional<std::vector<std::uint8_t>> read(TextView path) const;
  /// Up to `count` bytes of a file from an offset on; none if it is no file.
  std::optional<std::vector<std::uint8_t>> read(TextView path, std::uint64_t offset,
                                                std::size_t count) const;
  /// Names in a directory, sorted by their upper-case form; none if it is no directory.
  std::optional<std::vector<Text>> names(TextView path) const;
  /// SHA-256 of a file in lower-case hexadecimal digits; none if it is no file.
  std::optional<std::string> sha256(TextView path) const;
  /// The path by short names, as far as its entries have them, with a backslash at its end if it
  /// has one. None for an entry that is not there and on a drive without short names.
  std::optional<Text> shortPath(TextView path);

  /// Lays the content of a drive out as real files in a folder of the host, which is created.
  /// Throws std::runtime_error where the host refuses.
  void exportDrive(char16_t letter, const std::filesystem::path& folder) const;

  /// The drive itself, for the calls of the system; null without such a drive.
  Drive* at(char16_t letter);
  const Drive* at(char16_t letter) const;

 private:
  Drive& require(const Path& path);
  std::optional<Path> behindLink(const Path& path, bool last) const;
  void putLink(Drive& drive, const Path& path, const FileSettings& settings);
  void putFile(Drive& drive, const Path& path, const std::optional<FileContent>& content);

  std::map<char16_t, Drive> drives_;
};

}  // namespace zev::simulated
