#include "simulated/host_piece.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <string>

namespace zev::simulated {

HostPiece::HostPiece(const std::filesystem::path& file, std::uint64_t offset, std::uint64_t size,
                     std::uint64_t zeros)
    : path_(file),
      file_(::open(file.c_str(), O_RDONLY | O_CLOEXEC)),
      zeros_(zeros),
      offset_(offset),
      size_(size) {
  if (file_ < 0) fail("cannot read ");
  opened_ = stamp();
}

HostPiece::~HostPiece() {
  if (file_ >= 0) ::close(file_);
}

void HostPiece::fail(const char* what) const { throw std::runtime_error(what + path_.string()); }

HostPiece::Stamp HostPiece::stamp() const {
  struct stat status {};
  if (::fstat(file_, &status) != 0) return {};
  return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec, status.st_size};
}

std::size_t HostPiece::read(std::uint64_t offset, std::span<std::uint8_t> into) const {
  if (offset >= size()) return 0;
  const auto count =
      static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), size() - offset));
  const auto zeros = static_cast<std::size_t>(
      offset < zeros_ ? std::min<std::uint64_t>(count, zeros_ - offset) : 0);
  std::fill_n(into.begin(), zeros, std::uint8_t{0});
  if (count > zeros) readFile(offset + zeros - zeros_, into.subspan(zeros, count - zeros));
  return count;
}

void HostPiece::readFile(std::uint64_t offset, std::span<std::uint8_t> into) const {
  for (std::size_t done = 0; done < into.size();) {
    const ssize_t count = ::pread(file_, into.data() + done, into.size() - done,
                                  static_cast<off_t>(offset_ + offset + done));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) fail("cannot read ");
    done += static_cast<std::size_t>(count);
  }
  if (stamp() != opened_) fail("somebody has changed ");
}

}  // namespace zev::simulated
