#include "system/registry.h"

#include <algorithm>

#include "runtime/number.h"
#include "system/attributes.h"

namespace zev {
namespace {

constexpr std::uint32_t keyNameSize = 255;
constexpr std::uint32_t mostKeys = 1024;
constexpr std::int32_t noList = -2;

}  // namespace

bool lists(const KeyList& keys, TextView name) {
  const auto* names = std::get_if<std::vector<Text>>(&keys);
  return names != nullptr && std::find(names->begin(), names->end(), name) != names->end();
}

Registry::Registry(Program& program, Phrases& phrases)
    : program_(program),
      api_(program.platform.registry),
      valueFiles_(program.platform.files, program.platform.dialogs, phrases) {}

// ---- the choice of store

bool Registry::inRegistry(std::int32_t selector) const {
  return selector == ForceRegistry || program_.globals.gOSClass != profileClass;
}

// ---- keys

void Registry::CreateRegKey(RegistryKey hive, TextView key, std::int32_t selector) {
  if (!inRegistry(selector)) return;
  RegistryKey handle = 0;
  api_.RegCreateKeyA(hive, key, handle);
  api_.RegCloseKey(handle);
}

void Registry::DeleteRegKey(RegistryKey hive, TextView key, std::int32_t selector) {
  if (inRegistry(selector)) {
    api_.RegDeleteKeyA(hive, key);
    return;
  }
  withEachFolder([&](const Text& folder) { valueFiles_.deleteFolder(folder); });
}

void Registry::DeleteRegValue(RegistryKey hive, TextView key, TextView name,
                              std::int32_t selector) {
  if (inRegistry(selector)) {
    RegistryKey handle = 0;
    api_.RegOpenKeyA(hive, key, handle);
    api_.RegDeleteValueA(handle, name);
    api_.RegCloseKey(handle);
    return;
  }
  withEachFolder([&](const Text& folder) { valueFiles_.DeleteConf(folder, name); });
}

KeyList Registry::EnumRegKeys(RegistryKey hive, TextView key) {
  try {
    RegistryKey handle = 0;
    api_.RegOpenKeyA(hive, key, handle);
    return listKeys(handle);
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 7-", error);
    return {};
  }
}

KeyList Registry::listKeys(RegistryKey handle) {
  std::vector<Text> names;
  for (std::uint32_t index = 0; index <= mostKeys; ++index) {
    Text buffer = blanks(keyNameSize);
    if (api_.RegEnumKeyA(handle, index, buffer, keyNameSize) != system_error::success) {
      if (names.empty()) return noList;
      return names;
    }
    names.emplace_back(beforeNul(buffer));
  }
  return noList;
}

// ---- texts

Text Registry::GetRegString(RegistryKey hive, TextView key, TextView name, TextView defaultText,
                            std::int32_t selector) {
  if (!inRegistry(selector)) return readFileText(name, defaultText);
  return readRegistryText(hive, key, name, defaultText);
}

Text Registry::readRegistryText(RegistryKey hive, TextView key, TextView name,
                                TextView defaultText) {
  Text result(defaultText);
  try {
    RegistryKey handle = 0;
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    api_.RegOpenKeyA(hive, key, handle);
    const SystemError error = api_.RegQueryValueExA(handle, name, type, size);
    if (error == system_error::success && type == registry_type::text) {
      Text buffer = blanks(size);
      if (api_.RegQueryValueExA(handle, name, type, buffer, size) == system_error::success) {
        result = beforeNul(buffer);
      }
    }
    api_.RegCloseKey(handle);
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 8-", error);
  }
  return result;
}

Text Registry::readFileText(TextView name, TextView defaultText) {
  Text result;
  try {
    const Globals& globals = program_.globals;
    if (folderExists(program_.platform.files, globals.gUserData)) {
      result = valueFiles_.ReadConf(globals.gUserData, name, defaultText);
    }
    if (folderExists(program_.platform.files, globals.gUserDataAlt) && trim(result).empty()) {
      result = valueFiles_.ReadConf(globals.gUserDataAlt, name, defaultText);
    }
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 8-", error);
  }
  return result;
}

void Registry::SetRegString(RegistryKey hive, TextView key, TextView name, TextView text,
                            std::int32_t selector) {
  if (inRegistry(selector)) {
    RegistryKey handle = 0;
    api_.RegCreateKeyA(hive, key, handle);
    api_.RegSetValueExA(handle, name, registry_type::text, text,
                        static_cast<std::uint32_t>(text.size()));
    api_.RegCloseKey(handle);
    return;
  }
  withEachFolder([&](const Text& folder) { valueFiles_.WriteConf(folder, name, text); });
}

// ---- numbers

std::int32_t Registry::GetRegDword(RegistryKey hive, TextView key, TextView name,
                                   std::int32_t defaultNumber, std::int32_t selector) {
  if (!inRegistry(selector)) return readFileNumber(name, defaultNumber);
  return readRegistryNumber(hive, key, name, defaultNumber);
}

std::int32_t Registry::readRegistryNumber(RegistryKey hive, TextView key, TextView name,
                                          std::int32_t defaultNumber) {
  std::int32_t result = defaultNumber;
  try {
    RegistryKey handle = 0;
    std::uint32_t type = 0;
    std::uint32_t size = sizeof(std::int32_t);
    std::int32_t data = 0;
    api_.RegOpenKeyA(hive, key, handle);
    const SystemError error = api_.RegQueryValueExA(handle, name, type, data, size);
    if (error == system_error::success && type == registry_type::number) result = data;
    api_.RegCloseKey(handle);
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 5-", error);
  }
  return result;
}

std::int32_t Registry::readFileNumber(TextView name, std::int32_t defaultNumber) {
  std::int32_t result = 0;
  try {
    withEachFolder([&](const Text& folder) {
      result = toLong(valueFiles_.ReadConf(folder, name, decimal(defaultNumber)));
    });
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 5-", error);
  }
  return result;
}

void Registry::SetRegDword(RegistryKey hive, TextView key, TextView name, std::int32_t number,
                           std::int32_t selector) {
  try {
    if (inRegistry(selector)) {
      RegistryKey handle = 0;
      api_.RegCreateKeyA(hive, key, handle);
      api_.RegSetValueExA(handle, name, registry_type::number, number);
      api_.RegCloseKey(handle);
      return;
    }
    withEachFolder(
        [&](const Text& folder) { valueFiles_.WriteConf(folder, name, decimal(number)); });
  } catch (const RuntimeError& error) {
    showFailure(u"Error : 6-", error);
  }
}

void Registry::showFailure(TextView what, const RuntimeError& error) {
  Dialogs& dialogs = program_.platform.dialogs;
  dialogs.MsgBox(join(what, decimal(error.number()), u" ", error.description()), box_style::plain,
                 dialogs.defaultTitle());
}

}  // namespace zev
