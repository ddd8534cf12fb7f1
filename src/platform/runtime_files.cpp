#include "platform/runtime_files.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "runtime/containers.h"
#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::int32_t lastNumber = 511;
constexpr char endOfTextFile = '\x1A';

struct ErrorRow {
  SystemError system;
  ErrorNumber runtime;
};

constexpr ErrorRow errorRows[] = {
    {system_error::fileNotFound, ErrorNumber::FileNotFound},
    {system_error::pathNotFound, ErrorNumber::PathNotFound},
    {system_error::tooManyOpenFiles, ErrorNumber::TooManyFiles},
    {system_error::accessDenied, ErrorNumber::PathFileAccessError},
    {system_error::invalidHandle, ErrorNumber::BadFileNameOrNumber},
    {system_error::notEnoughMemory, ErrorNumber::OutOfMemory},
    {system_error::invalidDrive, ErrorNumber::DeviceUnavailable},
    {system_error::noMoreFiles, ErrorNumber::FileNotFound},
    {system_error::writeProtect, ErrorNumber::PermissionDenied},
    {system_error::notReady, ErrorNumber::DiskNotReady},
    {system_error::sharingViolation, ErrorNumber::PermissionDenied},
    {system_error::lockViolation, ErrorNumber::PermissionDenied},
    {system_error::handleDiskFull, ErrorNumber::DiskFull},
    {system_error::badNetworkPath, ErrorNumber::BadFileNameOrNumber},
    {system_error::fileExists, ErrorNumber::FileAlreadyExists},
    {system_error::diskFull, ErrorNumber::DiskFull},
    {system_error::invalidName, ErrorNumber::BadFileNameOrNumber},
    {system_error::directoryNotEmpty, ErrorNumber::PathFileAccessError},
    {system_error::alreadyExists, ErrorNumber::PathFileAccessError},
    {system_error::fileNameTooLong, ErrorNumber::PathNotFound},
    {system_error::directoryInvalid, ErrorNumber::PathFileAccessError},
};

void require(SystemError error) {
  if (error != system_error::success) throw RuntimeError(runtimeErrorOf(error));
}

std::int32_t length32(std::uint64_t bytes) {
  return static_cast<std::int32_t>(
      std::min<std::uint64_t>(bytes, std::numeric_limits<std::int32_t>::max()));
}

std::span<const std::uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// The folder that a pattern's last component stands in, with what joins it to a name.
TextView folderOf(TextView pattern) { return pattern.substr(0, pattern.find_last_of(u"\\/:") + 1); }

bool isDots(const Text& name) { return name == u"." || name == u".."; }

/// "C:" or "C:\": a path that names a drive's root itself.
bool namesRoot(TextView path) {
  return (path.size() == 2 || (path.size() == 3 && (path[2] == u'\\' || path[2] == u'/'))) &&
         path[1] == u':';
}

}  // namespace

std::int32_t runtimeErrorOf(SystemError error) {
  for (const ErrorRow& row : errorRows) {
    if (row.system == error) return static_cast<std::int32_t>(row.runtime);
  }
  return static_cast<std::int32_t>(ErrorNumber::DeviceIoError);
}

RuntimeFiles::~RuntimeFiles() {
  endQuery();
  for (auto& [number, file] : files_) system_.CloseHandle(file.handle);
}

// ---- queries

void RuntimeFiles::endQuery() {
  if (query_) system_.FindClose(query_->search);
  query_.reset();
}

Text RuntimeFiles::advance(DirectoryEntry entry) {
  constexpr std::uint32_t hiding =
      file_attribute::hidden | file_attribute::system | file_attribute::directory;
  while ((entry.attributes & hiding & ~static_cast<std::uint32_t>(query_->mask)) != 0) {
    if (system_.FindNextFileA(query_->search, entry) != system_error::success) {
      endQuery();
      return {};
    }
  }
  return entry.name;
}

Text RuntimeFiles::Dir(TextView pattern, std::int32_t attributes) {
  endQuery();
  if (namesRoot(pattern)) return system_.rootExists(pattern) ? u"." : u"";
  Text searched(pattern);
  if (!searched.empty() && (searched.back() == u'\\' || searched.back() == u'/')) {
    searched += u"*.*";
  }
  DirectoryEntry entry;
  FileHandle search = 0;
  if (system_.FindFirstFileA(searched, entry, search) != system_error::success) return {};
  query_ = Query{search, attributes};
  return advance(std::move(entry));
}

Text RuntimeFiles::Dir() {
  if (!query_) throw RuntimeError(ErrorNumber::InvalidProcedureCall);
  DirectoryEntry entry;
  if (system_.FindNextFileA(query_->search, entry) == system_error::success) {
    return advance(std::move(entry));
  }
  endQuery();
  return {};
}

// ---- files and directories by name

void RuntimeFiles::Kill(TextView pattern) {
  std::vector<Text> names;
  DirectoryEntry entry;
  FileHandle search = 0;
  require(system_.FindFirstFileA(pattern, entry, search));
  do {
    const bool file = (entry.attributes & file_attribute::directory) == 0;
    if (file && !isDots(entry.name)) names.push_back(entry.name);
  } while (system_.FindNextFileA(search, entry) == system_error::success);
  system_.FindClose(search);
  if (names.empty()) throw RuntimeError(ErrorNumber::FileNotFound);
  SystemError refusal = system_error::success;
  for (const Text& name : names) {
    const SystemError error = system_.DeleteFileA(join(folderOf(pattern), name));
    if (refusal == system_error::success) refusal = error;
  }
  require(refusal);
}

void RuntimeFiles::MkDir(TextView path) { require(system_.CreateDirectoryA(path)); }

void RuntimeFiles::RmDir(TextView path) {
  const SystemError error = system_.RemoveDirectoryA(path);
  if (error == system_error::fileNotFound) throw RuntimeError(ErrorNumber::PathNotFound);
  require(error);
}

std::int32_t RuntimeFiles::GetAttr(TextView path) {
  std::uint32_t attributes = 0;
  require(system_.GetFileAttributesA(path, attributes));
  return static_cast<std::int32_t>(attributes);
}

std::int32_t RuntimeFiles::FileLen(TextView path) {
  DirectoryEntry entry;
  FileHandle search = 0;
  require(system_.FindFirstFileA(path, entry, search));
  system_.FindClose(search);
  return length32(entry.size);
}

std::size_t RuntimeFiles::peek(TextView path, std::uint64_t offset, std::span<std::uint8_t> into) {
  FileHandle handle = 0;
  require(system_.CreateFileA(path, FileAccess::Read, FileShare::All, FileDisposition::OpenExisting,
                              handle));
  std::size_t read = 0;
  const SystemError error = system_.ReadFile(handle, offset, into, read);
  system_.CloseHandle(handle);
  require(error);
  return read;
}

std::size_t RuntimeFiles::peek(std::int32_t number, std::uint64_t offset,
                               std::span<std::uint8_t> into) {
  std::size_t read = 0;
  require(system_.ReadFile(opened(number).handle, offset, into, read));
  return read;
}

bool RuntimeFiles::SetFileAttributesA(TextView path, std::int32_t attributes) {
  return system_.SetFileAttributesA(path, static_cast<std::uint32_t>(attributes)) ==
         system_error::success;
}

// ---- open files

std::int32_t RuntimeFiles::FreeFile() {
  for (std::int32_t number = 1; number <= lastNumber; ++number) {
    if (!files_.contains(number)) return number;
  }
  throw RuntimeError(ErrorNumber::TooManyFiles);
}

void RuntimeFiles::requireFree(std::int32_t number) const {
  if (number < 1 || number > lastNumber) throw RuntimeError(ErrorNumber::BadFileNameOrNumber);
  if (files_.contains(number)) throw RuntimeError(ErrorNumber::FileAlreadyOpen);
}

void RuntimeFiles::add(std::int32_t number, Mode mode, FileHandle handle) {
  files_[number] = OpenFile{mode, handle, 0, {}};
}

void RuntimeFiles::OpenBinary(std::int32_t number, TextView path, bool locked) {
  requireFree(number);
  const FileShare share = locked ? FileShare::Nothing : FileShare::All;
  FileHandle handle = 0;
  SystemError error =
      system_.CreateFileA(path, FileAccess::ReadWrite, share, FileDisposition::OpenAlways, handle);
  const bool mayBeReadable = error == system_error::accessDenied ||
                             error == system_error::sharingViolation ||
                             error == system_error::writeProtect;
  if (mayBeReadable && !locked) {
    error =
        system_.CreateFileA(path, FileAccess::Read, share, FileDisposition::OpenExisting, handle);
  }
  require(error);
  add(number, Mode::Binary, handle);
}

void RuntimeFiles::OpenBinaryWrite(std::int32_t number, TextView path) {
  requireFree(number);
  FileHandle handle = 0;
  require(system_.CreateFileA(path, FileAccess::Write, FileShare::All, FileDisposition::OpenAlways,
                              handle));
  add(number, Mode::Binary, handle);
}

void RuntimeFiles::OpenInput(std::int32_t number, TextView path) {
  requireFree(number);
  FileHandle handle = 0;
  require(system_.CreateFileA(path, FileAccess::Read, FileShare::All, FileDisposition::OpenExisting,
                              handle));
  add(number, Mode::Input, handle);
  try {
    files_[number].text = readText(handle);
  } catch (const RuntimeError&) {
    Close(number);
    throw;
  }
}

/// All of a text file up to its end mark, in the bytes of its code page.
std::string RuntimeFiles::readText(FileHandle handle) {
  std::uint64_t size = 0;
  std::size_t read = 0;
  require(system_.GetFileSize(handle, size));
  if (size == 0) return {};
  std::vector<std::uint8_t> bytes = byteArray(length32(size));
  require(system_.ReadFile(handle, 0, bytes, read));
  std::string text(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(read));
  text.erase(std::min(text.find(endOfTextFile), text.size()));
  return text;
}

void RuntimeFiles::OpenOutput(std::int32_t number, TextView path) {
  requireFree(number);
  FileHandle handle = 0;
  require(system_.CreateFileA(path, FileAccess::Write, FileShare::All, FileDisposition::Replace,
                              handle));
  add(number, Mode::Output, handle);
}

void RuntimeFiles::Close(std::int32_t number) {
  const auto found = files_.find(number);
  if (found == files_.end()) return;
  const OpenFile file = std::move(found->second);
  files_.erase(found);
  require(file.printed && !file.cut ? system_.CommitFile(file.handle)
                                    : system_.CloseHandle(file.handle));
}

RuntimeFiles::OpenFile& RuntimeFiles::opened(std::int32_t number) {
  const auto found = files_.find(number);
  if (found == files_.end()) throw RuntimeError(ErrorNumber::BadFileNameOrNumber);
  return found->second;
}

RuntimeFiles::OpenFile& RuntimeFiles::open(std::int32_t number, Mode mode) {
  OpenFile& file = opened(number);
  if (file.mode != mode) throw RuntimeError(ErrorNumber::BadFileMode);
  return file;
}

std::int32_t RuntimeFiles::LOF(std::int32_t number) {
  std::uint64_t size = 0;
  require(system_.GetFileSize(opened(number).handle, size));
  return length32(size);
}

void RuntimeFiles::Get(std::int32_t number, std::int32_t position, std::span<std::uint8_t> into) {
  const OpenFile& file = open(number, Mode::Binary);
  if (position < 1) throw RuntimeError(ErrorNumber::BadRecordNumber);
  std::size_t read = 0;
  require(system_.ReadFile(file.handle, static_cast<std::uint64_t>(position) - 1, into, read));
  std::fill(into.begin() + static_cast<std::ptrdiff_t>(read), into.end(), std::uint8_t{0});
}

void RuntimeFiles::Put(std::int32_t number, std::int32_t position,
                       std::span<const std::uint8_t> from) {
  const OpenFile& file = open(number, Mode::Binary);
  if (position < 1) throw RuntimeError(ErrorNumber::BadRecordNumber);
  std::size_t written = 0;
  require(system_.WriteFile(file.handle, static_cast<std::uint64_t>(position) - 1, from, written));
}

void RuntimeFiles::PutText(std::int32_t number, std::int32_t position, TextView text) {
  std::string bytes = system_.toAnsi(text);
  bytes.resize(text.size(), ' ');
  Put(number, position, bytesOf(bytes));
}

void RuntimeFiles::Print(std::int32_t number, TextView text) {
  OpenFile& file = open(number, Mode::Output);
  const std::string line = system_.toAnsi(join(text, lineEnd));
  std::size_t written = 0;
  const SystemError error = system_.WriteFile(file.handle, file.place, bytesOf(line), written);
  file.place += written;
  file.printed = true;
  file.cut = file.cut || error != system_error::success;
  require(error);
}

Text RuntimeFiles::Input(std::int32_t number) {
  OpenFile& file = open(number, Mode::Input);
  if (file.place >= file.text.size()) throw RuntimeError(ErrorNumber::InputPastEndOfFile);
  const std::string& text = file.text;
  std::size_t place = static_cast<std::size_t>(file.place);
  place = std::min(text.find_first_not_of(' ', place), text.size());
  std::string item;
  const bool quoted = place < text.size() && text[place] == '"';
  if (quoted) {
    const std::size_t end = std::min(text.find('"', place + 1), text.size());
    item = text.substr(place + 1, end - place - 1);
    place = std::min(end + 1, text.size());
    place = std::min(text.find_first_of(",\r\n", place), text.size());
  } else {
    const std::size_t end = std::min(text.find_first_of(",\r\n", place), text.size());
    item = text.substr(place, end - place);
    place = end;
  }
  if (text.compare(place, 2, "\r\n") == 0) ++place;
  file.place = std::min(place + 1, text.size());
  return system_.fromAnsi(item);
}

bool RuntimeFiles::Eof(std::int32_t number) {
  const OpenFile& file = opened(number);
  if (file.mode == Mode::Input) return file.place >= file.text.size();
  std::uint64_t size = 0;
  require(system_.GetFileSize(file.handle, size));
  return file.place >= size;
}

}  // namespace zev
