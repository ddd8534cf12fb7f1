#include "plain_install.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include "lz/expand.h"
#include "lz/memory_stream.h"
#include "package/manifest.h"

namespace zev::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPackage = "ZEVSetup.exe";

/// An open file of the host.
class File {
 public:
  File(const fs::path& path, int mode) : descriptor_(::open(path.c_str(), mode, 0666)) {
    require(descriptor_ >= 0);
  }
  ~File() { ::close(descriptor_); }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  /// Reads up to the whole of `into`, from where the file stands.
  void read(std::span<std::uint8_t> into) {
    require(::read(descriptor_, into.data(), into.size()) >= 0);
  }
  void readAt(std::uint64_t offset, std::span<std::uint8_t> into) {
    const ssize_t count =
        ::pread(descriptor_, into.data(), into.size(), static_cast<off_t>(offset));
    require(count == static_cast<ssize_t>(into.size()));
  }
  void write(std::span<const std::uint8_t> from) {
    const ssize_t count = ::write(descriptor_, from.data(), from.size());
    require(count == static_cast<ssize_t>(from.size()));
  }

 private:
  static void require(bool fine) {
    if (!fine) throw std::system_error(errno, std::generic_category(), "reading and writing");
  }

  int descriptor_;
};

/// "C:\Folder\Name" as a path below the folder that stands for the drive.
fs::path relative(const simulated::Event& event) {
  std::string path = event.at("path").text().substr(3);
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

bool wrote(const simulated::Event& event) { return event.at("op") == "write"; }

}  // namespace

class PlainInstall::RecordingSource final : public lz::ByteSource {
 public:
  RecordingSource(std::span<const std::uint8_t> bytes, std::vector<Transfer>& transfers)
      : source_(bytes), transfers_(transfers) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    transfers_.push_back({true, into.size()});
    return source_.read(into);
  }

 private:
  lz::MemorySource source_;
  std::vector<Transfer>& transfers_;
};

class PlainInstall::RecordingSink final : public lz::ByteSink {
 public:
  RecordingSink(Bytes& bytes, std::vector<Transfer>& transfers)
      : sink_(bytes), transfers_(transfers) {}

  bool write(std::span<const std::uint8_t> from) override {
    transfers_.push_back({false, from.size()});
    return sink_.write(from);
  }

 private:
  lz::MemorySink sink_;
  std::vector<Transfer>& transfers_;
};

PlainInstall::PlainInstall(Bytes package, const std::vector<simulated::Event>& events)
    : package_(std::move(package)) {
  std::vector<simulated::Event> writes;
  for (const simulated::Event& event : events) {
    if (event.at("op") == "delete" && event.at("error") == 0) deleted_.push_back(relative(event));
    if (wrote(event)) writes.push_back(event);
  }
  // A member's work file is written first, and its target next.
  std::uint64_t end = package_.size();
  auto next = writes.begin();
  for (const ManifestRow& row : manifest()) {
    const auto size = static_cast<std::size_t>(row.size);
    end -= size;
    if (row.packedName.empty()) continue;
    const std::string name = toUtf8(row.packedName);
    const auto found = std::find_if(next, writes.end(), [&](const simulated::Event& event) {
      return relative(event).filename() == name;
    });
    if (found == writes.end() || std::next(found) == writes.end()) continue;
    next = std::next(found, 2);
    addMember(end, size, relative(*found), relative(*std::next(found)));
  }
}

void PlainInstall::addMember(std::uint64_t offset, std::size_t size, fs::path workFile,
                             fs::path target) {
  Member member{offset, size, std::move(workFile), std::move(target), {}, {}};
  const auto packed = std::span(package_).subspan(static_cast<std::size_t>(offset), size);
  RecordingSource source(packed, member.transfers);
  RecordingSink sink(member.expanded, member.transfers);
  if (lz::expand(source, sink) < 0) {
    throw std::runtime_error("cannot expand " + member.workFile.string());
  }
  members_.push_back(std::move(member));
}

void PlainInstall::prepare(const fs::path& folder) const {
  std::ofstream(folder / kPackage, std::ios::binary)
      .write(reinterpret_cast<const char*>(package_.data()),
             static_cast<std::streamsize>(package_.size()));
  for (const Member& member : members_) {
    fs::create_directories((folder / member.workFile).parent_path());
    fs::create_directories((folder / member.target).parent_path());
  }
}

void PlainInstall::play(const fs::path& folder) const {
  for (const Member& member : members_) {
    {
      Bytes buffer(member.size);
      File(folder / kPackage, O_RDONLY).readAt(member.offset, buffer);
      File(folder / member.workFile, O_WRONLY | O_CREAT | O_TRUNC).write(buffer);
    }
    layTarget(folder, member);
  }
  for (const fs::path& path : deleted_) fs::remove(folder / path);
}

void PlainInstall::layTarget(const fs::path& folder, const Member& member) {
  File from(folder / member.workFile, O_RDONLY);
  File to(folder / member.target, O_WRONLY | O_CREAT | O_TRUNC);
  Bytes piece;
  std::span<const std::uint8_t> rest = member.expanded;
  for (const Transfer& transfer : member.transfers) {
    if (transfer.reads) {
      piece.resize(std::max(piece.size(), transfer.bytes));
      from.read(std::span(piece).first(transfer.bytes));
    } else {
      to.write(rest.first(transfer.bytes));
      rest = rest.subspan(transfer.bytes);
    }
  }
}

void PlainInstall::expandOnly() const {
  /// Takes everything and keeps nothing.
  class NoSink final : public lz::ByteSink {
   public:
    bool write(std::span<const std::uint8_t>) override { return true; }
  };
  for (const Member& member : members_) {
    const auto packed = std::span<const std::uint8_t>(package_).subspan(
        static_cast<std::size_t>(member.offset), member.size);
    lz::MemorySource source(packed);
    NoSink sink;
    lz::expand(source, sink);
  }
}

std::uint64_t PlainInstall::packedBytes() const {
  std::uint64_t total = 0;
  for (const Member& member : members_) total += member.size;
  return total;
}

std::uint64_t PlainInstall::expandedBytes() const {
  std::uint64_t total = 0;
  for (const Member& member : members_) total += member.expanded.size();
  return total;
}

}  // namespace zev::benchmarks
