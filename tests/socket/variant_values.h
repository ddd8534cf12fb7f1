#pragma once

#include <string>
#include <vector>

#include "socket/wire_format.h"

// Values for the tests of sending and fetching.
namespace zev::socket_bench {

/// One of each type of number, and a truth value.
inline const Variant numbers[] = {
    std::int16_t{-1234}, std::int32_t{123456789}, 1.5F, -2.25,
    Currency{-99999},    Date{36526.25},          true, std::uint8_t{200},
};

inline std::string typeName(const Variant& value) {
  return "type " + std::to_string(static_cast<int>(value.type()));
}

/// A target of the same type with nothing in it.
inline Variant blankOf(const Variant& value) {
  constexpr std::size_t longest = 8;
  return fromWire(value.type(), std::vector<std::uint8_t>(longest));
}

inline Variant typeOf(const Variant& value) { return static_cast<std::int32_t>(value.type()); }

}  // namespace zev::socket_bench
