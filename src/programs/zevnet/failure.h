#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "runtime/error.h"

namespace zev::netcat {

/// What a connection or the whole program ends by. No RuntimeError, so that it leaves event
/// procedures too.
class Failure : public std::exception {
 public:
  Failure(std::int32_t number, std::string text, std::string source);
  explicit Failure(const RuntimeError& error);
  /// An error of the sockets, with the text that they have for it.
  Failure(std::int32_t number, std::string source);

  /// "number: text (Source)"
  const char* what() const noexcept override { return line_.c_str(); }

 private:
  std::string line_;
};

}  // namespace zev::netcat
