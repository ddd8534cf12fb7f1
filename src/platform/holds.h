#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace zev {

/// One entry of a drive that nobody can swap while the program relies on it, until this is
/// released or gone.
class Hold {
 public:
  Hold() = default;
  Hold(Hold&& other) noexcept { *this = std::move(other); }
  Hold& operator=(Hold&& other) noexcept;
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() { release(); }

  void release();
  /// The entry is a link, or somebody else can change it, so that nothing may rely on it.
  bool refused() const { return refused_; }
  /// The entry is a link, or a file with other names.
  bool isLink() const { return link_; }
  /// Releases the entry and counts it as refused.
  void refuse();
  bool held() const { return handle_ != 0; }
  /// Reads a held file at an offset; fewer bytes than asked for at its end, none on a failure.
  std::size_t read(std::uint64_t offset, std::span<std::uint8_t> into) const;

 private:
  friend class Holds;

  FileSystem* system_ = nullptr;
  FileHandle handle_ = 0;
  bool refused_ = false;
  bool link_ = false;
};

/// Holds entries of the drives. Nobody observes it: it leaves nothing behind. An entry that is not
/// there, or that the system has no way to hold, is neither held nor refused.
class Holds {
 public:
  /// Borrows the file calls, which outlive this and all that is held.
  explicit Holds(FileSystem& system) : system_(system) {}

  Hold hold(TextView path, Holding holding);

 private:
  bool isLink(TextView path);

  FileSystem& system_;
};

}  // namespace zev
