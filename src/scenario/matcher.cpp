#include "scenario/matcher.h"

#include <algorithm>

namespace zev::scenario {
namespace {

/// In bytes; more than any scenario wants. What reads one goes down into it level by level.
constexpr std::size_t longestExpression = 1000;

bool contains(const Json& wanted, const Json& found) {
  if (found.is_string()) {
    return wanted.is_string() && found.get_ref<const std::string&>().find(
                                     wanted.get_ref<const std::string&>()) != std::string::npos;
  }
  if (!found.is_array()) return false;
  const auto hasElement = [&](const Json& element) {
    return std::any_of(found.begin(), found.end(),
                       [&](const Json& each) { return matches(element, each); });
  };
  if (!wanted.is_array()) return hasElement(wanted);
  return std::all_of(wanted.begin(), wanted.end(), hasElement);
}

bool matchesExpression(const Json& expression, const Json& found) {
  return found.is_string() &&
         Pattern(expression.get<std::string>()).isIn(found.get_ref<const std::string&>());
}

struct Condition {
  std::string_view key;
  bool (*holds)(const Json& wanted, const Json& found);
};

constexpr Condition conditions[] = {
    {"contains", contains},
    {"matches", matchesExpression},
    {"not", [](const Json& wanted, const Json& found) { return !matches(wanted, found); }},
};

const Condition* findCondition(std::string_view key) {
  const auto found = std::find_if(std::begin(conditions), std::end(conditions),
                                  [&](const Condition& each) { return each.key == key; });
  return found == std::end(conditions) ? nullptr : found;
}

bool conditionHolds(const Json& expected, const Json& found) {
  return std::all_of(expected.items().begin(), expected.items().end(), [&](const auto& each) {
    return findCondition(each.key())->holds(each.value(), found);
  });
}

bool listMatches(const Json& expected, const Json& found) {
  return found.is_array() &&
         std::equal(expected.begin(), expected.end(), found.begin(), found.end(), matches);
}

bool objectMatches(const Json& expected, const Json& found) {
  if (!found.is_object()) return false;
  return std::all_of(expected.items().begin(), expected.items().end(), [&](const auto& each) {
    const auto member = found.find(each.key());
    return member != found.end() && matches(each.value(), *member);
  });
}

void checkExpression(const JsonReader& expression) {
  if (expression.utf8().size() > longestExpression) {
    expression.fail("a regular expression of more than " + std::to_string(longestExpression) +
                    " bytes");
  }
  try {
    Pattern(expression.utf8());
  } catch (const std::invalid_argument& error) {
    expression.fail(std::string("no regular expression: ") + error.what());
  }
}

void checkConditionKey(const std::string& key, const JsonReader& value) {
  if (findCondition(key) == nullptr) failUnknownKey(value, key, {"contains", "matches", "not"});
  if (key == "matches") checkExpression(value);
}

}  // namespace

bool isCondition(const Json& expected) {
  return expected.is_object() &&
         std::any_of(std::begin(conditions), std::end(conditions),
                     [&](const Condition& each) { return expected.contains(each.key); });
}

void checkMatcher(const JsonReader& expected) {
  if (expected.json().is_array()) {
    for (const JsonReader& each : expected.elements()) checkMatcher(each);
  }
  if (!expected.isObject()) return;
  const bool condition = isCondition(expected.json());
  for (const auto& [key, value] : expected.members()) {
    if (condition) checkConditionKey(key, value);
    if (!condition || key != "matches") checkMatcher(value);
  }
}

void checkNumbers(const JsonReader& expected, std::int64_t least, std::int64_t most) {
  if (expected.json().is_number()) expected.whole(least, most);
  if (expected.json().is_array()) {
    for (const JsonReader& each : expected.elements()) checkNumbers(each, least, most);
  }
  if (!expected.isObject()) return;
  for (const auto& [key, value] : expected.members()) checkNumbers(value, least, most);
}

bool matches(const Json& expected, const Json& found) {
  if (isCondition(expected)) return conditionHolds(expected, found);
  if (expected.is_array()) return listMatches(expected, found);
  if (expected.is_object()) return objectMatches(expected, found);
  return expected == found;
}

}  // namespace zev::scenario
