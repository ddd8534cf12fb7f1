#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/registry_api.h"
#include "scenario/json_reader.h"

namespace zev::scenario {

/// What a `machine` object, or a later `change`, says of a machine. A member that is absent leaves
/// that side of the machine as it is.

/// What GetVersionExA tells, field by field; `fails`: it tells nothing.
struct VersionChange {
  std::optional<std::uint32_t> platform;
  std::optional<std::uint32_t> major;
  std::optional<std::uint32_t> minor;
  std::optional<std::uint32_t> build;
  std::optional<Text> csd;
  std::optional<std::uint16_t> suiteMask;
  std::optional<std::uint8_t> productType;
  std::optional<bool> fails;
};

/// Null: the call that asks for the folder fails.
struct FoldersChange {
  Nullable<Text> temp;
  Nullable<Text> windows;
  Nullable<Text> system;
  Nullable<Text> documents;
  Nullable<Text> localAppData;
  Nullable<Text> desktop;
  std::map<std::int32_t, std::optional<Text>> special;  ///< by the shell's number
};

/// One drive: `type` as GetDriveTypeA tells it, `host` a folder of the host that it lies over from
/// now on.
struct DriveChange {
  std::optional<std::uint32_t> type;
  std::optional<std::uint64_t> free;  ///< bytes
  std::optional<std::uint32_t> sectorsPerCluster;
  std::optional<std::uint32_t> bytesPerSector;
  std::optional<Text> label;
  std::optional<bool> ready;
  std::optional<bool> shortNames;
  std::optional<std::filesystem::path> host;
};

/// What a file consists of.
struct FileText {
  Text text;  ///< stored in the machine's code page
};
struct FileBytes {
  std::vector<std::uint8_t> bytes;
};
struct FileZeros {
  std::uint64_t size = 0;
};
struct FileFromHost {
  std::filesystem::path file;
};
struct Directory {};
/// A link to a full path of the machine.
struct FileLink {
  Text target;
  bool toFolder = false;
};
/// Nothing is said of what the entry consists of: one that exists keeps it.
struct AsItIs {};
using FileContent =
    std::variant<AsItIs, Directory, FileText, FileBytes, FileZeros, FileFromHost, FileLink>;

struct FileChange {
  FileContent content;
  std::optional<std::uint32_t> attributes;  ///< of `file_attribute`: hidden, system, read-only
  std::optional<bool> locked;               ///< its attributes cannot change
  std::optional<bool> inUse;
  std::optional<std::vector<std::string>> deny;  ///< of create, write, delete and list
};

/// The data of one registry value: a type and either a text (stored in the machine's code page,
/// with its NUL) or bytes.
struct RegistryData {
  std::uint32_t type = 0;
  std::variant<Text, std::vector<std::uint8_t>> data;
};

struct RegistryChange {
  std::string path;  ///< in the document, for messages
  RegistryKey hive = 0;
  Text key;
  Nullable<Text> name;               ///< absent: the key itself is meant
  std::optional<RegistryData> data;  ///< none: the value, or the key, is taken away
};

/// Whether the machine has what makes shortcuts, and a Program Manager.
struct ServicesChange {
  std::optional<bool> shortcuts;
  std::optional<bool> programManager;
};

/// What comes of starting a program: whether it starts and can be waited for, and how it ends.
struct ProgramChange {
  std::optional<bool> starts;
  std::optional<bool> opens;
  std::optional<bool> running;
  std::optional<std::int32_t> exit;
  std::optional<std::uint32_t> duration;  ///< milliseconds
};

struct FaultChange {
  std::string call;                  ///< one of operationNames()
  std::optional<std::uint32_t> nth;  ///< from 1; absent: every call
  std::optional<Text> match;
  std::optional<std::int32_t> error;
  std::optional<std::int32_t> raise;
  bool ignore = false;
};

/// A path of the machine and what becomes of what is there; none takes it away.
struct FileEntry {
  std::string path;  ///< in the document, for messages
  Text file;
  std::optional<FileChange> change;
};

struct DriveEntry {
  std::string path;  ///< in the document, for messages
  char16_t letter = u'C';
  std::optional<DriveChange> change;
};

/// The whole of it. Each list is gone through in the order in which it is written.
struct MachineChange {
  VersionChange version;
  std::optional<std::uint16_t> architecture;
  std::optional<bool> wow64;
  std::map<std::int32_t, std::int32_t> metrics;
  std::optional<std::uint32_t> productInfo;
  std::optional<std::uint16_t> uiLanguage;
  std::optional<std::uint32_t> codePage;
  Nullable<Text> user;
  Nullable<Text> domain;
  FoldersChange folders;
  std::vector<DriveEntry> drives;
  std::vector<FileEntry> files;
  std::vector<RegistryChange> registry;
  std::optional<std::vector<Text>> deniedKeys;  ///< "HKEY_..\key"
  std::optional<std::vector<Text>> windows;
  std::optional<Text> installer;
  ServicesChange services;
  std::vector<std::pair<Text, ProgramChange>> programs;
  std::optional<std::vector<FaultChange>> faults;
};

/// Reads a machine object. The files and folders of the host that it names must exist.
MachineChange readMachine(const JsonReader& machine);

}  // namespace zev::scenario
