#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/text.h"

namespace zev::win32 {

/// Bytes of a text in the system's code page. What the page cannot represent becomes its default
/// character, and never a character that merely looks alike.
std::string toAnsi(TextView text);
Text fromAnsi(std::string_view bytes);

/// The argument of a call: the bytes of a text up to its first NUL.
std::string ansiArgument(TextView text);

/// Writes a call's answer and a NUL over the beginning of a buffer and leaves the rest. The buffer
/// stands for as many bytes; what they cannot hold is dropped. Returns the units of the whole
/// answer, without the NUL.
std::uint32_t writeAnswer(Text& buffer, std::string_view answer);

/// Texts and the system's wide ones have the same units.
inline const wchar_t* wide(const Text& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}

/// A path that the system gave, in a form that the calls of its code page find again: itself, or,
/// if the page cannot write it, its short form. Where there is none, or the page cannot write that
/// either, the path itself.
Text writablePath(const Text& path);

/// A path of the system of at most that many units, its NUL included: longer ones there are not.
inline constexpr std::size_t longestPath = 32768;

}  // namespace zev::win32
