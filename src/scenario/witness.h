#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/file_system.h"
#include "platform/registry_api.h"
#include "runtime/text.h"

namespace zev::scenario {

/// A file cannot be looked into because somebody has it open without sharing.
class InUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// What can be asked of a machine, simulated or real, when its files and its registry are held
/// against what a scenario expects. Nothing is changed by asking. A path that no file can have may
/// throw std::invalid_argument.
class Witness {
 public:
  struct Entry {
    std::uint32_t attributes = 0;  ///< of `file_attribute`
    std::uint64_t size = 0;        ///< in bytes
  };
  /// The data of a registry value: of a text type the text before its first NUL, and of all types
  /// the bytes as the A calls give them.
  struct Value {
    std::uint32_t type = 0;
    std::optional<Text> text{};
    std::vector<std::uint8_t> bytes{};
  };

  virtual ~Witness() = default;

  /// The text of a file's bytes, by the machine's code page.
  virtual Text fromAnsi(std::string_view bytes) const = 0;
  /// A file or folder; none if there is no such entry.
  virtual std::optional<Entry> entry(const Text& path) const = 0;
  /// Up to `count` bytes of a file from an offset on; none without the file.
  virtual std::optional<std::vector<std::uint8_t>> read(const Text& path, std::uint64_t offset,
                                                        std::uint64_t count) const = 0;
  /// In lower-case hexadecimal digits; none without the file.
  virtual std::optional<std::string> sha256(const Text& path) const = 0;
  /// Names in a folder; none without it.
  virtual std::optional<std::vector<Text>> names(const Text& folder) const = 0;

  virtual std::optional<Value> value(RegistryKey hive, const Text& key, const Text& name) const = 0;
  /// All values of a key by their names; none without the key.
  virtual std::optional<std::map<Text, Value>> values(RegistryKey hive, const Text& key) const = 0;
};

}  // namespace zev::scenario
