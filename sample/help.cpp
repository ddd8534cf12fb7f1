#include "sample/help.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "sample/embedded.h"

namespace zev::sample {
namespace {

// In the file's own header.
constexpr std::size_t kHeaderStampOffset = 16;
// The second class id differs from the first by its first byte alone. The compiler writes the first
// twice, which readers that compare it refuse.
constexpr std::size_t kSecondClassOffset = 40;
constexpr std::uint8_t kSecondClassByte = 0x11;
constexpr std::size_t kSizeSectionPointer = 0x38;  // where the offset of the first section stands
constexpr std::size_t kFileSizeInSection = 8;

// The entry 10, four bytes long, in the compiler's own settings: the time of the compilation.
constexpr std::array<std::uint8_t, 4> kStampEntry = {10, 0, 4, 0};
// The entry that follows it: the compiler's version.
constexpr std::array<std::uint8_t, 2> kVersionEntry = {9, 0};

std::uint64_t numberAt(const Bytes& bytes, std::size_t offset) {
  std::uint64_t value = 0;
  for (std::size_t i = 8; i-- > 0;) value = value << 8 | bytes.at(offset + i);
  return value;
}

std::size_t stampEntryOffset(const Bytes& help) {
  for (auto at = help.begin();; ++at) {
    at = std::search(at, help.end(), kStampEntry.begin(), kStampEntry.end());
    if (help.end() - at < 10) throw std::runtime_error("help file without a time stamp");
    if (std::equal(kVersionEntry.begin(), kVersionEntry.end(), at + 8)) {
      return static_cast<std::size_t>(at - help.begin()) + kStampEntry.size();
    }
  }
}

}  // namespace

Bytes makeHelp(const Bytes& unused) {
  const auto embedded = embeddedFile("ZEV6.chm");
  Bytes help(embedded.begin(), embedded.end());
  const auto sizeSection = static_cast<std::size_t>(numberAt(help, kSizeSectionPointer));
  if (numberAt(help, sizeSection + kFileSizeInSection) != help.size()) {
    throw std::runtime_error("help file with a wrong size in its header");
  }
  patch(help, kHeaderStampOffset, std::uint32_t{0});
  patch(help, kSecondClassOffset, kSecondClassByte);
  patch(help, stampEntryOffset(help), std::uint32_t{0});
  append(help, unused);
  patch(help, sizeSection + kFileSizeInSection, std::uint64_t{help.size()});
  return help;
}

}  // namespace zev::sample
