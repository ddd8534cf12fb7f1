#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "runtime/text.h"

namespace zev {

/// A fixed-length text of N units: all NUL until it is first set; a setting cuts a longer text and
/// pads a shorter one with blanks. Readers trim it.
template <std::size_t N>
class FixedText {
 public:
  FixedText& operator=(TextView text) {
    const std::size_t kept = std::min(N, text.size());
    std::copy_n(text.begin(), kept, units_.begin());
    std::fill(units_.begin() + static_cast<std::ptrdiff_t>(kept), units_.end(), u' ');
    return *this;
  }

  /// All N units, as long as this object lives and is not set anew.
  TextView view() const { return {units_.data(), N}; }

  /// The text without blanks at its ends: what every reader of the text works on. A text that was
  /// never set gives its N NULs.
  Text trimmed() const { return Text(trim(view())); }

  /// True until the first setting.
  bool neverSet() const { return units_.front() == u'\0'; }

 private:
  std::array<char16_t, N> units_{};
};

}  // namespace zev
