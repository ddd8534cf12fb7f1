#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string_view>

#include "platform/registry_api.h"
#include "simulated/machine_state.h"

namespace zev::simulated {

/// The registry calls of one process.
class SimulatedRegistry final : public RegistryApi {
 public:
  /// Borrows the machine.
  explicit SimulatedRegistry(MachineState& machine) : machine_(machine) {}

  SystemError RegOpenKeyA(RegistryKey hive, TextView key, RegistryKey& handle) override;
  SystemError RegCreateKeyA(RegistryKey hive, TextView key, RegistryKey& handle) override;
  SystemError RegCloseKey(RegistryKey handle) override;
  SystemError RegDeleteKeyA(RegistryKey hive, TextView key) override;
  SystemError RegDeleteValueA(RegistryKey handle, TextView name) override;
  SystemError RegEnumKeyA(RegistryKey handle, std::uint32_t index, Text& buffer,
                          std::uint32_t size) override;
  SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                               std::uint32_t& size) override;
  SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type, Text& buffer,
                               std::uint32_t& size) override;
  SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                               std::int32_t& data, std::uint32_t& size) override;
  SystemError RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type, TextView data,
                             std::uint32_t size) override;
  SystemError RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                             std::int32_t data) override;

  /// Keys that were opened and not closed.
  std::size_t openKeys() const { return keys_.size(); }

 private:
  /// A key by its place, and its node as long as it is there.
  struct Key {
    RegistryKey hive = 0;
    Text path;
    std::shared_ptr<RegistryNode> node;
  };

  SystemError keyOf(RegistryKey handle, Key& key) const;
  SystemError below(RegistryKey handle, TextView path, Key& key) const;
  RegistryKey handleOf(Key key);
  SystemError create(const Key& key);
  SystemError mayDelete(const Key& key) const;
  SystemError query(RegistryKey handle, TextView name, std::uint32_t& type,
                    std::string& data) const;
  SystemError set(RegistryKey handle, TextView name, RegistryValue value);
  void tell(std::string_view op, const Key& key, SystemError error, const TextView* name = nullptr,
            const RegistryValue* value = nullptr);

  MachineState& machine_;
  std::map<RegistryKey, Key> keys_;
  RegistryKey lastHandle_ = 0;
};

/// A value as the transcript and the state show it: its text, its number, or its bytes in
/// hexadecimal.
Value told(const RegistryValue& value);

}  // namespace zev::simulated
