#include "scenarios/snapshot.h"

#include <algorithm>

#include "simulated/registry_tree.h"
#include "simulated/simulated_shortcuts.h"

namespace zev {
namespace {

using namespace simulated;

/// Bytes that tell the long files of a package apart.
constexpr std::uint64_t beginning = 200;

class Collector {
 public:
  Collector(const SimulatedMachine& machine, std::uint64_t most)
      : machine_(machine), most_(most), installer_(upperCase(machine.settings().installer)) {}

  Snapshot collect() {
    for (const char16_t letter : machine_.disks().letters()) addFolder(Text{letter, u':', u'\\'});
    for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      addKeys(*machine_.registry().find(hive, {}), Text(hiveName(hive)));
    }
    return std::move(all_);
  }

 private:
  void addFolder(const Text& folder) {
    const Text prefix = folder.ends_with(u'\\') ? folder : folder + u'\\';
    const auto names = machine_.disks().names(folder);
    for (const Text& name : names.value_or(std::vector<Text>())) addEntry(prefix + name);
  }

  void addEntry(const Text& path) {
    if (upperCase(path) == installer_) return;
    const auto entry = machine_.disks().find(path);
    std::string& line = all_[toUtf8(path)];
    line = std::to_string(entry->attributes) + " ";
    if ((entry->attributes & file_attribute::directory) != 0) return addFolder(path);
    if (const auto link = machine_.shortcut(path)) {
      line += told(*link).dump();
    } else {
      const bool whole = entry->size <= most_;
      const auto shown = static_cast<std::size_t>(whole ? entry->size : std::min(most_, beginning));
      const auto bytes = machine_.disks().read(path, 0, shown);
      line.append(bytes->begin(), bytes->end());
      if (!whole) line += "... " + std::to_string(entry->size);
    }
  }

  void addKeys(const RegistryNode& node, const Text& path) {
    for (const auto& [upper, child] : node.keys) {
      const Text key = join(path, u"\\", child->name);
      all_[toUtf8(key)] = {};
      for (const auto& [name, named] : child->values) {
        const RegistryValue& value = named.value;
        std::string& line = all_[toUtf8(join(key, u"|", named.name))];
        line = std::to_string(value.type) + " " + toUtf8(value.units);
        line.append(value.bytes.begin(), value.bytes.end());
      }
      addKeys(*child, key);
    }
  }

  const SimulatedMachine& machine_;
  std::uint64_t most_;
  Text installer_;
  Snapshot all_;
};

}  // namespace

Snapshot snapshotOf(const SimulatedMachine& machine, std::uint64_t most) {
  return Collector(machine, most).collect();
}

Snapshot withoutFolder(Snapshot snapshot, const std::string& folder) {
  std::erase_if(snapshot, [&](const auto& each) {
    return each.first == folder || each.first.starts_with(folder + "\\");
  });
  return snapshot;
}

std::vector<std::string> differences(const Snapshot& found, const Snapshot& expected) {
  std::vector<std::string> lines;
  for (const auto& [name, value] : expected) {
    const auto there = found.find(name);
    if (there == found.end()) {
      lines.push_back("- " + name);
    } else if (there->second != value) {
      lines.push_back("~ " + name);
    }
  }
  for (const auto& [name, value] : found) {
    if (!expected.contains(name)) lines.push_back("+ " + name);
  }
  return lines;
}

}  // namespace zev
