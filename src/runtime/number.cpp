#include "runtime/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

#include "runtime/error.h"

namespace zev {
namespace {

using Limits = std::numeric_limits<std::int32_t>;

std::int32_t checked(std::int64_t wide) {
  if (wide < Limits::min() || wide > Limits::max()) throw RuntimeError(ErrorNumber::Overflow);
  return static_cast<std::int32_t>(wide);
}

[[noreturn]] void noNumber() { throw RuntimeError(ErrorNumber::TypeMismatch); }

/// The ASCII image of a text; no number has a character beyond ASCII.
std::string asciiOf(TextView text) {
  std::string plain;
  for (const char16_t unit : text) {
    if (unit == 0 || unit >= 0x80) noNumber();
    plain += static_cast<char>(unit);
  }
  return plain;
}

std::string withoutSpace(std::string text) {
  constexpr char space[] = " \t\r\n";
  text.erase(0, std::min(text.find_first_not_of(space), text.size()));
  text.erase(text.find_last_not_of(space) + 1);
  return text;
}

/// &H12 and &O17: at most 32 bits, taken as the pattern of a signed number; 16-bit patterns of up
/// to four hexadecimal digits are signed 16-bit numbers.
std::int32_t radixNumber(const std::string& digits, int base) {
  std::uint64_t value = 0;
  const char* end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, value, base);
  if (error == std::errc::result_out_of_range) throw RuntimeError(ErrorNumber::Overflow);
  if (digits.empty() || stop != end) noNumber();
  if (value > 0xFFFFFFFFu) throw RuntimeError(ErrorNumber::Overflow);
  if (value <= 0xFFFFu) return static_cast<std::int16_t>(value);
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
}

/// What a number may be made of: the C library's reader would also take hexadecimal ones and words.
bool looksDecimal(const std::string& text) {
  const std::size_t first = text.starts_with('+') || text.starts_with('-') ? 1 : 0;
  return text.find_first_of("0123456789.", first) == first &&
         text.find_first_not_of("0123456789.eE+-") == std::string::npos;
}

double decimalNumber(const std::string& text) {
  // The standard library's reader would bring 200 KB of tables into the program.
  char* stop = nullptr;
  const double value = std::strtod(text.c_str(), &stop);
  if (!looksDecimal(text) || stop != text.c_str() + text.size()) noNumber();
  if (std::isinf(value)) throw RuntimeError(ErrorNumber::Overflow);
  return value;
}

}  // namespace

std::int32_t add(std::int32_t first, std::int32_t second) {
  return checked(std::int64_t{first} + second);
}

std::int32_t subtract(std::int32_t first, std::int32_t second) {
  return checked(std::int64_t{first} - second);
}

std::int32_t multiply(std::int32_t first, std::int32_t second) {
  return checked(std::int64_t{first} * second);
}

std::int32_t toLong(double number) {
  const double whole = std::nearbyint(number);  // the default mode rounds half to even
  if (!(whole >= Limits::min() && whole <= Limits::max())) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<std::int32_t>(whole);
}

double toDouble(TextView text) {
  const std::string plain = withoutSpace(asciiOf(text));
  if (plain.size() > 2 && plain[0] == '&') {
    if (plain[1] == 'H' || plain[1] == 'h') return radixNumber(plain.substr(2), 16);
    if (plain[1] == 'O' || plain[1] == 'o') return radixNumber(plain.substr(2), 8);
  }
  return decimalNumber(plain);
}

std::int32_t toLong(TextView text) { return toLong(toDouble(text)); }

}  // namespace zev
