#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// Errors of the component beside those of Winsock.
namespace socket_error {
inline constexpr std::int32_t outOfMemory = 7;
inline constexpr std::int32_t wrongProtocolOrState = 40006;
inline constexpr std::int32_t argumentOutOfRange = 40014;
inline constexpr std::int32_t invalidArgument = 40014;  ///< the same number with another text
inline constexpr std::int32_t unsupportedVariant = 40018;
inline constexpr std::int32_t invalidState = 40020;
}  // namespace socket_error

/// The text of a Winsock error number; "Unknown error." for one without.
Text WinsockErrorText(std::int32_t number);

/// Raises a failure of Winsock with its text.
[[noreturn]] void raiseWinsockError(std::int32_t number, TextView source);

// The fixed failures; each is raised with its number and text.
[[noreturn]] void raiseOutOfMemory(TextView source);
/// 40006: the call does not go with the socket's protocol, or not with its state.
[[noreturn]] void raiseWrongProtocolOrState(TextView source);
/// 40014: a number that the call cannot take.
[[noreturn]] void raiseArgumentOutOfRange(TextView source);
/// 40014 as well: a value of the wrong type or form.
[[noreturn]] void raiseInvalidArgument(TextView source);
/// 40018: data of a type that cannot be sent or fetched.
[[noreturn]] void raiseUnsupportedVariant(TextView source);
/// 40020: the call needs a socket in another state, mostly a closed one.
[[noreturn]] void raiseInvalidState(TextView source);

}  // namespace zev
