#include "programs/zevnet/failure.h"

namespace zev::netcat {

Failure::Failure(std::int32_t number, std::string text, std::string source)
    : line_(std::to_string(number) + ": " + std::move(text) + " (" + std::move(source) + ")") {}

Failure::Failure(const RuntimeError& error)
    : Failure(error.number(), toUtf8(error.description()), toUtf8(error.source())) {}

}  // namespace zev::netcat
