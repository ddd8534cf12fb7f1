#include "scenario/matcher.h"

#include <algorithm>

namespace zev::scenario {
namespace {

/// In bytes; more than any scenario wants. What reads one goes down into it level by level.
constexpr std::size_t longestExpression = 1000;

bool contains(const Json& wanted, const Json& found) {
  if (found.isText()) {
    return wanted.isText() && found.text().find(wanted.text()) != std::string::npos;
  }
  if (!found.isList()) return false;
  const auto hasElement = [&](const Json& element) {
    return std::any_of(found.begin(), found.end(),
                       [&](const Json& each) { return matches(element, each); });
  };
  if (!wanted.isList()) return hasElement(wanted);
  return std::all_of(wanted.begin(), wanted.end(), hasElement);
}

bool matchesExpression(const Json& expression, const Json& found) {
  return found.isText() && Pattern(expression.text()).isIn(found.text());
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
    return findCondition(each.name)->holds(each.value, found);
  });
}

bool listMatches(const Json& expected, const Json& found) {
  return found.isList() &&
         std::equal(expected.begin(), expected.end(), found.begin(), found.end(), matches);
}

bool objectMatches(const Json& expected, const Json& found) {
  if (!found.isMembers()) return false;
  return std::all_of(expected.items().begin(), expected.items().end(), [&](const auto& each) {
    return found.contains(each.name) && matches(each.value, found.at(each.name));
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
  return expected.isMembers() &&
         std::any_of(std::begin(conditions), std::end(conditions),
                     [&](const Condition& each) { return expected.contains(each.key); });
}

void checkMatcher(const JsonReader& expected) {
  if (expected.json().isList()) {
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
  if (expected.json().isNumber() || expected.json().isFraction()) expected.whole(least, most);
  if (expected.json().isList()) {
    for (const JsonReader& each : expected.elements()) checkNumbers(each, least, most);
  }
  if (!expected.isObject()) return;
  for (const auto& [key, value] : expected.members()) checkNumbers(value, least, most);
}

bool matches(const Json& expected, const Json& found) {
  if (isCondition(expected)) return conditionHolds(expected, found);
  if (expected.isList()) return listMatches(expected, found);
  if (expected.isMembers()) return objectMatches(expected, found);
  return expected == found;
}

}  // namespace zev::scenario
