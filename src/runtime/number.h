#pragma once

#include <cstdint>

#include "runtime/text.h"

namespace zev {

/// 32-bit signed arithmetic in which a result out of range is error 6.
std::int32_t add(std::int32_t first, std::int32_t second);
std::int32_t subtract(std::int32_t first, std::int32_t second);
std::int32_t multiply(std::int32_t first, std::int32_t second);

/// Nearest whole number, a half going to the even one; error 6 out of the 32-bit range, and
/// for a value that is no number at all.
std::int32_t toLong(double number);

/// The number that a text spells: as for toLong, without the limits of a whole number. Error 13 and
/// error 6 as there.
double toDouble(TextView text);

/// The whole number that a text spells: blanks, tabs and line ends around it, a sign, digits with a
/// decimal point and an exponent, or &H and &O forms. A text that is no number is error 13, a
/// number out of the 32-bit range is error 6; fractions round half to even.
std::int32_t toLong(TextView text);

}  // namespace zev
