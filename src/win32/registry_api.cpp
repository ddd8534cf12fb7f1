#include "win32/registry_api.h"

#include <algorithm>
#include <vector>

#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::win32 {
namespace {

/// The numbers of the hives are handles with their sign carried on.
HKEY keyOf(RegistryKey key) {
  constexpr RegistryKey firstHive = 0x80000000;
  constexpr RegistryKey lastHive = 0x800000FF;
  const bool hive = key >= firstHive && key <= lastHive;
  const auto value =
      hive ? static_cast<INT_PTR>(static_cast<std::int32_t>(key)) : static_cast<INT_PTR>(key);
  return reinterpret_cast<HKEY>(value);
}

SystemError resultOf(LONG status) { return static_cast<SystemError>(status); }

RegistryKey handleOf(HKEY key, SystemError error) {
  return error == system_error::success ? reinterpret_cast<std::uintptr_t>(key) : 0;
}

bool isText(std::uint32_t type) {
  return type == registry_type::text || type == registry_type::expandableText;
}

/// Reads data of at most `data.size()` bytes; type and size are the system's answers.
SystemError query(RegistryKey handle, TextView name, std::uint32_t& type,
                  std::vector<std::uint8_t>& data, std::uint32_t& size) {
  DWORD kind = 0;
  DWORD bytes = static_cast<DWORD>(data.size());
  data.resize(std::max<std::size_t>(data.size(), 1));  // no data at all would only ask for the size
  const SystemError error = resultOf(::RegQueryValueExA(keyOf(handle), ansiArgument(name).c_str(),
                                                        nullptr, &kind, data.data(), &bytes));
  if (error != system_error::success && error != moreData) return error;
  type = kind;
  size = bytes;
  return error;
}

SystemError set(RegistryKey handle, TextView name, std::uint32_t type, const void* data,
                std::size_t size) {
  return resultOf(::RegSetValueExA(keyOf(handle), ansiArgument(name).c_str(), 0, type,
                                   static_cast<const BYTE*>(data), static_cast<DWORD>(size)));
}

}  // namespace

// ---- keys

SystemError Win32Registry::RegOpenKeyA(RegistryKey hive, TextView key, RegistryKey& handle) {
  HKEY opened = nullptr;
  const SystemError error =
      resultOf(::RegOpenKeyA(keyOf(hive), ansiArgument(key).c_str(), &opened));
  handle = handleOf(opened, error);
  return error;
}

SystemError Win32Registry::RegCreateKeyA(RegistryKey hive, TextView key, RegistryKey& handle) {
  HKEY opened = nullptr;
  const SystemError error =
      resultOf(::RegCreateKeyA(keyOf(hive), ansiArgument(key).c_str(), &opened));
  handle = handleOf(opened, error);
  return error;
}

SystemError Win32Registry::RegCloseKey(RegistryKey handle) {
  return resultOf(::RegCloseKey(keyOf(handle)));
}

SystemError Win32Registry::RegDeleteKeyA(RegistryKey hive, TextView key) {
  return resultOf(::RegDeleteKeyA(keyOf(hive), ansiArgument(key).c_str()));
}

SystemError Win32Registry::RegEnumKeyA(RegistryKey handle, std::uint32_t index, Text& buffer,
                                       std::uint32_t size) {
  std::vector<char> name(std::max<std::size_t>(size, 1));
  const SystemError error = resultOf(::RegEnumKeyA(keyOf(handle), index, name.data(), size));
  if (error == system_error::success) writeAnswer(buffer, name.data());
  return error;
}

// ---- values

SystemError Win32Registry::RegDeleteValueA(RegistryKey handle, TextView name) {
  return resultOf(::RegDeleteValueA(keyOf(handle), ansiArgument(name).c_str()));
}

SystemError Win32Registry::RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                            std::uint32_t& size) {
  DWORD kind = 0;
  DWORD bytes = 0;
  const SystemError error = resultOf(::RegQueryValueExA(keyOf(handle), ansiArgument(name).c_str(),
                                                        nullptr, &kind, nullptr, &bytes));
  if (error != system_error::success) return error;
  type = kind;
  size = bytes;
  return error;
}

SystemError Win32Registry::RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                            Text& buffer, std::uint32_t& size) {
  std::vector<std::uint8_t> data(size);
  const SystemError error = query(handle, name, type, data, size);
  if (error != system_error::success) return error;
  const std::size_t room = std::min<std::size_t>(size, buffer.size());
  buffer.replace(0, room, fromAnsi({reinterpret_cast<const char*>(data.data()), room}));
  return error;
}

SystemError Win32Registry::RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                            std::int32_t& data, std::uint32_t& size) {
  std::vector<std::uint8_t> bytes(sizeof data);
  const SystemError error = query(handle, name, type, bytes, size);
  if (error != system_error::success) return error;
  std::copy_n(bytes.begin(), size, reinterpret_cast<std::uint8_t*>(&data));
  return error;
}

/// Newer systems end a text with a NUL of their own only if one happens to follow the data:
/// here one always does.
SystemError Win32Registry::RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                          TextView data, std::uint32_t size) {
  std::string bytes = toAnsi(data) + '\0';
  bytes.resize(std::min<std::size_t>(size, bytes.size()));
  if (isText(type) && !bytes.ends_with('\0')) bytes += '\0';
  return set(handle, name, type, bytes.data(), bytes.size());
}

SystemError Win32Registry::RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                          std::int32_t data) {
  return set(handle, name, type, &data, sizeof data);
}

}  // namespace zev::win32
