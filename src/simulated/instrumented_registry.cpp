#include "simulated/instrumented_registry.h"

namespace zev::simulated {
namespace {

std::int64_t shownKey(RegistryKey key) { return static_cast<std::int64_t>(key); }

}  // namespace

template <typename Forward>
SystemError InstrumentedRegistry::call(std::string_view name, Arguments arguments,
                                       Forward forward) {
  return instrumentation_.perform(
      {name}, arguments, forward, [](std::int32_t code) { return static_cast<SystemError>(code); },
      [] { return system_error::success; });
}

SystemError InstrumentedRegistry::RegOpenKeyA(RegistryKey hive, TextView key, RegistryKey& handle) {
  handle = 0;
  return call("RegOpenKeyA", {shownKey(hive), key},
              [&] { return registry_.RegOpenKeyA(hive, key, handle); });
}

SystemError InstrumentedRegistry::RegCreateKeyA(RegistryKey hive, TextView key,
                                                RegistryKey& handle) {
  handle = 0;
  return call("RegCreateKeyA", {shownKey(hive), key},
              [&] { return registry_.RegCreateKeyA(hive, key, handle); });
}

SystemError InstrumentedRegistry::RegCloseKey(RegistryKey handle) {
  return call("RegCloseKey", {shownKey(handle)}, [&] { return registry_.RegCloseKey(handle); });
}

SystemError InstrumentedRegistry::RegDeleteKeyA(RegistryKey hive, TextView key) {
  return call("RegDeleteKeyA", {shownKey(hive), key},
              [&] { return registry_.RegDeleteKeyA(hive, key); });
}

SystemError InstrumentedRegistry::RegDeleteValueA(RegistryKey handle, TextView name) {
  return call("RegDeleteValueA", {shownKey(handle), name},
              [&] { return registry_.RegDeleteValueA(handle, name); });
}

SystemError InstrumentedRegistry::RegEnumKeyA(RegistryKey handle, std::uint32_t index, Text& buffer,
                                              std::uint32_t size) {
  return call("RegEnumKeyA", {shownKey(handle), index, size},
              [&] { return registry_.RegEnumKeyA(handle, index, buffer, size); });
}

SystemError InstrumentedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                   std::uint32_t& type, std::uint32_t& size) {
  return call("RegQueryValueExA", {shownKey(handle), name},
              [&] { return registry_.RegQueryValueExA(handle, name, type, size); });
}

SystemError InstrumentedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                   std::uint32_t& type, Text& buffer,
                                                   std::uint32_t& size) {
  return call("RegQueryValueExA", {shownKey(handle), name, size},
              [&] { return registry_.RegQueryValueExA(handle, name, type, buffer, size); });
}

SystemError InstrumentedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                   std::uint32_t& type, std::int32_t& data,
                                                   std::uint32_t& size) {
  return call("RegQueryValueExA", {shownKey(handle), name, size},
              [&] { return registry_.RegQueryValueExA(handle, name, type, data, size); });
}

SystemError InstrumentedRegistry::RegSetValueExA(RegistryKey handle, TextView name,
                                                 std::uint32_t type, TextView data,
                                                 std::uint32_t size) {
  return call("RegSetValueExA", {shownKey(handle), name, type, data, size},
              [&] { return registry_.RegSetValueExA(handle, name, type, data, size); });
}

SystemError InstrumentedRegistry::RegSetValueExA(RegistryKey handle, TextView name,
                                                 std::uint32_t type, std::int32_t data) {
  return call("RegSetValueExA", {shownKey(handle), name, type, data},
              [&] { return registry_.RegSetValueExA(handle, name, type, data); });
}

}  // namespace zev::simulated
