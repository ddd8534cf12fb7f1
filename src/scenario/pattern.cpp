#include "scenario/matcher.h"

#include <re2/re2.h>

namespace zev::scenario {
namespace {

/// What is wrong with an expression is told by whoever reads it, not by the library on its own.
RE2::Options quiet() {
  RE2::Options options;
  options.set_log_errors(false);
  return options;
}

}  // namespace

struct Pattern::Compiled {
  explicit Compiled(const std::string& text) : expression(text, quiet()) {}

  RE2 expression;
};

Pattern::Pattern(const std::string& expression)
    : compiled_(std::make_unique<Compiled>(expression)) {
  if (!compiled_->expression.ok()) throw std::invalid_argument(compiled_->expression.error());
}

Pattern::~Pattern() = default;

bool Pattern::isIn(const std::string& text) const {
  return RE2::PartialMatch(text, compiled_->expression);
}

}  // namespace zev::scenario
