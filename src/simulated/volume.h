#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "platform/file_system.h"
#include "simulated/host_piece.h"
#include "simulated/path.h"

namespace zev::simulated {

/// The bytes of one file. They stay as long as somebody holds them, deleted or not.
class FileBody {
 public:
  virtual ~FileBody() = default;
  /// The length in bytes, as it is now.
  virtual std::uint64_t size() const = 0;
  /// Reads from an offset; the count is less at the end.
  virtual std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) = 0;
  /// Writes at an offset; a gap past the end fills with zeros. It fails where the host does, and
  /// has then written what fitted.
  virtual SystemError write(std::uint64_t offset, std::span<const std::uint8_t> from) = 0;
  /// Makes the file that long.
  virtual SystemError resize(std::uint64_t size) = 0;
  /// Makes the file what the piece is.
  virtual SystemError fill(const std::shared_ptr<const HostPiece>& piece) = 0;
  /// Nobody has the file open any more: fails if the host cannot keep what it was given.
  virtual SystemError close() = 0;
};

/// The tree of files on one drive, as plain storage: who asks has checked that it may. Names match
/// without regard to case.
class Volume {
 public:
  virtual ~Volume() = default;

  /// The entry, with its name as it was made; none if there is none. The root is a directory
  /// without a name.
  virtual std::optional<DirectoryEntry> find(const Path& path) const = 0;
  /// The entries of a directory, sorted by their names in upper case; empty if it is no directory.
  virtual std::vector<DirectoryEntry> list(const Path& directory) const = 0;
  /// The bytes of a file; null if it is no file or cannot be opened.
  virtual std::shared_ptr<FileBody> open(const Path& file) const = 0;
  /// The parent is there, the name is free.
  virtual SystemError createFile(const Path& path, std::uint32_t attributes) = 0;
  /// The same for a directory.
  virtual SystemError createDirectory(const Path& path) = 0;
  /// Gives a file another name in its directory, at once: a file that has it is gone, and lends the
  /// new one its attributes and the case of its name.
  virtual SystemError replace(const Path& file, const Path& by) = 0;
  /// Takes an entry away, a directory with all that it holds.
  virtual bool remove(const Path& path) = 0;
  /// Replaces the attributes of an entry but for `directory`, which stays. False if there is no
  /// such entry.
  virtual bool setAttributes(const Path& path, std::uint32_t attributes) = 0;
};

/// A volume whose files are gone with it. Files of zeros and pieces of the host's files take no
/// memory until somebody writes into them.
std::unique_ptr<Volume> makeMemoryVolume();

/// A volume over a real folder. Attributes other than `directory` are kept beside it in memory: the
/// host knows none of them.
std::unique_ptr<Volume> makeHostVolume(std::filesystem::path folder);

}  // namespace zev::simulated
