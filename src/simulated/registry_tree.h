#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "platform/registry_api.h"
#include "runtime/text.h"

namespace zev::simulated {

/// The data of one value. Text types (REG_SZ, REG_EXPAND_SZ, REG_MULTI_SZ) are kept as UTF-16
/// units, with whatever NULs they were stored with; all others as bytes.
struct RegistryValue {
  std::uint32_t type = registry_type::text;
  Text units;
  std::vector<std::uint8_t> bytes;

  /// A text value with its terminating NUL.
  static RegistryValue ofText(TextView text, std::uint32_t type = registry_type::text);
  /// A REG_DWORD: four bytes, the low one first.
  static RegistryValue ofNumber(std::uint32_t number);
  /// Raw bytes of any type; those of a text type are in the code page.
  static RegistryValue ofBytes(std::uint32_t type, std::vector<std::uint8_t> bytes,
                               std::uint32_t codePage);

  bool isText() const { return isTextType(type); }
  static bool isTextType(std::uint32_t type) { return type == 1 || type == 2 || type == 7; }
  /// The text before its first NUL.
  Text text() const { return Text(beforeNul(units)); }
  /// The first four bytes, missing ones 0.
  std::uint32_t number() const;
  /// The bytes as the calls of an A interface see them.
  std::vector<std::uint8_t> ansiBytes(std::uint32_t codePage) const;

  bool operator==(const RegistryValue&) const = default;
};

/// One key: its subkeys and values, by upper-case name, which is the order of enumeration.
struct RegistryNode {
  struct Named {
    explicit Named(Text made) : name(std::move(made)) {}
    Text name;
    RegistryValue value;
  };
  Text name;
  std::map<Text, std::shared_ptr<RegistryNode>> keys;
  std::map<Text, Named> values;
  bool deleted = false;  ///< handles may outlive the key
};

/// The registry of a machine. HKEY_CLASSES_ROOT is the key Software\Classes of HKEY_LOCAL_MACHINE.
/// Keys and names match without regard to case. Hives other than the three are unknown: functions
/// that look give nothing, those that write throw std::invalid_argument.
class RegistryTree {
 public:
  /// A registry with its hives and nothing in them.
  RegistryTree();

  /// A value as it was stored; none if the key or the value is not there.
  std::optional<RegistryValue> value(RegistryKey hive, TextView key, TextView name) const;
  /// Makes the key and its parents if need be; the key.
  std::shared_ptr<RegistryNode> createKey(RegistryKey hive, TextView key);
  /// Writes a value, with its key if need be. Refusals do not count here: this sets the machine up.
  void setValue(RegistryKey hive, TextView key, TextView name, RegistryValue value);
  /// Takes a value away; nothing happens if it is not there.
  void removeValue(RegistryKey hive, TextView key, TextView name);
  /// Removes the key and all below it.
  void removeKey(RegistryKey hive, TextView key);

  /// Refuses or allows writes to a key and to all below it; the key need not exist.
  void deny(RegistryKey hive, TextView key, bool denied = true);
  /// Takes back all refusals in a hive.
  void allowAll(RegistryKey hive);
  /// Whether writes to the key are refused, by itself or by one above it.
  bool denied(RegistryKey hive, TextView key) const;

  /// The node of a key; null if it is not there.
  std::shared_ptr<RegistryNode> find(RegistryKey hive, TextView key) const;

  /// Whether it is the number of one of the three hives.
  static bool isHive(RegistryKey hive);

 private:
  std::map<RegistryKey, std::shared_ptr<RegistryNode>> roots_;  ///< the two real hives
  std::vector<Text> denied_;                                    ///< full upper-case paths
};

}  // namespace zev::simulated
