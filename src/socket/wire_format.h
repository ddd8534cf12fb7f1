#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "runtime/variant.h"

namespace zev {

/// Bytes that a number of that type has on the wire: Integer and Boolean 2, Byte 1, Long and Single
/// 4, Double, Currency and Date 8. None for texts, arrays and every type that does not travel.
std::optional<std::int32_t> wireSize(VariantType type);

/// A number in its memory form, low byte first; its type has a wireSize.
std::vector<std::uint8_t> toWire(const Variant& number);

/// The number that wireSize(type) bytes spell.
Variant fromWire(VariantType type, std::span<const std::uint8_t> bytes);

}  // namespace zev
