#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/files.h"

namespace zev {

/// The file statements over the file calls of a system: one implementation for every binding. The
/// place of a `Dir` query and the table of open files belong to the object.
class RuntimeFiles final : public Files {
 public:
  /// Borrows the file system, which outlives this.
  explicit RuntimeFiles(FileSystem& system) : system_(system) {}
  ~RuntimeFiles() override;
  RuntimeFiles(const RuntimeFiles&) = delete;
  RuntimeFiles& operator=(const RuntimeFiles&) = delete;

  Text Dir(TextView pattern, std::int32_t attributes) override;
  Text Dir() override;
  void Kill(TextView pattern) override;
  void MkDir(TextView path) override;
  void RmDir(TextView path) override;
  std::int32_t GetAttr(TextView path) override;
  std::int32_t FileLen(TextView path) override;
  std::size_t peek(TextView path, std::uint64_t offset, std::span<std::uint8_t> into) override;
  std::size_t peek(std::int32_t number, std::uint64_t offset,
                   std::span<std::uint8_t> into) override;
  bool SetFileAttributesA(TextView path, std::int32_t attributes) override;
  std::int32_t FreeFile() override;
  void OpenBinary(std::int32_t number, TextView path, bool locked) override;
  void OpenBinaryWrite(std::int32_t number, TextView path) override;
  void OpenInput(std::int32_t number, TextView path) override;
  void OpenOutput(std::int32_t number, TextView path) override;
  void Close(std::int32_t number) override;
  std::int32_t LOF(std::int32_t number) override;
  void Get(std::int32_t number, std::int32_t position, std::span<std::uint8_t> into) override;
  void Put(std::int32_t number, std::int32_t position, std::span<const std::uint8_t> from) override;
  void PutText(std::int32_t number, std::int32_t position, TextView text) override;
  void Print(std::int32_t number, TextView text) override;
  Text Input(std::int32_t number) override;
  bool Eof(std::int32_t number) override;

 private:
  enum class Mode { Binary, Input, Output };
  struct OpenFile {
    Mode mode{};
    FileHandle handle = 0;
    std::uint64_t place = 0;  ///< of text input and output
    std::string text;         ///< all of a text file that is read
    bool printed = false;     ///< something was printed into it
    bool cut = false;         ///< and not all of it could be written
  };
  struct Query {
    FileHandle search = 0;
    std::int32_t mask = 0;
  };

  Text advance(DirectoryEntry entry);
  void endQuery();
  OpenFile& open(std::int32_t number, Mode mode);
  OpenFile& opened(std::int32_t number);
  std::string readText(FileHandle handle);
  void add(std::int32_t number, Mode mode, FileHandle handle);
  void requireFree(std::int32_t number) const;

  FileSystem& system_;
  std::map<std::int32_t, OpenFile> files_;
  std::optional<Query> query_;
};

}  // namespace zev
