#include "programs/zevpack/package_check.h"

#include <algorithm>
#include <new>
#include <utility>

#include "lz/encoder.h"
#include "lz/expand.h"
#include "lz/group_expander.h"
#include "lz/memory_stream.h"
#include "lz/szdd_header.h"
#include "platform/lz_services.h"

namespace zev::packing {
namespace {

std::string troubleOf(std::int32_t result) {
  switch (result) {
    case lz_error::badSourceData:
      return "the data ends before the declared length";
    case lz_error::unknownMode:
      return "unknown compression mode";
    case lz_error::badValue:
      return "the declared length is beyond 2 GiB";
    case lz_error::writeFailure:
    case lz_error::outOfMemory:
      return "there is not enough memory to expand it";
    default:
      return "cannot be expanded (" + std::to_string(result) + ")";
  }
}

/// The declared length, as far as the data can come to it: a damaged header costs no memory.
std::size_t mostExpanded(std::span<const std::uint8_t> stored) {
  const std::uint64_t groups = stored.size() / lz::kGroupInput + 1;
  return std::min<std::uint64_t>({declaredLength(stored),
                                  std::max<std::uint64_t>(groups * lz::kGroupOutput, stored.size()),
                                  longestFile});
}

bool makeRoom(Bytes& bytes, std::size_t size) {
  try {
    bytes.reserve(size);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

std::string quoted(std::uint8_t character) { return {'\'', static_cast<char>(character), '\''}; }

}  // namespace

/// The room is made before, so that a lack of memory shows at once and nothing is copied on the
/// way.
Expanded expandMember(std::span<const std::uint8_t> stored) {
  Bytes bytes;
  if (!makeRoom(bytes, mostExpanded(stored))) return {{}, troubleOf(lz_error::outOfMemory)};
  lz::MemorySource source(stored);
  lz::MemorySink sink(bytes);
  const std::int32_t result = lz::expand(source, sink);
  if (result < 0) return {{}, troubleOf(result)};
  return {std::move(bytes), {}};
}

Bytes compressed(const std::filesystem::path& plain, std::uint8_t nameByte) {
  const Bytes bytes = readFile(plain);
  try {
    Bytes packed = lz::compress(bytes, nameByte);
    if (packed.size() > longestFile) {
      throw ToolError(plain.string() + " compresses to more than 2 GiB");
    }
    return packed;
  } catch (const std::bad_alloc&) {
    throw ToolError(plain.string() + ": there is not enough memory to compress it");
  }
}

bool isPacked(std::span<const std::uint8_t> stored) {
  return stored.size() >= lz::kHeaderSize && lz::hasMagic(stored);
}

std::size_t declaredLength(std::span<const std::uint8_t> stored) {
  if (!isPacked(stored)) return stored.size();
  return lz::parseHeader(stored.first<lz::kHeaderSize>()).expandedLength;
}

/// The header first, then the whole expansion: only that shows whether an installer could lay it.
std::string checkMember(std::span<const std::uint8_t> stored, std::uint8_t nameByte, bool plainOk) {
  if (!lz::hasMagic(stored)) return plainOk ? "" : "no header of a packed file";
  if (!isPacked(stored)) return "the header is cut short";
  const lz::SzddHeader header = lz::parseHeader(stored.first<lz::kHeaderSize>());
  if (header.nameByte != 0 && header.nameByte != nameByte) {
    return "the header names the character " + quoted(header.nameByte) + " instead of " +
           quoted(nameByte);
  }
  return expandMember(stored).trouble;
}

// ---- the whole package

namespace {

constexpr std::size_t nameWidth = 32;

/// Members after the program in front of members: packed ones show by their headers, stored ones
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

/// What an installer would stumble over, in the order in which it comes to it.
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
