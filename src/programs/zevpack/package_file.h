#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "package/manifest.h"
#include "package/package_end.h"
#include "programs/zevpack/host_file.h"

namespace zev::packing {

/// One member of the manifest, with its names as a host writes them.
struct Member {
  std::int32_t row = 0;
  std::string packedName;
  std::string installedName;
  std::size_t size = 0;        ///< bytes in the package
  std::size_t tailOffset = 0;  ///< bytes between its end and the end of the package
  Target target = Target::None;
  Condition condition = Condition::Always;
};

/// All members, in the order of the manifest.
std::vector<Member> members();

/// The character of a member's installed name that the underscore of its packed name replaces.
std::uint8_t nameByte(const Member& member);

/// Reads bytes in memory, which outlive the reader.
ReadAt readerOf(std::span<const std::uint8_t> bytes);

/// A package read whole: members are found by counting back from its end, which is not the file's
/// if that is signed.
class PackageFile {
 public:
  /// ToolError if it cannot be read.
  explicit PackageFile(const std::filesystem::path& path);

  /// Bytes without what signing put after the package.
  std::size_t length() const { return length_; }
  bool isSigned() const { return length_ != bytes_.size(); }
  /// Offset of a member from the start; none if it would begin in front of the file.
  std::optional<std::size_t> offsetOf(const Member& member) const;
  /// The stored bytes of a member that has an offset.
  std::span<const std::uint8_t> stored(const Member& member) const;
  /// What stands in front of the members; empty if nothing does.
  std::span<const std::uint8_t> front() const;

 private:
  Bytes bytes_;
  std::size_t length_;
};

}  // namespace zev::packing
