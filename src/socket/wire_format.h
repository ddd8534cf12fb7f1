#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "runtime/variant.h"

namespace zev {

/// The upper and the lower 16 bits of a number as unsigned values, 0 to 65535, also of a negative
/// number.
std::int32_t HiWord(const std::int32_t& value);
std::int32_t LoWord(const std::int32_t& value);

/// A number from 0 to 65535 as the signed 16-bit number of the same bits. Error 6 outside that
/// range.
std::int16_t UnsignedToInteger(const std::int32_t& value);
/// A signed 16-bit number as the number from 0 to 65535 of the same bits.
std::int32_t IntegerToUnsigned(const std::int16_t& value);

/// A 16-bit number in the order of the network, and back.
std::uint16_t htons(std::int16_t value);
std::int16_t ntohs(std::uint16_t value);

/// Bytes that a number of that type has on the wire: Integer and Boolean 2, Byte 1, Long and Single
/// 4, Double, Currency and Date 8. None for texts, arrays and every type that does not travel.
std::optional<std::int32_t> wireSize(VariantType type);

/// A number in its memory form, low byte first; its type has a wireSize.
std::vector<std::uint8_t> toWire(const Variant& number);

/// The number that wireSize(type) bytes spell.
Variant fromWire(VariantType type, std::span<const std::uint8_t> bytes);

}  // namespace zev
