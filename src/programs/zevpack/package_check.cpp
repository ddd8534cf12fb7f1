#include "programs/zevpack/package_check.h"

#include <algorithm>

#include "lz/szdd_header.h"
#include "programs/zevpack/member_check.h"

namespace zev::packing {
namespace {

constexpr std::size_t nameWidth = 32;

/// Members behind the program in front of members: packed ones show by their headers, stored ones
/// by their size.
bool carriesMembers(std::span<const std::uint8_t> behindImage) {
  const auto header =
      std::search(behindImage.begin(), behindImage.end(), lz::kMagic.begin(), lz::kMagic.end());
  return header != behindImage.end() || behindImage.size() >= packageSize;
}

/// Stored members look like any bytes: that they are in their places shows by the image alone.
std::string troubleOfGap(std::span<const std::uint8_t> front) {
  const auto image = readImageHeader(readerOf(front));
  const std::uint64_t gap = front.size() - image.value().end;
  return gap == 0 ? "" : std::to_string(gap) + " bytes lie between the program and the members";
}

std::string missing(const PackageFile& package, const Member& member) {
  const std::size_t needed = member.tailOffset + member.size;
  return "begins in front of the file: it needs " + std::to_string(needed) +
         " bytes to the end, the file has " + std::to_string(package.length());
}

}  // namespace

std::string troubleOfProgram(std::span<const std::uint8_t> front, bool isSigned) {
  const auto image = readImageHeader(readerOf(front));
  if (!image) return "there is no program in front of the members";
  if (image->end > front.size()) {
    return "the program in front of the members is cut short: its header tells of " +
           std::to_string(image->end) + " bytes, there are " + std::to_string(front.size());
  }
  if (carriesMembers(front.subspan(static_cast<std::size_t>(image->end)))) {
    return "the program in front of the members carries members already";
  }
  if (image->certificates.size != 0 && !isSigned) {
    return "the program was signed before it got its members, and that signature is void; the "
           "package is built first and signed last";
  }
  return {};
}

std::string troubleOfMember(const PackageFile& package, const Member& member, Stored stored) {
  if (!package.offsetOf(member)) return missing(package, member);
  return checkMember(package.stored(member), nameByte(member), stored == Stored::Right);
}

PackageTrouble troubleOf(const PackageFile& package, Stored stored) {
  PackageTrouble trouble{troubleOfProgram(package.front(), package.isSigned()), {}};
  if (trouble.program.empty() && stored == Stored::Right) {
    trouble.program = troubleOfGap(package.front());
  }
  for (const Member& member : members()) {
    std::string what = troubleOfMember(package, member, stored);
    if (!what.empty()) trouble.rows.push_back({member, std::move(what)});
  }
  return trouble;
}

std::string PackageTrouble::text() const {
  std::string text;
  if (!program.empty()) text += program + "\n";
  for (const auto& [member, what] : rows) {
    const std::string row = std::to_string(member.row);
    text += "row " + std::string(row.size() < 2 ? 1 : 0, ' ') + row + "  " + member.packedName;
    text.append(nameWidth - std::min(nameWidth, member.packedName.size()), ' ');
    text += "  " + what + "\n";
  }
  return text;
}

}  // namespace zev::packing
