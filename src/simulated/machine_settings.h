#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "runtime/text.h"
#include "simulated/host_piece.h"

namespace zev::simulated {

/// What the operating system says of itself.
struct OsVersion {
  bool fails = false;  ///< the version cannot be asked
  std::uint32_t platform = 2;
  std::uint32_t major = 6;
  std::uint32_t minor = 1;
  std::uint32_t build = 7601;
  Text csd{};  ///< service pack, at most 127 characters are handed on
  std::uint16_t suiteMask = 256;
  std::uint8_t productType = 1;
};

/// What the machine and its user are, as calls tell it.
struct SystemSettings {
  OsVersion version{};
  std::uint16_t architecture = 9;  ///< wProcessorArchitecture: 0 x86, 6 Itanium, 9 x64
  bool wow64 = false;              ///< the program runs under emulation of 32 bits
  std::map<std::int32_t, std::int32_t> metrics{};  ///< those that are not 0
  std::uint32_t productInfo = 0;
  std::uint16_t uiLanguage = 1033;
  std::uint32_t codePage = 1252;          ///< one that isKnownCodePage knows
  std::optional<Text> user = u"bob";      ///< none: the logon name cannot be asked
  std::optional<Text> domain = u"BOBPC";  ///< none: the account cannot be looked up
};

/// Folders that the system names. None: the call that asks for it fails.
struct FolderSettings {
  std::optional<Text> temp{};  ///< as the system gives it, usually with a backslash at its end
  std::optional<Text> windows{};
  std::optional<Text> system{};
  std::optional<Text> documents{};
  std::optional<Text> localAppData{};
  std::optional<Text> desktop{};
  /// By the shell's number. A number without an entry is looked up in the members above where they
  /// have it (5 documents, 16 desktop, 28 localAppData) and unknown otherwise.
  std::map<std::int32_t, std::optional<Text>> special{};
};

/// The folders of a usual machine whose user has that name.
FolderSettings usualFolders(TextView user);

/// Services that a machine can lack.
struct ServiceSettings {
  bool shortcuts = true;       ///< the automation object that makes shortcuts
  bool programManager = true;  ///< the DDE server
};

/// How a program behaves that is started.
struct ProgramSettings {
  bool starts = true;
  bool opens = true;     ///< its process can be opened
  bool running = false;  ///< its file stays in use from its start on
  std::int32_t exitCode = 0;
  std::uint32_t duration = 0;  ///< milliseconds until it ends
};

/// A drive. Its space counts in clusters, as GetDiskFreeSpaceA tells it.
struct DriveSettings {
  std::uint32_t type = 3;  ///< as GetDriveTypeA gives it; a CD (5) cannot be written
  std::uint64_t free = std::uint64_t{64} << 30;  ///< bytes that are still free
  std::uint32_t sectorsPerCluster = 8;
  std::uint32_t bytesPerSector = 512;
  Text label{};
  bool ready = true;       ///< false: no medium in the drive
  bool shortNames = true;  ///< its entries have names of eight letters and three beside their own
  /// The folder of the host that the drive lies over; none: memory.
  std::optional<std::filesystem::path> host{};
};

/// What is refused (accessDenied) on an entry. On a directory it concerns the entries directly in
/// it: none can be created, files cannot be written, entries cannot be deleted, nor can the
/// directory itself, and it cannot be searched.
struct Denial {
  bool create = false;
  bool write = false;
  bool remove = false;
  bool list = false;

  bool operator==(const Denial&) const = default;
};

/// A file of that many zeros, which take no memory.
struct ZeroBytes {
  std::uint64_t size = 0;
};

using FileContent = std::variant<std::vector<std::uint8_t>, ZeroBytes, std::filesystem::path,
                                 std::shared_ptr<const HostPiece>>;

/// An entry as it is laid on a drive. What is not given stays as it is on an entry that is there.
struct FileSettings {
  bool directory = false;
  /// A path is a file of the host, copied; a piece of one is read when it is asked for.
  std::optional<FileContent> content{};
  std::optional<Text> link{};                 ///< it leads to this full path, and holds nothing
  std::optional<std::uint32_t> attributes{};  ///< of platform `file_attribute`; a new file: archive
  std::optional<bool> locked{};               ///< its attributes cannot be changed
  std::optional<bool> inUse{};                ///< another program has it open without sharing
  std::optional<Denial> deny{};
};

/// What can be changed at any time and is read by each call that asks for it.
struct MachineSettings {
  SystemSettings system;
  FolderSettings folders = usualFolders(u"bob");
  std::vector<Text> windows{};  ///< titles of other programs' top-level windows, in order
  Text installer = u"C:\\Users\\bob\\Downloads\\ZEVSetup.exe";  ///< the program's own file
  ServiceSettings services{};
  std::map<Text, ProgramSettings> programs{};  ///< by path, letter case aside
};

}  // namespace zev::simulated
