#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zev::packing {

using Bytes = std::vector<std::uint8_t>;

/// What a person did wrong or the machine refused: its text says what and where, and what to do.
class ToolError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The whole content of a file. ToolError if it cannot be read.
Bytes readFile(const std::filesystem::path& path);

/// Writes a file whole or not at all: it takes its name only when every byte is on the disk.
/// ToolError if it cannot be written, or if something other than a file has its name; what stood
/// there before is then untouched.
class NewFile {
 public:
  explicit NewFile(std::filesystem::path path);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void append(std::span<const std::uint8_t> bytes);
  /// Gives the file its name. Without it nothing is left of the file.
  void keep();

 private:
  [[noreturn]] void fail(const std::string& what) const;

  std::filesystem::path path_;
  std::filesystem::path partial_;
  std::FILE* file_ = nullptr;
};

void writeFile(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

/// Makes a folder with its missing parents. ToolError if it cannot be made.
void makeFolder(const std::filesystem::path& path);

}  // namespace zev::packing
