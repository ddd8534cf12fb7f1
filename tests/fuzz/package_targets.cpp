// What comes out of the package: where it ends, its members, their expansion, and what is written
// over one of them.

#include <algorithm>
#include <map>
#include <vector>

#include "fuzz/target.h"
#include "lz/lz_files.h"
#include "lz/reference.h"
#include "package/extract_file.h"
#include "package/package_end.h"
#include "simulated/put_text.h"
#include "system/on_a_machine.h"

namespace zev::fuzz {
namespace {

constexpr TextView packagePath = u"C:\\p.exe";
constexpr TextView workPath = u"C:\\work.wa_";

/// Little-endian, 0 behind the end.
std::uint64_t numberAt(Data data, std::uint64_t offset, int count) {
  std::uint64_t number = 0;
  for (int each = count - 1; each >= 0; --each) {
    const std::uint64_t place = offset + static_cast<std::uint64_t>(each);
    number = number << 8 | (place < data.size() ? data[static_cast<std::size_t>(place)] : 0u);
  }
  return number;
}

std::uint64_t endOf(Data data) {
  return packageEnd(data.size(), [&](std::uint64_t offset, std::span<std::uint8_t> into) {
    const std::size_t start =
        static_cast<std::size_t>(std::min<std::uint64_t>(offset, data.size()));
    const std::size_t count = std::min(into.size(), data.size() - start);
    std::copy_n(data.begin() + static_cast<std::ptrdiff_t>(start), count, into.begin());
    return count;
  });
}

/// The data as bytes that a machine's file holds.
std::string_view asText(Data data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

/// A file system of two files that fails one of its calls: the reads give at most `step` bytes.
class FailingFiles final : public FileSystem {
 public:
  FailingFiles(Data source, std::size_t step) : source_(source), step_(step) {}

  std::size_t failRead = ~std::size_t{0};   ///< which one, from 0
  std::size_t failWrite = ~std::size_t{0};  ///< and has written half of it by then
  bool struck = false;
  std::vector<std::uint8_t> written;

  SystemError CreateFileA(TextView, FileAccess access, FileShare, FileDisposition,
                          FileHandle& file) override {
    file = access == FileAccess::Read ? 1 : 2;
    return system_error::success;
  }
  SystemError ReadFile(FileHandle, std::uint64_t offset, std::span<std::uint8_t> into,
                       std::size_t& read) override {
    read = 0;
    if (reads_++ == failRead) return strike(system_error::deviceError);
    const Data left = source_.subspan(std::min<std::size_t>(offset, source_.size()));
    read = std::min({into.size(), left.size(), step_});
    std::copy_n(left.begin(), read, into.begin());
    return system_error::success;
  }
  SystemError WriteFile(FileHandle, std::uint64_t offset, Data from, std::size_t& count) override {
    const bool fails = writes_++ == failWrite;
    count = fails ? from.size() / 2 : from.size();
    require(offset == written.size(), "a gap in what is written");
    written.insert(written.end(), from.begin(), from.begin() + static_cast<std::ptrdiff_t>(count));
    return fails ? strike(system_error::diskFull) : SystemError{system_error::success};
  }
  SystemError CloseHandle(FileHandle) override { return system_error::success; }

  SystemError FindFirstFileA(TextView, DirectoryEntry&, FileHandle&) override { return none; }
  SystemError FindNextFileA(FileHandle, DirectoryEntry&) override { return none; }
  void FindClose(FileHandle) override {}
  SystemError GetFileSize(FileHandle, std::uint64_t&) override { return none; }
  SystemError CommitFile(FileHandle) override { return none; }
  SystemError HoldEntryA(TextView, Holding, std::uint32_t&, FileHandle&) override { return none; }
  SystemError DeleteFileA(TextView) override { return none; }
  SystemError CreateDirectoryA(TextView) override { return none; }
  SystemError RemoveDirectoryA(TextView) override { return none; }
  SystemError GetFileAttributesA(TextView, std::uint32_t&) override { return none; }
  SystemError SetFileAttributesA(TextView, std::uint32_t) override { return none; }
  bool rootExists(TextView) override { return false; }
  std::string toAnsi(TextView text) override { return toUtf8(text); }
  Text fromAnsi(std::string_view bytes) override { return fromUtf8(bytes); }

 private:
  static constexpr SystemError none = system_error::fileNotFound;

  SystemError strike(SystemError error) {
    struck = true;
    return error;
  }

  Data source_;
  std::size_t step_;
  std::size_t reads_ = 0;
  std::size_t writes_ = 0;
};

bool beginsWith(const std::vector<std::uint8_t>& whole, const std::vector<std::uint8_t>& part) {
  return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

}  // namespace

/// Bytes as the file of a program: the package ends at the file's end, or where the table begins
/// that the header names, in front of at most 7 bytes of zero.
void tryPackageEnd(Data data) {
  const std::uint64_t end = endOf(data);
  require(end <= data.size(), "behind the file's end");
  if (end == data.size()) return;
  const std::uint64_t header = numberAt(data, 0x3C, 4);
  const std::uint64_t optional = header + 24;
  const bool wide = numberAt(data, optional, 2) == 0x20B;
  const std::uint64_t entry = optional + (wide ? 112 : 96) + 4 * 8;
  const std::uint64_t begin = numberAt(data, entry, 4);
  require(numberAt(data, 0, 2) == 0x5A4D && numberAt(data, header, 4) == 0x4550, "no image");
  require(begin + numberAt(data, entry + 4, 4) == data.size(), "a table that is not at the end");
  require(end <= begin && begin - end <= 7, "not in front of the table");
  for (std::uint64_t each = end; each < begin; ++each) {
    require(data[static_cast<std::size_t>(each)] == 0, "more than what aligns the table");
  }
}

/// A member of any size at any place of any file: it is copied if it lies in it.
void tryExtraction(Data data) {
  Input input(data);
  const bool sensible = input.flag();
  const auto size = static_cast<std::int32_t>(sensible ? input.below(300) : input.number());
  const auto tail = static_cast<std::int32_t>(sensible ? input.below(300) : input.number());
  // What is asked for is allocated as it is; no member is empty.
  if (size < 1 || size > 1 << 24) return;
  const Data file = input.rest();
  OnAMachine on;
  putText(on.machine.disks(), packagePath, asText(file));
  const bool copied = ExtractFile(*on.program, *on.phrases, packagePath, workPath, size, tail);
  // Places are numbers of 32 bits, also on the way to them.
  constexpr std::int64_t most = 0x7FFFFFFF;
  const std::int64_t behind = static_cast<std::int64_t>(endOf(file)) - tail;
  const std::int64_t start = behind - size;
  const bool counts = behind <= most && start >= 0 && start < most;
  require(copied == counts, "a member in the file");
  on.program->workFile.release();  // which is held until it is expanded
  require(on.machine.openHandles().files == 0, "files that stay open");
  if (!copied) return;
  std::string expected(static_cast<std::size_t>(size), '\0');
  for (std::size_t each = 0; each < expected.size(); ++each) {
    const std::size_t place = static_cast<std::size_t>(start) + each;
    if (place < file.size()) expected[each] = static_cast<char>(file[place]);
  }
  require(on.textOf(workPath) == expected, "other bytes");
}

/// Expanding in reads of any size, and in memory, comes to the same as the slow way.
void tryExpansion(Data data) {
  const std::size_t step = data.empty() ? 1 : std::size_t{1} + data.back() * std::size_t{16};
  const lz::Expanded expected = lz::expandByRing(data);
  require(lz::expandBySteps(data, step) == expected, "not what the slow way gives");
  require(lz::expandInMemory(data) == expected, "not what the slow way gives, in memory");
}

/// The services over files of which a read or a write fails, beside the slow way.
void tryExpansionWithFaults(Data data) {
  Input input(data);
  const std::uint8_t kind = input.byte();
  const std::size_t nth = input.below(20);
  const std::size_t step = 1 + input.below(5000);
  const Data file = input.rest();
  FailingFiles files(file, step);
  if (kind % 3 == 1) files.failRead = nth;
  if (kind % 3 == 2) files.failWrite = nth;
  lz::LzFiles services(files);
  OFSTRUCT record;
  const std::int32_t from = services.LZOpenFileA(u"packed", record, OF_READ);
  const std::int32_t to = services.LZOpenFileA(u"plain", record, OF_CREATE);
  const std::int32_t result = services.LZCopy(from, to);
  const lz::Expanded expected = lz::expandByRing(file);
  require(beginsWith(expected.bytes, files.written), "other bytes");
  if (files.struck) {
    const bool write = kind % 3 == 2;
    require(result == (write ? lz_error::writeFailure : lz_error::badSourceHandle), "no failure");
  } else {
    require(result == expected.result && files.written == expected.bytes, "not the slow way");
  }
}

/// A path of any letters is written into any project at its place, and nothing else is.
void tryProject(Data data) {
  constexpr std::size_t place = 25;
  constexpr std::size_t room = 512;
  Input input(data);
  Text path = input.text(600);
  path.resize(room, u' ');
  const Data project = input.rest();
  OnAMachine on;
  putText(on.machine.disks(), u"C:\\p.zrd", asText(project));
  on.files().OpenBinaryWrite(1, u"C:\\p.zrd");
  on.files().PutText(1, static_cast<std::int32_t>(place) + 1, path);
  on.files().Close(1);
  std::string expected(asText(project));
  if (expected.size() < place + room) expected.resize(place + room, '\0');
  std::string bytes = on.machine.fileSystem().toAnsi(path);
  bytes.resize(room, ' ');
  expected.replace(place, room, bytes);
  require(on.textOf(u"C:\\p.zrd") == expected, "not the project with its path");
}

}  // namespace zev::fuzz
