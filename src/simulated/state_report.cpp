#include "simulated/state_report.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

#include "simulated/simulated_registry.h"

namespace zev::simulated {

// ---- the registry as a file

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

// ---- the whole machine

namespace {

constexpr std::uint64_t longestText = 4096;

struct AttributeRow {
  std::uint32_t attribute;
  const char* name;
};

constexpr AttributeRow attributeRows[] = {
    {file_attribute::hidden, "hidden"},
    {file_attribute::readOnly, "readonly"},
    {file_attribute::system, "system"},
};

bool isPlain(const std::vector<std::uint8_t>& bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) {
    return (byte >= ' ' && byte < 0x7F) || byte == '\r' || byte == '\n' || byte == '\t';
  });
}

Value attributesOf(const DirectoryEntry& entry) {
  Value names = Value::list();
  for (const AttributeRow& row : attributeRows) {
    if ((entry.attributes & row.attribute) != 0) names.push_back(row.name);
  }
  return names;
}

Value describe(const Disks& disks, const Text& path, const DirectoryEntry& entry) {
  Value described;
  if (const auto target = disks.link(path)) described["link"] = toUtf8(*target);
  if ((entry.attributes & file_attribute::directory) != 0) {
    described["directory"] = true;
  } else {
    described["size"] = entry.size;
    described["sha256"] = disks.sha256(path).value_or("");
    const auto bytes = entry.size <= longestText ? disks.read(path) : std::nullopt;
    if (bytes && isPlain(*bytes)) described["text"] = std::string(bytes->begin(), bytes->end());
  }
  if (Value attributes = attributesOf(entry); !attributes.empty()) {
    described["attributes"] = std::move(attributes);
  }
  return described;
}

void addFiles(Value& files, const Disks& disks, const Path& directory) {
  const auto names = disks.names(directory.text());
  if (!names) return;
  for (const Text& name : *names) {
    const Path path = directory.child(name);
    const auto entry = disks.find(path.text());
    if (!entry) continue;
    files[toUtf8(path.text())] = describe(disks, path.text(), *entry);
    if ((entry->attributes & file_attribute::directory) != 0) addFiles(files, disks, path);
  }
}

void addKeys(Value& keys, const RegistryNode& node, const Text& path) {
  for (const auto& [upper, child] : node.keys) {
    const Text key = path.empty() ? child->name : join(path, u"\\", child->name);
    Value values = Value::members();
    for (const auto& [name, named] : child->values) {
      values[toUtf8(named.name)] = {{"type", named.value.type}, {"value", told(named.value)}};
    }
    keys[toUtf8(key)] = std::move(values);
    addKeys(keys, *child, key);
  }
}

Value told(const std::vector<Start>& starts, const char* what) {
  Value all = Value::list();
  for (const Start& each : starts) {
    all.push_back(
        {{what, toUtf8(each.what)}, {"style", each.style}, {"directory", toUtf8(each.directory)}});
  }
  return all;
}

}  // namespace

Value stateReport(const MachineState& machine) {
  Value drives = Value::members();
  Value files = Value::members();
  for (const char16_t letter : machine.disks.letters()) {
    const DriveSettings settings = *machine.disks.drive(letter);
    drives[toUtf8(TextView(&letter, 1))] = {{"type", settings.type}, {"free", settings.free}};
    addFiles(files, machine.disks, Path{letter, {}, false});
  }
  Value registry = Value::members();
  for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    Value& keys = registry[toUtf8(hiveName(hive))] = Value::members();
    addKeys(keys, *machine.registry.find(hive, {}), {});
  }
  Value shortcuts = Value::members();
  for (const auto& [path, properties] : machine.shortcuts) {
    if (machine.disks.exists(path)) shortcuts[toUtf8(path)] = told(properties);
  }
  return {{"drives", std::move(drives)},
          {"files", std::move(files)},
          {"registry", std::move(registry)},
          {"shortcuts", std::move(shortcuts)},
          {"started", told(machine.happened.started, "command")},
          {"opened", told(machine.happened.opened, "path")}};
}

}  // namespace zev::simulated
