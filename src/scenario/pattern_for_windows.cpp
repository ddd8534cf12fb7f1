#include <regex>

#include "scenario/matcher.h"

namespace zev::scenario {
/// There is no package of the other library for Windows. The standard library's own way of
/// matching goes down a level of the stack with each character of the text; this one goes through
/// the text once, with all ways to match it side by side.
struct Pattern::Compiled {
  explicit Compiled(const std::string& text)
      : expression(text, std::regex::ECMAScript | std::regex_constants::__polynomial) {}

  std::regex expression;
};

Pattern::Pattern(const std::string& expression) {
  try {
    compiled_ = std::make_unique<Compiled>(expression);
  } catch (const std::regex_error& error) {
    throw std::invalid_argument(error.what());
  }
}

Pattern::~Pattern() = default;

bool Pattern::isIn(const std::string& text) const {
  return std::regex_search(text, compiled_->expression);
}

}  // namespace zev::scenario
