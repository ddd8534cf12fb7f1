#include "package/package_end.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "lz/szdd_header.h"
#include "package/manifest.h"

namespace zev {
namespace {

/// Fields of the headers, by their offsets. They are little-endian.
namespace dos {
constexpr std::size_t size = 64;
constexpr std::size_t imageHeader = 60;
}  // namespace dos

/// The signature, and the file header that follows.
namespace file {
constexpr std::size_t size = 24;
constexpr std::size_t sections = 6;
constexpr std::size_t symbols = 12;
constexpr std::size_t symbolCount = 16;
constexpr std::size_t optionalSize = 20;
}  // namespace file

/// The optional header, which is no option for an image.
namespace optional {
constexpr std::size_t headersSize = 60;
constexpr std::uint16_t magic32 = 0x10B;
constexpr std::uint16_t magic64 = 0x20B;
constexpr std::size_t directories32 = 96;  ///< their number stands in front of them
constexpr std::size_t directories64 = 112;
constexpr std::size_t directorySize = 8;
constexpr std::size_t certificates = 4;  ///< which directory; its place is one in the file
}  // namespace optional

namespace section {
constexpr std::size_t size = 40;
constexpr std::size_t dataSize = 16;
constexpr std::size_t data = 20;
}  // namespace section

constexpr std::uint64_t symbolSize = 18;

using HeaderBytes = std::span<const std::uint8_t>;

std::uint32_t number(HeaderBytes from, std::size_t offset, std::size_t bytes) {
  std::uint32_t value = 0;
  for (std::size_t each = bytes; each-- > 0;) value = value << 8 | from[offset + each];
  return value;
}

std::uint32_t number16(HeaderBytes from, std::size_t offset) { return number(from, offset, 2); }
std::uint32_t number32(HeaderBytes from, std::size_t offset) { return number(from, offset, 4); }

std::optional<std::vector<std::uint8_t>> readBytes(const ReadAt& read, std::uint64_t offset,
                                                   std::size_t size) {
  std::vector<std::uint8_t> bytes(size);
  if (!read(offset, bytes)) return std::nullopt;
  return bytes;
}

/// Where the signature stands; none in a file that is no image.
std::optional<std::uint64_t> findSignature(const ReadAt& read) {
  const auto stub = readBytes(read, 0, dos::size);
  if (!stub || (*stub)[0] != 'M' || (*stub)[1] != 'Z') return std::nullopt;
  return number32(*stub, dos::imageHeader);
}

bool hasSignature(HeaderBytes header) {
  constexpr std::array<std::uint8_t, 4> signature = {'P', 'E', 0, 0};
  return std::equal(signature.begin(), signature.end(), header.begin());
}

Stretch certificatesOf(HeaderBytes header, std::size_t directories) {
  const std::size_t entry = directories + optional::certificates * optional::directorySize;
  const bool there = header.size() >= entry + optional::directorySize &&
                     number32(header, directories - 4) > optional::certificates;
  if (!there) return {};
  return {number32(header, entry), number32(header, entry + 4)};
}

/// Behind the symbols come their long names, which begin with their own size.
std::uint64_t symbolsEnd(const ReadAt& read, HeaderBytes fileHeader) {
  const std::uint64_t begin = number32(fileHeader, file::symbols);
  const std::uint64_t count = number32(fileHeader, file::symbolCount);
  if (begin == 0 || count == 0) return 0;
  const std::uint64_t names = begin + symbolSize * count;
  const auto size = readBytes(read, names, 4);
  return names + (size ? number32(*size, 0) : 0);
}

std::optional<std::uint64_t> sectionsEnd(const ReadAt& read, std::uint64_t table,
                                         std::size_t count) {
  const auto rows = readBytes(read, table, count * section::size);
  if (!rows) return std::nullopt;
  std::uint64_t end = 0;
  for (std::size_t row = 0; row < rows->size(); row += section::size) {
    const std::uint64_t size = number32(*rows, row + section::dataSize);
    if (size != 0) end = std::max(end, number32(*rows, row + section::data) + size);
  }
  return end;
}

/// The optional header, which begins with what kind it is; none of another kind.
std::optional<std::vector<std::uint8_t>> readOptional(const ReadAt& read, std::uint64_t place,
                                                      std::size_t size) {
  auto header = readBytes(read, place, size);
  if (!header || size < optional::directories32) return std::nullopt;
  const std::uint32_t magic = number16(*header, 0);
  const bool known = magic == optional::magic32 || magic == optional::magic64;
  return known ? std::move(header) : std::nullopt;
}

std::size_t directoriesOf(HeaderBytes header) {
  return number16(header, 0) == optional::magic64 ? optional::directories64
                                                  : optional::directories32;
}

}  // namespace

std::optional<ImageHeader> readImageHeader(const ReadAt& read) {
  const auto signature = findSignature(read);
  if (!signature) return std::nullopt;
  const auto front = readBytes(read, *signature, file::size);
  if (!front || !hasSignature(*front)) return std::nullopt;
  const std::uint64_t place = *signature + file::size;
  const auto header = readOptional(read, place, number16(*front, file::optionalSize));
  if (!header) return std::nullopt;
  const auto sections = sectionsEnd(read, place + header->size(), number16(*front, file::sections));
  if (!sections) return std::nullopt;
  const std::uint64_t headers = number32(*header, optional::headersSize);
  return ImageHeader{std::max({headers, *sections, symbolsEnd(read, *front)}),
                     certificatesOf(*header, directoriesOf(*header))};
}

// ---- the end of the package

namespace {

constexpr std::uint64_t tableAlignment = 8;

/// The headers of an image lie within this number of bytes as a rule, which are read at once.
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
