#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "runtime/error.h"
#include "socket/winsock_errors.h"

namespace zev::netcat {

/// What a connection or the whole program ends by. No RuntimeError, so that it leaves event
/// procedures too.
class Failure : public std::exception {
 public:
  Failure(std::int32_t number, std::string text, std::string source)
      : line_(std::to_string(number) + ": " + std::move(text) + " (" + std::move(source) + ")") {}
  explicit Failure(const RuntimeError& error)
      : Failure(error.number(), toUtf8(error.description()), toUtf8(error.source())) {}
  /// An error of the sockets, with the text that they have for it.
  Failure(std::int32_t number, std::string source)
      : Failure(number, toUtf8(WinsockErrorText(number)), std::move(source)) {}

  /// "number: text (Source)"
  const char* what() const noexcept override { return line_.c_str(); }

 private:
  std::string line_;
};

}  // namespace zev::netcat
