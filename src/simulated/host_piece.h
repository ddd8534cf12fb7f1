#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace zev::simulated {

/// Bytes that nobody changes: zeros, and behind them a piece of a file of the host, of which
/// nothing is read before somebody asks for it. Replacing the file leaves them alone.
class HostPiece {
 public:
  /// So many zeros.
  explicit HostPiece(std::uint64_t zeros) : zeros_(zeros) {}
  /// `size` bytes of the file from `offset` on, all of which are there, after that many zeros.
  /// Throws std::runtime_error if the file cannot be opened.
  HostPiece(const std::filesystem::path& file, std::uint64_t offset, std::uint64_t size,
            std::uint64_t zeros);
  ~HostPiece();
  HostPiece(const HostPiece&) = delete;
  HostPiece& operator=(const HostPiece&) = delete;

  std::uint64_t size() const { return zeros_ + size_; }
  /// Reads from an offset; the count is less at the end. Throws std::runtime_error if the file is
  /// no longer what it was when it was opened, or cannot be read.
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) const;

 private:
  /// What is another one when somebody has written into the file.
  struct Stamp {
    std::int64_t seconds = 0;
    std::int64_t nanoseconds = 0;
    std::int64_t length = 0;

    bool operator==(const Stamp&) const = default;
  };
  Stamp stamp() const;
  void readFile(std::uint64_t offset, std::span<std::uint8_t> into) const;
  [[noreturn]] void fail(const char* what) const;

  std::filesystem::path path_;
  int file_ = -1;
  Stamp opened_{};
  std::uint64_t zeros_ = 0;
  std::uint64_t offset_ = 0;
  std::uint64_t size_ = 0;
};

}  // namespace zev::simulated
