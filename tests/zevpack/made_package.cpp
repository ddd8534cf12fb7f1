#include "zevpack/made_package.h"

#include <random>
#include <stdexcept>

#include "lz/lzss_format.h"
#include "lz/szdd_header.h"
#include "support/made_image.h"

namespace zev::packing {
namespace {

constexpr std::size_t kImageSize = 3583;
constexpr std::size_t kLiteralGroup = 9;  // a flag byte and eight literals
constexpr std::size_t kMatchGroup = 17;   // a flag byte and eight matches

void append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

Bytes withHeader(std::uint8_t nameByte, std::size_t expandedLength, const Bytes& data) {
  const auto header =
      lz::formatHeader({lz::kModeLzss, nameByte, static_cast<std::uint32_t>(expandedLength)});
  Bytes packed(header.begin(), header.end());
  append(packed, data);
  return packed;
}

/// A group of ten bytes: seven literals, and a match of the first three of them.
void appendGroupWithMatch(Bytes& data, Bytes& plain, std::uint64_t seed) {
  plain = noise(7, ~seed);
  data.push_back(0x7F);
  append(data, plain);
  data.push_back(lz::kRingStart & 0xFF);
  data.push_back(lz::kRingStart >> 8 << 4);
  for (std::size_t i = 0; i < lz::kShortestMatch; ++i) plain.push_back(plain[i]);
}

template <typename Make>
std::vector<MadeMember> makeAll(Make make) {
  std::vector<MadeMember> made;
  for (const Member& member : members()) made.push_back(make(member));
  return made;
}

}  // namespace

Bytes noise(std::size_t length, std::uint64_t seed) {
  std::mt19937_64 engine(seed);
  Bytes bytes;
  bytes.reserve(length + sizeof(std::uint64_t));
  while (bytes.size() < length) {
    std::uint64_t word = engine();
    for (std::size_t i = 0; i < sizeof(word); ++i, word >>= 8) {
      bytes.push_back(static_cast<std::uint8_t>(word));
    }
  }
  bytes.resize(length);
  return bytes;
}

MadeMember packedOfSize(std::size_t size, std::uint8_t nameByte, std::uint64_t seed) {
  std::size_t room = size - lz::kHeaderSize;
  Bytes data;
  Bytes plain;
  if (room % kLiteralGroup == 1) {
    appendGroupWithMatch(data, plain, seed);
    room -= data.size();
  }
  const Bytes literals = noise(room - (room + kLiteralGroup - 1) / kLiteralGroup, seed);
  for (std::size_t i = 0; i < literals.size(); ++i) {
    if (i % lz::kTokensPerFlagByte == 0) data.push_back(0xFF);
    data.push_back(literals[i]);
  }
  append(plain, literals);
  MadeMember made{withHeader(nameByte, plain.size(), data), plain};
  if (made.packed.size() != size) throw std::logic_error("a made member of another size");
  return made;
}

MadeMember densestOfSize(std::size_t size, std::uint8_t nameByte) {
  const std::size_t room = size - lz::kHeaderSize;
  if (room % kMatchGroup != 0) throw std::logic_error("a size of no whole groups");
  const std::size_t tokens = room / kMatchGroup * lz::kTokensPerFlagByte;
  Bytes data;
  for (std::size_t i = 0; i < tokens; ++i) {
    if (i % lz::kTokensPerFlagByte == 0) data.push_back(0);
    data.push_back(0);
    data.push_back(lz::kLongestMatch - lz::kShortestMatch);
  }
  const Bytes plain(tokens * lz::kLongestMatch, lz::kRingFill);
  return {withHeader(nameByte, plain.size(), data), plain};
}

const std::vector<MadeMember>& packedMembers() {
  static const std::vector<MadeMember> made = makeAll([](const Member& member) {
    return packedOfSize(member.size, nameByte(member), static_cast<std::uint64_t>(member.row));
  });
  return made;
}

const std::vector<MadeMember>& storedMembers() {
  static const std::vector<MadeMember> made = makeAll([](const Member& member) {
    const Bytes bytes = noise(member.size, static_cast<std::uint64_t>(member.row));
    return MadeMember{bytes, bytes};
  });
  return made;
}

Bytes madeImage() { return test::madeImage({.size = kImageSize}); }

Bytes packageOf(const Bytes& image, const std::vector<MadeMember>& made) {
  Bytes package = image;
  for (auto member = made.rbegin(); member != made.rend(); ++member)
    append(package, member->packed);
  return package;
}

void writeMembers(const std::filesystem::path& folder, const std::vector<MadeMember>& made) {
  makeFolder(folder);
  for (const Member& member : members()) {
    writeFile(folder / member.packedName, made.at(placeOf(member.row)).packed);
  }
}

std::size_t startOf(std::int32_t row) {
  std::size_t start = kImageSize;
  for (const Member& member : members()) {
    if (member.row > row) start += member.size;
  }
  return start;
}

}  // namespace zev::packing
