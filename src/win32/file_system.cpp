#include "win32/file_system.h"

#include <algorithm>

#include "win32/ansi.h"
#include "win32/system_library.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

constexpr std::uint32_t known = file_attribute::readOnly | file_attribute::hidden |
                                file_attribute::system | file_attribute::volume |
                                file_attribute::directory | file_attribute::archive |
                                file_attribute::link;
constexpr std::uint32_t settable = file_attribute::readOnly | file_attribute::hidden |
                                   file_attribute::system | file_attribute::archive;

/// The most that one call is given to read or write.
constexpr std::size_t largestPiece = std::size_t{1} << 26;

HANDLE handleOf(FileHandle file) { return reinterpret_cast<HANDLE>(file); }

SystemError resultOf(BOOL succeeded) {
  return succeeded != FALSE ? system_error::success : ::GetLastError();
}

DirectoryEntry entryOf(const WIN32_FIND_DATAA& found) {
  DirectoryEntry entry;
  entry.name = fromAnsi(found.cFileName);
  entry.attributes = found.dwFileAttributes & known;
  const bool directory = (entry.attributes & file_attribute::directory) != 0;
  entry.size = directory ? 0 : (std::uint64_t{found.nFileSizeHigh} << 32) | found.nFileSizeLow;
  return entry;
}

DWORD accessOf(FileAccess access) {
  if (access == FileAccess::Read) return GENERIC_READ;
  if (access == FileAccess::Write) return GENERIC_WRITE;
  return GENERIC_READ | GENERIC_WRITE;
}

DWORD dispositionOf(FileDisposition disposition) {
  if (disposition == FileDisposition::OpenExisting) return OPEN_EXISTING;
  return disposition == FileDisposition::OpenAlways ? OPEN_ALWAYS : CREATE_ALWAYS;
}

constexpr DWORD sharedByAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

SystemError opened(HANDLE handle, FileHandle& file) {
  if (handle == INVALID_HANDLE_VALUE) return ::GetLastError();
  file = reinterpret_cast<FileHandle>(handle);
  return system_error::success;
}

/// Why a file could not be written over; success if it could, or if there is none.
SystemError mayWriteOver(const std::string& path) {
  constexpr DWORD concealing = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return system_error::success;
  if ((attributes & concealing) != 0) return system_error::accessDenied;
  FileHandle file = 0;
  const SystemError error = opened(::CreateFileA(path.c_str(), GENERIC_WRITE, sharedByAll, nullptr,
                                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr),
                                   file);
  if (error == system_error::success) ::CloseHandle(handleOf(file));
  return error;
}

/// Sets the place of the next reading or writing.
SystemError seek(FileHandle file, std::uint64_t offset) {
  LARGE_INTEGER place;
  place.QuadPart = static_cast<LONGLONG>(offset);
  return resultOf(::SetFilePointerEx(handleOf(file), place, nullptr, FILE_BEGIN));
}

DWORD pieceOf(std::size_t left) { return static_cast<DWORD>(std::min(left, largestPiece)); }

}  // namespace

// ---- searches

namespace {

bool isThere(const std::string& path) {
  return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

/// Whether a pattern names one entry, and its folder is there but it is not.
bool isMissing(const std::string& pattern) {
  const std::size_t name = pattern.rfind('\\') + 1;
  return name != 0 && pattern.find_first_of("*?") == std::string::npos && !isThere(pattern) &&
         ::GetLastError() == system_error::fileNotFound && isThere(pattern.substr(0, name));
}

}  // namespace

/// Most searches are for one file that is not there: then no folder is opened.
SystemError Win32FileSystem::FindFirstFileA(TextView pattern, DirectoryEntry& entry,
                                            FileHandle& search) {
  const std::string argument = ansiArgument(pattern);
  if (isMissing(argument)) return system_error::fileNotFound;
  WIN32_FIND_DATAA found{};
  HANDLE handle = ::FindFirstFileA(argument.c_str(), &found);
  if (handle == INVALID_HANDLE_VALUE) return ::GetLastError();
  search = reinterpret_cast<FileHandle>(handle);
  entry = entryOf(found);
  return system_error::success;
}

SystemError Win32FileSystem::FindNextFileA(FileHandle search, DirectoryEntry& entry) {
  WIN32_FIND_DATAA found{};
  const SystemError error = resultOf(::FindNextFileA(handleOf(search), &found));
  if (error == system_error::success) entry = entryOf(found);
  return error;
}

void Win32FileSystem::FindClose(FileHandle search) { ::FindClose(handleOf(search)); }

// ---- open files

SystemError Win32FileSystem::CreateFileA(TextView path, FileAccess access, FileShare share,
                                         FileDisposition disposition, FileHandle& file) {
  const std::string name = ansiArgument(path);
  if (disposition == FileDisposition::Replace) {
    if (const SystemError error = mayWriteOver(name)) return error;
    if (beginReplacement(name, file) == system_error::success) return system_error::success;
  }
  const DWORD shared = share == FileShare::All ? sharedByAll : 0;
  return opened(::CreateFileA(name.c_str(), accessOf(access), shared, nullptr,
                              dispositionOf(disposition), FILE_ATTRIBUTE_ARCHIVE, nullptr),
                file);
}

/// What an ended program has left under its name is gone first. Nothing that stands there by then,
/// a link among it, is opened.
SystemError Win32FileSystem::beginReplacement(const std::string& target, FileHandle& file) {
  const std::string path = target + win32::toAnsi(replacementSuffix);
  ::DeleteFileA(path.c_str());
  const SystemError error =
      opened(::CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                           FILE_ATTRIBUTE_ARCHIVE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr),
             file);
  if (error == system_error::success) replacements_[file] = {path, target};
  return error;
}

Win32FileSystem::Replacement Win32FileSystem::takeReplacement(FileHandle file) {
  const auto node = replacements_.extract(file);
  return node ? node.mapped() : Replacement{};
}

SystemError Win32FileSystem::ReadFile(FileHandle file, std::uint64_t offset,
                                      std::span<std::uint8_t> into, std::size_t& read) {
  read = 0;
  if (const SystemError error = seek(file, offset)) return error;
  while (read < into.size()) {
    DWORD got = 0;
    const DWORD wanted = pieceOf(into.size() - read);
    if (!::ReadFile(handleOf(file), into.data() + read, wanted, &got, nullptr)) {
      return ::GetLastError();
    }
    if (got == 0) break;
    read += got;
  }
  return system_error::success;
}

/// The system fills a gap past the end with zeros. A full disk shows as an error or as fewer
/// bytes than were given.
SystemError Win32FileSystem::WriteFile(FileHandle file, std::uint64_t offset,
                                       std::span<const std::uint8_t> from, std::size_t& written) {
  written = 0;
  if (const SystemError error = seek(file, offset)) return error;
  while (written < from.size()) {
    DWORD put = 0;
    const DWORD wanted = pieceOf(from.size() - written);
    if (!::WriteFile(handleOf(file), from.data() + written, wanted, &put, nullptr)) {
      return ::GetLastError();
    }
    if (put == 0) return system_error::diskFull;
    written += put;
  }
  return system_error::success;
}

SystemError Win32FileSystem::GetFileSize(FileHandle file, std::uint64_t& size) {
  LARGE_INTEGER length{};
  const SystemError error = resultOf(::GetFileSizeEx(handleOf(file), &length));
  if (error == system_error::success) size = static_cast<std::uint64_t>(length.QuadPart);
  return error;
}

SystemError Win32FileSystem::CloseHandle(FileHandle file) {
  const Replacement dropped = takeReplacement(file);
  const SystemError error = resultOf(::CloseHandle(handleOf(file)));
  if (!dropped.path.empty()) ::DeleteFileA(dropped.path.c_str());
  return error;
}

/// Systems that cannot move a file over another, and files that others have open, are written over.
SystemError Win32FileSystem::CommitFile(FileHandle file) {
  const Replacement replacement = takeReplacement(file);
  SystemError error = resultOf(::CloseHandle(handleOf(file)));
  if (replacement.path.empty()) return error;
  const char* path = replacement.path.c_str();
  const char* target = replacement.target.c_str();
  constexpr DWORD atOnce = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (error == system_error::success && ::MoveFileExA(path, target, atOnce)) return error;
  if (error == system_error::success) error = resultOf(::CopyFileA(path, target, FALSE));
  ::DeleteFileA(path);
  return error;
}

namespace {

constexpr DWORD shareWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// What a holding asks of the system: for a directory, "writing" means its entries.
struct Opening {
  DWORD access;
  DWORD shared;
};

Opening openingOf(Holding holding, bool directory) {
  if (holding == Holding::ToEmpty) return {FILE_ADD_FILE, shareWithAll};
  const bool emptied = directory && holding == Holding::ToKeep;
  return {GENERIC_READ, FILE_SHARE_READ | (emptied ? DWORD{FILE_SHARE_WRITE} : DWORD{0})};
}

HANDLE openEntry(const std::string& path, const Opening& opening) {
  return ::CreateFileA(path.c_str(), opening.access, opening.shared, nullptr, OPEN_EXISTING,
                       FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
}

/// What an open entry is: its attributes, and how many names it has.
struct Facts {
  DWORD attributes;
  DWORD links;
};

/// Systems from version 6 tell it by itself. What all have also asks the volume for its number,
/// which takes longer than the rest of a hold.
SystemError factsOf(HANDLE handle, Facts& facts) {
  static SystemLibrary kernel32("kernel32.dll");
  const auto ask =
      kernel32.find<decltype(::GetFileInformationByHandleEx)>("GetFileInformationByHandleEx");
  FILE_BASIC_INFO basic{};
  FILE_STANDARD_INFO standard{};
  if (ask != nullptr && ask(handle, FileBasicInfo, &basic, sizeof basic) &&
      ask(handle, FileStandardInfo, &standard, sizeof standard)) {
    facts = {basic.FileAttributes, standard.NumberOfLinks};
    return system_error::success;
  }
  BY_HANDLE_FILE_INFORMATION information{};
  const SystemError error = resultOf(::GetFileInformationByHandle(handle, &information));
  facts = {information.dwFileAttributes, information.nNumberOfLinks};
  return error;
}

}  // namespace

SystemError Win32FileSystem::HoldEntryA(TextView path, Holding holding, std::uint32_t& attributes,
                                        FileHandle& held) {
  const std::string argument = ansiArgument(path);
  const DWORD before = ::GetFileAttributesA(argument.c_str());
  if (before == INVALID_FILE_ATTRIBUTES) return ::GetLastError();
  const bool directory = (before & FILE_ATTRIBUTE_DIRECTORY) != 0;
  HANDLE handle = openEntry(argument, openingOf(holding, directory));
  if (handle == INVALID_HANDLE_VALUE) return ::GetLastError();
  Facts facts{};
  if (const SystemError error = factsOf(handle, facts)) {
    ::CloseHandle(handle);
    return error;
  }
  attributes = (before | facts.attributes) & known;
  if (!directory && facts.links > 1) attributes |= file_attribute::link;
  held = reinterpret_cast<FileHandle>(handle);
  return system_error::success;
}

// ---- entries by name

SystemError Win32FileSystem::DeleteFileA(TextView path) {
  return resultOf(::DeleteFileA(ansiArgument(path).c_str()));
}

SystemError Win32FileSystem::CreateDirectoryA(TextView path) {
  return resultOf(::CreateDirectoryA(ansiArgument(path).c_str(), nullptr));
}

SystemError Win32FileSystem::RemoveDirectoryA(TextView path) {
  return resultOf(::RemoveDirectoryA(ansiArgument(path).c_str()));
}

SystemError Win32FileSystem::GetFileAttributesA(TextView path, std::uint32_t& attributes) {
  const DWORD answer = ::GetFileAttributesA(ansiArgument(path).c_str());
  if (answer == INVALID_FILE_ATTRIBUTES) return ::GetLastError();
  attributes = answer & known;
  return system_error::success;
}

SystemError Win32FileSystem::SetFileAttributesA(TextView path, std::uint32_t attributes) {
  const DWORD wanted = attributes & settable;
  return resultOf(::SetFileAttributesA(ansiArgument(path).c_str(),
                                       wanted != 0 ? wanted : FILE_ATTRIBUTE_NORMAL));
}

bool Win32FileSystem::rootExists(TextView root) {
  const Text path = join(withoutTrailing(beforeNul(root), u'\\'), u"\\");
  return ::GetFileAttributesA(ansiArgument(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

// ---- text

std::string Win32FileSystem::toAnsi(TextView text) { return win32::toAnsi(text); }

Text Win32FileSystem::fromAnsi(std::string_view bytes) { return win32::fromAnsi(bytes); }

}  // namespace zev::win32
