#include "simulated/registry_tree.h"

#include <algorithm>
#include <stdexcept>

#include "code_page/code_page.h"

namespace zev::simulated {
namespace {

constexpr char16_t keySeparator = u'\\';
constexpr TextView classes = u"Software\\Classes";

/// Where a key really is.
struct Address {
  RegistryKey hive;
  std::vector<Text> names;
};

std::vector<Text> split(TextView key) {
  std::vector<Text> names;
  while (!key.empty()) {
    const std::size_t end = std::min(key.find(keySeparator), key.size());
    if (end > 0) names.emplace_back(key.substr(0, end));
    key.remove_prefix(std::min(end + 1, key.size()));
  }
  return names;
}

Address addressOf(RegistryKey hive, TextView key) {
  if (hive != HKEY_CLASSES_ROOT) return {hive, split(key)};
  return {HKEY_LOCAL_MACHINE, split(join(classes, u"\\", key))};
}

/// A text that tells keys apart and is the beginning of that of every key below.
Text fullKey(RegistryKey hive, TextView key) {
  const Address address = addressOf(hive, key);
  Text full = hexadecimal(static_cast<std::uint32_t>(address.hive));
  for (const Text& name : address.names) full.append(1, keySeparator).append(upperCase(name));
  return full + keySeparator;
}

}  // namespace

// ---- values

RegistryValue RegistryValue::ofText(TextView text, std::uint32_t type) {
  return {type, Text(text) + u'\0', {}};
}

RegistryValue RegistryValue::ofNumber(std::uint32_t number) {
  RegistryValue value{registry_type::number, {}, {}};
  for (int shift = 0; shift < 32; shift += 8) {
    value.bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
  return value;
}

RegistryValue RegistryValue::ofBytes(std::uint32_t type, std::vector<std::uint8_t> bytes,
                                     std::uint32_t codePage) {
  if (!isTextType(type)) return {type, {}, std::move(bytes)};
  return {type,
          fromCodePage({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, codePage),
          {}};
}

std::uint32_t RegistryValue::number() const {
  std::uint32_t number = 0;
  for (std::size_t each = 0; each < std::min<std::size_t>(4, bytes.size()); ++each) {
    number |= std::uint32_t{bytes[each]} << (8 * each);
  }
  return number;
}

std::vector<std::uint8_t> RegistryValue::ansiBytes(std::uint32_t codePage) const {
  if (!isText()) return bytes;
  const std::string ansi = toCodePage(units, codePage);
  return {ansi.begin(), ansi.end()};
}

// ---- the tree

RegistryTree::RegistryTree() {
  for (const RegistryKey hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    roots_[hive] = std::make_shared<RegistryNode>();
  }
  createKey(HKEY_CLASSES_ROOT, {});
}

bool RegistryTree::isHive(RegistryKey hive) { return !hiveName(hive).empty(); }

std::shared_ptr<RegistryNode> RegistryTree::find(RegistryKey hive, TextView key) const {
  if (!isHive(hive)) return nullptr;
  const Address address = addressOf(hive, key);
  std::shared_ptr<RegistryNode> node = roots_.at(address.hive);
  for (const Text& name : address.names) {
    const auto child = node->keys.find(upperCase(name));
    if (child == node->keys.end()) return nullptr;
    node = child->second;
  }
  return node;
}

std::optional<RegistryValue> RegistryTree::value(RegistryKey hive, TextView key,
                                                 TextView name) const {
  const auto node = find(hive, key);
  if (!node) return std::nullopt;
  const auto found = node->values.find(upperCase(name));
  return found == node->values.end() ? std::nullopt : std::optional(found->second.value);
}

std::shared_ptr<RegistryNode> RegistryTree::createKey(RegistryKey hive, TextView key) {
  if (!isHive(hive)) throw std::invalid_argument("unknown hive");
  const Address address = addressOf(hive, key);
  std::shared_ptr<RegistryNode> node = roots_.at(address.hive);
  for (const Text& name : address.names) {
    std::shared_ptr<RegistryNode>& child = node->keys[upperCase(name)];
    if (!child) {
      child = std::make_shared<RegistryNode>();
      child->name = name;
    }
    node = child;
  }
  return node;
}

void RegistryTree::setValue(RegistryKey hive, TextView key, TextView name, RegistryValue value) {
  const auto node = createKey(hive, key);
  RegistryNode::Named& named = node->values.try_emplace(upperCase(name), Text(name)).first->second;
  named.value = std::move(value);
}

void RegistryTree::removeValue(RegistryKey hive, TextView key, TextView name) {
  if (const auto node = find(hive, key)) node->values.erase(upperCase(name));
}

namespace {

void markDeleted(RegistryNode& node) {
  node.deleted = true;
  for (auto& [name, child] : node.keys) markDeleted(*child);
}

}  // namespace

void RegistryTree::removeKey(RegistryKey hive, TextView key) {
  const auto node = find(hive, key);
  Address address = addressOf(hive, key);
  if (!node || address.names.empty()) return;
  markDeleted(*node);
  std::shared_ptr<RegistryNode> parent = roots_.at(address.hive);
  const Text leaf = upperCase(address.names.back());
  address.names.pop_back();
  for (const Text& name : address.names) parent = parent->keys.at(upperCase(name));
  parent->keys.erase(leaf);
}

// ---- refusals

void RegistryTree::deny(RegistryKey hive, TextView key, bool denied) {
  const Text full = fullKey(hive, key);
  std::erase(denied_, full);
  if (denied) denied_.push_back(full);
}

void RegistryTree::allowAll(RegistryKey hive) {
  const Text root = fullKey(hive, {});
  std::erase_if(denied_, [&](const Text& each) { return each.starts_with(root); });
}

bool RegistryTree::denied(RegistryKey hive, TextView key) const {
  const Text full = fullKey(hive, key);
  return std::any_of(denied_.begin(), denied_.end(),
                     [&](const Text& each) { return full.starts_with(each); });
}

}  // namespace zev::simulated
