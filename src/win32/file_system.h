#pragma once

#include <map>
#include <string>

#include "platform/file_system.h"

namespace zev::win32 {

/// The file calls of Windows.
class Win32FileSystem final : public FileSystem {
 public:
  SystemError FindFirstFileA(TextView pattern, DirectoryEntry& entry, FileHandle& search) override;
  SystemError FindNextFileA(FileHandle search, DirectoryEntry& entry) override;
  void FindClose(FileHandle search) override;

  SystemError CreateFileA(TextView path, FileAccess access, FileShare share,
                          FileDisposition disposition, FileHandle& file) override;
  SystemError ReadFile(FileHandle file, std::uint64_t offset, std::span<std::uint8_t> into,
                       std::size_t& read) override;
  SystemError WriteFile(FileHandle file, std::uint64_t offset, std::span<const std::uint8_t> from,
                        std::size_t& written) override;
  SystemError GetFileSize(FileHandle file, std::uint64_t& size) override;
  SystemError CloseHandle(FileHandle file) override;
  SystemError CommitFile(FileHandle file) override;
  SystemError HoldEntryA(TextView path, Holding holding, std::uint32_t& attributes,
                         FileHandle& held) override;

  SystemError DeleteFileA(TextView path) override;
  SystemError CreateDirectoryA(TextView path) override;
  SystemError RemoveDirectoryA(TextView path) override;
  SystemError GetFileAttributesA(TextView path, std::uint32_t& attributes) override;
  SystemError SetFileAttributesA(TextView path, std::uint32_t attributes) override;
  bool rootExists(TextView root) override;

  std::string toAnsi(TextView text) override;
  Text fromAnsi(std::string_view bytes) override;

 private:
  /// A file that is being written beside the one that it is to replace.
  struct Replacement {
    std::string path;
    std::string target;
  };
  SystemError beginReplacement(const std::string& target, FileHandle& file);
  Replacement takeReplacement(FileHandle file);

  std::map<FileHandle, Replacement> replacements_;
};

}  // namespace zev::win32
