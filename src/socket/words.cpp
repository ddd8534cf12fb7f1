#include "socket/words.h"

#include <bit>

#include "runtime/error.h"

namespace zev {
namespace {

constexpr std::int32_t wordBits = 16;
constexpr std::int32_t wordMaximum = 0xFFFF;
constexpr std::int32_t wordCount = 0x10000;
constexpr std::int32_t integerMaximum = 0x7FFF;

std::uint16_t inNetworkOrder(std::uint16_t value) {
  if constexpr (std::endian::native == std::endian::big) return value;
  return static_cast<std::uint16_t>(value << 8 | value >> 8);
}

}  // namespace

std::int32_t HiWord(const std::int32_t& value) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value) >> wordBits);
}

std::int32_t LoWord(const std::int32_t& value) { return value & wordMaximum; }

std::int16_t UnsignedToInteger(const std::int32_t& value) {
  if (value < 0 || value > wordMaximum) throw RuntimeError(ErrorNumber::Overflow);
  return static_cast<std::int16_t>(value > integerMaximum ? value - wordCount : value);
}

std::int32_t IntegerToUnsigned(const std::int16_t& value) {
  return value < 0 ? value + wordCount : value;
}

std::uint16_t htons(std::int16_t value) {
  return inNetworkOrder(static_cast<std::uint16_t>(value));
}

std::int16_t ntohs(std::uint16_t value) { return static_cast<std::int16_t>(inNetworkOrder(value)); }

}  // namespace zev
