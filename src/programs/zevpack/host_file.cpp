#include "programs/zevpack/host_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

#include "runtime/text.h"

namespace zev::packing {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t kReadPiece = std::size_t{64} << 10;

std::string reason() { return std::strerror(errno); }

/// What an entry that is no file is; empty for a file.
std::string kindOf(mode_t mode) {
  if (S_ISREG(mode)) return {};
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a pipe";
  if (S_ISSOCK(mode)) return "a socket";
  return "a device";
}

/// A regular file, open for reading. Nothing else is opened, or waited for.
class OpenFile {
 public:
  explicit OpenFile(const fs::path& path) : path_(path) {
    struct stat entry {};
    if (::stat(path.c_str(), &entry) != 0) fail("cannot open");
    requireFile(entry.st_mode);
    descriptor_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (descriptor_ < 0) fail("cannot open");
    if (::fstat(descriptor_, &entry) == 0) size_ = static_cast<std::uint64_t>(entry.st_size);
  }
  ~OpenFile() { ::close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  /// As the system tells it, which for some files is 0.
  std::uint64_t size() const { return size_; }

  /// How many bytes there were; 0 at the end.
  std::size_t read(std::span<std::uint8_t> into) {
    ssize_t count = 0;
    do {
      count = ::read(descriptor_, into.data(), into.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) fail("cannot read");
    return static_cast<std::size_t>(count);
  }

 private:
  [[noreturn]] void fail(const char* what) const {
    throw ToolError(std::string(what) + " " + path_.string() + ": " + reason());
  }
  void requireFile(mode_t mode) const {
    const std::string kind = kindOf(mode);
    if (!kind.empty()) throw ToolError(path_.string() + " is " + kind + ", not a file");
  }

  const fs::path& path_;
  int descriptor_ = -1;
  std::uint64_t size_ = 0;
};

void requireLength(const fs::path& path, std::uint64_t length) {
  if (length > longestFile) throw ToolError(path.string() + " is longer than 2 GiB");
}

Bytes readWhole(const fs::path& path) {
  OpenFile file(path);
  requireLength(path, file.size());
  Bytes bytes;
  bytes.reserve(static_cast<std::size_t>(file.size()));
  std::array<std::uint8_t, kReadPiece> piece{};
  while (const std::size_t count = file.read(piece)) {
    requireLength(path, bytes.size() + count);
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
  }
  return bytes;
}

std::string partialName(const fs::path& path) { return path.string() + ".partial"; }

[[noreturn]] void refuseTaken(const fs::path& path) {
  throw ToolError("cannot write " + path.string() + ": " + partialName(path) +
                  " is there, which may be somebody's; move it away");
}

/// The mode of the file that is to be replaced; none if there is none.
std::optional<mode_t> replacedMode(const fs::path& path) {
  struct stat entry {};
  if (::stat(path.c_str(), &entry) != 0) return std::nullopt;
  return entry.st_mode & static_cast<mode_t>(07777);
}

}  // namespace

Bytes readFile(const fs::path& path) {
  try {
    return readWhole(path);
  } catch (const std::bad_alloc&) {
    throw ToolError(path.string() + ": there is not enough memory for it");
  }
}

void requireWritable(const fs::path& path) {
  constexpr mode_t writing = S_IWUSR | S_IWGRP | S_IWOTH;
  struct stat entry {};
  if (::lstat(partialName(path).c_str(), &entry) == 0) refuseTaken(path);
  if (::stat(path.c_str(), &entry) != 0) return;
  if (const std::string kind = kindOf(entry.st_mode); !kind.empty()) {
    throw ToolError("cannot write " + path.string() + ": it is " + kind);
  }
  if ((entry.st_mode & writing) == 0 || ::access(path.c_str(), W_OK) != 0) {
    throw ToolError("cannot write " + path.string() + ": it is read-only");
  }
}

NewFile::NewFile(fs::path path) : path_(std::move(path)) {
  requireWritable(path_);
  const auto mode = replacedMode(path_);
  try {
    partial_.emplace(partialName(path_));
  } catch (const std::system_error& error) {
    if (error.code() == std::errc::file_exists) refuseTaken(path_);
    throw ToolError("cannot write " + path_.string() + ": " + error.code().message());
  }
  if (mode && ::fchmod(partial_->descriptor(), *mode) != 0) {
    throw ToolError("cannot write " + path_.string() + " with its mode: " + reason());
  }
}

void NewFile::append(std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(partial_->descriptor(), bytes.data(), bytes.size());
    if (count >= 0) {
      bytes = bytes.subspan(static_cast<std::size_t>(count));
    } else if (errno != EINTR) {
      throw ToolError("cannot write " + path_.string() + ": " + reason());
    }
  }
}

void NewFile::keep() {
  try {
    partial_->rename(path_.string());
  } catch (const std::system_error& error) {
    throw ToolError("cannot write " + path_.string() + ": " + error.code().message());
  }
}

void writeFile(const fs::path& path, std::span<const std::uint8_t> bytes) {
  NewFile file(path);
  file.append(bytes);
  file.keep();
}

void makeFolder(const fs::path& path) {
  std::error_code error;
  fs::create_directories(path, error);
  if (error || !fs::is_directory(path)) {
    throw ToolError("cannot make the folder " + path.string() +
                    (error ? ": " + error.message() : ": a file has that name"));
  }
}

namespace fs = std::filesystem;

namespace {

std::string folded(const std::string& name) { return toUtf8(lowerCase(fromUtf8(name))); }

/// A link to a file is one; an entry that nobody may look at is none.
bool isFile(const fs::directory_entry& entry) {
  std::error_code ignored;
  return entry.is_regular_file(ignored);
}

}  // namespace

Folder::Folder(const fs::path& path) : path_(path) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(path, error)) {
    if (isFile(entry))
      byFoldedName_[folded(entry.path().filename().string())].push_back(entry.path());
  }
  if (error) throw ToolError("cannot list the folder " + path.string() + ": " + error.message());
}

std::optional<fs::path> Folder::find(const std::string& name) const {
  const auto found = byFoldedName_.find(folded(name));
  if (found == byFoldedName_.end()) return std::nullopt;
  const std::vector<fs::path>& all = found->second;
  const auto exact = std::find(all.begin(), all.end(), path_ / name);
  if (exact != all.end()) return *exact;
  if (all.size() > 1) {
    throw ToolError(all[0].string() + " and " + all[1].string() + " both could be " + name);
  }
  return all.front();
}

}  // namespace zev::packing
