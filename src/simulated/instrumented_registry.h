#pragma once

#include "platform/registry_api.h"
#include "simulated/instrumentation.h"

namespace zev::simulated {

/// The registry calls under observation. An injected error is what the call returns; a handle that
/// it would give becomes 0.
class InstrumentedRegistry final : public RegistryApi {
 public:
  /// Borrows both.
  InstrumentedRegistry(RegistryApi& registry, Instrumentation& instrumentation)
      : registry_(registry), instrumentation_(instrumentation) {}

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

 private:
  template <typename Forward>
  SystemError call(std::string_view name, Arguments arguments, Forward forward);

  RegistryApi& registry_;
  Instrumentation& instrumentation_;
};

}  // namespace zev::simulated
