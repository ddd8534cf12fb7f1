#pragma once

#include <cstdint>
#include <span>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace zev {

/// Attribute masks of a `Dir` query.
namespace dir_mask {
inline constexpr std::int32_t normal = 0;
inline constexpr std::int32_t directories = 16;
inline constexpr std::int32_t hiddenFiles = 38;  ///< hidden, system and archive files
inline constexpr std::int32_t anyEntry = 55;     ///< any entry, directories too
inline constexpr std::int32_t withVolume = 63;   ///< the same and the volume label
}  // namespace dir_mask

/// The file statements of the run-time. Failures are run-time errors with the run-time's numbers.
/// Files are known by numbers from 1 to 511.
class Files {
 public:
  virtual ~Files() = default;

  /// Begins a query: the name of the first entry that the pattern's last component matches and
  /// whose hidden, system and directory attributes are all within the mask; read-only and archive
  /// never hide an entry. Empty if there is none, and empty, not an error, for whatever cannot be
  /// searched. "C:" and "C:\" answer for a drive that is there.
  virtual Text Dir(TextView pattern, std::int32_t attributes) = 0;
  /// The next entry of the query that was begun last; error 5 when it has ended.
  virtual Text Dir() = 0;

  /// Deletes all files that match; 53 if none does. One that cannot be deleted keeps none of the
  /// others; the first of them is told by 75 or 70.
  virtual void Kill(TextView pattern) = 0;
  /// Makes a directory: 75 if the name is taken or refused, 76 if its parent is missing.
  virtual void MkDir(TextView path) = 0;
  /// Removes an empty directory: 76 if there is none, 75 if it cannot be removed.
  virtual void RmDir(TextView path) = 0;
  /// The attributes of an entry; 53 if there is none.
  virtual std::int32_t GetAttr(TextView path) = 0;
  /// The length of a file by its name; 53 if there is none.
  virtual std::int32_t FileLen(TextView path) = 0;
  /// No statement: reads what stands in a file at an offset, and says how many bytes that were. The
  /// file may be open meanwhile. Raises what keeps it from being opened. Nobody observes it, for it
  /// leaves nothing behind and finds nothing out that an observer would not know.
  virtual std::size_t peek(TextView path, std::uint64_t offset, std::span<std::uint8_t> into) = 0;
  /// The same for a file that is open; 52 if none has the number.
  virtual std::size_t peek(std::int32_t number, std::uint64_t offset,
                           std::span<std::uint8_t> into) = 0;
  /// The system's call, not a statement: false on failure, which is no run-time error.
  virtual bool SetFileAttributesA(TextView path, std::int32_t attributes) = 0;

  /// The lowest number that no open file has; 67 if all are taken.
  virtual std::int32_t FreeFile() = 0;
  /// Opens for binary access, reading and writing as far as the file allows, creating it if there
  /// is none. With `locked` nobody else can read or write it meanwhile.
  virtual void OpenBinary(std::int32_t number, TextView path, bool locked) = 0;
  /// The same for writing only.
  virtual void OpenBinaryWrite(std::int32_t number, TextView path) = 0;
  /// Opens a text file for input; 53 if there is none.
  virtual void OpenInput(std::int32_t number, TextView path) = 0;
  /// Opens a text file for output. What is printed takes the place of what is there when the file
  /// is closed, all of it or nothing: a file that nothing was printed into, or not all that was to
  /// be, leaves what is there.
  virtual void OpenOutput(std::int32_t number, TextView path) = 0;
  /// Closes a file; nothing happens for a number that is not open. The file is closed also if that
  /// raises an error, since what it was given cannot be kept.
  virtual void Close(std::int32_t number) = 0;

  /// Length of an open file in bytes.
  virtual std::int32_t LOF(std::int32_t number) = 0;
  /// Reads at a 1-based position; what lies past the end of the file becomes 0. A position below
  /// 1 is error 63.
  virtual void Get(std::int32_t number, std::int32_t position, std::span<std::uint8_t> into) = 0;
  /// Writes at a 1-based position. A position below 1 is error 63, a full disk 61.
  virtual void Put(std::int32_t number, std::int32_t position,
                   std::span<const std::uint8_t> from) = 0;
  /// Writes a text, in the system's code page, at a 1-based position of a binary file: as many
  /// bytes as the text has characters, cut where the code page needs more.
  virtual void PutText(std::int32_t number, std::int32_t position, TextView text) = 0;
  /// Writes a text, in the system's code page, and a line end.
  virtual void Print(std::int32_t number, TextView text) = 0;
  /// Reads the next item of a text file: blanks in front are skipped, double quotes that enclose it
  /// are taken off, and it ends at a comma or a line end. 62 at the end of the file.
  virtual Text Input(std::int32_t number) = 0;
  /// True if nothing is left to read.
  virtual bool Eof(std::int32_t number) = 0;
};

/// The run-time error number that a failing call of the system leads to.
std::int32_t runtimeErrorOf(SystemError error);

}  // namespace zev
