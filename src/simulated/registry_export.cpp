#include "simulated/registry_export.h"

#include <fstream>
#include <stdexcept>

namespace zev::simulated {
namespace {

constexpr TextView firstLine = u"Windows Registry Editor Version 5.00";
constexpr std::size_t longestLine = 80;
constexpr char16_t byteOrderMark = 0xFEFF;

Text inQuotes(TextView text) {
  Text out = u"\"";
  for (const char16_t unit : text) {
    if (unit == u'"' || unit == u'\\') out += u'\\';
    out += unit;
  }
  return out + u'"';
}

Text twoDigits(std::uint8_t byte) {
  const Text digits = lowerCase(hexadecimal(byte));
  return digits.size() < 2 ? u"0" + digits : digits;
}

/// A text that an editor keeps in quotes: ended by one NUL, on one line.
bool isPlain(const RegistryValue& value) {
  return value.type == registry_type::text && value.units.ends_with(u'\0') &&
         value.units.find_first_of(TextView(u"\0\r\n", 3)) == value.units.size() - 1;
}

std::vector<std::uint8_t> storedBytes(const RegistryValue& value) {
  if (!value.isText()) return value.bytes;
  std::vector<std::uint8_t> bytes;
  for (const char16_t unit : value.units) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

/// Bytes parted by commas, wrapped with a backslash where a line would become too long.
Text hexList(const Text& start, const std::vector<std::uint8_t>& bytes) {
  Text out = start;
  std::size_t lineStart = 0;
  for (std::size_t each = 0; each < bytes.size(); ++each) {
    if (out.size() - lineStart > longestLine - 4) {
      out += u"\\\r\n";
      lineStart = out.size();
      out += u"  ";
    }
    out += twoDigits(bytes[each]);
    if (each + 1 < bytes.size()) out += u',';
  }
  return out;
}

Text padded8(std::uint32_t number) {
  const Text digits = lowerCase(hexadecimal(number));
  return Text(8 - digits.size(), u'0') + digits;
}

Text line(const RegistryNode::Named& named) {
  const RegistryValue& value = named.value;
  const Text start = (named.name.empty() ? Text(u"@") : inQuotes(named.name)) + u'=';
  if (isPlain(value)) return start + inQuotes(value.text());
  if (value.type == registry_type::number && value.bytes.size() == 4) {
    return join(start, u"dword:", padded8(value.number()));
  }
  const Text type = value.type == registry_type::binary
                        ? Text(u"hex:")
                        : join(u"hex(", lowerCase(hexadecimal(value.type)), u"):");
  return hexList(start + type, storedBytes(value));
}

void write(Text& out, const RegistryNode& node, const Text& path) {
  if (!node.values.empty() || node.keys.empty()) {
    out += join(lineEnd, u"[", path, u"]", lineEnd);
    for (const auto& [key, named] : node.values) out += join(line(named), lineEnd);
  }
  for (const auto& [key, child] : node.keys) write(out, *child, join(path, u"\\", child->name));
}

}  // namespace

Text registryEditorText(const RegistryTree& registry) {
  Text out = join(firstLine, lineEnd);
  for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    write(out, *registry.find(hive, {}), Text(hiveName(hive)));
  }
  return out + Text(lineEnd);
}

void exportRegistry(const RegistryTree& registry, const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary);
  const auto put = [&](char16_t unit) {
    out.put(static_cast<char>(unit & 0xFF));
    out.put(static_cast<char>(unit >> 8));
  };
  put(byteOrderMark);
  for (const char16_t unit : registryEditorText(registry)) put(unit);
  out.close();
  if (!out) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace zev::simulated
