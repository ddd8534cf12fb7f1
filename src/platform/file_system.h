#pragma once

#include <cstdint>
#include <span>

#include "runtime/text.h"

namespace zev {

/// The system's own error numbers, as far as the program tells them apart. 0 is success.
using SystemError = std::uint32_t;

namespace system_error {
inline constexpr SystemError success = 0;
inline constexpr SystemError fileNotFound = 2;
inline constexpr SystemError pathNotFound = 3;
inline constexpr SystemError tooManyOpenFiles = 4;
inline constexpr SystemError accessDenied = 5;
inline constexpr SystemError invalidHandle = 6;
inline constexpr SystemError notEnoughMemory = 8;
inline constexpr SystemError invalidDrive = 15;
inline constexpr SystemError noMoreFiles = 18;
inline constexpr SystemError writeProtect = 19;
inline constexpr SystemError notReady = 21;
inline constexpr SystemError sharingViolation = 32;
inline constexpr SystemError lockViolation = 33;
inline constexpr SystemError handleDiskFull = 39;
inline constexpr SystemError badNetworkPath = 53;
inline constexpr SystemError fileExists = 80;
inline constexpr SystemError invalidParameter = 87;
inline constexpr SystemError diskFull = 112;
inline constexpr SystemError invalidName = 123;
inline constexpr SystemError directoryNotEmpty = 145;
inline constexpr SystemError alreadyExists = 183;
inline constexpr SystemError fileNameTooLong = 206;
inline constexpr SystemError directoryInvalid = 267;
inline constexpr SystemError deviceError = 1117;
inline constexpr SystemError cannotResolve = 1921;
}  // namespace system_error

/// File attributes, as the system and the run-time number them.
namespace file_attribute {
inline constexpr std::uint32_t normal = 0;
inline constexpr std::uint32_t readOnly = 1;
inline constexpr std::uint32_t hidden = 2;
inline constexpr std::uint32_t system = 4;
inline constexpr std::uint32_t volume = 8;
inline constexpr std::uint32_t directory = 16;
inline constexpr std::uint32_t archive = 32;
inline constexpr std::uint32_t link = 1024;  ///< a junction, a symbolic link: it leads elsewhere
}  // namespace file_attribute

/// What follows the name of a file while the one that is to replace it is being written.
inline constexpr TextView replacementSuffix = u".~zev";

/// One entry of a directory.
struct DirectoryEntry {
  Text name;                     ///< in the case in which it was made
  std::uint32_t attributes = 0;  ///< of `file_attribute`, those seven only
  std::uint64_t size = 0;        ///< bytes; 0 for a directory
};

/// A handle of an open file or of a running search; 0 is none.
using FileHandle = std::uintptr_t;

enum class FileAccess { Read, Write, ReadWrite };

/// What others may do with the file while it is open.
enum class FileShare { All, Nothing };

/// What an entry is held for.
enum class Holding {
  ToKeep,   ///< nobody writes to the file, and nobody renames or deletes the entry
  ToFill,   ///< a directory: the same, and nobody holds it to be emptied
  ToEmpty,  ///< a directory: nobody holds it to be filled
};

enum class FileDisposition {
  OpenExisting,  ///< fails with fileNotFound if there is none
  OpenAlways,    ///< creates an empty file if there is none
  CreateAlways,  ///< creates a file or empties the one that is there
  Replace,  ///< the same, but what is there stays until CommitFile puts the new one in its place
};

/// The file calls of the system, one call an operation, failing with the system's numbers.
///
/// Paths are the system's: a drive letter, a colon, backslashes (a slash stands for a backslash),
/// or two backslashes, a machine and a share. Whatever else stands before a colon is a drive that
/// is not there. They match without regard to case and keep the case in which they were made. Texts
/// pass through the code page of the system, so that a character which it cannot represent becomes
/// its default character. A name that the system does not allow fails with invalidName, a missing
/// parent with pathNotFound, a drive that is not there with pathNotFound.
///
/// Links on the way to an entry are followed, as many as 63, and cannotResolve tells of more. An
/// entry that is a link itself is followed by CreateFileA alone; all other calls mean the link.
class FileSystem {
 public:
  virtual ~FileSystem() = default;

  /// Begins a search for the entries that a pattern's last component matches ("*" and "?", the
  /// pattern "*.*" matching every name). Entries of a directory that is not a root begin with "."
  /// and "..". A drive's root cannot be asked for by its own name: "C:" and "C:\" fail with
  /// fileNotFound. `search` is to be closed by FindClose if and only if the call succeeds.
  virtual SystemError FindFirstFileA(TextView pattern, DirectoryEntry& entry,
                                     FileHandle& search) = 0;
  /// The next entry, or noMoreFiles.
  virtual SystemError FindNextFileA(FileHandle search, DirectoryEntry& entry) = 0;
  /// Ends a search, whether or not it has come to its end.
  virtual void FindClose(FileHandle search) = 0;

  /// Opens a file. A directory fails with accessDenied; a read-only file that is to be written,
  /// too; a file that somebody has open without sharing, or that runs as a program and is to be
  /// written, with sharingViolation. A new file has the archive attribute.
  virtual SystemError CreateFileA(TextView path, FileAccess access, FileShare share,
                                  FileDisposition disposition, FileHandle& file) = 0;
  /// Reads up to the length of `into` at a byte offset; `read` is less at the end of the file.
  virtual SystemError ReadFile(FileHandle file, std::uint64_t offset, std::span<std::uint8_t> into,
                               std::size_t& read) = 0;
  /// Writes all of `from` at a byte offset, filling a gap past the end with zeros, or fails; with
  /// diskFull what fitted is written and counted in `written`.
  virtual SystemError WriteFile(FileHandle file, std::uint64_t offset,
                                std::span<const std::uint8_t> from, std::size_t& written) = 0;
  /// The length of an open file, in bytes.
  virtual SystemError GetFileSize(FileHandle file, std::uint64_t& size) = 0;
  /// Closes a file. It fails if the system cannot keep what it was given before; the file is closed
  /// all the same. One that was opened by Replace is dropped, and what is there stays.
  virtual SystemError CloseHandle(FileHandle file) = 0;
  /// Closes a file that was opened by Replace and puts it in its place, whole: whoever looks finds
  /// what was there or all that was written, also if the program is ended meanwhile. If it fails
  /// the new file is dropped. Where no second file can be made beside the one that is there, or
  /// that one cannot be taken away (others have it open, its folder refuses), it is written over in
  /// place.
  virtual SystemError CommitFile(FileHandle file) = 0;

  /// Holds a file or directory until CloseHandle, and tells its attributes: a file that has other
  /// names, too, counts as a link here. ReadFile and GetFileSize read a file that is held; the
  /// entries in a directory come and go. Fails with sharingViolation if somebody has the entry open
  /// or holds it in a way that does not go with this. A system without such handles of directories
  /// fails in whatever way it does.
  virtual SystemError HoldEntryA(TextView path, Holding holding, std::uint32_t& attributes,
                                 FileHandle& held) = 0;

  /// A read-only file fails with accessDenied, one in use with sharingViolation, a directory with
  /// accessDenied.
  virtual SystemError DeleteFileA(TextView path) = 0;
  /// An existing entry of that name fails with alreadyExists.
  virtual SystemError CreateDirectoryA(TextView path) = 0;
  /// A directory that holds something fails with directoryNotEmpty, a file with directoryInvalid.
  virtual SystemError RemoveDirectoryA(TextView path) = 0;
  /// The attributes of an entry, those of `file_attribute`; fileNotFound or pathNotFound if there
  /// is none.
  virtual SystemError GetFileAttributesA(TextView path, std::uint32_t& attributes) = 0;
  /// Sets read-only, hidden, system and archive; a directory stays one.
  virtual SystemError SetFileAttributesA(TextView path, std::uint32_t attributes) = 0;
  /// True if the drive of a root such as "C:\" or "C:" is there and ready.
  virtual bool rootExists(TextView root) = 0;

  /// Bytes of a text in the system's code page and back: what a text file holds.
  virtual std::string toAnsi(TextView text) = 0;
  virtual Text fromAnsi(std::string_view bytes) = 0;
};

/// Whether a file or folder can have the name: none of the characters that the system forbids, no
/// name of a device, 255 characters at most.
bool validName(TextView name);

}  // namespace zev
