#include "socket/wire_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <stdexcept>

#include "runtime/error.h"

namespace zev {

// ---- halves of numbers, and numbers of 16 bits

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

namespace {

constexpr std::int16_t trueValue = -1;

template <typename Bits>
std::vector<std::uint8_t> lowByteFirst(Bits bits) {
  std::vector<std::uint8_t> bytes(sizeof bits);
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(bits);
    bits = static_cast<Bits>(std::uint64_t{bits} >> 8);
  }
  return bytes;
}

template <typename Bits>
Bits fromLowByteFirst(std::span<const std::uint8_t> bytes) {
  std::uint64_t bits = 0;
  for (std::size_t place = sizeof(Bits); place-- > 0;) bits = bits << 8 | bytes[place];
  return static_cast<Bits>(bits);
}

std::uint16_t bitsOf(bool value) { return static_cast<std::uint16_t>(value ? trueValue : 0); }
std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

/// One type that travels: how many bytes, and the two ways.
struct Row {
  VariantType type;
  std::int32_t size;
  std::vector<std::uint8_t> (*pack)(const Variant& value);
  Variant (*unpack)(std::span<const std::uint8_t> bytes);
};

using WireBytes = std::span<const std::uint8_t>;

constexpr auto rows = std::to_array<Row>({
    {VariantType::Integer, 2,
     [](const Variant& v) {
       return lowByteFirst(static_cast<std::uint16_t>(*v.get<std::int16_t>()));
     },
     [](WireBytes b) { return Variant(fromLowByteFirst<std::int16_t>(b)); }},
    {VariantType::Long, 4,
     [](const Variant& v) {
       return lowByteFirst(static_cast<std::uint32_t>(*v.get<std::int32_t>()));
     },
     [](WireBytes b) { return Variant(fromLowByteFirst<std::int32_t>(b)); }},
    {VariantType::Single, 4,
     [](const Variant& v) { return lowByteFirst(std::bit_cast<std::uint32_t>(*v.get<float>())); },
     [](WireBytes b) { return Variant(std::bit_cast<float>(fromLowByteFirst<std::uint32_t>(b))); }},
    {VariantType::Double, 8,
     [](const Variant& v) { return lowByteFirst(bitsOf(*v.get<double>())); },
     [](WireBytes b) {
       return Variant(std::bit_cast<double>(fromLowByteFirst<std::uint64_t>(b)));
     }},
    {VariantType::Currency, 8,
     [](const Variant& v) {
       return lowByteFirst(static_cast<std::uint64_t>(v.get<Currency>()->scaled));
     },
     [](WireBytes b) { return Variant(Currency{fromLowByteFirst<std::int64_t>(b)}); }},
    {VariantType::Date, 8,
     [](const Variant& v) { return lowByteFirst(bitsOf(v.get<Date>()->days)); },
     [](WireBytes b) {
       return Variant(Date{std::bit_cast<double>(fromLowByteFirst<std::uint64_t>(b))});
     }},
    {VariantType::Boolean, 2, [](const Variant& v) { return lowByteFirst(bitsOf(*v.get<bool>())); },
     [](WireBytes b) { return Variant(fromLowByteFirst<std::int16_t>(b) != 0); }},
    {VariantType::Byte, 1, [](const Variant& v) { return lowByteFirst(*v.get<std::uint8_t>()); },
     [](WireBytes b) { return Variant(b[0]); }},
});

const Row* findRow(VariantType type) {
  const auto row =
      std::find_if(rows.begin(), rows.end(), [&](const Row& each) { return each.type == type; });
  return row == rows.end() ? nullptr : &*row;
}

const Row& rowOf(VariantType type) {
  const Row* const row = findRow(type);
  if (row == nullptr) throw std::invalid_argument("a type that does not travel as a number");
  return *row;
}

}  // namespace

std::optional<std::int32_t> wireSize(VariantType type) {
  const Row* const row = findRow(type);
  if (row == nullptr) return std::nullopt;
  return row->size;
}

std::vector<std::uint8_t> toWire(const Variant& number) {
  return rowOf(number.type()).pack(number);
}

Variant fromWire(VariantType type, std::span<const std::uint8_t> bytes) {
  return rowOf(type).unpack(bytes);
}

}  // namespace zev
