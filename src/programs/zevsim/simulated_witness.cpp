#include "programs/zevsim/simulated_witness.h"

#include "code_page/code_page.h"

namespace zev::simulator {

using scenario::Witness;

Text SimulatedWitness::fromAnsi(std::string_view bytes) const {
  return fromCodePage(bytes, codePage());
}

std::optional<Witness::Entry> SimulatedWitness::entry(const Text& path) const {
  const auto found = machine_.disks().find(path);
  if (!found) return std::nullopt;
  return Entry{found->attributes, found->size};
}

std::optional<std::vector<std::uint8_t>> SimulatedWitness::read(const Text& path,
                                                                std::uint64_t offset,
                                                                std::uint64_t count) const {
  return machine_.disks().read(path, offset, count);
}

std::optional<std::string> SimulatedWitness::sha256(const Text& path) const {
  return machine_.disks().sha256(path);
}

std::optional<std::vector<Text>> SimulatedWitness::names(const Text& folder) const {
  return machine_.disks().names(folder);
}

std::optional<Witness::Value> SimulatedWitness::value(RegistryKey hive, const Text& key,
                                                      const Text& name) const {
  const auto found = machine_.registry().value(hive, key, name);
  if (!found) return std::nullopt;
  return told(*found);
}

std::optional<std::map<Text, Witness::Value>> SimulatedWitness::values(RegistryKey hive,
                                                                       const Text& key) const {
  const auto node = machine_.registry().find(hive, key);
  if (!node) return std::nullopt;
  std::map<Text, Value> all;
  for (const auto& [upper, named] : node->values) all[named.name] = told(named.value);
  return all;
}

Witness::Value SimulatedWitness::told(const simulated::RegistryValue& value) const {
  Value all{value.type, std::nullopt, value.ansiBytes(codePage())};
  if (value.isText()) all.text = value.text();
  return all;
}

}  // namespace zev::simulator
