#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "runtime/number.h"
#include "runtime/text.h"

namespace zev {

/// Types of a variant, as the language numbers them.
enum class VariantType : std::int32_t {
  Empty = 0,
  Null = 1,
  Integer = 2,
  Long = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  String = 8,
  Object = 9,
  Error = 10,
  Boolean = 11,
  Byte = 17,
  LongArray = 8195,
  ByteArray = 8209,
};

/// An amount in ten-thousandths.
struct Currency {
  std::int64_t scaled = 0;
  bool operator==(const Currency&) const = default;
};

/// Days since 30 December 1899 and, after the point, the time of the day.
struct Date {
  double days = 0;
  bool operator==(const Date&) const = default;
};

/// An array of bytes. Copies share the bytes, which nobody changes, until one of them takes its own
/// out: what waits to be sent is not there twice.
class SharedBytes {
 public:
  using Bytes = std::vector<std::uint8_t>;

  explicit SharedBytes(Bytes bytes);
  const Bytes& get() const;
  std::shared_ptr<const Bytes> share() const;
  /// Without a copy if nobody else has them. None are left.
  Bytes take();
  bool operator==(const SharedBytes& other) const { return get() == other.get(); }

 private:
  std::shared_ptr<Bytes> bytes_;  ///< null: none
};

/// A value that carries its type. The alternatives stand in the order of `types` in variant.cpp.
/// What treats one by one the fifteen types that a value can have stands there too: the header is
/// in every unit, and compiling it there again and again took a twentieth of the build.
class Variant {
  template <typename T, typename... Types>
  static constexpr bool isOneOf(const std::variant<Types...>*) {
    return (std::is_same_v<T, Types> || ...);
  }
  /// A letter of texts of another kind.
  template <typename T>
  static constexpr bool isOtherLetter = std::is_same_v<T, char> || std::is_same_v<T, wchar_t> ||
                                        std::is_same_v<T, char8_t> || std::is_same_v<T, char32_t>;

 public:
  struct Null {
    bool operator==(const Null&) const = default;
  };
  /// A reference to some object, which nothing here can look into.
  struct Object {
    bool operator==(const Object&) const = default;
  };
  /// An optional argument that the caller has left out.
  struct Missing {
    bool operator==(const Missing&) const = default;
  };
  /// What a variant is made of and gives back.
  using Value = std::variant<std::monostate, Null, std::int16_t, std::int32_t, float, double,
                             Currency, Date, Text, Object, Missing, bool, std::uint8_t,
                             std::vector<std::int32_t>, std::vector<std::uint8_t>>;

  /// Empty.
  Variant();
  template <typename T>
  Variant(T value) requires(isOneOf<T>(static_cast<const Value*>(nullptr)));
  Variant(TextView text);
  Variant(const char16_t* text);
  /// No such text: the compiler says what to write instead.
  template <typename Letter>
  requires(isOtherLetter<Letter>) Variant(const Letter*) {
    static_assert(!isOtherLetter<Letter>, "texts are UTF-16: write u\"...\" or fromUtf8(...)");
  }
  template <typename Letter>
  requires(isOtherLetter<Letter>) Variant(const std::basic_string<Letter>&) {
    static_assert(!isOtherLetter<Letter>, "texts are UTF-16: write u\"...\" or fromUtf8(...)");
  }
  Variant(const Variant& other);
  Variant(Variant&& other) noexcept;
  Variant& operator=(const Variant& other);
  Variant& operator=(Variant&& other) noexcept;
  ~Variant();

  static Variant missing();

  VariantType type() const;
  bool isMissing() const { return std::holds_alternative<Missing>(value_); }

  /// The value if it is of that type, else null.
  template <typename T>
  const T* get() const {
    if constexpr (std::is_same_v<T, SharedBytes::Bytes>) {
      const auto* const bytes = std::get_if<SharedBytes>(&value_);
      return bytes == nullptr ? nullptr : &bytes->get();
    } else {
      return std::get_if<T>(&value_);
    }
  }
  /// The bytes of an array of them, which stay as they are while anybody has them; null of any
  /// other value.
  std::shared_ptr<const SharedBytes::Bytes> shareBytes() const {
    const auto* const bytes = std::get_if<SharedBytes>(&value_);
    return bytes == nullptr ? nullptr : bytes->share();
  }
  /// Takes a value of that type out; the variant keeps the type. std::bad_variant_access otherwise.
  template <typename T>
  T take() {
    if constexpr (std::is_same_v<T, SharedBytes::Bytes>) {
      return std::get<SharedBytes>(value_).take();
    } else {
      return std::exchange(std::get<T>(value_), T{});
    }
  }
  /// See toDouble.
  double number() const;

  bool operator==(const Variant& other) const;

 private:
  template <typename... Types>
  static std::variant<
      std::conditional_t<std::is_same_v<Types, SharedBytes::Bytes>, SharedBytes, Types>...>
  storedAs(const std::variant<Types...>&);
  using Stored = decltype(storedAs(std::declval<Value>()));

  Stored value_;
};

/// Whether the language takes the value for a number: the number types, Boolean and Empty, and
/// texts that spell one; a Date is none.
bool isNumeric(const Variant& value);

/// The number that a value stands for; True is -1, Empty 0. Error 13 if it is no number, error 94
/// for Null. For variants alone: a text by itself has a conversion of its own.
template <std::same_as<Variant> V>
double toDouble(const V& value) {
  return value.number();
}

/// The same as a whole number, halves to the even one; error 6 out of the 32-bit range.
template <std::same_as<Variant> V>
std::int32_t toLong(const V& value) {
  return toLong(value.number());
}

/// The text of a value: a text as it is, a number in decimal with up to 15 digits, "True" and
/// "False", empty for Empty. Error 94 for Null, error 13 for what has no text here (such as dates,
/// whose text depends on the system's settings, among them).
Text toText(const Variant& value);

}  // namespace zev
