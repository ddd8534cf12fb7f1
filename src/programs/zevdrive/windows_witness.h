#pragma once

#include "scenario/witness.h"
#include "win32/ansi.h"
#include "win32/windows_api.h"

namespace zev::drive {

/// The system's handle of a hive.
HKEY hiveHandle(RegistryKey hive);

/// The Windows that this runs on, as expectations ask it.
class WindowsWitness final : public scenario::Witness {
 public:
  Text fromAnsi(std::string_view bytes) const override { return win32::fromAnsi(bytes); }
  std::optional<Entry> entry(const Text& path) const override;
  std::optional<std::vector<std::uint8_t>> read(const Text& path, std::uint64_t offset,
                                                std::uint64_t count) const override;
  std::optional<std::string> sha256(const Text& path) const override;
  std::optional<std::vector<Text>> names(const Text& folder) const override;
  std::optional<Value> value(RegistryKey hive, const Text& key, const Text& name) const override;
  std::optional<std::map<Text, Value>> values(RegistryKey hive, const Text& key) const override;
};

}  // namespace zev::drive
