#pragma once

#include <memory>
#include <stdexcept>
#include <string>

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

}  // namespace zev::scenario
