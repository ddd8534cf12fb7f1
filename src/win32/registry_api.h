#pragma once

#include "platform/registry_api.h"

namespace zev::win32 {

/// The registry calls of Windows.
class Win32Registry final : public RegistryApi {
 public:
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
};

}  // namespace zev::win32
