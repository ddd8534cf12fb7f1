#include "package/package_end.h"

#include <algorithm>
#include <array>
#include <vector>

#include "lz/szdd_header.h"
#include "package/manifest.h"

namespace zev {
namespace {

constexpr std::uint64_t tableAlignment = 8;

/// The headers of an image lie within so many bytes as a rule, which are read at once.
constexpr std::size_t usualHead = 4096;

bool isTable(const Stretch& table, std::uint64_t imageEnd, std::uint64_t length) {
  return table.size != 0 && table.offset >= imageEnd && table.end() == length;
}

/// Whether the first member, packed, ends there.
bool endsWithPackedMember(std::uint64_t end, const ReadAt& read) {
  const auto size = static_cast<std::uint64_t>(manifest().front().size);
  std::array<std::uint8_t, lz::kMagicSize> start{};
  return end >= size && read(end - size, start) && lz::hasMagic(start);
}

/// How many bytes of zero stand in front of a place, as far as they may align a table there.
std::uint64_t zerosBefore(std::uint64_t place, const ReadAt& read) {
  std::array<std::uint8_t, tableAlignment - 1> bytes{};
  if (place < bytes.size() || place % tableAlignment != 0) return 0;
  if (!read(place - bytes.size(), bytes)) return 0;
  const auto last = std::find_if(bytes.rbegin(), bytes.rend(), [](auto byte) { return byte != 0; });
  return static_cast<std::uint64_t>(last - bytes.rbegin());
}

/// The bytes that align a table. A package may end in zeros itself, so they are told by what lies
/// in front of them: a packed first member, or else an image with all members and nothing more.
std::uint64_t alignmentOf(std::uint64_t table, std::uint64_t imageEnd, const ReadAt& read) {
  const std::uint64_t most = zerosBefore(table, read);
  for (std::uint64_t bytes = 0; bytes <= most; ++bytes) {
    if (endsWithPackedMember(table - bytes, read)) return bytes;
  }
  const std::uint64_t whole = imageEnd + packageSize;
  return whole <= table && table - whole <= most ? table - whole : 0;
}

}  // namespace

std::uint64_t packageEnd(std::uint64_t length, const ReadAt& read) {
  const auto image = readImageHeader(read);
  if (!image || !isTable(image->certificates, image->end, length)) return length;
  const std::uint64_t table = image->certificates.offset;
  return table - alignmentOf(table, image->end, read);
}

namespace {

/// For a file that is named to Files in one way or the other.
template <typename File>
std::int32_t endOf(Files& files, const File& file, std::int32_t length) {
  std::vector<std::uint8_t> head(usualHead);
  head.resize(files.peek(file, 0, head));
  const ReadAt read = [&](std::uint64_t offset, std::span<std::uint8_t> into) {
    if (offset + into.size() > head.size()) return files.peek(file, offset, into) == into.size();
    std::copy_n(head.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
    return true;
  };
  return static_cast<std::int32_t>(packageEnd(static_cast<std::uint64_t>(length), read));
}

}  // namespace

std::int32_t packageEnd(Files& files, TextView path, std::int32_t length) {
  return endOf(files, path, length);
}

std::int32_t packageEnd(Files& files, std::int32_t number, std::int32_t length) {
  return endOf(files, number, length);
}

}  // namespace zev
