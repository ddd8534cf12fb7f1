#include "programs/zevpack/package_file.h"

#include <algorithm>

#include "package/package_end.h"

namespace zev::packing {

std::vector<Member> members() {
  std::vector<Member> all;
  for (std::size_t slot = 0; slot < manifestSlots; ++slot) {
    const ManifestRow& row = manifest()[slot];
    if (row.row == 0) continue;
    all.push_back({row.row, toUtf8(row.packedName), toUtf8(row.installedName),
                   static_cast<std::size_t>(row.size), static_cast<std::size_t>(tailOffset(slot)),
                   row.target, row.condition});
  }
  return all;
}

std::uint8_t nameByte(const Member& member) {
  return static_cast<std::uint8_t>(member.installedName.at(member.packedName.size() - 1));
}

ReadAt readerOf(std::span<const std::uint8_t> bytes) {
  return [bytes](std::uint64_t offset, std::span<std::uint8_t> into) {
    if (offset > bytes.size() || into.size() > bytes.size() - offset) return false;
    const auto piece = bytes.subspan(static_cast<std::size_t>(offset), into.size());
    std::copy(piece.begin(), piece.end(), into.begin());
    return true;
  };
}

PackageFile::PackageFile(const std::filesystem::path& path)
    : bytes_(readFile(path)),
      length_(static_cast<std::size_t>(packageEnd(bytes_.size(), readerOf(bytes_)))) {}

std::optional<std::size_t> PackageFile::offsetOf(const Member& member) const {
  const std::size_t fromEnd = member.tailOffset + member.size;
  if (fromEnd > length_) return std::nullopt;
  return length_ - fromEnd;
}

std::span<const std::uint8_t> PackageFile::stored(const Member& member) const {
  return std::span(bytes_).subspan(offsetOf(member).value(), member.size);
}

std::span<const std::uint8_t> PackageFile::front() const {
  const std::size_t behind = std::min<std::size_t>(packageSize, length_);
  return std::span(bytes_).first(length_ - behind);
}

}  // namespace zev::packing
