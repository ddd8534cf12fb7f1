#include "programs/zevpack/package_file.h"

namespace zev::packing {

std::vector<Member> members() {
  std::vector<Member> all;
  std::size_t tailOffset = 0;
  for (const ManifestRow& row : manifest()) {
    if (row.row == 0) continue;
    const auto size = static_cast<std::size_t>(row.size);
    all.push_back({row.row, toUtf8(row.packedName), toUtf8(row.installedName), size, tailOffset});
    tailOffset += size;
  }
  return all;
}

std::uint8_t nameByte(const Member& member) {
  return static_cast<std::uint8_t>(member.installedName.at(member.packedName.size() - 1));
}

std::optional<std::size_t> PackageFile::offsetOf(const Member& member) const {
  const std::size_t fromEnd = member.tailOffset + member.size;
  if (fromEnd > bytes_.size()) return std::nullopt;
  return bytes_.size() - fromEnd;
}

std::span<const std::uint8_t> PackageFile::stored(const Member& member) const {
  return std::span(bytes_).subspan(offsetOf(member).value(), member.size);
}

}  // namespace zev::packing
