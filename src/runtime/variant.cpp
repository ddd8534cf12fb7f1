#include "runtime/variant.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "runtime/error.h"

namespace zev {
namespace {

constexpr auto types = std::to_array<VariantType>({
    VariantType::Empty,
    VariantType::Null,
    VariantType::Integer,
    VariantType::Long,
    VariantType::Single,
    VariantType::Double,
    VariantType::Currency,
    VariantType::Date,
    VariantType::String,
    VariantType::Object,
    VariantType::Error,
    VariantType::Boolean,
    VariantType::Byte,
    VariantType::LongArray,
    VariantType::ByteArray,
});
static_assert(types.size() == std::variant_size_v<Variant::Value>);

constexpr double currencyScale = 10000;
constexpr int singleDigits = 7;
constexpr int doubleDigits = 15;

[[noreturn]] void mismatch() { throw RuntimeError(ErrorNumber::TypeMismatch); }

bool spellsNumber(TextView text) {
  return ignoringErrors([&] { toDouble(text); });
}

/// The number of each type that has one.
struct ToDouble {
  double operator()(std::monostate) const { return 0; }
  double operator()(Variant::Null) const { throw RuntimeError(ErrorNumber::InvalidUseOfNull); }
  double operator()(std::int16_t value) const { return value; }
  double operator()(std::int32_t value) const { return value; }
  double operator()(float value) const { return value; }
  double operator()(double value) const { return value; }
  double operator()(Currency value) const {
    return static_cast<double>(value.scaled) / currencyScale;
  }
  double operator()(Date value) const { return value.days; }
  double operator()(const Text& value) const { return toDouble(TextView(value)); }
  double operator()(bool value) const { return value ? -1 : 0; }
  double operator()(std::uint8_t value) const { return value; }
  template <typename Other>
  double operator()(const Other&) const {
    mismatch();
  }
};

Text numberText(double number, int digits) {
  std::array<char, 32> buffer;
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.*g", digits, number);
  const auto end = buffer.begin() + length;
  std::replace(buffer.begin(), end, 'e', 'E');
  return Text(buffer.begin(), end);
}

}  // namespace

VariantType Variant::type() const { return types[value_.index()]; }

bool isNumeric(const Variant& value) {
  switch (value.type()) {
    case VariantType::Empty:
    case VariantType::Integer:
    case VariantType::Long:
    case VariantType::Single:
    case VariantType::Double:
    case VariantType::Currency:
    case VariantType::Boolean:
    case VariantType::Byte:
      return true;
    case VariantType::String:
      return spellsNumber(*value.get<Text>());
    default:
      return false;
  }
}

SharedBytes::SharedBytes(Bytes bytes)
    : bytes_(bytes.empty() ? nullptr : std::make_shared<Bytes>(std::move(bytes))) {}

const SharedBytes::Bytes& SharedBytes::get() const {
  static const Bytes none;
  return bytes_ ? *bytes_ : none;
}

std::shared_ptr<const SharedBytes::Bytes> SharedBytes::share() const {
  return bytes_ ? bytes_ : std::make_shared<const Bytes>();
}

SharedBytes::Bytes SharedBytes::take() {
  if (!bytes_) return {};
  Bytes taken = bytes_.use_count() == 1 ? std::move(*bytes_) : *bytes_;
  bytes_.reset();
  return taken;
}

Variant::Variant() = default;
Variant::Variant(TextView text) : value_(Text(text)) {}
Variant::Variant(const char16_t* text) : value_(Text(text)) {}
Variant::Variant(const Variant& other) = default;
Variant::Variant(Variant&& other) noexcept = default;
Variant& Variant::operator=(const Variant& other) = default;
Variant& Variant::operator=(Variant&& other) noexcept = default;
Variant::~Variant() = default;

template <typename T>
Variant::Variant(T value) requires(isOneOf<T>(static_cast<const Value*>(nullptr)))
    : value_(std::in_place_type<
                 std::conditional_t<std::is_same_v<T, SharedBytes::Bytes>, SharedBytes, T>>,
             std::move(value)) {}

template Variant::Variant(std::monostate);
template Variant::Variant(Null);
template Variant::Variant(std::int16_t);
template Variant::Variant(std::int32_t);
template Variant::Variant(float);
template Variant::Variant(double);
template Variant::Variant(Currency);
template Variant::Variant(Date);
template Variant::Variant(Text);
template Variant::Variant(Object);
template Variant::Variant(Missing);
template Variant::Variant(bool);
template Variant::Variant(std::uint8_t);
template Variant::Variant(std::vector<std::int32_t>);
template Variant::Variant(std::vector<std::uint8_t>);

Variant Variant::missing() { return Variant(Missing{}); }

bool Variant::operator==(const Variant& other) const = default;

double Variant::number() const { return std::visit(ToDouble{}, value_); }

Text toText(const Variant& value) {
  switch (value.type()) {
    case VariantType::Empty:
      return {};
    case VariantType::String:
      return *value.get<Text>();
    case VariantType::Boolean:
      return *value.get<bool>() ? u"True" : u"False";
    case VariantType::Single:
      return numberText(toDouble(value), singleDigits);
    case VariantType::Integer:
    case VariantType::Long:
    case VariantType::Double:
    case VariantType::Currency:
    case VariantType::Byte:
      return numberText(toDouble(value), doubleDigits);
    case VariantType::Null:
      throw RuntimeError(ErrorNumber::InvalidUseOfNull);
    default:
      mismatch();
  }
}

}  // namespace zev
