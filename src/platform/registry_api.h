#pragma once

#include <cstdint>
#include <optional>

#include "platform/file_system.h"
#include "runtime/text.h"

namespace zev {

/// A hive's number or the handle of an open key; 0 is none.
using RegistryKey = std::uint64_t;

inline constexpr RegistryKey HKEY_CLASSES_ROOT = 0x80000000;
inline constexpr RegistryKey HKEY_CURRENT_USER = 0x80000001;
inline constexpr RegistryKey HKEY_LOCAL_MACHINE = 0x80000002;

/// The name of a hive: "HKEY_LOCAL_MACHINE" and so on; empty for what is none.
TextView hiveName(RegistryKey hive);
/// The hive of that name or of its short form, "HKLM", letter case aside; none if there is none.
std::optional<RegistryKey> hiveNamed(TextView name);

/// Types of values.
namespace registry_type {
inline constexpr std::uint32_t text = 1;            ///< REG_SZ
inline constexpr std::uint32_t expandableText = 2;  ///< REG_EXPAND_SZ
inline constexpr std::uint32_t binary = 3;          ///< REG_BINARY
inline constexpr std::uint32_t number = 4;          ///< REG_DWORD
}  // namespace registry_type

/// More data than the buffer holds.
inline constexpr SystemError moreData = 234;
inline constexpr SystemError noMoreItems = 259;

/// The registry calls of the system. Each returns 0 or the system's error number. Texts, names
/// included, pass through the code page of the system. Keys and value names match without regard to
/// case and keep the case in which they were made; the empty value name is a key's default value.
class RegistryApi {
 public:
  virtual ~RegistryApi() = default;

  /// Opens an existing key. On failure `handle` becomes 0, and calls with it fail by themselves.
  virtual SystemError RegOpenKeyA(RegistryKey hive, TextView key, RegistryKey& handle) = 0;
  /// Opens a key and makes it, with its missing parents, if it is not there.
  virtual SystemError RegCreateKeyA(RegistryKey hive, TextView key, RegistryKey& handle) = 0;
  /// Closes an open key. The number of a hive is taken and does nothing.
  virtual SystemError RegCloseKey(RegistryKey handle) = 0;
  /// Deletes a key and its values. Systems of the NT line refuse a key that has subkeys
  /// (accessDenied); others delete them too.
  virtual SystemError RegDeleteKeyA(RegistryKey hive, TextView key) = 0;
  /// Takes one value away; fileNotFound if the key has none of that name.
  virtual SystemError RegDeleteValueA(RegistryKey handle, TextView name) = 0;
  /// Name of the n-th subkey, from 0, into a buffer of `size` bytes, ended by a NUL; noMoreItems
  /// after the last, moreData for a buffer too small.
  virtual SystemError RegEnumKeyA(RegistryKey handle, std::uint32_t index, Text& buffer,
                                  std::uint32_t size) = 0;
  /// Type of a value and size of its data in bytes, without the data.
  virtual SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                       std::uint32_t& size) = 0;
  /// The data as text into a buffer of `size` bytes; what the data does not fill stays as it was.
  /// On return `size` is the size of the data in bytes. A buffer too small: moreData.
  virtual SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                       Text& buffer, std::uint32_t& size) = 0;
  /// The data as a number, into four bytes. Data of more than four bytes: moreData.
  virtual SystemError RegQueryValueExA(RegistryKey handle, TextView name, std::uint32_t& type,
                                       std::int32_t& data, std::uint32_t& size) = 0;
  /// Writes the first `size` bytes of the text in the code page of the system. A text value is
  /// stored with a terminating NUL of the system's own if the bytes have none.
  virtual SystemError RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                     TextView data, std::uint32_t size) = 0;
  /// Writes a number of four bytes.
  virtual SystemError RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                     std::int32_t data) = 0;
};

}  // namespace zev
