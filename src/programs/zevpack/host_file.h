#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "programs/zevpack/partial_file.h"

namespace zev::packing {

using Bytes = std::vector<std::uint8_t>;

/// What a person did wrong or the machine refused: its text says what and where, and what to do.
class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The longest file that the tool reads or writes: what an expansion can tell the length of.
inline constexpr std::uint64_t longestFile = 0x7FFFFFFF;

/// The whole content of a regular file. ToolError if it is none, is longer than `longestFile`, or
/// cannot be read.
Bytes readFile(const std::filesystem::path& path);

/// Writes a file whole or not at all: it is made as NAME.partial, and takes its name and the mode
/// of what it replaces only when every byte is written. ToolError if it cannot be, if something
/// other than a file has its name or what has it is read-only, or if a file NAME.partial is there,
/// which is left alone; what stood there before is then untouched.
class NewFile {
 public:
  /// Makes the file under its other name, empty.
  explicit NewFile(std::filesystem::path path);

  /// Adds bytes at its end. ToolError if the disk does not take them all.
  void append(std::span<const std::uint8_t> bytes);
  /// Gives the file its name. Without it nothing is left of the file.
  void keep();

 private:
  std::filesystem::path path_;
  std::optional<PartialFile> partial_;
};

/// The same for bytes that are all there.
void writeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// ToolError if no file can be written by that name, as far as that can be told before: for what
/// NewFile would refuse that has its name, or the name that it is made under.
void requireWritable(const std::filesystem::path& path);

/// Makes a folder with its missing parents. ToolError if it cannot be made.
void makeFolder(const std::filesystem::path& path);

/// The files of a folder by their names, as Windows finds them: without regard to letter case where
/// no exact match is there.
class Folder {
 public:
  /// ToolError if it cannot be listed.
  explicit Folder(const std::filesystem::path& path);

  /// None if no file has the name. ToolError if several have it in other cases and none exactly.
  std::optional<std::filesystem::path> find(const std::string& name) const;

 private:
  std::filesystem::path path_;
  std::map<std::string, std::vector<std::filesystem::path>> byFoldedName_;
};

}  // namespace zev::packing
