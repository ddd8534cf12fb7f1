#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "platform/file_system.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// The file calls of one process on a simulated machine, with the rules of Windows on every host.
/// Beyond the contract of the calls:
///
///  - a directory's `deny` refuses with accessDenied what it names for the entries directly in it;
///  - a file in use by another program fails every open and its deletion with sharingViolation; the
///    file of a program that runs fails opening for writing with sharingViolation and its deletion
///    with accessDenied;
///  - replacing a hidden or system file (CreateAlways) fails with accessDenied;
///  - a drive of type 5 fails every change with writeProtect, one without a medium everything with
///    notReady;
///  - free space goes in whole clusters;
///  - what another process of the machine has open or holds counts as what this one has.
class SimulatedFileSystem final : public FileSystem {
 public:
  /// Borrows the machine.
  explicit SimulatedFileSystem(MachineState& machine) : machine_(machine) {}
  ~SimulatedFileSystem() override;
  SimulatedFileSystem(const SimulatedFileSystem&) = delete;
  SimulatedFileSystem& operator=(const SimulatedFileSystem&) = delete;

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
  std::string toAnsi(TextView text) override { return machine_.toAnsi(text); }
  Text fromAnsi(std::string_view bytes) override { return machine_.fromAnsi(bytes); }

  /// Open files, held entries and searches: 0 when a program has closed what it opened.
  std::size_t openHandles() const { return files_.size() + searches_.size(); }

 private:
  struct OpenFile {
    Path path;
    std::uint64_t sharing = 0;  ///< its number among all that the machine's processes have open
    FileAccess access{};
    std::shared_ptr<FileBody> body{};   ///< none of a directory that is held
    std::optional<Path> replacement{};  ///< where the bytes lie until they are put in their place
    std::uint64_t unreported = 0;       ///< bytes written that the transcript does not know of
    bool written = false;
  };
  struct Search {
    std::vector<DirectoryEntry> entries;
    std::size_t next = 0;
  };
  /// A path that has been looked up.
  struct Place {
    Path path;
    Drive* drive = nullptr;
    std::optional<DirectoryEntry> entry;

    bool exists() const { return entry.has_value(); }
    bool has(std::uint32_t attributes) const { return entry && (entry->attributes & attributes); }
    Guard guard() const { return drive->guard(path); }
    Guard parentGuard() const { return drive->guard(path.parent()); }
    bool isDirectory() const { return has(file_attribute::directory); }
    bool isLink() const { return has(file_attribute::link); }
    bool onReadOnlyMedium() const;
  };

  DirectoryEntry shown(DirectoryEntry entry) const;
  SystemError onDrive(Place& place) const;
  SystemError lookUpDrive(TextView text, Place& place, bool followed = false) const;
  SystemError lookUp(TextView text, Place& place, bool followed = false) const;
  SystemError lookUpPattern(TextView pattern, Place& directory, Text& leaf) const;

  SystemError mayOpen(const Place& place, FileAccess access, FileShare share,
                      FileDisposition disposition) const;
  SystemError mayCreate(const Place& place) const;
  SystemError mayWrite(const Place& place, FileDisposition disposition) const;
  SystemError mayDelete(const Place& place) const;
  SystemError mayRemoveDirectory(const Place& place) const;
  SystemError maySetAttributes(const Place& place) const;
  bool allows(const Place& place, Opening opening) const;
  FileHandle add(const Place& place, FileAccess access, Opening opening,
                 std::shared_ptr<FileBody> body);
  bool runs(const Path& path) const;

  bool canReplace(const Place& place) const;
  SystemError prepare(Place& place, FileDisposition disposition, std::optional<Path>& replacement);
  std::optional<Path> beginReplacement(const Place& place);
  SystemError createFile(const Place& place);
  SystemError empty(const Place& place);
  static std::uint64_t largestSize(const Drive& drive, std::uint64_t size);
  static void account(Drive& drive, std::uint64_t before, std::uint64_t after);
  SystemError close(OpenFile& file);
  void settle(const OpenFile& file);
  void drop(const Path& replacement);
  SystemError told(std::string_view op, TextView path, SystemError error);
  void tell(std::string_view op, TextView path, SystemError error);
  void tellWritten(OpenFile& file, SystemError error);

  MachineState& machine_;
  std::map<FileHandle, OpenFile> files_;
  std::map<FileHandle, Search> searches_;
  FileHandle lastHandle_ = 0;
};

}  // namespace zev::simulated
