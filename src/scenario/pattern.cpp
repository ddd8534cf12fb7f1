#include "scenario/pattern.h"

#include <regex>

namespace zev::scenario {

struct Pattern::Compiled {
  std::regex expression;
};

Pattern::Pattern(const std::string& expression) {
  try {
    compiled_ = std::make_unique<Compiled>(Compiled{std::regex(expression)});
  } catch (const std::regex_error& error) {
    throw std::invalid_argument(error.what());
  }
}

Pattern::~Pattern() = default;

bool Pattern::isIn(const std::string& text) const {
  return std::regex_search(text, compiled_->expression);
}

}  // namespace zev::scenario
