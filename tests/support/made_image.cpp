#include "support/made_image.h"

#include <algorithm>
#include <random>

namespace zev::test {
namespace {

constexpr std::size_t peOffset = 64;
constexpr std::size_t optionalOffset = peOffset + 24;
constexpr std::size_t headersSize = 512;
constexpr std::size_t tableAlignment = 8;
constexpr std::uint8_t certificateByte = 0xC5;

void put(Bytes& bytes, std::size_t offset, std::size_t size, std::size_t value) {
  for (; size-- > 0; ++offset, value >>= 8) bytes[offset] = static_cast<std::uint8_t>(value);
}

bool isWide(const Bytes& bytes) { return bytes[optionalOffset + 1] == 0x02; }

/// Where the directories begin; their number stands in front of them.
std::size_t directoriesOf(const Bytes& bytes) {
  return optionalOffset + (isWide(bytes) ? 112 : 96);
}

void putHeaders(Bytes& bytes, const MadeImage& image) {
  const std::size_t optionalSize = image.wide ? 240 : 224;
  const std::size_t section = optionalOffset + optionalSize;
  std::fill_n(bytes.begin(), headersSize, std::uint8_t{0});
  put(bytes, 0, 2, 0x5A4D);
  put(bytes, 60, 4, peOffset);
  put(bytes, peOffset, 4, 0x4550);
  put(bytes, peOffset + 4, 2, image.wide ? 0x8664 : 0x14C);
  put(bytes, peOffset + 6, 2, 1);
  put(bytes, peOffset + 20, 2, optionalSize);
  put(bytes, optionalOffset, 2, image.wide ? 0x20B : 0x10B);
  put(bytes, optionalOffset + 60, 4, headersSize);
  put(bytes, directoriesOf(bytes) - 4, 4, image.directories);
  put(bytes, section + 16, 4, image.size - headersSize);
  put(bytes, section + 20, 4, headersSize);
}

}  // namespace

Bytes madeImage(const MadeImage& image) {
  std::mt19937 engine;
  Bytes bytes(image.size);
  for (std::uint8_t& each : bytes) each = static_cast<std::uint8_t>(engine());
  putHeaders(bytes, image);
  nameCertificates(bytes, image.certificates, image.certificatesSize);
  return bytes;
}

void nameCertificates(Bytes& file, std::size_t offset, std::size_t size) {
  put(file, directoriesOf(file) + 32, 4, offset);
  put(file, directoriesOf(file) + 36, 4, size);
}

Bytes signedFile(Bytes file, std::size_t size) {
  file.resize((file.size() + tableAlignment - 1) / tableAlignment * tableAlignment);
  nameCertificates(file, file.size(), size);
  file.insert(file.end(), size, certificateByte);
  return file;
}

}  // namespace zev::test
