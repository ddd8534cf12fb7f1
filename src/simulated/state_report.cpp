#include "simulated/state_report.h"

#include <algorithm>

#include "simulated/simulated_registry.h"

namespace zev::simulated {
namespace {

using Json = nlohmann::ordered_json;

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

Json attributesOf(const DirectoryEntry& entry) {
  Json names = Json::array();
  for (const AttributeRow& row : attributeRows) {
    if ((entry.attributes & row.attribute) != 0) names.push_back(row.name);
  }
  return names;
}

Json describe(const Disks& disks, const Text& path, const DirectoryEntry& entry) {
  Json described;
  if (const auto target = disks.link(path)) described["link"] = toUtf8(*target);
  if ((entry.attributes & file_attribute::directory) != 0) {
    described["directory"] = true;
  } else {
    described["size"] = entry.size;
    described["sha256"] = disks.sha256(path).value_or("");
    const auto bytes = entry.size <= longestText ? disks.read(path) : std::nullopt;
    if (bytes && isPlain(*bytes)) described["text"] = std::string(bytes->begin(), bytes->end());
  }
  if (Json attributes = attributesOf(entry); !attributes.empty()) {
    described["attributes"] = std::move(attributes);
  }
  return described;
}

void addFiles(Json& files, const Disks& disks, const Path& directory) {
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

void addKeys(Json& keys, const RegistryNode& node, const Text& path) {
  for (const auto& [upper, child] : node.keys) {
    const Text key = path.empty() ? child->name : join(path, u"\\", child->name);
    Json values = Json::object();
    for (const auto& [name, named] : child->values) {
      values[toUtf8(named.name)] = {{"type", named.value.type}, {"value", toJson(named.value)}};
    }
    keys[toUtf8(key)] = std::move(values);
    addKeys(keys, *child, key);
  }
}

Json toJson(const std::vector<Start>& starts, const char* what) {
  Json all = Json::array();
  for (const Start& each : starts) {
    all.push_back(
        {{what, toUtf8(each.what)}, {"style", each.style}, {"directory", toUtf8(each.directory)}});
  }
  return all;
}

}  // namespace

Json stateReport(const MachineState& machine) {
  Json drives = Json::object();
  Json files = Json::object();
  for (const char16_t letter : machine.disks.letters()) {
    const DriveSettings settings = *machine.disks.drive(letter);
    drives[toUtf8(TextView(&letter, 1))] = {{"type", settings.type}, {"free", settings.free}};
    addFiles(files, machine.disks, Path{letter, {}, false});
  }
  Json registry = Json::object();
  for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    Json& keys = registry[toUtf8(hiveName(hive))] = Json::object();
    addKeys(keys, *machine.registry.find(hive, {}), {});
  }
  Json shortcuts = Json::object();
  for (const auto& [path, properties] : machine.shortcuts) {
    if (machine.disks.exists(path)) shortcuts[toUtf8(path)] = toJson(properties);
  }
  return {{"drives", std::move(drives)},
          {"files", std::move(files)},
          {"registry", std::move(registry)},
          {"shortcuts", std::move(shortcuts)},
          {"started", toJson(machine.happened.started, "command")},
          {"opened", toJson(machine.happened.opened, "path")}};
}

}  // namespace zev::simulated
