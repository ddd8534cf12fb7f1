#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "localisation/phrases.h"
#include "runtime/text.h"
#include "state/program.h"
#include "system/attributes.h"
#include "system/value_files.h"

namespace zev {

/// Selectors: the normal choice of store, which any other number takes too, and the registry
/// itself, whatever the class of the machine.
inline constexpr std::int32_t normalChoice = 0;
inline constexpr std::int32_t ForceRegistry = 999999;

/// The name of a key's default value.
inline constexpr TextView defaultValue = {};

/// What EnumRegKeys gives: a list of names, an error code, or nothing at all.
using KeyList = std::variant<std::monostate, std::int32_t, std::vector<Text>>;

/// True if it is a list with that name in it, case included.
bool lists(const KeyList& keys, TextView name);

/// The one door to persistent settings. On machines whose class is `profileClass` values without
/// `ForceRegistry` are the value files of `gUserData` and `gUserDataAlt`, where hive and key are
/// ignored; on all others they are the registry's. Failures of the system raise nothing: a
/// refused write is lost, a read gives the default.
class Registry {
 public:
  /// Borrows both; they outlive this.
  Registry(Program& program, Phrases& phrases);

  void CreateRegKey(RegistryKey hive, TextView key, std::int32_t selector);
  void DeleteRegKey(RegistryKey hive, TextView key, std::int32_t selector);
  void DeleteRegValue(RegistryKey hive, TextView key, TextView name, std::int32_t selector);

  /// A text value. In the value files the first folder's wins, and with no folder at hand the
  /// result is empty, not the default.
  Text GetRegString(RegistryKey hive, TextView key, TextView name, TextView defaultText,
                    std::int32_t selector);
  void SetRegString(RegistryKey hive, TextView key, TextView name, TextView text,
                    std::int32_t selector);

  /// A number. In the value files the second folder's wins, and with no folder at hand the result
  /// is 0, not the default.
  std::int32_t GetRegDword(RegistryKey hive, TextView key, TextView name,
                           std::int32_t defaultNumber, std::int32_t selector);
  void SetRegDword(RegistryKey hive, TextView key, TextView name, std::int32_t number,
                   std::int32_t selector);

  /// Names of the subkeys, always of the registry: a list of 1 to 1024 names, -2 for none or more,
  /// nothing after the box of a run-time error. The key stays open.
  KeyList EnumRegKeys(RegistryKey hive, TextView key);

 private:
  bool inRegistry(std::int32_t selector) const;

  /// Does something with the folder of each user root that is there, the first root first.
  template <typename Use>
  void withEachFolder(Use use) {
    for (const Text* folder : {&program_.globals.gUserData, &program_.globals.gUserDataAlt}) {
      if (folderExists(program_.platform.files, *folder)) use(*folder);
    }
  }

  Text readRegistryText(RegistryKey hive, TextView key, TextView name, TextView defaultText);
  Text readFileText(TextView name, TextView defaultText);
  std::int32_t readRegistryNumber(RegistryKey hive, TextView key, TextView name,
                                  std::int32_t defaultNumber);
  std::int32_t readFileNumber(TextView name, std::int32_t defaultNumber);
  KeyList listKeys(RegistryKey handle);
  void showFailure(TextView what, const RuntimeError& error);

  Program& program_;
  RegistryApi& api_;
  ValueFiles valueFiles_;
};

}  // namespace zev
