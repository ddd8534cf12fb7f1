#include "simulated/simulated_registry.h"

#include <algorithm>
#include <cstring>

namespace zev::simulated {
namespace {

using namespace system_error;

constexpr SystemError badPathName = 161;
constexpr SystemError keyDeleted = 1018;
constexpr std::size_t longestKeyName = 255;
constexpr std::uint32_t platform9x = 1;

SystemError checkKey(TextView key) {
  if (key.starts_with(u'\\')) return badPathName;
  while (!key.empty()) {
    const std::size_t end = std::min(key.find(u'\\'), key.size());
    if (end > longestKeyName) return invalidParameter;
    key.remove_prefix(std::min(end + 1, key.size()));
  }
  return success;
}

std::string hexDigits(const std::vector<std::uint8_t>& bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace

Value told(const RegistryValue& value) {
  if (value.isText()) return toUtf8(value.text());
  if (value.type == registry_type::number && value.bytes.size() == 4) return value.number();
  return hexDigits(value.bytes);
}

// ---- keys

SystemError SimulatedRegistry::keyOf(RegistryKey handle, Key& key) const {
  if (RegistryTree::isHive(handle)) {
    key = Key{handle, {}, machine_.registry.createKey(handle, {})};
    return success;
  }
  const auto found = keys_.find(handle);
  if (found == keys_.end()) return invalidHandle;
  key = found->second;
  return key.node->deleted ? keyDeleted : success;
}

/// The key of a path below an open one; its node is null if it is not there.
SystemError SimulatedRegistry::below(RegistryKey handle, TextView path, Key& key) const {
  const Text name = machine_.throughAnsi(beforeNul(path));
  if (const SystemError error = keyOf(handle, key)) return error;
  if (const SystemError error = checkKey(name)) return error;
  if (name.empty()) return success;
  key.path = key.path.empty() ? name : join(key.path, u"\\", name);
  key.path = Text(withoutTrailing(key.path, u'\\'));
  key.node = machine_.registry.find(key.hive, key.path);
  return success;
}

RegistryKey SimulatedRegistry::handleOf(Key key) {
  keys_.emplace(++lastHandle_, std::move(key));
  return lastHandle_;
}

SystemError SimulatedRegistry::RegOpenKeyA(RegistryKey hive, TextView name, RegistryKey& handle) {
  handle = 0;
  Key key;
  if (const SystemError error = below(hive, name, key)) return error;
  if (!key.node) return fileNotFound;
  handle = handleOf(std::move(key));
  return success;
}

SystemError SimulatedRegistry::create(const Key& key) {
  if (machine_.registry.denied(key.hive, key.path)) return accessDenied;
  machine_.registry.createKey(key.hive, key.path);
  return success;
}

SystemError SimulatedRegistry::RegCreateKeyA(RegistryKey hive, TextView name, RegistryKey& handle) {
  handle = 0;
  Key key;
  if (const SystemError error = below(hive, name, key)) return error;
  if (!key.node) {
    const SystemError error = create(key);
    tell("create", key, error);
    if (error != success) return error;
    key.node = machine_.registry.find(key.hive, key.path);
  }
  handle = handleOf(std::move(key));
  return success;
}

SystemError SimulatedRegistry::RegCloseKey(RegistryKey handle) {
  if (RegistryTree::isHive(handle)) return success;
  return keys_.erase(handle) > 0 ? success : invalidHandle;
}

SystemError SimulatedRegistry::mayDelete(const Key& key) const {
  if (!key.node) return fileNotFound;
  if (key.path.empty() || machine_.registry.denied(key.hive, key.path)) return accessDenied;
  const bool recursive = machine_.settings.system.version.platform == platform9x;
  return key.node->keys.empty() || recursive ? success : accessDenied;
}

SystemError SimulatedRegistry::RegDeleteKeyA(RegistryKey hive, TextView name) {
  Key key;
  if (const SystemError error = below(hive, name, key)) return error;
  const SystemError error = mayDelete(key);
  if (error == success) machine_.registry.removeKey(key.hive, key.path);
  tell("deleteKey", key, error);
  return error;
}

SystemError SimulatedRegistry::RegEnumKeyA(RegistryKey handle, std::uint32_t index, Text& buffer,
                                           std::uint32_t size) {
  Key key;
  if (const SystemError error = keyOf(handle, key)) return error;
  if (index >= key.node->keys.size()) return noMoreItems;
  const auto child = std::next(key.node->keys.begin(), static_cast<std::ptrdiff_t>(index));
  const std::string name = machine_.toAnsi(child->second->name);
  if (name.size() >= size) return moreData;
  writeAnswer(buffer, name, machine_.codePage());
  return success;
}

// ---- values

SystemError SimulatedRegistry::query(RegistryKey handle, TextView name, std::uint32_t& type,
                                     std::string& data) const {
  Key key;
  if (const SystemError error = keyOf(handle, key)) return error;
  const auto found = key.node->values.find(upperCase(machine_.throughAnsi(beforeNul(name))));
  if (found == key.node->values.end()) return fileNotFound;
  type = found->second.value.type;
  const std::vector<std::uint8_t> bytes = found->second.value.ansiBytes(machine_.codePage());
  data.assign(bytes.begin(), bytes.end());
  return success;
}

SystemError SimulatedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                std::uint32_t& type, std::uint32_t& size) {
  std::string data;
  if (const SystemError error = query(handle, name, type, data)) return error;
  size = static_cast<std::uint32_t>(data.size());
  return success;
}

SystemError SimulatedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                std::uint32_t& type, Text& buffer,
                                                std::uint32_t& size) {
  std::string data;
  if (const SystemError error = query(handle, name, type, data)) return error;
  const bool fits = data.size() <= size;
  if (fits) {
    const std::size_t room = std::min(data.size(), buffer.size());
    buffer.replace(0, room, machine_.fromAnsi(std::string_view(data).substr(0, room)));
  }
  size = static_cast<std::uint32_t>(data.size());
  return fits ? success : moreData;
}

SystemError SimulatedRegistry::RegQueryValueExA(RegistryKey handle, TextView name,
                                                std::uint32_t& type, std::int32_t& data,
                                                std::uint32_t& size) {
  std::string bytes;
  if (const SystemError error = query(handle, name, type, bytes)) return error;
  size = static_cast<std::uint32_t>(bytes.size());
  if (bytes.size() > sizeof data) return moreData;
  auto number = static_cast<std::uint32_t>(data);
  for (std::size_t each = 0; each < bytes.size(); ++each) {
    const auto shift = static_cast<unsigned>(8 * each);
    number &= ~(std::uint32_t{0xFF} << shift);
    number |= std::uint32_t{static_cast<std::uint8_t>(bytes[each])} << shift;
  }
  data = static_cast<std::int32_t>(number);
  return success;
}

SystemError SimulatedRegistry::set(RegistryKey handle, TextView text, RegistryValue value) {
  Key key;
  if (const SystemError error = keyOf(handle, key)) return error;
  const Text name = machine_.throughAnsi(beforeNul(text));
  const TextView view = name;
  const bool denied = machine_.registry.denied(key.hive, key.path);
  tell("set", key, denied ? accessDenied : success, &view, &value);
  if (denied) return accessDenied;
  machine_.registry.setValue(key.hive, key.path, name, std::move(value));
  return success;
}

SystemError SimulatedRegistry::RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                              TextView data, std::uint32_t size) {
  std::string bytes = machine_.toAnsi(data) + '\0';  // the terminating NUL of the text itself
  bytes.resize(std::min<std::size_t>(size, bytes.size()));
  const bool endless = RegistryValue::isTextType(type) && !bytes.ends_with('\0');
  if (endless) bytes += '\0';
  return set(handle, name,
             RegistryValue::ofBytes(type, {bytes.begin(), bytes.end()}, machine_.codePage()));
}

SystemError SimulatedRegistry::RegSetValueExA(RegistryKey handle, TextView name, std::uint32_t type,
                                              std::int32_t data) {
  RegistryValue value = RegistryValue::ofNumber(static_cast<std::uint32_t>(data));
  if (type != registry_type::number) {
    value = RegistryValue::ofBytes(type, value.bytes, machine_.codePage());
  }
  return set(handle, name, std::move(value));
}

SystemError SimulatedRegistry::RegDeleteValueA(RegistryKey handle, TextView text) {
  Key key;
  if (const SystemError error = keyOf(handle, key)) return error;
  const Text name = machine_.throughAnsi(beforeNul(text));
  SystemError error = key.node->values.contains(upperCase(name)) ? success : fileNotFound;
  if (machine_.registry.denied(key.hive, key.path)) error = accessDenied;
  if (error == success) machine_.registry.removeValue(key.hive, key.path, name);
  const TextView view = name;
  tell("delete", key, error, &view);
  return error;
}

// ---- transcript

void SimulatedRegistry::tell(std::string_view op, const Key& key, SystemError error,
                             const TextView* name, const RegistryValue* value) {
  if (!machine_.transcript.wants("registry")) return;
  Event event = {{"event", "registry"},
                 {"op", op},
                 {"hive", toUtf8(hiveName(key.hive))},
                 {"key", toUtf8(key.path)}};
  if (name != nullptr) event["name"] = toUtf8(*name);
  if (value != nullptr) {
    event["type"] = value->type;
    event["value"] = told(*value);
  }
  event["error"] = error;
  machine_.transcript.add(std::move(event));
}

}  // namespace zev::simulated
