#pragma once

#include <memory>
#include <stdexcept>
#include <string>

namespace zev::scenario {

/// A regular expression (ECMAScript's). The library that reads it is dear to compile, and stays
/// behind this.
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
