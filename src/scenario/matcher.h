#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "scenario/json_reader.h"

namespace zev::scenario {

/// A regular expression, without what looks around or back: it takes time in proportion to the
/// text, and no more of the stack for a long one. The library behind it differs by system.
class Pattern {
 public:
  /// Fails with a std::invalid_argument that says what is wrong with the expression.
  explicit Pattern(const std::string& expression);
  ~Pattern();

  /// Whether it is found anywhere in a text.
  bool isIn(const std::string& text) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

/// Checks that an expected value can be matched: an object with one of the keys `contains`,
/// `matches` and `not` has no others, and every `matches` is a regular expression. Fails with a
/// ScenarioError.
void checkMatcher(const JsonReader& expected);

/// Checks that each number in an expected value is a whole one within bounds: another one could
/// match nothing. Fails with a ScenarioError.
void checkNumbers(const JsonReader& expected, std::int64_t least, std::int64_t most);

/// True if the object stands for a condition and not for itself.
bool isCondition(const Json& expected);

/// Whether a value is what is expected.
///
/// A condition holds if all its keys hold: `contains` (a text has the piece; a list has an element
/// that matches, or one for each element of a list), `matches` (a regular expression is found in a
/// text), `not` (the value inside does not match). Lists match element by element. An object
/// matches if each of its keys matches; what else the found one has does not matter. All else must
/// be equal.
bool matches(const Json& expected, const Json& found);

}  // namespace zev::scenario
