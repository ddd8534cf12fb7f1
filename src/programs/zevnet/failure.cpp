#include "programs/zevnet/failure.h"

#include "socket/winsock_errors.h"

namespace zev::netcat {

Failure::Failure(std::int32_t number, std::string text, std::string source)
    : line_(std::to_string(number) + ": " + std::move(text) + " (" + std::move(source) + ")") {}

Failure::Failure(const RuntimeError& error)
    : Failure(error.number(), toUtf8(error.description()), toUtf8(error.source())) {}

Failure::Failure(std::int32_t number, std::string source)
    : Failure(number, toUtf8(WinsockErrorText(number)), std::move(source)) {}

}  // namespace zev::netcat
