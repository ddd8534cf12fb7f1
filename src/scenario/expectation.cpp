#include "scenario/expectation.h"

#include <algorithm>
#include <array>
#include <limits>

#include "platform/operations.h"
#include "scenario/matcher.h"

namespace zev::scenario {

Verdict verdict(const Json& expected, Json found) { return {matches(expected, found), found}; }

namespace {

Json textOrNull(const std::optional<Text>& text) {
  return text ? Json(toUtf8(*text)) : Json(nullptr);
}

Json listOf(const std::vector<Text>& texts) {
  Json list = Json::list();
  for (const Text& each : texts) list.push_back(toUtf8(each));
  return list;
}

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), [](char each) {
    return each >= 'A' && each <= 'Z' ? static_cast<char>(each + 32) : each;
  });
  return text;
}

std::string hexOf(const std::vector<std::uint8_t>& bytes) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string hex;
  for (const std::uint8_t each : bytes) {
    hex += digits[each >> 4];
    hex += digits[each & 15];
  }
  return hex;
}

/// An expected value with all that it denies brought into the form in which things are found.
Json normalDenial(const Json& expected, Json (*normal)(const Json& expected)) {
  Json denial = expected;
  if (denial.isMembers() && denial.contains("not")) denial["not"] = normal(denial["not"]);
  return denial;
}

/// A list of texts in an order of its own, so that the order of a set does not matter. One with
/// conditions in it keeps its order.
Json sorted(const Json& expected) {
  Json list = normalDenial(expected, sorted);
  const auto isText = [](const Json& each) { return each.isText(); };
  if (list.isList() && std::all_of(list.begin(), list.end(), isText)) {
    std::sort(list.begin(), list.end(),
              [](const Json& a, const Json& b) { return a.text() < b.text(); });
  }
  return list;
}

// Files and folders.

void checkPath(std::string_view path, const JsonReader& expected) {
  if (path.size() < 3 || path[1] != ':' || (path[2] != '\\' && path[2] != '/')) {
    expected.fail("\"" + std::string(path) + "\" is no full path of the machine");
  }
}

std::optional<Text> fileText(const Witness& witness, const Text& path) {
  const auto entry = witness.entry(path);
  const auto bytes = entry ? witness.read(path, 0, entry->size) : std::nullopt;
  if (!bytes) return std::nullopt;
  const std::string_view chars(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  return witness.fromAnsi(chars);
}

/// A place and the bytes there, as many as are expected.
void checkHexAt(const JsonReader& expected) {
  const auto parts = expected.elements(2);
  parts[0].whole(0, std::int64_t{1} << 40);
  parts[1].hex();
}

Json factExists(const Witness& witness, const Text& path, const Json&) {
  return witness.entry(path).has_value();
}

Json factSize(const Witness& witness, const Text& path, const Json&) {
  const auto entry = witness.entry(path);
  if (!entry || (entry->attributes & file_attribute::directory) != 0) return nullptr;
  return entry->size;
}

Json factSha256(const Witness& witness, const Text& path, const Json&) {
  const auto sum = witness.sha256(path);
  return sum ? Json(*sum) : Json(nullptr);
}

Json factAttributes(const Witness& witness, const Text& path, const Json&) {
  const auto entry = witness.entry(path);
  if (!entry) return nullptr;
  Json names = Json::list();
  if ((entry->attributes & file_attribute::hidden) != 0) names.push_back("hidden");
  if ((entry->attributes & file_attribute::readOnly) != 0) names.push_back("readonly");
  if ((entry->attributes & file_attribute::system) != 0) names.push_back("system");
  if ((entry->attributes & file_attribute::link) != 0) names.push_back("link");
  return names;
}

Json factHexAt(const Witness& witness, const Text& path, const Json& expected) {
  const auto offset = expected.at(0).get<std::uint64_t>();
  const auto count = expected.at(1).text().size() / 2;
  const auto bytes = witness.read(path, offset, count);
  return bytes ? Json::list({offset, hexOf(*bytes)}) : Json(nullptr);
}

Json factText(const Witness& witness, const Text& path, const Json&) {
  return textOrNull(fileText(witness, path));
}

void checkAnything(const JsonReader& expected) { checkMatcher(expected); }

void checkExists(const JsonReader& expected) { static_cast<void>(expected.truth()); }

Json same(const Json& expected) { return expected; }

Json lowerHex(const Json& expected) {
  Json normal = normalDenial(expected, lowerHex);
  if (normal.isText()) normal = lower(normal.text());
  if (normal.isList() && normal.size() == 2) normal[1] = lowerHex(normal[1]);
  return normal;
}

/// Something that can be told of an entry: how it is checked, found, and brought into the form in
/// which it is found.
struct Fact {
  std::string_view key;
  void (*check)(const JsonReader& expected);
  Json (*find)(const Witness& witness, const Text& path, const Json& expected);
  Json (*normal)(const Json& expected);
};

constexpr Fact facts[] = {
    {"exists", checkExists, factExists, same},
    {"size", checkAnything, factSize, same},
    {"sha256", checkAnything, factSha256, lowerHex},
    {"attributes", checkAnything, factAttributes, sorted},
    {"hexAt", checkHexAt, factHexAt, lowerHex},
    {"text", checkAnything, factText, same},
};

const Fact* findFact(std::string_view key) {
  for (const Fact& each : facts) {
    if (each.key == key) return &each;
  }
  return nullptr;
}

/// True if the value describes an entry by facts, and does not stand for its content.
bool isFacts(const Json& expected) { return expected.isMembers() && !isCondition(expected); }

/// True for `{"not": facts}`, the denial of facts or of another such denial.
bool isDenial(const Json& expected) {
  if (!expected.isMembers() || expected.size() != 1 || !expected.contains("not")) return false;
  return isFacts(expected.at("not")) || isDenial(expected.at("not"));
}

bool tellsFacts(const Json& expected) { return isFacts(expected) || isDenial(expected); }

void checkFacts(const JsonReader& expected) {
  if (isDenial(expected.json())) return checkFacts(expected.member("not"));
  for (const auto& [key, value] : expected.members()) {
    const Fact* fact = findFact(key);
    if (fact == nullptr) {
      failUnknownKey(value, key,
                     {"exists", "size", "sha256", "attributes", "hexAt", "text", "contains",
                      "matches", "not"});
    }
    fact->check(value);
  }
}

Verdict judgeFacts(const Text& path, const Json& expected, const Witness& witness) {
  if (isDenial(expected)) {
    const Verdict denied = judgeFacts(path, expected.at("not"), witness);
    return {!denied.held, denied.found};
  }
  Verdict all{true, Json::members()};
  for (const auto& [key, value] : expected.items()) {
    const Fact* fact = findFact(key);
    const Json found = fact->find(witness, path, value);
    all.held = all.held && matches(fact->normal(value), found);
    all.found[key] = found;
  }
  return all;
}

void checkFile(std::string_view path, const JsonReader& expected) {
  checkPath(path, expected);
  if (tellsFacts(expected.json())) return checkFacts(expected);
  checkMatcher(expected);
}

// The registry.

struct ValuePlace {
  RegistryKey hive = 0;
  Text key;
  std::optional<Text> name;  ///< none: the key itself
};

/// Takes "HIVE\key|name" apart; none if it does not begin with a hive.
std::optional<ValuePlace> valuePlace(std::string_view written) {
  const Text whole = fromUtf8(written);
  const std::size_t bar = std::min(whole.find(u'|'), whole.size());
  const TextView path = TextView(whole).substr(0, bar);
  const std::size_t slash = std::min(path.find(u'\\'), path.size());
  const auto hive = hiveNamed(path.substr(0, slash));
  if (!hive) return std::nullopt;
  ValuePlace place{*hive, Text(path.substr(std::min(slash + 1, path.size()))), std::nullopt};
  if (bar < whole.size()) place.name = whole.substr(bar + 1);
  return place;
}

void checkRegistry(std::string_view written, const JsonReader& expected) {
  if (!valuePlace(written)) {
    expected.fail("the key is written as HKEY_LOCAL_MACHINE\\Software\\Key|Name");
  }
  checkMatcher(expected);
  checkNumbers(expected, std::numeric_limits<std::int32_t>::min(),
               std::numeric_limits<std::uint32_t>::max());
}

/// Whether the expected value is written as an object of its parts, and with bytes rather than a
/// text.
struct Wish {
  bool parts = false;
  bool hex = false;
};

Wish wishOf(const Json& expected) {
  if (!expected.isMembers()) return {};
  if (expected.contains("not")) return wishOf(expected.at("not"));
  return {!isCondition(expected), expected.contains("hex")};
}

/// The number that four bytes stand for, the lowest first.
std::uint32_t numberOf(const std::vector<std::uint8_t>& bytes) {
  std::uint32_t number = 0;
  for (unsigned place = 0; place < 4; ++place) {
    number |= static_cast<std::uint32_t>(bytes[place]) << (8 * place);
  }
  return number;
}

/// A value as a scenario writes it: a text, a number, or its type with its text or bytes.
Json dataOf(const Witness::Value& value, const Wish& wish) {
  const bool plainText = value.type == registry_type::text && value.text;
  const bool plainNumber = value.type == registry_type::number && value.bytes.size() == 4;
  if (!wish.parts && plainText) return toUtf8(*value.text);
  if (!wish.parts && plainNumber) return numberOf(value.bytes);
  if (value.text && !wish.hex) return {{"type", value.type}, {"text", toUtf8(*value.text)}};
  return {{"type", value.type}, {"hex", hexOf(value.bytes)}};
}

Json normalRegistry(const Json& expected) {
  Json normal = expected;
  if (normal.isNumber()) return static_cast<std::uint32_t>(normal.get<std::int64_t>());
  if (!normal.isMembers()) return normal;
  if (normal.contains("hex")) normal["hex"] = lowerHex(normal["hex"]);
  if (normal.contains("not")) normal["not"] = normalRegistry(normal["not"]);
  return normal;
}

/// A key as the object of its values, each in the way in which `expected` writes it; null if the
/// key is not there.
Json keyToJson(const ValuePlace& place, const Json& expected, const Witness& witness) {
  const auto found = witness.values(place.hive, place.key);
  if (!found) return nullptr;
  Json values = Json::members();
  for (const auto& [text, value] : *found) {
    const std::string name = toUtf8(text);
    values[name] = dataOf(value, expected.contains(name) ? wishOf(expected.at(name)) : Wish{});
  }
  return values;
}

Json normalValues(const Json& expected) {
  if (!expected.isMembers() || isCondition(expected)) return normalRegistry(expected);
  Json normal = Json::members();
  for (const auto& [name, value] : expected.items()) normal[name] = normalRegistry(value);
  return normal;
}

// Shortcuts.

constexpr std::string_view shortcutProperties[] = {
    "TargetPath", "Arguments", "WindowStyle", "IconLocation", "Description", "WorkingDirectory",
};

/// The name of a property as the automation object spells it; empty for none of its.
std::string_view shortcutProperty(const std::string& written) {
  for (const std::string_view each : shortcutProperties) {
    if (lower(std::string(each)) == lower(written)) return each;
  }
  return {};
}

void checkShortcutProperties(const JsonReader& expected) {
  if (isDenial(expected.json())) return checkShortcutProperties(expected.member("not"));
  if (!isFacts(expected.json())) return;
  for (const auto& [key, value] : expected.members()) {
    if (!shortcutProperty(key).empty()) continue;
    failUnknownKey(value, key, {std::begin(shortcutProperties), std::end(shortcutProperties)});
  }
}

void checkShortcut(std::string_view path, const JsonReader& expected) {
  checkPath(path, expected);
  checkMatcher(expected);
  checkShortcutProperties(expected);
}

// What happened.

constexpr KeyRow<std::nullptr_t> boxKeys[] = {
    {"text", [](const JsonReader& value, std::nullptr_t&) { checkMatcher(value); }},
    {"title", [](const JsonReader& value, std::nullptr_t&) { checkMatcher(value); }},
    {"style", [](const JsonReader& value, std::nullptr_t&) { checkMatcher(value); }},
    {"answer", [](const JsonReader& value, std::nullptr_t&) { checkMatcher(value); }},
};

void checkBoxes(std::string_view, const JsonReader& expected) {
  checkMatcher(expected);
  if (!expected.json().isList()) {
    if (!isCondition(expected.json())) expected.failWanted("a list of boxes");
    return;
  }
  for (const JsonReader& each : expected.elements()) {
    std::nullptr_t nothing = nullptr;
    if (!isCondition(each.json())) readObject(each, boxKeys, nothing);
  }
}

void checkValue(std::string_view, const JsonReader& expected) { checkMatcher(expected); }

// What was started.

/// How an expectation describes what was started: by its words alone, or as objects of its parts.
struct StartWish {
  bool words = false;
  bool parts = false;
};

StartWish startWish(const Json& expected) {
  if (isFacts(expected)) return {false, true};
  StartWish wish{expected.isText(), false};
  if (!expected.isStructured()) return wish;
  const auto add = [&wish](const Json& each) {
    const StartWish inner = startWish(each);
    wish = {wish.words || inner.words, wish.parts || inner.parts};
  };
  if (expected.isList()) {
    for (const Json& each : expected) add(each);
  } else {
    for (const auto& [key, each] : expected.items()) add(each);
  }
  return wish;
}

void checkParts(const JsonReader& expected, const std::vector<std::string_view>& known) {
  if (expected.json().isList()) {
    for (const JsonReader& each : expected.elements()) checkParts(each, known);
  }
  if (!expected.isObject()) return;
  for (const auto& [key, value] : expected.members()) {
    if (isCondition(expected.json())) {
      checkParts(value, known);
    } else if (std::find(known.begin(), known.end(), key) == known.end()) {
      failUnknownKey(value, key, known);
    }
  }
}

/// Words that stand beside objects would be held against objects, and a denial of them always hold.
void checkStarts(const JsonReader& expected, std::string_view what) {
  checkMatcher(expected);
  checkParts(expected, {what, "style", "directory"});
  const StartWish wish = startWish(expected.json());
  if (wish.words && wish.parts) {
    expected.fail("texts beside objects: give each as an object with its " + std::string(what));
  }
}

void checkShell(std::string_view, const JsonReader& expected) { checkStarts(expected, "command"); }

void checkOpened(std::string_view, const JsonReader& expected) { checkStarts(expected, "path"); }

void checkProperty(std::string_view, const JsonReader& expected) { checkPropertyValue(expected); }

void checkCalls(std::string_view name, const JsonReader& expected) {
  if (!findOperation(name)) expected.fail("no operation \"" + std::string(name) + "\"");
  checkMatcher(expected);
}

void checkEnded(std::string_view, const JsonReader& expected) {
  const Json& value = expected.json();
  checkMatcher(expected);
  if (value.isNull() || value == "unload" || value == "exit" || value == "error") return;
  if (isCondition(value) || (value.isMembers() && value.contains("error"))) return;
  expected.fail("an end is null, \"unload\", \"exit\", \"error\" or {\"error\": number}");
}

/// Whether an end is expected with the number of its error, and not by its word alone.
bool wantsNumber(const Json& expected) {
  if (isCondition(expected)) return expected.contains("not") && wantsNumber(expected.at("not"));
  return expected.isMembers();
}

// The kinds of key.

/// One kind of key: how it begins (or its whole name), and how it is checked. `rest` is what stands
/// after the beginning.
struct KeyKind {
  std::string_view start;
  bool whole;
  void (*check)(std::string_view rest, const JsonReader& expected);
};

constexpr KeyKind keyKinds[] = {
    {"file:", false, checkFile},         {"dir:", false, checkFile},
    {"registry:", false, checkRegistry}, {"shortcut:", false, checkShortcut},
    {"calls:", false, checkCalls},       {"global.", false, checkProperty},
    {"boxes", true, checkBoxes},         {"shell", true, checkShell},
    {"dde", true, checkValue},           {"opened", true, checkOpened},
    {"ended", true, checkEnded},         {"active", true, checkValue},
    {"focus", true, checkValue},
};

constexpr KeyKind propertyKind{"", false, checkProperty};

/// The kind of a key; null for one that no kind has.
const KeyKind* kindOf(std::string_view key) {
  for (const KeyKind& each : keyKinds) {
    if (each.whole ? key == each.start : key.starts_with(each.start)) return &each;
  }
  return isPropertyKey(key) ? &propertyKind : nullptr;
}

}  // namespace

Verdict judgeFile(std::string_view rest, const Json& expected, const Witness& witness) {
  const Text file = fromUtf8(rest);
  if (tellsFacts(expected)) return judgeFacts(file, expected, witness);
  return verdict(expected, textOrNull(fileText(witness, file)));
}

Verdict judgeDirectory(std::string_view rest, const Json& expected, const Witness& witness) {
  const Text directory = fromUtf8(rest);
  if (tellsFacts(expected)) return judgeFacts(directory, expected, witness);
  const auto names = witness.names(directory);
  Json found = names ? sorted(listOf(*names)) : Json(nullptr);
  return verdict(sorted(expected), std::move(found));
}

Verdict judgeRegistry(std::string_view rest, const Json& expected, const Witness& witness) {
  const ValuePlace place = valuePlace(rest).value();
  if (!place.name) return verdict(normalValues(expected), keyToJson(place, expected, witness));
  const auto value = witness.value(place.hive, place.key, *place.name);
  Json found;
  if (value) found = dataOf(*value, wishOf(expected));
  return verdict(normalRegistry(expected), std::move(found));
}

Verdict judgeEnd(const Json& expected, const Json& ended) {
  const bool byWord = ended.isMembers() && !wantsNumber(expected);
  return {matches(expected, byWord ? Json("error") : ended), ended};
}

bool wantsParts(const Json& expected) { return startWish(expected).parts; }

Json normalShortcut(const Json& expected) {
  if (!isFacts(expected)) return normalDenial(expected, normalShortcut);
  Json normal = Json::members();
  for (const auto& [key, value] : expected.items()) normal[shortcutProperty(key)] = value;
  return normal;
}

bool isPropertyKey(std::string_view key) {
  const auto parts = partsOfName(key);
  return parts && (parts->size() == 2 || parts->size() == 3);
}

void checkPropertyValue(const JsonReader& expected) {
  checkMatcher(expected);
  checkNumbers(expected, std::numeric_limits<std::int32_t>::min(),
               std::numeric_limits<std::int32_t>::max());
}

void checkExpectation(const std::string& key, const JsonReader& expected) {
  const KeyKind* kind = kindOf(key);
  if (kind == nullptr) {
    expected.fail("unknown key \"" + key +
                  "\"; the keys are Form.Control.Property, global., file:, dir:, registry:, "
                  "shortcut:, boxes, shell, dde, opened, calls:, ended, active, focus");
  }
  kind->check(std::string_view(key).substr(kind->start.size()), expected);
}

std::string_view kindOfKey(std::string_view key) {
  const KeyKind* kind = kindOf(key);
  return kind == nullptr ? std::string_view() : kind->start;
}

Json toJson(const PropertyValue& value) {
  if (const auto* text = std::get_if<Text>(&value)) return toUtf8(*text);
  if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
  return std::get<bool>(value);
}

PropertyValue toPropertyValue(const Json& value) {
  if (value.isFlag()) return value.get<bool>();
  if (value.isNumber()) return value.get<std::int32_t>();
  return fromUtf8(value.text());
}

}  // namespace zev::scenario
