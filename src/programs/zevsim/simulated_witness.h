#pragma once

#include "scenario/witness.h"
#include "simulated/simulated_machine.h"

namespace zev::simulator {

/// A simulated machine as expectations ask it.
class SimulatedWitness final : public scenario::Witness {
 public:
  /// Borrows it.
  explicit SimulatedWitness(const simulated::SimulatedMachine& machine) : machine_(machine) {}

  Text fromAnsi(std::string_view bytes) const override;
  std::optional<Entry> entry(const Text& path) const override;
  std::optional<std::vector<std::uint8_t>> read(const Text& path, std::uint64_t offset,
                                                std::uint64_t count) const override;
  std::optional<std::string> sha256(const Text& path) const override;
  std::optional<std::vector<Text>> names(const Text& folder) const override;
  std::optional<Value> value(RegistryKey hive, const Text& key, const Text& name) const override;
  std::optional<std::map<Text, Value>> values(RegistryKey hive, const Text& key) const override;

 private:
  Value told(const simulated::RegistryValue& value) const;
  std::uint32_t codePage() const { return machine_.settings().system.codePage; }

  const simulated::SimulatedMachine& machine_;
};

}  // namespace zev::simulator
