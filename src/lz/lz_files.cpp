#include "lz/lz_files.h"

#include "lz/byte_stream.h"
#include "lz/expand.h"

namespace zev::lz {
namespace {

constexpr std::int32_t noHandle = -1;

/// An open file as a source of bytes, from its start.
class FileSource final : public ByteSource {
 public:
  FileSource(FileSystem& files, FileHandle handle) : files_(files), handle_(handle) {}

  std::ptrdiff_t read(std::span<std::uint8_t> into) override {
    std::size_t count = 0;
    if (files_.ReadFile(handle_, place_, into, count) != system_error::success) return -1;
    place_ += count;
    return static_cast<std::ptrdiff_t>(count);
  }

 private:
  FileSystem& files_;
  FileHandle handle_;
  std::uint64_t place_ = 0;
};

/// An open file as a sink of bytes, from its start.
class FileSink final : public ByteSink {
 public:
  FileSink(FileSystem& files, FileHandle handle) : files_(files), handle_(handle) {}

  bool write(std::span<const std::uint8_t> from) override {
    std::size_t count = 0;
    const SystemError error = files_.WriteFile(handle_, place_, from, count);
    place_ += count;
    return error == system_error::success;
  }

 private:
  FileSystem& files_;
  FileHandle handle_;
  std::uint64_t place_ = 0;
};

}  // namespace

LzFiles::~LzFiles() {
  for (const auto& [number, file] : open_) files_.CloseHandle(file.handle);
}

std::int32_t LzFiles::LZOpenFileA(TextView path, OFSTRUCT& record, std::int32_t style) {
  const bool create = style == OF_CREATE;
  FileHandle handle = 0;
  const SystemError error = files_.CreateFileA(
      path, create ? FileAccess::ReadWrite : FileAccess::Read, FileShare::All,
      create ? FileDisposition::CreateAlways : FileDisposition::OpenExisting, handle);
  record.nErrCode = static_cast<std::int16_t>(error);
  if (error != system_error::success) return noHandle;
  open_[nextHandle_] = {handle, create};
  return nextHandle_++;
}

const LzFiles::OpenFile* LzFiles::find(std::int32_t handle, bool created) const {
  const auto found = open_.find(handle);
  return found == open_.end() || found->second.created != created ? nullptr : &found->second;
}

std::int32_t LzFiles::LZCopy(std::int32_t source, std::int32_t destination) {
  const OpenFile* from = find(source, false);
  if (from == nullptr) return lz_error::badSourceHandle;
  const OpenFile* to = find(destination, true);
  if (to == nullptr) return lz_error::badDestinationHandle;
  FileSource bytes(files_, from->handle);
  FileSink target(files_, to->handle);
  return expand(bytes, target);
}

void LzFiles::LZClose(std::int32_t handle) {
  const auto found = open_.find(handle);
  if (found == open_.end()) return;
  files_.CloseHandle(found->second.handle);
  open_.erase(found);
}

}  // namespace zev::lz
