#include "simulated/shell_link.h"

#include <array>
#include <charconv>
#include <string>

#include "code_page/code_page.h"

namespace zev::simulated {
namespace {

// Bits of LinkFlags.
constexpr std::uint32_t hasLinkInfo = 0x02;
constexpr std::uint32_t hasName = 0x04;
constexpr std::uint32_t hasWorkingDirectory = 0x10;
constexpr std::uint32_t hasArguments = 0x20;
constexpr std::uint32_t hasIconLocation = 0x40;
constexpr std::uint32_t isUnicode = 0x80;

constexpr std::uint32_t headerBytes = 0x4C;
constexpr std::uint32_t linkInfoHeaderBytes = 0x1C;
constexpr std::uint32_t volumeIdBytes = 0x11;
constexpr std::uint32_t volumeLabelOffset = 0x10;
constexpr std::uint32_t volumeAndLocalPath = 1;
constexpr std::uint32_t fixedDrive = 3;

constexpr std::array<std::uint8_t, 16> linkClass = {0x01, 0x14, 0x02, 0, 0, 0, 0, 0,
                                                    0xC0, 0,    0,    0, 0, 0, 0, 0x46};

class Writer {
 public:
  void u16(std::uint32_t number) { little(number, 2); }
  void u32(std::uint32_t number) { little(number, 4); }
  void zeros(std::size_t count) { bytes_.insert(bytes_.end(), count, 0); }
  template <typename Bytes>
  void append(const Bytes& bytes) {
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  }
  /// A counted string of 16-bit units.
  void string(TextView text) {
    u16(static_cast<std::uint32_t>(text.size()));
    for (const char16_t unit : text) u16(unit);
  }
  std::vector<std::uint8_t> take() { return std::move(bytes_); }

 private:
  void little(std::uint32_t number, int count) {
    for (int each = 0; each < count; ++each) {
      bytes_.push_back(static_cast<std::uint8_t>(number >> (8 * each)));
    }
  }
  std::vector<std::uint8_t> bytes_;
};

/// "C:\x.exe, 3" taken apart.
struct Icon {
  Text file;
  std::int32_t index = 0;
};

Icon iconOf(const Text& location) {
  const std::size_t comma = location.find_last_of(u',');
  Icon icon{location.substr(0, comma), 0};
  if (comma == Text::npos) return icon;
  const std::string number = toUtf8(trim(TextView(location).substr(comma + 1)));
  std::from_chars(number.data(), number.data() + number.size(), icon.index);
  return icon;
}

void writeHeader(Writer& out, std::uint32_t flags, std::int32_t icon, std::int32_t show) {
  out.u32(headerBytes);
  out.append(linkClass);
  out.u32(flags);
  out.zeros(4 + 3 * 8 + 4);  // attributes, three times and the size of the target: not known
  out.u32(static_cast<std::uint32_t>(icon));
  out.u32(static_cast<std::uint32_t>(show));
  out.zeros(2 + 2 + 4 + 4);  // no hot key; reserved
}

void writeLinkInfo(Writer& out, const std::string& target) {
  const std::uint32_t pathOffset = linkInfoHeaderBytes + volumeIdBytes;
  const std::uint32_t suffixOffset = pathOffset + static_cast<std::uint32_t>(target.size()) + 1;
  out.u32(suffixOffset + 1);
  out.u32(linkInfoHeaderBytes);
  out.u32(volumeAndLocalPath);
  out.u32(linkInfoHeaderBytes);  // offset of the volume's identifier
  out.u32(pathOffset);
  out.u32(0);  // no network volume
  out.u32(suffixOffset);
  out.u32(volumeIdBytes);
  out.u32(fixedDrive);
  out.u32(0);  // serial number
  out.u32(volumeLabelOffset);
  out.zeros(1);  // empty label
  out.append(target);
  out.zeros(2);  // the path's end and an empty suffix
}

}  // namespace

std::vector<std::uint8_t> shellLink(const ShortcutProperties& properties, std::uint32_t codePage) {
  const Icon icon = iconOf(properties.IconLocation);
  const struct {
    std::uint32_t flag;
    const Text& text;
  } strings[] = {
      {hasName, properties.Description},
      {hasWorkingDirectory, properties.WorkingDirectory},
      {hasArguments, properties.Arguments},
      {hasIconLocation, icon.file},
  };
  std::uint32_t flags = hasLinkInfo | isUnicode;
  for (const auto& row : strings) flags |= row.text.empty() ? 0 : row.flag;
  Writer out;
  writeHeader(out, flags, icon.index, properties.WindowStyle);
  writeLinkInfo(out, toCodePage(properties.TargetPath, codePage));
  for (const auto& row : strings) {
    if (!row.text.empty()) out.string(row.text);
  }
  out.u32(0);  // no further blocks
  return out.take();
}

}  // namespace zev::simulated
