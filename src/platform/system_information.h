#pragma once

#include <cstdint>
#include <string>

#include "runtime/text.h"

namespace zev {

/// The operating system's version record.
struct OSVERSIONINFO {
  std::uint32_t dwOSVersionInfoSize = shortForm;
  std::uint32_t dwMajorVersion = 0;
  std::uint32_t dwMinorVersion = 0;
  std::uint32_t dwBuildNumber = 0;
  std::uint32_t dwPlatformId = 0;
  Text szCSDVersion = Text(128, u'\0');  ///< 128 units, ended by NUL
  std::uint16_t wSuiteMask = 0;          ///< extended form only
  std::uint8_t wProductType = 0;         ///< extended form only

  static constexpr std::uint32_t shortForm = 148;
  static constexpr std::uint32_t extendedForm = 156;
};

/// What the system says about itself and the user. Texts come from the code page of the system. A
/// buffer is a text that stands for as many bytes, given with it as its size; a call writes its
/// answer over the beginning, ended by a NUL, and leaves the rest. Sizes that a call takes and
/// needs are in bytes. The length of an answer is in the units that it takes in the buffer, where a
/// letter of two bytes is one: what it cuts is the answer.
class SystemInformation {
 public:
  virtual ~SystemInformation() = default;

  /// Length of the answer without the NUL; 0 on failure; the size needed, NUL included, for a
  /// buffer too small, which stays as it is. Paths; the first one ends in a backslash. One that the
  /// code page cannot write comes in its short form, if it has one.
  virtual std::uint32_t GetTempPathA(std::uint32_t size, Text& buffer) = 0;
  virtual std::uint32_t GetWindowsDirectoryA(Text& buffer, std::uint32_t size) = 0;
  virtual std::uint32_t GetSystemDirectoryA(Text& buffer, std::uint32_t size) = 0;

  /// The language that the system speaks, as a language identifier. A system without the call gives
  /// the language of its settings.
  virtual std::uint16_t GetSystemDefaultUILanguage() = 0;

  /// The logon name; `size` becomes its length with the NUL. False on failure; for a buffer too
  /// small `size` becomes the size needed.
  virtual bool GetUserNameA(Text& buffer, std::uint32_t& size) = 0;
  /// Looks an account of this machine up: the domain's name into a buffer of `domainSize` bytes,
  /// which becomes its length. The security identifier, of at most `sidSize` bytes, is not handed
  /// on. False on failure.
  virtual bool LookupAccountNameA(TextView account, std::uint32_t sidSize, Text& domain,
                                  std::uint32_t& domainSize) = 0;

  /// Fills the record in the form that its size field names. False on failure; the record is then
  /// unchanged.
  virtual bool GetVersionExA(OSVERSIONINFO& record) = 0;
  /// A measure of the system by its number; 0 for one that it does not know.
  virtual std::int32_t GetSystemMetrics(std::int32_t index) = 0;
  /// A handle of this process, which need not be closed.
  virtual std::uintptr_t GetCurrentProcess() = 0;
  /// Whether a process runs under emulation of 32 bits. False on failure. Looked up at the call:
  /// older systems do not have it.
  virtual bool IsWow64Process(std::uintptr_t process, bool& emulated) = 0;
  /// wProcessorArchitecture: 0 x86, 6 Itanium, 9 x64. The first is looked up at the call.
  virtual std::uint16_t GetNativeSystemInfo() = 0;
  virtual std::uint16_t GetSystemInfo() = 0;
  /// The product code of an edition. False on failure, the code unchanged. Looked up at the call.
  virtual bool GetProductInfo(std::uint32_t major, std::uint32_t minor, std::uint32_t packMajor,
                              std::uint32_t packMinor, std::uint32_t& code) = 0;
};

/// Answers of GetDriveTypeA.
namespace drive_type {
inline constexpr std::uint32_t unknown = 0;
inline constexpr std::uint32_t noRootDirectory = 1;
inline constexpr std::uint32_t removable = 2;
inline constexpr std::uint32_t fixed = 3;
inline constexpr std::uint32_t remote = 4;
inline constexpr std::uint32_t cdRom = 5;
inline constexpr std::uint32_t ramDisk = 6;
}  // namespace drive_type

/// What GetDiskFreeSpaceA tells.
struct DiskSpace {
  std::int32_t sectorsPerCluster = 0;
  std::int32_t bytesPerSector = 0;
  std::int32_t freeClusters = 0;
  std::int32_t totalClusters = 0;
};

/// The drives of the machine.
class Drives {
 public:
  virtual ~Drives() = default;

  /// Type of the drive of a root such as "C:\"; 1 for a root that is not there.
  virtual std::uint32_t GetDriveTypeA(TextView root) = 0;
  /// Space of the drive of a root. False on failure, the numbers unchanged.
  virtual bool GetDiskFreeSpaceA(TextView root, DiskSpace& space) = 0;
  /// Bit n is set if there is a drive of the n-th letter.
  virtual std::uint32_t GetLogicalDrives() = 0;
  /// The label of a drive's volume; empty if it has none or cannot be asked.
  virtual Text volumeLabel(TextView root) = 0;
};

}  // namespace zev
