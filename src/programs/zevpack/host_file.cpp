#include "programs/zevpack/host_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

namespace zev::packing {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t kReadPiece = std::size_t{64} << 10;

}  // namespace

Bytes readFile(const fs::path& path) {
  std::error_code error;
  if (fs::is_directory(path, error)) throw ToolError(path.string() + " is a folder, not a file");
  std::ifstream in(path, std::ios::binary);
  if (!in) throw ToolError("cannot open " + path.string() + ": " + std::strerror(errno));
  Bytes bytes;
  std::vector<char> piece(kReadPiece);
  while (in) {
    in.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    bytes.insert(bytes.end(), piece.begin(), piece.begin() + in.gcount());
  }
  if (in.bad()) throw ToolError("cannot read " + path.string());
  return bytes;
}

NewFile::NewFile(fs::path path) : path_(std::move(path)), partial_(path_) {
  std::error_code error;
  if (fs::exists(path_, error) && !fs::is_regular_file(path_, error)) {
    throw ToolError("cannot write " + path_.string() + ": it is a folder or a device");
  }
  partial_ += ".partial";
  file_ = std::fopen(partial_.c_str(), "wb");
  if (file_ == nullptr) fail("cannot create");
}

NewFile::~NewFile() {
  if (file_ == nullptr) return;
  std::fclose(file_);
  std::error_code ignored;
  fs::remove(partial_, ignored);
}

void NewFile::fail(const std::string& what) const {
  throw ToolError(what + " " + path_.string() + ": " + std::strerror(errno));
}

void NewFile::append(std::span<const std::uint8_t> bytes) {
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail("cannot write");
}

void NewFile::keep() {
  if (std::fflush(file_) != 0) fail("cannot write");
  std::fclose(file_);
  file_ = nullptr;
  std::error_code error;
  fs::rename(partial_, path_, error);
  if (!error) return;
  std::error_code ignored;
  fs::remove(partial_, ignored);
  throw ToolError("cannot write " + path_.string() + ": " + error.message());
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

}  // namespace zev::packing
